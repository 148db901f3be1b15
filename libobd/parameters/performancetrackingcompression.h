#ifndef OBD_PERFORMANCETRACKINGCOMPRESSION_H
#define OBD_PERFORMANCETRACKINGCOMPRESSION_H

#include "performancetracking.h"

#include <string>

namespace Obd {

// Service 09 InfoType 0B: in-use performance tracking counters, compression ignition.
class PerformanceTrackingCompression : public PerformanceTracking
{
public:
    static constexpr unsigned char INFO_TYPE = 0x0B;
    static constexpr unsigned int COUNTER_COUNT = 18;

    // Counter ids in the order the ECU sends them (SAE J1979 mnemonics).
    enum CompressionCounter {
        OBDCOND = 0,
        IGNCNTR = 1,
        HCCATCOMP = 2,
        HCCATCOND = 3,
        NCATCOMP = 4,
        NCATCOND = 5,
        NADSCOMP = 6,
        NADSCOND = 7,
        PMCOMP = 8,
        PMCOND = 9,
        EGSCOMP = 10,
        EGSCOND = 11,
        EGRCOMP = 12,
        EGRCOND = 13,
        BPCOMP = 14,
        BPCOND = 15,
        FUELCOMP = 16,
        FUELCOND = 17
    };

    PerformanceTrackingCompression();
    ~PerformanceTrackingCompression() override;

    // "NA" (and "Invalid counter: " logged) for an id outside the table.
    static std::string getCounterName(unsigned int counter);
};

} // namespace Obd

#endif
