#ifndef OBD_RELATIVEFUELRAILPRESSURE_H
#define OBD_RELATIVEFUELRAILPRESSURE_H

#include "numericpid.h"

namespace Obd {

// PID 22: name, length, formula and units in the catalogue row (pidtable.cpp).
class RelativeFuelRailPressure : public NumericPid
{
public:
    explicit RelativeFuelRailPressure(unsigned char mode = 1)
        : NumericPid(0x22, mode)
    {
    }
};

} // namespace Obd

#endif
