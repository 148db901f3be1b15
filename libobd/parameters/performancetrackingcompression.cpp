#include "performancetrackingcompression.h"

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
    : PerformanceTracking(INFO_TYPE, COUNTER_COUNT)
{
}

PerformanceTrackingCompression::~PerformanceTrackingCompression()
{
}

std::string PerformanceTrackingCompression::getCounterName(unsigned int counter)
{
    return counterName(COUNTER_NAMES, COUNTER_COUNT, counter);
}

} // namespace Obd
