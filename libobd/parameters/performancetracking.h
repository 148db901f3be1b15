#ifndef OBD_PERFORMANCETRACKING_H
#define OBD_PERFORMANCETRACKING_H

#include "obdparameter.h"

#include <map>
#include <string>
#include <vector>

namespace Obd {

class Ecu;

// Service 09 in-use performance tracking: 16-bit counters in the order the
// ECU sends them. The spark and compression classes give the info type and
// the counter names.
class PerformanceTracking : public ObdParameter
{
public:
    ~PerformanceTracking() override;

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

protected:
    PerformanceTracking(unsigned char infoType, unsigned int counterCount);

    // "NA" (and "Invalid counter: " logged) for an id outside the table.
    static std::string counterName(const char* const* names, unsigned int count,
                                   unsigned int counter);

private:
    unsigned char m_infoType;
    unsigned int m_counterCount;
    std::map<unsigned int, std::map<unsigned int, unsigned int>> m_counters;
};

} // namespace Obd

#endif
