#ifndef OBD_OXYGENSENSOR_H
#define OBD_OXYGENSENSOR_H

#include "numericpid.h"

namespace Obd {

// PIDs 14..1B: narrow-band sensor voltage and the short-term fuel trim it drives.
class OxygenSensor : public NumericPid
{
public:
    using NumericPid::getName;
    // By the ECU's sensor layout (PID 13 or 1D); empty when it has neither.
    std::string getName(const Ecu& ecu) const override;

protected:
    OxygenSensor(unsigned char pid, unsigned char mode)
        : NumericPid(pid, mode)
    {
    }
};

class OxygenSensor1Bank1 : public OxygenSensor
{
public:
    explicit OxygenSensor1Bank1(unsigned char mode = 1)
        : OxygenSensor(0x14, mode)
    {
    }
};

class OxygenSensor2Bank1 : public OxygenSensor
{
public:
    explicit OxygenSensor2Bank1(unsigned char mode = 1)
        : OxygenSensor(0x15, mode)
    {
    }
};

class OxygenSensor3Bank1 : public OxygenSensor
{
public:
    explicit OxygenSensor3Bank1(unsigned char mode = 1)
        : OxygenSensor(0x16, mode)
    {
    }
};

class OxygenSensor4Bank1 : public OxygenSensor
{
public:
    explicit OxygenSensor4Bank1(unsigned char mode = 1)
        : OxygenSensor(0x17, mode)
    {
    }
};

class OxygenSensor1Bank2 : public OxygenSensor
{
public:
    explicit OxygenSensor1Bank2(unsigned char mode = 1)
        : OxygenSensor(0x18, mode)
    {
    }
};

class OxygenSensor2Bank2 : public OxygenSensor
{
public:
    explicit OxygenSensor2Bank2(unsigned char mode = 1)
        : OxygenSensor(0x19, mode)
    {
    }
};

class OxygenSensor3Bank2 : public OxygenSensor
{
public:
    explicit OxygenSensor3Bank2(unsigned char mode = 1)
        : OxygenSensor(0x1A, mode)
    {
    }
};

class OxygenSensor4Bank2 : public OxygenSensor
{
public:
    explicit OxygenSensor4Bank2(unsigned char mode = 1)
        : OxygenSensor(0x1B, mode)
    {
    }
};

} // namespace Obd

#endif
