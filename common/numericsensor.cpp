#include "numericsensor.h"

#include "measurableparameter.h"
#include "numericsensorvalue.h"
#include "sensorinfo.h"
#include "unittable.h"

#include <QCoreApplication>

#include <cassert>
#include <memory>
#include <stdexcept>
#include <vector>

namespace Obd {

NumericSensor::NumericSensor(const Ecu& ecu, PowertrainParameter* parameter, QObject* parent)
    : Sensor(ecu, parameter, parent)
    , m_measurable(dynamic_cast<MeasurableParameter*>(parameter))
{
    if (!m_measurable)
        return;
    std::vector<SensorInfo*> infos;
    std::vector<ValueFormaterPtr> formatters;
    m_measurable->getSensorInfos(infos);
    m_measurable->getFormatters(formatters);
    // A catalogue entry with too few formatters is a programming error;
    // checked before anything is allocated so nothing leaks.
    if (formatters.size() < infos.size())
        throw std::out_of_range("fewer formatters than sensor infos");
    const QString ecuName = QString::fromStdString(ecu.getShortName());
    const QString pid = SensorValue::pidText(m_measurable->getPid());
    for (size_t i = 0; i < infos.size(); ++i) {
        const SensorInfo* info = infos[i];
        std::unique_ptr<NumericSensorValue> value(new NumericSensorValue(
            ecuName, pid, QString::fromStdString(info->getName()),
            QCoreApplication::translate("Obd::Sensor", unitText(info->getUnit(US_METRIC))),
            QCoreApplication::translate("Obd::Sensor", unitText(info->getUnit(US_IMPERIAL))),
            static_cast<float>(info->getMinimum(US_METRIC)),
            static_cast<float>(info->getMaximum(US_METRIC)),
            static_cast<float>(info->getMinimum(US_IMPERIAL)),
            static_cast<float>(info->getMaximum(US_IMPERIAL)), formatters[i]));
        m_numericValues.append(value.release());
    }
}

NumericSensor::~NumericSensor()
{
    qDeleteAll(m_numericValues);
    m_numericValues.clear();
}

void NumericSensor::setUnitSystem(UnitSystem unitSystem)
{
    Sensor::setUnitSystem(unitSystem);
    if (!SensorValue::isValid(unitSystem))
        return;
    for (NumericSensorValue* value : m_numericValues)
        value->setUnitSystem(unitSystem);
}

QList<NumericSensorValue*> NumericSensor::getNumericValues() const
{
    return m_numericValues;
}

void NumericSensor::updated(bool success)
{
    if (!success || !m_measurable)
        return;
    std::vector<float> metricValues;
    std::vector<float> imperialValues;
    m_measurable->getValues(m_ecu, US_METRIC, metricValues);
    if (!metricValues.empty()) {
        for (size_t i = 0; i < metricValues.size() && i < size_t(m_numericValues.size()); ++i)
            m_numericValues[int(i)]->addSample(metricValues[i], US_METRIC);
        m_measurable->getValues(m_ecu, US_IMPERIAL, imperialValues);
        for (size_t i = 0; i < imperialValues.size() && i < size_t(m_numericValues.size()); ++i)
            m_numericValues[int(i)]->addSample(imperialValues[i], US_IMPERIAL);
    }
    assert(metricValues.size() == imperialValues.size()
           && "metricValues.size() == imperialValues.size()");
}

} // namespace Obd
