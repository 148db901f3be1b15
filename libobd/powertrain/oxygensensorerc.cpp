#include "oxygensensorerc.h"

namespace Obd {

std::string OxygenSensorErc::getName(const Ecu& ecu) const
{
    return m_descriptor.name(ecu);
}

} // namespace Obd
