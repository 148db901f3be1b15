#ifndef OBD_ENGINERUNTIME_H
#define OBD_ENGINERUNTIME_H

#include "counterpid.h"

namespace Obd {

// PID 1F: name, length, formula and units in the catalogue row (pidtable.cpp).
class EngineRuntime : public CounterPid
{
public:
    explicit EngineRuntime(unsigned char mode = 1)
        : CounterPid(0x1F, mode)
    {
    }
};

} // namespace Obd

#endif
