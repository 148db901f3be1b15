#ifndef OBD_CALCULATEDENGINELOAD_H
#define OBD_CALCULATEDENGINELOAD_H

#include "numericpid.h"

namespace Obd {

// PID 04: name, length, formula and units in the catalogue row (pidtable.cpp).
class CalculatedEngineLoad : public NumericPid
{
public:
    explicit CalculatedEngineLoad(unsigned char mode = 1)
        : NumericPid(0x04, mode)
    {
    }
};

} // namespace Obd

#endif
