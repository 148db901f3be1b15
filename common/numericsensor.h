#ifndef OBD_NUMERICSENSOR_H
#define OBD_NUMERICSENSOR_H

#include "sensor.h"

namespace Obd {

class MeasurableParameter;
class NumericSensorValue;

// A sensor whose parameter yields numbers: besides the texts it keeps one
// NumericSensorValue per value with range, peaks and running mean in both
// unit systems.
class NumericSensor : public Sensor
{
    Q_OBJECT

public:
    // Takes ownership of parameter, which should be a MeasurableParameter
    // (otherwise the sensor has texts only). Throws std::out_of_range when the
    // parameter has fewer formatters than values.
    NumericSensor(const Ecu& ecu, PowertrainParameter* parameter, QObject* parent = nullptr);
    ~NumericSensor() override;

    // unitChanged() is emitted before the numeric values switch.
    void setUnitSystem(UnitSystem unitSystem) override;
    // The records stay owned by the sensor.
    virtual QList<NumericSensorValue*> getNumericValues() const;

public slots:
    void updated(bool success) override;

private:
    QList<NumericSensorValue*> m_numericValues;
    MeasurableParameter* m_measurable;
};

} // namespace Obd

#endif
