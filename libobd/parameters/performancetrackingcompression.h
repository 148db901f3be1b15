#ifndef OBD_PERFORMANCETRACKINGCOMPRESSION_H
#define OBD_PERFORMANCETRACKINGCOMPRESSION_H

#include "obdparameter.h"

#include <map>
#include <string>
#include <vector>

namespace Obd {

class Ecu;

// Service 09 InfoType 0B: in-use performance tracking counters, compression ignition.
class PerformanceTrackingCompression : public ObdParameter
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

    void clear() override;
    void buildRequest(std::vector<unsigned char>& request) override;
    void getSignature(std::vector<unsigned char>& signature) override;
    bool parsePayload(unsigned int ecuId, const std::vector<unsigned char>& data) override;

    // Counter id to count. Empty (and "invalid ECU id " logged) when the ECU
    // has no result.
    std::map<unsigned int, unsigned int> getCounters(const Ecu& ecu) const;
    // 0 when the ECU has no result or did not send that counter.
    unsigned int getCount(const Ecu& ecu, unsigned int counter) const;
    void getEcuIds(std::vector<unsigned int>& ids) const;

    // "NA" (and "Invalid counter: " logged) for an id outside the table.
    static std::string getCounterName(unsigned int counter);

private:
    std::map<unsigned int, std::map<unsigned int, unsigned int>> m_counters;
};

} // namespace Obd

#endif
