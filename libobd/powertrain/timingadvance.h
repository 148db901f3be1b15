#ifndef OBD_TIMINGADVANCE_H
#define OBD_TIMINGADVANCE_H

#include "numericpid.h"

namespace Obd {

// PID 0E: name, length, formula and units in the catalogue row (pidtable.cpp).
class TimingAdvance : public NumericPid
{
public:
    explicit TimingAdvance(unsigned char mode = 1)
        : NumericPid(0x0E, mode)
    {
    }
};

} // namespace Obd

#endif
