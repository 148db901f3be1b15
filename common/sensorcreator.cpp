#include "sensorcreator.h"

#include "measurableparameter.h"
#include "numericsensor.h"
#include "powertrain/parameterfactory.h"
#include "sensorinfo.h"
#include "trlog.h"

#include <vector>

namespace Obd {

Sensor* SensorCreator::createSensor(const Ecu& ecu, unsigned char pid)
{
    PowertrainParameter* parameter = ParameterFactory::create(pid);
    if (!parameter)
        return nullptr;
    return new Sensor(ecu, parameter);
}

NumericSensor* SensorCreator::createNumericSensor(const Ecu& ecu, unsigned char pid)
{
    PowertrainParameter* parameter = ParameterFactory::create(pid);
    MeasurableParameter* measurable = dynamic_cast<MeasurableParameter*>(parameter);
    if (!measurable) {
        delete parameter;
        return nullptr;
    }
    std::vector<SensorInfo*> infos;
    std::vector<ValueFormaterPtr> formatters;
    measurable->getSensorInfos(infos);
    measurable->getFormatters(formatters);
    if (formatters.size() < infos.size()) {
        OBD_ERROR << "too few formatters for PID " << static_cast<unsigned int>(pid);
        delete parameter;
        return nullptr;
    }
    return new NumericSensor(ecu, parameter);
}

} // namespace Obd
