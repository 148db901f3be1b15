#include "sensorinfo.h"

namespace Obd {

SensorInfo::SensorInfo(const std::string& name, unsigned int kind)
    : m_name(name)
    , m_kind(kind)
{
}

SensorInfo::~SensorInfo()
{
}

void SensorInfo::addInfo(UnitSystem unitSystem, unsigned int unit, double minimum, double maximum)
{
    m_infos[unitSystem] = Info{unit, minimum, maximum};
}

std::string SensorInfo::getName() const
{
    return m_name;
}

unsigned int SensorInfo::getKind() const
{
    return m_kind;
}

unsigned int SensorInfo::getUnit(UnitSystem unitSystem) const
{
    auto it = m_infos.find(unitSystem);
    return it == m_infos.end() ? 0 : it->second.unit;
}

double SensorInfo::getMinimum(UnitSystem unitSystem) const
{
    auto it = m_infos.find(unitSystem);
    return it == m_infos.end() ? 0.0 : it->second.minimum;
}

double SensorInfo::getMaximum(UnitSystem unitSystem) const
{
    auto it = m_infos.find(unitSystem);
    return it == m_infos.end() ? 0.0 : it->second.maximum;
}

} // namespace Obd
