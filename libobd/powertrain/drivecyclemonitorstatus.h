#ifndef OBD_DRIVECYCLEMONITORSTATUS_H
#define OBD_DRIVECYCLEMONITORSTATUS_H

#include "monitorstatus.h"

namespace Obd {

// PID 41: the readiness monitors of this drive cycle, laid out as PID 01's
// bytes B..D (supported means enabled this cycle); byte A is reserved, so
// there is no lamp and no code count.
class DriveCycleMonitorStatus : public MonitorStatus
{
public:
    explicit DriveCycleMonitorStatus(unsigned char mode = 1);

    void getFormattedValues(const Ecu& ecu, UnitSystem unitSystem,
                            std::vector<std::string>& list) const override;
};

} // namespace Obd

#endif
