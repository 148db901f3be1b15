#ifndef OBD_PERFORMANCETRACKINGSPARK_H
#define OBD_PERFORMANCETRACKINGSPARK_H

#include "obdparameter.h"

#include <map>
#include <string>
#include <vector>

namespace Obd {

class Ecu;

// Service 09 InfoType 08: in-use performance tracking counters, spark ignition.
class PerformanceTrackingSpark : public ObdParameter
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
