#ifndef OBD_EGRERROR_H
#define OBD_EGRERROR_H

#include "numericpid.h"

namespace Obd {

// PID 2D: name, length, formula and units in the catalogue row (pidtable.cpp).
class EgrError : public NumericPid
{
public:
    explicit EgrError(unsigned char mode = 1)
        : NumericPid(0x2D, mode)
    {
    }
};

} // namespace Obd

#endif
