#include "canmonitortestitem.h"
#include "iunitscaling.h"
#include "linearscaling.h"
#include "monitortestnames.h"
#include "unitscalingfactory.h"
#include "unittable.h"

namespace Obd {

CanMonitorTestItem::CanMonitorTestItem(unsigned char tid, unsigned char scalingId,
                                       unsigned int value, unsigned int minimum,
                                       unsigned int maximum, UnitSystem system)
    : m_tid(tid)
    , m_scalingId(scalingId)
    , m_value(static_cast<float>(value & 0xFFFF))
    , m_minimum(static_cast<float>(minimum & 0xFFFF))
    , m_maximum(static_cast<float>(maximum & 0xFFFF))
    , m_passed(false)
    , m_scaling(UnitScalingFactory::create(scalingId, system))
    , m_system(system)
{
    const int v = LinearScaling::rawNumber(scalingId, value);
    m_passed = LinearScaling::rawNumber(scalingId, minimum) <= v
        && v <= LinearScaling::rawNumber(scalingId, maximum);
}

CanMonitorTestItem::~CanMonitorTestItem()
{
}

void CanMonitorTestItem::setUnitSystem(UnitSystem system)
{
    if (system == m_system)
        return;
    m_system = system;
    m_scaling.reset(UnitScalingFactory::create(m_scalingId, system));
}

unsigned char CanMonitorTestItem::getTid() const
{
    return m_tid;
}

std::string CanMonitorTestItem::getTidName() const
{
    return MonitorTestNames::tidName(m_tid);
}

std::string CanMonitorTestItem::getValueText() const
{
    return textOf(m_value);
}

std::string CanMonitorTestItem::getMinimumText() const
{
    return textOf(m_minimum);
}

std::string CanMonitorTestItem::getMaximumText() const
{
    return textOf(m_maximum);
}

bool CanMonitorTestItem::isPassed() const
{
    return m_passed;
}

unsigned int CanMonitorTestItem::getUnit() const
{
    return m_scaling ? m_scaling->getUnit() : static_cast<unsigned int>(UNIT_NONE);
}

unsigned char CanMonitorTestItem::getScalingId() const
{
    return m_scalingId;
}

float CanMonitorTestItem::getValue() const
{
    return m_value;
}

float CanMonitorTestItem::getMinimum() const
{
    return m_minimum;
}

float CanMonitorTestItem::getMaximum() const
{
    return m_maximum;
}

UnitSystem CanMonitorTestItem::getUnitSystem() const
{
    return m_system;
}

const IUnitScaling* CanMonitorTestItem::getScaling() const
{
    return m_scaling.get();
}

std::string CanMonitorTestItem::textOf(float raw) const
{
    return m_scaling ? m_scaling->getText(static_cast<unsigned int>(raw)) : std::string();
}

} // namespace Obd
