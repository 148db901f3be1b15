#include "parameterfactory.h"

#include "airflowrate.h"
#include "auxiliaryinputstatus.h"
#include "barometricpressure.h"
#include "calculatedengineload.h"
#include "catalysttemperature.h"
#include "drivecyclemonitorstatus.h"
#include "commandedegr.h"
#include "distancetraveled.h"
#include "egrerror.h"
#include "enginecoolanttemperature.h"
#include "enginerpm.h"
#include "engineruntime.h"
#include "evaporativepurge.h"
#include "extendedpid.h"
#include "freezeframetroublecode.h"
#include "fuellevelinput.h"
#include "fueltype.h"
#include "fuelpressure.h"
#include "fuelrailpressure.h"
#include "fuelsystem.h"
#include "fueltrim.h"
#include "intakeairtemperature.h"
#include "manifoldpressure.h"
#include "mildistance.h"
#include "monitorstatus.h"
#include "oxygensensor.h"
#include "oxygensensorerc.h"
#include "oxygensensorerv.h"
#include "oxygensensorspresent.h"
#include "pidtable.h"
#include "relativefuelrailpressure.h"
#include "saestandard.h"
#include "secondaryairstatus.h"
#include "supportedpids.h"
#include "throttleposition.h"
#include "timingadvance.h"
#include "vaporpressure.h"
#include "vehiclespeed.h"
#include "warmups.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <map>

namespace Obd {

namespace {

typedef PowertrainParameter* (*Creator)(unsigned char mode);

template <class T>
PowertrainParameter* make(unsigned char mode)
{
    return new T(mode);
}

template <unsigned char RANGE>
PowertrainParameter* makeSupportedPids(unsigned char mode)
{
    return new SupportedPids(mode, RANGE);
}

const std::map<unsigned char, Creator>& creators()
{
    static const std::map<unsigned char, Creator> table = {
        { 0x00, makeSupportedPids<0x00> },
        { 0x01, make<MonitorStatus> },
        { 0x02, make<FreezeFrameTroubleCode> },
        { 0x03, make<FuelSystem> },
        { 0x04, make<CalculatedEngineLoad> },
        { 0x05, make<EngineCoolantTemperature> },
        { 0x06, make<ShortTermFuelTrimBank1> },
        { 0x07, make<LongTermFuelTrimBank1> },
        { 0x08, make<ShortTermFuelTrimBank2> },
        { 0x09, make<LongTermFuelTrimBank2> },
        { 0x0A, make<FuelPressure> },
        { 0x0B, make<ManifoldPressure> },
        { 0x0C, make<EngineRpm> },
        { 0x0D, make<VehicleSpeed> },
        { 0x0E, make<TimingAdvance> },
        { 0x0F, make<IntakeAirTemperature> },
        { 0x10, make<AirFlowRate> },
        { 0x11, make<ThrottlePosition> },
        { 0x12, make<SecondaryAirStatus> },
        { 0x13, make<OxygenSensorsPresent13> },
        { 0x14, make<OxygenSensor1Bank1> },
        { 0x15, make<OxygenSensor2Bank1> },
        { 0x16, make<OxygenSensor3Bank1> },
        { 0x17, make<OxygenSensor4Bank1> },
        { 0x18, make<OxygenSensor1Bank2> },
        { 0x19, make<OxygenSensor2Bank2> },
        { 0x1A, make<OxygenSensor3Bank2> },
        { 0x1B, make<OxygenSensor4Bank2> },
        { 0x1C, make<SaeStandard> },
        { 0x1D, make<OxygenSensorsPresent1d> },
        { 0x1E, make<AuxiliaryInputStatus> },
        { 0x1F, make<EngineRuntime> },
        { 0x20, makeSupportedPids<0x20> },
        { 0x40, makeSupportedPids<0x40> },
        { 0x41, make<DriveCycleMonitorStatus> },
        { 0x51, make<FuelType> },
        { 0x60, makeSupportedPids<0x60> },
        { 0x80, makeSupportedPids<0x80> },
        { 0xA0, makeSupportedPids<0xA0> },
        { 0x21, make<MilDistance> },
        { 0x22, make<RelativeFuelRailPressure> },
        { 0x23, make<FuelRailPressure> },
        { 0x24, make<OxygenSensorErvSensor1> },
        { 0x25, make<OxygenSensorErvSensor2> },
        { 0x26, make<OxygenSensorErvSensor3> },
        { 0x27, make<OxygenSensorErvSensor4> },
        { 0x28, make<OxygenSensorErvSensor5> },
        { 0x29, make<OxygenSensorErvSensor6> },
        { 0x2A, make<OxygenSensorErvSensor7> },
        { 0x2B, make<OxygenSensorErvSensor8> },
        { 0x2C, make<CommandedEgr> },
        { 0x2D, make<EgrError> },
        { 0x2E, make<EvaporativePurge> },
        { 0x2F, make<FuelLevelInput> },
        { 0x30, make<WarmUps> },
        { 0x31, make<DistanceTraveled> },
        { 0x32, make<VaporPressure> },
        { 0x33, make<BarometricPressure> },
        { 0x34, make<OxygenSensor1Erc> },
        { 0x35, make<OxygenSensor2Erc> },
        { 0x36, make<OxygenSensor3Erc> },
        { 0x37, make<OxygenSensor4Erc> },
        { 0x38, make<OxygenSensor5Erc> },
        { 0x39, make<OxygenSensor6Erc> },
        { 0x3A, make<OxygenSensor7Erc> },
        { 0x3B, make<OxygenSensor8Erc> },
        { 0x3C, make<CatalystTemperatureBank1Sensor1> },
        { 0x3D, make<CatalystTemperatureBank2Sensor1> },
        { 0x3E, make<CatalystTemperatureBank1Sensor2> },
        { 0x3F, make<CatalystTemperatureBank2Sensor2> },
    };
    return table;
}

// Rows without a class of their own: numeric PIDs read by ExtendedPid.
bool isExtended(unsigned char pid)
{
    const PidRow* row = PidTable::find(pid);
    return row && !creators().count(pid) && row->values[0].formula;
}

bool isKnown(unsigned char pid)
{
    return creators().count(pid) || isExtended(pid);
}

std::string lowerCase(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

} // namespace

PowertrainParameter* ParameterFactory::create(unsigned char pid, unsigned char mode)
{
    if (mode != 1 && mode != 2)
        return nullptr;
    auto it = creators().find(pid);
    if (it != creators().end())
        return it->second(mode);
    return isExtended(pid) ? new ExtendedPid(pid, mode) : nullptr;
}

std::vector<unsigned char> ParameterFactory::knownPids()
{
    std::vector<unsigned char> pids;
    for (unsigned int pid = 0; pid <= 0xFF; ++pid) {
        if (isKnown(static_cast<unsigned char>(pid)))
            pids.push_back(static_cast<unsigned char>(pid));
    }
    return pids;
}

int ParameterFactory::pidByName(const std::string& name)
{
    const std::string wanted = lowerCase(name);
    if (wanted.empty())
        return -1;
    if (wanted.size() > 2 && wanted.size() <= 4 && wanted.compare(0, 2, "0x") == 0) {
        char* end = nullptr;
        long pid = std::strtol(wanted.c_str() + 2, &end, 16);
        if (*end == '\0' && pid >= 0 && isKnown(static_cast<unsigned char>(pid)))
            return static_cast<int>(pid);
        return -1;
    }
    // Rows in PID order: where two share a name (13/1D, 24/34) the lower wins.
    for (const PidRow& row : PidTable::rows()) {
        if ((row.alias && wanted == row.alias) || wanted == lowerCase(row.displayName(1)))
            return row.pid;
    }
    return -1;
}

} // namespace Obd
