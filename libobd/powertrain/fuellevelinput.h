#ifndef OBD_FUELLEVELINPUT_H
#define OBD_FUELLEVELINPUT_H

#include "numericpid.h"

namespace Obd {

// PID 2F: name, length, formula and units in the catalogue row (pidtable.cpp).
class FuelLevelInput : public NumericPid
{
public:
    explicit FuelLevelInput(unsigned char mode = 1)
        : NumericPid(0x2F, mode)
    {
    }
};

} // namespace Obd

#endif
