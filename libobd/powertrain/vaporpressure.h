#ifndef OBD_VAPORPRESSURE_H
#define OBD_VAPORPRESSURE_H

#include "numericpid.h"

namespace Obd {

// PID 32: name, length, formula and units in the catalogue row (pidtable.cpp).
class VaporPressure : public NumericPid
{
public:
    explicit VaporPressure(unsigned char mode = 1)
        : NumericPid(0x32, mode)
    {
    }
};

} // namespace Obd

#endif
