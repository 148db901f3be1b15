#ifndef OBD_DISTANCETRAVELED_H
#define OBD_DISTANCETRAVELED_H

#include "counterpid.h"

namespace Obd {

// PID 31: name, length, formula and units in the catalogue row (pidtable.cpp).
class DistanceTraveled : public CounterPid
{
public:
    explicit DistanceTraveled(unsigned char mode = 1)
        : CounterPid(0x31, mode)
    {
    }
};

} // namespace Obd

#endif
