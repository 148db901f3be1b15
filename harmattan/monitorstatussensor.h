#ifndef HARMATTAN_MONITORSTATUSSENSOR_H
#define HARMATTAN_MONITORSTATUSSENSOR_H

#include "sensor.h"

namespace Obd {
class MonitorStatus;
}

namespace Harmattan {

// The live list's PID 01 row: the record has no single value, so the row
// reads as a summary: lamp, confirmed codes, monitors ready of supported.
class MonitorStatusSensor : public Obd::Sensor
{
    Q_OBJECT

public:
    explicit MonitorStatusSensor(const Obd::Ecu& ecu, QObject* parent = nullptr);

    void updated(bool success) override;

    // "MIL off, 0 codes, 5/7 ready"
    static QString summary(const Obd::MonitorStatus& status, const Obd::Ecu& ecu);
};

} // namespace Harmattan

#endif
