#include "monitorstatussensor.h"

#include "powertrain/monitorstatus.h"
#include "sensorvalue.h"

namespace Harmattan {

MonitorStatusSensor::MonitorStatusSensor(const Obd::Ecu& ecu, QObject* parent)
    : Obd::Sensor(ecu, new Obd::MonitorStatus(), parent)
{
}

void MonitorStatusSensor::updated(bool success)
{
    const Obd::MonitorStatus* status = dynamic_cast<const Obd::MonitorStatus*>(m_parameter);
    if (!success || !status || getValues().isEmpty())
        return;
    const QString text = summary(*status, m_ecu);
    getValues().first()->setValue(text, Obd::US_METRIC);
    getValues().first()->setValue(text, Obd::US_IMPERIAL);
}

QString MonitorStatusSensor::summary(const Obd::MonitorStatus& status, const Obd::Ecu& ecu)
{
    // Ids 3..9 are the spark-ignition monitors, 10..15 the compression-ignition ones.
    const bool diesel = status.isCompressionIgnition(ecu);
    int supported = 0;
    int ready = 0;
    for (unsigned int id = 0; id < Obd::MonitorStatus::IGNITION_TYPE; ++id) {
        if (id >= 3 && (id >= 10) != diesel)
            continue;
        supported += status.isSupported(ecu, id) ? 1 : 0;
        ready += status.isComplete(ecu, id) ? 1 : 0;
    }
    const unsigned int codes = status.getDtcCount(ecu);
    return QStringLiteral("MIL %1, %2 %3, %4/%5 ready")
        .arg(status.isMilOn(ecu) ? "on" : "off")
        .arg(codes)
        .arg(codes == 1 ? "code" : "codes")
        .arg(ready)
        .arg(supported);
}

} // namespace Harmattan
