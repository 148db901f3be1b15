// ISO 9141-2: a V6 with two banks of oxygen sensors (PID 13 layout),
// service 05 tests on every sensor and four stored codes.
#include "profilecatalog.h"

namespace ElmSim {

namespace {

std::vector<OxygenSensorTest> sensorTests(uint8_t sensor, double offset)
{
    return { { 0x01, sensor, 0.450, 0.000, 0.000 },
             { 0x02, sensor, 0.450, 0.000, 0.000 },
             { 0x05, sensor, 0.060 + offset / 10.0, 0.000, 0.300 },
             { 0x06, sensor, 0.068 + offset / 10.0, 0.000, 0.300 },
             { 0x07, sensor, 0.050 + offset, 0.000, 0.400 },
             { 0x08, sensor, 0.840 - offset, 0.600, 1.275 } };
}

} // namespace

Profile ProfileCatalog::iso9141()
{
    Profile p;
    p.name = "iso9141";
    p.summary = "ISO 9141-2, V6 petrol, engine 0x10 (PID 13 layout, service 05), four stored codes, no 09 0A";
    p.protocol = 3;
    p.busInitMessage = true;             // with ATSP3 the first request shows the slow init
    p.vehicle.displacementLitres = 3.0;
    p.vehicle.idleRpm = 650.0;
    p.vehicle.ambientC = 24.0;

    EcuProfile engine;
    engine.id = 0x10;
    engine.latencyMs = 35;
    engine.name = "engine";
    engine.pids01 = { 0x01, 0x03, 0x04, 0x05, 0x06, 0x07, 0x08, 0x09, 0x0B, 0x0C, 0x0D, 0x0E, 0x0F,
                      0x10, 0x11, 0x12, 0x13, 0x14, 0x15, 0x18, 0x19, 0x1C, 0x1F, 0x21 };
    engine.pids02 = { 0x02, 0x04, 0x05, 0x0C, 0x0D };
    engine.infoTypes09 = { 0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0x08 };
    engine.storedDtcs = { "P0300", "P0301", "P0302", "P0303" };
    engine.pendingDtcs = { "P0171", "P0174" };
    engine.readiness.continuousSupported = 0x07;
    engine.readiness.nonContinuousSupported = 0x6D;   // catalyst, EVAP, sec. air, O2, heater
    engine.readiness.nonContinuousIncomplete = 0x08;  // secondary air
    engine.vin = "WEL9141K2LINE0004";
    engine.calibrationIds = { "ISO9141ECM000001" };
    engine.cvns = { 0x00A1B2C3 };
    engine.performanceCounters = { 64, 210, 60, 64, 58, 64, 61, 64, 60, 64,
                                   0, 0, 30, 64, 20, 64, 59, 64, 57, 64 };
    engine.legacyMonitorTests = { { 0x01, 0x01, false, 0x0150, 0x0300 },
                                  { 0x02, 0x01, false, 0x0080, 0x0100 },
                                  { 0x02, 0x02, true, 0x0140, 0x0100 } };
    for (auto [sensor, offset] : { std::pair<uint8_t, double>{ 0x01, 0.0 }, { 0x02, 0.05 },
                                   { 0x10, 0.01 }, { 0x20, 0.06 } }) {
        const std::vector<OxygenSensorTest> tests = sensorTests(sensor, offset);
        engine.oxygenSensorTests.insert(engine.oxygenSensorTests.end(), tests.begin(), tests.end());
    }
    engine.hasFreezeFrame = true;
    engine.freezeFrame.dtc = "P0300";
    engine.freezeFrame.atSeconds = 170.0;
    engine.freezeFrame.pids = { 0x04, 0x05, 0x0C, 0x0D };
    engine.obdStandard = 1;
    engine.oxygenSensors = 0x33;                       // PID 13: B1S1, B1S2, B2S1, B2S2
    engine.distanceSinceClearKm = 77.0;
    engine.distanceWithMilKm = 77.0;
    engine.minutesSinceClear = 95.0;
    engine.warmUpsSinceClear = 3;

    p.ecus = { engine };
    return p;
}

} // namespace ElmSim
