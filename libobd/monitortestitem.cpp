#include "monitortestitem.h"
#include "monitortestnames.h"

namespace Obd {

MonitorTestItem::MonitorTestItem(unsigned char tid, unsigned char componentId,
                                 LimitType limitType, unsigned int value, unsigned int limit)
    : m_tid(tid)
    , m_componentId(componentId)
    , m_limitType(limitType)
    , m_value(value & 0xFFFF)
    , m_limit(limit & 0xFFFF)
{
}

MonitorTestItem::~MonitorTestItem()
{
}

void MonitorTestItem::setUnitSystem(UnitSystem)
{
}

unsigned char MonitorTestItem::getTid() const
{
    return m_tid;
}

std::string MonitorTestItem::getTidName() const
{
    return MonitorTestNames::tidName(m_tid);
}

std::string MonitorTestItem::getValueText() const
{
    return m_scaling.getText(m_value);
}

std::string MonitorTestItem::getMinimumText() const
{
    return m_limitType == LIMIT_MINIMUM ? m_scaling.getText(m_limit) : std::string();
}

std::string MonitorTestItem::getMaximumText() const
{
    return m_limitType == LIMIT_MAXIMUM ? m_scaling.getText(m_limit) : std::string();
}

bool MonitorTestItem::isPassed() const
{
    return m_limitType == LIMIT_MAXIMUM ? m_value <= m_limit : m_value >= m_limit;
}

unsigned int MonitorTestItem::getUnit() const
{
    return m_scaling.getUnit();
}

unsigned char MonitorTestItem::getScalingId() const
{
    return 0;
}

float MonitorTestItem::getValue() const
{
    return static_cast<float>(m_value);
}

float MonitorTestItem::getMinimum() const
{
    return m_limitType == LIMIT_MINIMUM ? static_cast<float>(m_limit) : 0.0f;
}

float MonitorTestItem::getMaximum() const
{
    return m_limitType == LIMIT_MAXIMUM ? static_cast<float>(m_limit) : 65535.0f;
}

unsigned char MonitorTestItem::getComponentId() const
{
    return m_componentId;
}

std::string MonitorTestItem::getComponentName() const
{
    return "Manufacturer specified component " + MonitorTestNames::hexId(m_componentId);
}

MonitorTestItem::LimitType MonitorTestItem::getLimitType() const
{
    return m_limitType;
}

float MonitorTestItem::getLimit() const
{
    return static_cast<float>(m_limit);
}

} // namespace Obd
