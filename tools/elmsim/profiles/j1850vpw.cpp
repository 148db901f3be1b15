// SAE J1850 VPW: a clean car (no stored codes, MIL off) with one pending code.
#include "profilecatalog.h"

namespace ElmSim {

Profile ProfileCatalog::j1850vpw()
{
    Profile p;
    p.name = "j1850vpw";
    p.summary = "SAE J1850 VPW, engine 0x10, no stored codes, one pending code";
    p.protocol = 2;
    p.vehicle.displacementLitres = 4.3;
    p.vehicle.idleRpm = 600.0;

    EcuProfile engine;
    engine.id = 0x10;
    engine.latencyMs = 15;
    engine.name = "engine";
    engine.pids01 = { 0x01, 0x03, 0x04, 0x05, 0x06, 0x07, 0x0B, 0x0C, 0x0D, 0x0E, 0x0F, 0x10,
                      0x11, 0x13, 0x14, 0x15, 0x1C, 0x1F };
    engine.pids02 = { 0x02 };
    engine.infoTypes09 = { 0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x0A };
    engine.pendingDtcs = { "P0442" };
    engine.readiness.continuousSupported = 0x07;
    engine.readiness.nonContinuousSupported = 0x65;
    engine.vin = "1WELJ1850VPW00005";
    engine.calibrationIds = { "VPW0012345678901" };
    engine.cvns = { 0x5EED0001 };
    engine.ecuNameAbbreviation = "PCM";
    engine.ecuNameText = "PowertrainCtrl";
    engine.legacyMonitorTests = { { 0x01, 0x01, false, 0x0120, 0x0300 } };
    engine.oxygenSensorTests = { { 0x07, 0x01, 0.060, 0.000, 0.400 },
                                 { 0x08, 0x01, 0.820, 0.600, 1.275 } };
    engine.obdStandard = 2;                            // OBD (US federal)
    engine.oxygenSensors = 0x03;
    engine.distanceSinceClearKm = 15000.0;
    engine.minutesSinceClear = 9000.0;
    engine.warmUpsSinceClear = 255;

    p.ecus = { engine };
    return p;
}

} // namespace ElmSim
