#include "performancetrackingspark.h"

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
    : PerformanceTracking(INFO_TYPE, COUNTER_COUNT)
{
}

PerformanceTrackingSpark::~PerformanceTrackingSpark()
{
}

std::string PerformanceTrackingSpark::getCounterName(unsigned int counter)
{
    return counterName(COUNTER_NAMES, COUNTER_COUNT, counter);
}

} // namespace Obd
