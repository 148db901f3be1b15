#include "pidtable.h"

#include "profile.h"
#include "vehiclemodel.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace ElmSim {

namespace {

const double NOT_USED = std::numeric_limits<double>::quiet_NaN();

// ---- encoders: physical value to SAE J1979 bytes -------------------------

unsigned int clampRound(double v, double maximum)
{
    if (!(v > 0.0))
        return 0;
    return static_cast<unsigned int>(std::lround(std::min(v, maximum)));
}

void put16(unsigned int raw, uint8_t* out)
{
    out[0] = static_cast<uint8_t>(raw >> 8);
    out[1] = static_cast<uint8_t>(raw);
}

uint8_t trimByte(double percent) { return static_cast<uint8_t>(clampRound(percent * 128.0 / 100.0 + 128.0, 255)); }

void encRaw1(const double* in, uint8_t* out) { out[0] = static_cast<uint8_t>(clampRound(in[0], 255)); }
void encRaw2(const double* in, uint8_t* out) { encRaw1(in, out); encRaw1(in + 1, out + 1); }
void encRaw4(const double* in, uint8_t* out) { encRaw2(in, out); encRaw2(in + 2, out + 2); }
void encPercent(const double* in, uint8_t* out) { out[0] = static_cast<uint8_t>(clampRound(in[0] * 255.0 / 100.0, 255)); }
void encTemp(const double* in, uint8_t* out) { out[0] = static_cast<uint8_t>(clampRound(in[0] + 40.0, 255)); }
void encTrim(const double* in, uint8_t* out) { out[0] = trimByte(in[0]); }
void encFuelPressure(const double* in, uint8_t* out) { out[0] = static_cast<uint8_t>(clampRound(in[0] / 3.0, 255)); }
void encRpm(const double* in, uint8_t* out) { put16(clampRound(in[0] * 4.0, 65535), out); }
void encTiming(const double* in, uint8_t* out) { out[0] = static_cast<uint8_t>(clampRound((in[0] + 64.0) * 2.0, 255)); }
void encMaf(const double* in, uint8_t* out) { put16(clampRound(in[0] * 100.0, 65535), out); }
void encWord(const double* in, uint8_t* out) { put16(clampRound(in[0], 65535), out); }
void encRailRelative(const double* in, uint8_t* out) { put16(clampRound(in[0] / 0.079, 65535), out); }
void encRailGauge(const double* in, uint8_t* out) { put16(clampRound(in[0] / 10.0, 65535), out); }
void encCatalyst(const double* in, uint8_t* out) { put16(clampRound((in[0] + 40.0) * 10.0, 65535), out); }
void encModuleVolts(const double* in, uint8_t* out) { put16(clampRound(in[0] * 1000.0, 65535), out); }

void encNarrowO2(const double* in, uint8_t* out)
{
    out[0] = static_cast<uint8_t>(clampRound(in[0] / 0.005, 255));
    out[1] = std::isnan(in[1]) ? 0xFF : trimByte(in[1]);
}

void encWideO2Voltage(const double* in, uint8_t* out)
{
    put16(clampRound(in[0] * 32768.0, 65535), out);
    put16(clampRound(in[1] * 8192.0, 65535), out + 2);
}

void encWideO2Current(const double* in, uint8_t* out)
{
    put16(clampRound(in[0] * 32768.0, 65535), out);
    put16(clampRound((in[1] + 128.0) * 256.0, 65535), out + 2);
}

void encVapour(const double* in, uint8_t* out)
{
    const long raw = std::lround(std::clamp(in[0] * 4.0, -32768.0, 32767.0));
    put16(static_cast<unsigned int>(raw) & 0xFFFF, out);
}

// ---- value sources: physical values of one ECU ---------------------------

using State = VehicleState;
using Ecu = EcuProfile;

void monitorStatus(uint8_t, const State&, const Ecu& e, double* out)
{
    const Readiness& r = e.readiness;
    const unsigned int count = static_cast<unsigned int>(std::min<size_t>(e.storedDtcs.size(), 0x7F));
    out[0] = (e.milOn() ? 0x80 : 0x00) | count;
    out[1] = (r.continuousSupported & 0x07) | (e.compressionIgnition ? 0x08 : 0x00)
             | ((r.continuousIncomplete & 0x07) << 4);
    out[2] = r.nonContinuousSupported;
    // Clearing resets every non-continuous monitor to "not complete".
    out[3] = e.cleared ? r.nonContinuousSupported : r.nonContinuousIncomplete;
}

// PID 41: byte A reserved; supported monitors count as enabled this cycle.
void driveCycleStatus(uint8_t pid, const State& s, const Ecu& e, double* out)
{
    monitorStatus(pid, s, e, out);
    out[0] = 0x00;
    out[3] = e.readiness.nonContinuousSupported & e.readiness.driveCycleIncomplete;
}

void fuelSystem(uint8_t, const State& s, const Ecu&, double* out)
{
    out[0] = s.coolantC < 45.0 ? 0x01 : 0x02;   // open loop while cold
    out[1] = 0;
}

void narrowO2(uint8_t pid, const State& s, const Ecu& e, double* out)
{
    const int position = pid - 0x14;
    const int perBank = e.fourBankSensorLayout() ? 2 : 4;
    const bool upstream = position % perBank == 0;
    out[0] = upstream ? s.upstreamO2Volts : s.downstreamO2Volts;
    out[1] = upstream ? s.shortTrimPercent[(position / perBank) % 2] : NOT_USED;
}

void wideO2Voltage(uint8_t, const State& s, const Ecu&, double* out)
{
    out[0] = s.lambda;
    out[1] = 2.5 + (s.lambda - 1.0) * 1.5;
}

void wideO2Current(uint8_t, const State& s, const Ecu&, double* out)
{
    out[0] = s.lambda;
    out[1] = (s.lambda - 1.0) * 2.0;
}

void milDistance(uint8_t, const State& s, const Ecu& e, double* out)
{
    if (e.milOn())
        out[0] = (e.cleared ? 0.0 : e.distanceWithMilKm) + s.distanceKm - (e.cleared ? e.clearedAtKm : 0.0);
    else
        out[0] = e.cleared ? 0.0 : e.distanceWithMilKm;
}

void distanceSinceClear(uint8_t, const State& s, const Ecu& e, double* out)
{
    out[0] = e.cleared ? s.distanceKm - e.clearedAtKm : e.distanceSinceClearKm + s.distanceKm;
}

void minutesSinceClear(uint8_t, const State& s, const Ecu& e, double* out)
{
    out[0] = e.cleared ? std::floor((s.seconds - e.clearedAtSeconds) / 60.0)
                       : e.minutesSinceClear + std::floor(s.seconds / 60.0);
}

#define SRC(expr) [](uint8_t, const State& s, const Ecu& e, double* out) { (void)s; (void)e; out[0] = (expr); }

// One row per PID. Values are in the physical unit of SAE J1979 for
// that PID; the encoder applies the standard's scaling.
const PidRow ROWS[] = {
    // PID  len vals  source                                        encoder
    { 0x01, 4, 4, monitorStatus,                                    encRaw4 },
    { 0x03, 2, 2, fuelSystem,                                       encRaw2 },
    { 0x04, 1, 1, SRC(s.loadPercent),                               encPercent },
    { 0x05, 1, 1, SRC(s.coolantC),                                  encTemp },
    { 0x06, 1, 1, SRC(s.shortTrimPercent[0]),                       encTrim },
    { 0x07, 1, 1, SRC(s.longTrimPercent[0]),                        encTrim },
    { 0x08, 1, 1, SRC(s.shortTrimPercent[1]),                       encTrim },
    { 0x09, 1, 1, SRC(s.longTrimPercent[1]),                        encTrim },
    { 0x0A, 1, 1, SRC(s.fuelRailKpa),                               encFuelPressure },
    { 0x0B, 1, 1, SRC(s.mapKpa),                                    encRaw1 },
    { 0x0C, 2, 1, SRC(s.rpm),                                       encRpm },
    { 0x0D, 1, 1, SRC(s.speedKmh),                                  encRaw1 },
    { 0x0E, 1, 1, SRC(s.timingDeg),                                 encTiming },
    { 0x0F, 1, 1, SRC(s.intakeAirC),                                encTemp },
    { 0x10, 2, 1, SRC(s.mafGs),                                     encMaf },
    { 0x11, 1, 1, SRC(s.throttlePercent),                           encPercent },
    { 0x12, 1, 1, SRC(0x04),                                        encRaw1 },   // secondary air off
    { 0x13, 1, 1, SRC(e.oxygenSensors),                             encRaw1 },
    { 0x14, 2, 2, narrowO2,                                         encNarrowO2 },
    { 0x15, 2, 2, narrowO2,                                         encNarrowO2 },
    { 0x16, 2, 2, narrowO2,                                         encNarrowO2 },
    { 0x17, 2, 2, narrowO2,                                         encNarrowO2 },
    { 0x18, 2, 2, narrowO2,                                         encNarrowO2 },
    { 0x19, 2, 2, narrowO2,                                         encNarrowO2 },
    { 0x1A, 2, 2, narrowO2,                                         encNarrowO2 },
    { 0x1B, 2, 2, narrowO2,                                         encNarrowO2 },
    { 0x1C, 1, 1, SRC(e.obdStandard),                               encRaw1 },
    { 0x1D, 1, 1, SRC(e.oxygenSensors),                             encRaw1 },
    { 0x1E, 1, 1, SRC(0x00),                                        encRaw1 },   // PTO not active
    { 0x1F, 2, 1, SRC(std::floor(s.runSeconds)),                    encWord },
    { 0x21, 2, 1, milDistance,                                      encWord },
    { 0x22, 2, 1, SRC(s.fuelRailKpa - s.mapKpa),                    encRailRelative },
    { 0x23, 2, 1, SRC(s.fuelRailKpa),                               encRailGauge },
    { 0x24, 4, 2, wideO2Voltage,                                    encWideO2Voltage },
    { 0x2C, 1, 1, SRC(s.egrPercent),                                encPercent },
    { 0x2D, 1, 1, SRC(-1.5),                                        encTrim },   // EGR error
    { 0x2E, 1, 1, SRC(s.purgePercent),                              encPercent },
    { 0x2F, 1, 1, SRC(s.fuelLevelPercent),                          encPercent },
    { 0x30, 1, 1, SRC(e.cleared ? 0 : e.warmUpsSinceClear),         encRaw1 },
    { 0x31, 2, 1, distanceSinceClear,                               encWord },
    { 0x32, 2, 1, SRC(s.vaporPressurePa),                           encVapour },
    { 0x33, 1, 1, SRC(s.baroKpa),                                   encRaw1 },
    { 0x34, 4, 2, wideO2Current,                                    encWideO2Current },
    { 0x3C, 2, 1, SRC(s.catalystC),                                 encCatalyst },
    { 0x3E, 2, 1, SRC(s.catalystC - 120.0),                         encCatalyst },
    { 0x41, 4, 4, driveCycleStatus,                                 encRaw4 },
    { 0x42, 2, 1, SRC(s.moduleVolts),                               encModuleVolts },
    { 0x46, 1, 1, SRC(s.ambientC),                                  encTemp },
    { 0x49, 1, 1, SRC(s.throttlePercent * 0.9 + 5.0),               encPercent },  // pedal D
    { 0x4E, 2, 1, minutesSinceClear,                                encWord },
    { 0x51, 1, 1, SRC(e.compressionIgnition ? 0x04 : 0x01),        encRaw1 },   // diesel / gasoline
};

#undef SRC

} // namespace

const PidRow* PidTable::find(uint8_t pid)
{
    for (const PidRow& row : ROWS) {
        if (row.pid == pid)
            return &row;
    }
    return nullptr;
}

} // namespace ElmSim
