#include "performancetrackingcompression.h"
#include "ecu.h"
#include "iscantool.h"
#include "trlog.h"
#include "vehicleinfoframes.h"

namespace Obd {

namespace {

const char* const COUNTER_NAMES[] = {
    "OBD Monitoring Conditions Encountered Counts",
    "Ignition Cycle Counter",
    "NMHC Catalyst Monitor Completion Condition Counts",
    "NMHC Catalyst Monitor Conditions Encountered Counts",
    "NOx/SRC Catalyst Monitor Completion Condition Counts",
    "NOx/SRC Catalyst Monitor Conditions Encountered Counts",
    "NOx Adsorber Monitor Completion Conditions Counts",
    "NOx Adsorber Monitor Conditions Encountered Counts",
    "PM Filter Monitor Completion Condition Counts",
    "PM Filter Monitor Conditions Encountered Counts",
    "Exhaust Gas Sensor Monitor Completion Condition Counts",
    "Exhaust Gas Sensor Monitor Conditions Encountered Counts",
    "EGR and/or VVT Monitor Completion Condition Counts",
    "EGR and/or VVT Monitor Conditions Encountered Counts",
    "Boost Pressure Monitor Completion Condition Counts",
    "Boost Pressure Monitor Conditions Encountered Counts",
    "Fuel Monitor Completion Condition Counts",
    "Fuel Monitor Conditions Encountered Counts",
};
static_assert(sizeof(COUNTER_NAMES) / sizeof(COUNTER_NAMES[0]) == PerformanceTrackingCompression::COUNTER_COUNT,
              "one name per counter");

} // namespace

PerformanceTrackingCompression::PerformanceTrackingCompression()
{
}

PerformanceTrackingCompression::~PerformanceTrackingCompression()
{
}

void PerformanceTrackingCompression::clear()
{
    m_counters.clear();
}

void PerformanceTrackingCompression::buildRequest(std::vector<unsigned char>& request)
{
    request.clear();
    request.push_back(0x09);
    request.push_back(INFO_TYPE);
}

void PerformanceTrackingCompression::getSignature(std::vector<unsigned char>& signature)
{
    signature.clear();
    signature.push_back(0x49);
    signature.push_back(INFO_TYPE);
}

bool PerformanceTrackingCompression::parsePayload(unsigned int ecuId, const std::vector<unsigned char>& data)
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

std::map<unsigned int, unsigned int> PerformanceTrackingCompression::getCounters(const Ecu& ecu) const
{
    auto it = m_counters.find(ecu.getId());
    if (it == m_counters.end()) {
        OBD_WARN << "invalid ECU id " << ecu.getId();
        return std::map<unsigned int, unsigned int>();
    }
    return it->second;
}

unsigned int PerformanceTrackingCompression::getCount(const Ecu& ecu, unsigned int counter) const
{
    const std::map<unsigned int, unsigned int> counters = getCounters(ecu);
    auto it = counters.find(counter);
    return it == counters.end() ? 0 : it->second;
}

void PerformanceTrackingCompression::getEcuIds(std::vector<unsigned int>& ids) const
{
    for (const auto& entry : m_counters)
        ids.push_back(entry.first);
}

std::string PerformanceTrackingCompression::getCounterName(unsigned int counter)
{
    if (counter >= COUNTER_COUNT) {
        OBD_WARN << "Invalid counter: " << counter;
        return "NA";
    }
    return COUNTER_NAMES[counter];
}

} // namespace Obd
