#ifndef OBD_MEASURABLEPARAMETER_H
#define OBD_MEASURABLEPARAMETER_H

#include "ivalueformater.h"
#include "powertrainparameter.h"

#include <vector>

namespace Obd {

// A PID with numeric values: one float and one formatter per SensorInfo.
class MeasurableParameter : public PowertrainParameter
{
public:
    explicit MeasurableParameter(unsigned char mode = 1)
        : PowertrainParameter(mode)
    {
    }

    virtual void getValues(const Ecu& ecu, UnitSystem unitSystem, std::vector<float>& list) const = 0;
    // One formatter per SensorInfo, in the same order; shared with the sensor layer.
    virtual void getFormatters(std::vector<ValueFormaterPtr>& list) const = 0;
};

} // namespace Obd

#endif
