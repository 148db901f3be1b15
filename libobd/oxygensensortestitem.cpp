#include "oxygensensortestitem.h"
#include "trlog.h"
#include "unittable.h"

namespace Obd {

OxygenSensorTestItem::OxygenSensorTestItem(unsigned char tid, OxygenSensorLocation location,
                                           unsigned char value, unsigned char minimum,
                                           unsigned char maximum)
    : m_tid(tid)
    , m_location(location)
    , m_value(value)
    , m_minimum(minimum)
    , m_maximum(maximum)
    , m_scaling(scalingOf(tid))
{
}

OxygenSensorTestItem::~OxygenSensorTestItem()
{
}

LinearScaling OxygenSensorTestItem::scalingOf(unsigned char tid)
{
    // Scaling id 0: the bytes are unsigned.
    switch (tid) {
    case 0x01: case 0x02: case 0x03: case 0x04: case 0x07: case 0x08:
        return LinearScaling(0, 0.005f, 3, UNIT_VOLT);
    case 0x05: case 0x06:
        return LinearScaling(0, 0.004f, 3, UNIT_SECOND);
    case 0x09: case 0x0A:
        return LinearScaling(0, 0.04f, 2, UNIT_SECOND);
    default:
        return LinearScaling(0, 1.0f, 0, UNIT_NONE);
    }
}

unsigned char OxygenSensorTestItem::getTid() const
{
    return m_tid;
}

OxygenSensorLocation OxygenSensorTestItem::getLocation() const
{
    return m_location;
}

unsigned char OxygenSensorTestItem::getRawValue() const
{
    return m_value;
}

unsigned char OxygenSensorTestItem::getRawMinimum() const
{
    return m_minimum;
}

unsigned char OxygenSensorTestItem::getRawMaximum() const
{
    return m_maximum;
}

float OxygenSensorTestItem::getValue() const
{
    return m_scaling.getValue(m_value);
}

float OxygenSensorTestItem::getMinimum() const
{
    return m_scaling.getValue(m_minimum);
}

float OxygenSensorTestItem::getMaximum() const
{
    return m_scaling.getValue(m_maximum);
}

std::string OxygenSensorTestItem::getValueText() const
{
    return m_scaling.getText(m_value);
}

std::string OxygenSensorTestItem::getMinimumText() const
{
    return m_scaling.getText(m_minimum);
}

std::string OxygenSensorTestItem::getMaximumText() const
{
    return m_scaling.getText(m_maximum);
}

unsigned int OxygenSensorTestItem::getUnit() const
{
    return m_scaling.getUnit();
}

bool OxygenSensorTestItem::isPassed() const
{
    return m_minimum <= m_value && m_value <= m_maximum;
}

void OxygenSensorTestItem::setUnitSystem(UnitSystem)
{
    OBD_DEBUG << "TODO: not implemented";
}

} // namespace Obd
