#ifndef OBD_VEHICLESPEED_H
#define OBD_VEHICLESPEED_H

#include "numericpid.h"

namespace Obd {

// PID 0D: name, length, formula and units in the catalogue row (pidtable.cpp).
class VehicleSpeed : public NumericPid
{
public:
    explicit VehicleSpeed(unsigned char mode = 1)
        : NumericPid(0x0D, mode)
    {
    }
};

} // namespace Obd

#endif
