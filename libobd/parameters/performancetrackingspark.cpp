#include "performancetrackingspark.h"
#include "ecu.h"
#include "iscantool.h"
#include "trlog.h"
#include "vehicleinfoframes.h"

namespace Obd {

namespace {

const char* const COUNTER_NAMES[] = {
    "OBD Monitoring Conditions Encountered Counts",
    "Ignition Cycle Counter",
    "Catalyst Monitor Completion Counts Bank 1",
    "Catalyst Monitor Conditions Encountered Counts Bank 1",
    "Catalyst Monitor Completion Counts Bank 2",
    "Catalyst Monitor Conditions Encountered Counts Bank 2",
    "O2 Sensor Monitor Completion Counts Bank 1",
    "O2 Sensor Monitor Conditions Encountered Counts Bank 1",
    "O2 Sensor Monitor Completion Counts Bank 2",
    "O2 Sensor Monitor Conditions Encountered Counts Bank 2",
    "EGR and/or VVT Monitor Completion Condition Counts",
    "EGR and/or VVT Monitor Conditions Encountered Counts",
    "AIR Monitor Completion Condition Counts (Secondary Air)",
    "AIR Monitor Conditions Encountered Counts (Secondary Air)",
    "EVAP Monitor Completion Condition Counts",
    "EVAP Monitor Conditions Encountered Counts",
    "Secondary O2 Sensor Monitor Completion Counts Bank 1",
    "Secondary O2 Sensor Monitor Conditions Encountered Counts Bank 1",
    "Secondary O2 Sensor Monitor Completion Counts Bank 2",
    "Secondary O2 Sensor Monitor Conditions Encountered Counts Bank 2",
};
static_assert(sizeof(COUNTER_NAMES) / sizeof(COUNTER_NAMES[0]) == PerformanceTrackingSpark::COUNTER_COUNT,
              "one name per counter");

} // namespace

PerformanceTrackingSpark::PerformanceTrackingSpark()
{
}

PerformanceTrackingSpark::~PerformanceTrackingSpark()
{
}

void PerformanceTrackingSpark::clear()
{
    m_counters.clear();
}

void PerformanceTrackingSpark::buildRequest(std::vector<unsigned char>& request)
{
    request.clear();
    request.push_back(0x09);
    request.push_back(INFO_TYPE);
}

void PerformanceTrackingSpark::getSignature(std::vector<unsigned char>& signature)
{
    signature.clear();
    signature.push_back(0x49);
    signature.push_back(INFO_TYPE);
}

bool PerformanceTrackingSpark::parsePayload(unsigned int ecuId, const std::vector<unsigned char>& data)
{
    std::map<unsigned int, unsigned int> counters;
    switch (VehicleInfoFrames::decodeCounters(data, INFO_TYPE, isCanProtocol(m_protocol),
                                              COUNTER_COUNT, counters)) {
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

std::map<unsigned int, unsigned int> PerformanceTrackingSpark::getCounters(const Ecu& ecu) const
{
    auto it = m_counters.find(ecu.getId());
    if (it == m_counters.end()) {
        OBD_WARN << "invalid ECU id " << ecu.getId();
        return std::map<unsigned int, unsigned int>();
    }
    return it->second;
}

unsigned int PerformanceTrackingSpark::getCount(const Ecu& ecu, unsigned int counter) const
{
    const std::map<unsigned int, unsigned int> counters = getCounters(ecu);
    auto it = counters.find(counter);
    return it == counters.end() ? 0 : it->second;
}

void PerformanceTrackingSpark::getEcuIds(std::vector<unsigned int>& ids) const
{
    for (const auto& entry : m_counters)
        ids.push_back(entry.first);
}

std::string PerformanceTrackingSpark::getCounterName(unsigned int counter)
{
    if (counter >= COUNTER_COUNT) {
        OBD_WARN << "Invalid counter: " << counter;
        return "NA";
    }
    return COUNTER_NAMES[counter];
}

} // namespace Obd
