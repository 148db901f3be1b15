#ifndef OBD_ENGINERPM_H
#define OBD_ENGINERPM_H

#include "numericpid.h"

namespace Obd {

// PID 0C: name, length, formula and units in the catalogue row (pidtable.cpp).
class EngineRpm : public NumericPid
{
public:
    explicit EngineRpm(unsigned char mode = 1)
        : NumericPid(0x0C, mode)
    {
    }
};

} // namespace Obd

#endif
