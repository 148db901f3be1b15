#ifndef OBD_MANIFOLDPRESSURE_H
#define OBD_MANIFOLDPRESSURE_H

#include "numericpid.h"

namespace Obd {

// PID 0B: name, length, formula and units in the catalogue row (pidtable.cpp).
class ManifoldPressure : public NumericPid
{
public:
    explicit ManifoldPressure(unsigned char mode = 1)
        : NumericPid(0x0B, mode)
    {
    }
};

} // namespace Obd

#endif
