#ifndef OBD_OXYGENSENSORERC_H
#define OBD_OXYGENSENSORERC_H

#include "numericpid.h"

namespace Obd {

// PIDs 34..3B: wide-range sensor, equivalence ratio and current.
class OxygenSensorErc : public NumericPid
{
public:
    using NumericPid::getName;
    // By the ECU's sensor layout (PID 13 or 1D); empty when it has neither.
    std::string getName(const Ecu& ecu) const override;

protected:
    OxygenSensorErc(unsigned char pid, unsigned char mode)
        : NumericPid(pid, mode)
    {
    }
};

class OxygenSensor1Erc : public OxygenSensorErc
{
public:
    explicit OxygenSensor1Erc(unsigned char mode = 1)
        : OxygenSensorErc(0x34, mode)
    {
    }
};

class OxygenSensor2Erc : public OxygenSensorErc
{
public:
    explicit OxygenSensor2Erc(unsigned char mode = 1)
        : OxygenSensorErc(0x35, mode)
    {
    }
};

class OxygenSensor3Erc : public OxygenSensorErc
{
public:
    explicit OxygenSensor3Erc(unsigned char mode = 1)
        : OxygenSensorErc(0x36, mode)
    {
    }
};

class OxygenSensor4Erc : public OxygenSensorErc
{
public:
    explicit OxygenSensor4Erc(unsigned char mode = 1)
        : OxygenSensorErc(0x37, mode)
    {
    }
};

class OxygenSensor5Erc : public OxygenSensorErc
{
public:
    explicit OxygenSensor5Erc(unsigned char mode = 1)
        : OxygenSensorErc(0x38, mode)
    {
    }
};

class OxygenSensor6Erc : public OxygenSensorErc
{
public:
    explicit OxygenSensor6Erc(unsigned char mode = 1)
        : OxygenSensorErc(0x39, mode)
    {
    }
};

class OxygenSensor7Erc : public OxygenSensorErc
{
public:
    explicit OxygenSensor7Erc(unsigned char mode = 1)
        : OxygenSensorErc(0x3A, mode)
    {
    }
};

class OxygenSensor8Erc : public OxygenSensorErc
{
public:
    explicit OxygenSensor8Erc(unsigned char mode = 1)
        : OxygenSensorErc(0x3B, mode)
    {
    }
};

} // namespace Obd

#endif
