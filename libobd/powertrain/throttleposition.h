#ifndef OBD_THROTTLEPOSITION_H
#define OBD_THROTTLEPOSITION_H

#include "numericpid.h"

namespace Obd {

// PID 11: name, length, formula and units in the catalogue row (pidtable.cpp).
class ThrottlePosition : public NumericPid
{
public:
    explicit ThrottlePosition(unsigned char mode = 1)
        : NumericPid(0x11, mode)
    {
    }
};

} // namespace Obd

#endif
