#include "performancetracking.h"
#include "ecu.h"
#include "iscantool.h"
#include "trlog.h"
#include "vehicleinfoframes.h"

namespace Obd {

PerformanceTracking::PerformanceTracking(unsigned char infoType, unsigned int counterCount)
    : m_infoType(infoType)
    , m_counterCount(counterCount)
{
}

PerformanceTracking::~PerformanceTracking()
{
}

void PerformanceTracking::clear()
{
    m_counters.clear();
}

void PerformanceTracking::buildRequest(std::vector<unsigned char>& request)
{
    request.clear();
    request.push_back(0x09);
    request.push_back(m_infoType);
}

void PerformanceTracking::getSignature(std::vector<unsigned char>& signature)
{
    signature.clear();
    signature.push_back(0x49);
    signature.push_back(m_infoType);
}

bool PerformanceTracking::parsePayload(unsigned int ecuId, const std::vector<unsigned char>& data)
{
    std::map<unsigned int, unsigned int> counters;
    switch (VehicleInfoFrames::decodeCounters(data, m_infoType, isCanProtocol(m_protocol),
                                              m_counterCount, counters)) {
    case VehicleInfoFrames::OK:
        m_counters[ecuId] = counters;
        return true;
    case VehicleInfoFrames::BAD_LENGTH:
        OBD_ERROR << "Invalid number of data bytes: " << data.size();
        return false;
    case VehicleInfoFrames::BAD_HEADER:
        OBD_ERROR << "Invalid data received";
        return false;
    }
    return false;
}

std::map<unsigned int, unsigned int> PerformanceTracking::getCounters(const Ecu& ecu) const
{
    auto it = m_counters.find(ecu.getId());
    if (it == m_counters.end()) {
        OBD_WARN << "invalid ECU id " << ecu.getId();
        return std::map<unsigned int, unsigned int>();
    }
    return it->second;
}

unsigned int PerformanceTracking::getCount(const Ecu& ecu, unsigned int counter) const
{
    const std::map<unsigned int, unsigned int> counters = getCounters(ecu);
    auto it = counters.find(counter);
    return it == counters.end() ? 0 : it->second;
}

void PerformanceTracking::getEcuIds(std::vector<unsigned int>& ids) const
{
    for (const auto& entry : m_counters)
        ids.push_back(entry.first);
}

std::string PerformanceTracking::counterName(const char* const* names, unsigned int count,
                                             unsigned int counter)
{
    if (counter >= count) {
        OBD_WARN << "Invalid counter: " << counter;
        return "NA";
    }
    return names[counter];
}

} // namespace Obd
