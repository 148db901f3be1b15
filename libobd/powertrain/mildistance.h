#ifndef OBD_MILDISTANCE_H
#define OBD_MILDISTANCE_H

#include "counterpid.h"

namespace Obd {

// PID 21: name, length, formula and units in the catalogue row (pidtable.cpp).
class MilDistance : public CounterPid
{
public:
    explicit MilDistance(unsigned char mode = 1)
        : CounterPid(0x21, mode)
    {
    }
};

} // namespace Obd

#endif
