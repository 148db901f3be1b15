#include "cataloguepid.h"

namespace Obd {

CataloguePid::CataloguePid(unsigned char pid, unsigned char mode)
    : PowertrainParameter(mode)
    , m_descriptor(pid)
{
}

CataloguePid::~CataloguePid()
{
}

unsigned char CataloguePid::getPid() const
{
    return m_descriptor.pid();
}

std::string CataloguePid::getName() const
{
    return m_descriptor.name();
}

void CataloguePid::getSensorInfos(std::vector<SensorInfo*>& list) const
{
    m_descriptor.sensorInfos(list);
}

} // namespace Obd
