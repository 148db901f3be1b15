#ifndef OBD_CATALYSTTEMPERATURE_H
#define OBD_CATALYSTTEMPERATURE_H

#include "numericpid.h"

namespace Obd {

// PIDs 3C..3F: whole degrees, AB/10 - 40 truncated.
class CatalystTemperature : public NumericPid
{
public:
protected:
    CatalystTemperature(unsigned char pid, unsigned char mode)
        : NumericPid(pid, mode)
    {
    }
};

class CatalystTemperatureBank1Sensor1 : public CatalystTemperature
{
public:
    explicit CatalystTemperatureBank1Sensor1(unsigned char mode = 1)
        : CatalystTemperature(0x3C, mode)
    {
    }
};

class CatalystTemperatureBank2Sensor1 : public CatalystTemperature
{
public:
    explicit CatalystTemperatureBank2Sensor1(unsigned char mode = 1)
        : CatalystTemperature(0x3D, mode)
    {
    }
};

class CatalystTemperatureBank1Sensor2 : public CatalystTemperature
{
public:
    explicit CatalystTemperatureBank1Sensor2(unsigned char mode = 1)
        : CatalystTemperature(0x3E, mode)
    {
    }
};

class CatalystTemperatureBank2Sensor2 : public CatalystTemperature
{
public:
    explicit CatalystTemperatureBank2Sensor2(unsigned char mode = 1)
        : CatalystTemperature(0x3F, mode)
    {
    }
};

} // namespace Obd

#endif
