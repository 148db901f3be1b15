#ifndef OBD_EVAPORATIVEPURGE_H
#define OBD_EVAPORATIVEPURGE_H

#include "numericpid.h"

namespace Obd {

// PID 2E: name, length, formula and units in the catalogue row (pidtable.cpp).
class EvaporativePurge : public NumericPid
{
public:
    explicit EvaporativePurge(unsigned char mode = 1)
        : NumericPid(0x2E, mode)
    {
    }
};

} // namespace Obd

#endif
