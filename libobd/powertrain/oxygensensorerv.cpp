#include "oxygensensorerv.h"

namespace Obd {

std::string OxygenSensorErv::getName(const Ecu& ecu) const
{
    return m_descriptor.name(ecu);
}

} // namespace Obd
