#ifndef OBD_PERFORMANCETRACKINGSPARK_H
#define OBD_PERFORMANCETRACKINGSPARK_H

#include "performancetracking.h"

#include <string>

namespace Obd {

// Service 09 InfoType 08: in-use performance tracking counters, spark ignition.
class PerformanceTrackingSpark : public PerformanceTracking
{
public:
    static constexpr unsigned char INFO_TYPE = 0x08;
    static constexpr unsigned int COUNTER_COUNT = 20;

    // Counter ids in the order the ECU sends them (SAE J1979 mnemonics).
    enum SparkCounter {
        OBDCOND = 0,
        IGNCNTR = 1,
        CATCOMP1 = 2,
        CATCOND1 = 3,
        CATCOMP2 = 4,
        CATCOND2 = 5,
        O2SCOMP1 = 6,
        O2SCOND1 = 7,
        O2SCOMP2 = 8,
        O2SCOND2 = 9,
        EGRCOMP = 10,
        EGRCOND = 11,
        AIRCOMP = 12,
        AIRCOND = 13,
        EVAPCOMP = 14,
        EVAPCOND = 15,
        SO2SCOMP1 = 16,
        SO2SCOND1 = 17,
        SO2SCOMP2 = 18,
        SO2SCOND2 = 19
    };

    PerformanceTrackingSpark();
    ~PerformanceTrackingSpark() override;

    // "NA" (and "Invalid counter: " logged) for an id outside the table.
    static std::string getCounterName(unsigned int counter);
};

} // namespace Obd

#endif
