#ifndef OBD_FUELTRIM_H
#define OBD_FUELTRIM_H

#include "numericpid.h"

namespace Obd {

// PIDs 06..09: percent (A-128)*100/128; a second byte is accepted and ignored.
class FuelTrim : public NumericPid
{
public:
protected:
    FuelTrim(unsigned char pid, unsigned char mode)
        : NumericPid(pid, mode)
    {
    }
};

class ShortTermFuelTrimBank1 : public FuelTrim
{
public:
    explicit ShortTermFuelTrimBank1(unsigned char mode = 1)
        : FuelTrim(0x06, mode)
    {
    }
};

class LongTermFuelTrimBank1 : public FuelTrim
{
public:
    explicit LongTermFuelTrimBank1(unsigned char mode = 1)
        : FuelTrim(0x07, mode)
    {
    }
};

class ShortTermFuelTrimBank2 : public FuelTrim
{
public:
    explicit ShortTermFuelTrimBank2(unsigned char mode = 1)
        : FuelTrim(0x08, mode)
    {
    }
};

class LongTermFuelTrimBank2 : public FuelTrim
{
public:
    explicit LongTermFuelTrimBank2(unsigned char mode = 1)
        : FuelTrim(0x09, mode)
    {
    }
};

} // namespace Obd

#endif
