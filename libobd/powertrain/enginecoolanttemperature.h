#ifndef OBD_ENGINECOOLANTTEMPERATURE_H
#define OBD_ENGINECOOLANTTEMPERATURE_H

#include "numericpid.h"

namespace Obd {

// PID 05: name, length, formula and units in the catalogue row (pidtable.cpp).
class EngineCoolantTemperature : public NumericPid
{
public:
    explicit EngineCoolantTemperature(unsigned char mode = 1)
        : NumericPid(0x05, mode)
    {
    }
};

} // namespace Obd

#endif
