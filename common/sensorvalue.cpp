#include "sensorvalue.h"

#include "trlog.h"

#include <cassert>

namespace Obd {

SensorValue::SensorValue(const QString& ecuName, const QString& pid, const QString& description,
                         const QString& metricUnit, const QString& imperialUnit)
    : m_ecuName(ecuName)
    , m_pid(pid)
    , m_description(description)
    , m_unitSystem(US_METRIC)
    , m_metric{metricUnit, QString()}
    , m_imperial{imperialUnit, QString()}
{
}

SensorValue::~SensorValue()
{
}

bool SensorValue::isValid(UnitSystem unitSystem)
{
    return unitSystem == US_METRIC || unitSystem == US_IMPERIAL;
}

QString SensorValue::pidText(unsigned int pid)
{
    return QStringLiteral("0x") + QString::number(pid, 16).toUpper().rightJustified(2, QLatin1Char('0'));
}

void SensorValue::setValue(const QString& value, UnitSystem unitSystem)
{
    if (unitSystem == US_METRIC)
        m_metric.value = value;
    else if (unitSystem == US_IMPERIAL)
        m_imperial.value = value;
}

void SensorValue::setUnitSystem(UnitSystem unitSystem)
{
    if (!isValid(unitSystem)) {
        OBD_WARN << "invalid unit system " << static_cast<int>(unitSystem);
        return;
    }
    m_unitSystem = unitSystem;
}

QString SensorValue::getEcuName() const
{
    return m_ecuName;
}

QString SensorValue::getPid() const
{
    return m_pid;
}

QString SensorValue::getDescription() const
{
    return m_description;
}

QString SensorValue::getUnit() const
{
    return getData().unit;
}

QString SensorValue::getValue() const
{
    return getData().value;
}

UnitSystem SensorValue::getUnitSystem() const
{
    return m_unitSystem;
}

const SensorValue::Data& SensorValue::getData() const
{
    assert((m_unitSystem == US_IMPERIAL || m_unitSystem == US_METRIC)
           && "m_unitSystem == US_IMPERIAL || m_unitSystem == US_METRIC");
    return m_unitSystem == US_IMPERIAL ? m_imperial : m_metric;
}

} // namespace Obd
