#ifndef OBD_OXYGENSENSORERV_H
#define OBD_OXYGENSENSORERV_H

#include "numericpid.h"

namespace Obd {

// PIDs 24..2B: wide-range sensor, equivalence ratio and voltage.
class OxygenSensorErv : public NumericPid
{
public:
    using NumericPid::getName;
    // By the ECU's sensor layout (PID 13 or 1D); empty when it has neither.
    std::string getName(const Ecu& ecu) const override;

protected:
    OxygenSensorErv(unsigned char pid, unsigned char mode)
        : NumericPid(pid, mode)
    {
    }
};

class OxygenSensorErvSensor1 : public OxygenSensorErv
{
public:
    explicit OxygenSensorErvSensor1(unsigned char mode = 1)
        : OxygenSensorErv(0x24, mode)
    {
    }
};

class OxygenSensorErvSensor2 : public OxygenSensorErv
{
public:
    explicit OxygenSensorErvSensor2(unsigned char mode = 1)
        : OxygenSensorErv(0x25, mode)
    {
    }
};

class OxygenSensorErvSensor3 : public OxygenSensorErv
{
public:
    explicit OxygenSensorErvSensor3(unsigned char mode = 1)
        : OxygenSensorErv(0x26, mode)
    {
    }
};

class OxygenSensorErvSensor4 : public OxygenSensorErv
{
public:
    explicit OxygenSensorErvSensor4(unsigned char mode = 1)
        : OxygenSensorErv(0x27, mode)
    {
    }
};

class OxygenSensorErvSensor5 : public OxygenSensorErv
{
public:
    explicit OxygenSensorErvSensor5(unsigned char mode = 1)
        : OxygenSensorErv(0x28, mode)
    {
    }
};

class OxygenSensorErvSensor6 : public OxygenSensorErv
{
public:
    explicit OxygenSensorErvSensor6(unsigned char mode = 1)
        : OxygenSensorErv(0x29, mode)
    {
    }
};

class OxygenSensorErvSensor7 : public OxygenSensorErv
{
public:
    explicit OxygenSensorErvSensor7(unsigned char mode = 1)
        : OxygenSensorErv(0x2A, mode)
    {
    }
};

class OxygenSensorErvSensor8 : public OxygenSensorErv
{
public:
    explicit OxygenSensorErvSensor8(unsigned char mode = 1)
        : OxygenSensorErv(0x2B, mode)
    {
    }
};

} // namespace Obd

#endif
