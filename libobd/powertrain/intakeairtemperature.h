#ifndef OBD_INTAKEAIRTEMPERATURE_H
#define OBD_INTAKEAIRTEMPERATURE_H

#include "numericpid.h"

namespace Obd {

// PID 0F: name, length, formula and units in the catalogue row (pidtable.cpp).
class IntakeAirTemperature : public NumericPid
{
public:
    explicit IntakeAirTemperature(unsigned char mode = 1)
        : NumericPid(0x0F, mode)
    {
    }
};

} // namespace Obd

#endif
