#ifndef OBD_WARMUPS_H
#define OBD_WARMUPS_H

#include "counterpid.h"

namespace Obd {

// PID 30: name, length, formula and units in the catalogue row (pidtable.cpp).
class WarmUps : public CounterPid
{
public:
    explicit WarmUps(unsigned char mode = 1)
        : CounterPid(0x30, mode)
    {
    }
};

} // namespace Obd

#endif
