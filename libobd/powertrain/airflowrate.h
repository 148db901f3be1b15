#ifndef OBD_AIRFLOWRATE_H
#define OBD_AIRFLOWRATE_H

#include "numericpid.h"

namespace Obd {

// PID 10: name, length, formula and units in the catalogue row (pidtable.cpp).
class AirFlowRate : public NumericPid
{
public:
    explicit AirFlowRate(unsigned char mode = 1)
        : NumericPid(0x10, mode)
    {
    }
};

} // namespace Obd

#endif
