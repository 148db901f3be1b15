#include "sensorfactory.h"
#include "powertrain/parameterfactory.h"
#include "powertrainparameter.h"

namespace Obd {

SensorFactory::~SensorFactory()
{
}

ObdParameter* SensorFactory::createParameter(unsigned char pid) const
{
    return ParameterFactory::create(pid, 1);
}

} // namespace Obd
