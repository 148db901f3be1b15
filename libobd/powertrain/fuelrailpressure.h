#ifndef OBD_FUELRAILPRESSURE_H
#define OBD_FUELRAILPRESSURE_H

#include "numericpid.h"

namespace Obd {

// PID 23: name, length, formula and units in the catalogue row (pidtable.cpp).
class FuelRailPressure : public NumericPid
{
public:
    explicit FuelRailPressure(unsigned char mode = 1)
        : NumericPid(0x23, mode)
    {
    }
};

} // namespace Obd

#endif
