#include "oxygensensor.h"

namespace Obd {

std::string OxygenSensor::getName(const Ecu& ecu) const
{
    return m_descriptor.name(ecu);
}

} // namespace Obd
