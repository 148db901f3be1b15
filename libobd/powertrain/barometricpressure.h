#ifndef OBD_BAROMETRICPRESSURE_H
#define OBD_BAROMETRICPRESSURE_H

#include "numericpid.h"

namespace Obd {

// PID 33: name, length, formula and units in the catalogue row (pidtable.cpp).
class BarometricPressure : public NumericPid
{
public:
    explicit BarometricPressure(unsigned char mode = 1)
        : NumericPid(0x33, mode)
    {
    }
};

} // namespace Obd

#endif
