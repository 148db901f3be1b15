#include "numericsensorvalue.h"

#include <algorithm>
#include <cassert>

namespace Obd {

NumericSensorValue::NumericSensorValue(const QString& ecuName, const QString& pid,
                                       const QString& description, const QString& metricUnit,
                                       const QString& imperialUnit, float metricMinimum,
                                       float metricMaximum, float imperialMinimum,
                                       float imperialMaximum, const ValueFormaterPtr& formatter)
    : SensorValue(ecuName, pid, description, metricUnit, imperialUnit)
    , m_unitSystem(US_METRIC)
    , m_formatter(formatter)
    , m_metric{metricMinimum, metricMaximum, 0.0f, 0.0f, 0.0f, 0.0f, 0}
    , m_imperial{imperialMinimum, imperialMaximum, 0.0f, 0.0f, 0.0f, 0.0f, 0}
{
}

NumericSensorValue::~NumericSensorValue()
{
}

void NumericSensorValue::setUnitSystem(UnitSystem unitSystem)
{
    SensorValue::setUnitSystem(unitSystem);
    if (isValid(unitSystem))
        m_unitSystem = unitSystem;
}

QString NumericSensorValue::getValue() const
{
    float value = getData().value;
    if (m_formatter)
        return QString::fromStdString(m_formatter->format(m_unitSystem, value));
    return QString::number(value, 'g', 6);
}

void NumericSensorValue::addSample(float value, UnitSystem unitSystem)
{
    Data* data = nullptr;
    if (unitSystem == US_METRIC)
        data = &m_metric;
    else if (unitSystem == US_IMPERIAL)
        data = &m_imperial;
    else
        return;
    data->value = value;
    data->count += 1;
    if (data->count == 1) {
        data->peakMaximum = value;
        data->peakMinimum = value;
    } else {
        data->peakMinimum = std::min(data->peakMinimum, value);
        data->peakMaximum = std::max(data->peakMaximum, value);
    }
    data->average = data->average + (value - data->average) / static_cast<float>(data->count);
}

float NumericSensorValue::getRangeMinimum() const
{
    return getData().rangeMinimum;
}

float NumericSensorValue::getRangeMaximum() const
{
    return getData().rangeMaximum;
}

float NumericSensorValue::getNumericValue() const
{
    return getData().value;
}

float NumericSensorValue::getPeakMaximum() const
{
    return getData().peakMaximum;
}

float NumericSensorValue::getPeakMinimum() const
{
    return getData().peakMinimum;
}

float NumericSensorValue::getAverage() const
{
    return getData().average;
}

unsigned int NumericSensorValue::getSampleCount() const
{
    return getData().count;
}

const NumericSensorValue::Data& NumericSensorValue::getData() const
{
    assert((m_unitSystem == US_IMPERIAL || m_unitSystem == US_METRIC)
           && "m_unitSystem == US_IMPERIAL || m_unitSystem == US_METRIC");
    return m_unitSystem == US_IMPERIAL ? m_imperial : m_metric;
}

} // namespace Obd
