#include "drivecyclemonitorstatus.h"

namespace Obd {

DriveCycleMonitorStatus::DriveCycleMonitorStatus(unsigned char mode)
    : MonitorStatus(0x41, mode)
{
}

void DriveCycleMonitorStatus::getFormattedValues(const Ecu& ecu, UnitSystem, std::vector<std::string>& list) const
{
    if (hasValue(ecu))
        list.push_back(readinessSummary(ecu));
}

} // namespace Obd
