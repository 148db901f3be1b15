#ifndef OBD_COMMANDEDEGR_H
#define OBD_COMMANDEDEGR_H

#include "numericpid.h"

namespace Obd {

// PID 2C: name, length, formula and units in the catalogue row (pidtable.cpp).
class CommandedEgr : public NumericPid
{
public:
    explicit CommandedEgr(unsigned char mode = 1)
        : NumericPid(0x2C, mode)
    {
    }
};

} // namespace Obd

#endif
