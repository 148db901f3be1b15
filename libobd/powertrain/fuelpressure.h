#ifndef OBD_FUELPRESSURE_H
#define OBD_FUELPRESSURE_H

#include "numericpid.h"

namespace Obd {

// PID 0A: name, length, formula and units in the catalogue row (pidtable.cpp).
class FuelPressure : public NumericPid
{
public:
    explicit FuelPressure(unsigned char mode = 1)
        : NumericPid(0x0A, mode)
    {
    }
};

} // namespace Obd

#endif
