#ifndef OBD_SENSORVALUE_H
#define OBD_SENSORVALUE_H

#include "unitsystem.h"

#include <QString>

namespace Obd {

// One displayed value of a sensor, as text, with a metric and an imperial
// reading side by side so the screens can switch units without a new request.
class SensorValue
{
public:
    struct Data
    {
        QString unit;
        QString value;
    };

    SensorValue(const QString& ecuName, const QString& pid, const QString& description,
                const QString& metricUnit, const QString& imperialUnit);
    virtual ~SensorValue();

    // Any unit system other than the two is ignored.
    virtual void setValue(const QString& value, UnitSystem unitSystem);
    // Any unit system other than the two is ignored (it may come from the
    // settings store).
    virtual void setUnitSystem(UnitSystem unitSystem);
    virtual QString getEcuName() const;
    virtual QString getPid() const;
    virtual QString getDescription() const;
    // Of the current unit system.
    virtual QString getUnit() const;
    virtual QString getValue() const;

    UnitSystem getUnitSystem() const;

    // "0x" and the PID in upper-case hexadecimal, two digits at least.
    static QString pidText(unsigned int pid);
    static bool isValid(UnitSystem unitSystem);

protected:
    const Data& getData() const;

private:
    QString m_ecuName;
    QString m_pid;
    QString m_description;
    UnitSystem m_unitSystem;
    Data m_metric;
    Data m_imperial;
};

} // namespace Obd

#endif
