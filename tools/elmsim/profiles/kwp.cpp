// ISO 14230-4 KWP fast init: an engine at address 0x11 (not 0x10) with the
// four-bank oxygen sensor layout, and a gearbox at 0x18.
#include "profilecatalog.h"

namespace ElmSim {

Profile ProfileCatalog::kwp()
{
    Profile p;
    p.name = "kwp";
    p.summary = "ISO 14230-4 KWP fast init, engine 0x11 (PID 1D layout, service 05) + transmission 0x18";
    p.protocol = 5;
    p.order = EcuOrder::Ascending;
    p.vehicle.displacementLitres = 1.4;
    p.vehicle.idleRpm = 820.0;

    EcuProfile engine;
    engine.id = 0x11;
    engine.latencyMs = 30;
    engine.name = "engine";
    engine.pids01 = { 0x01, 0x03, 0x04, 0x05, 0x06, 0x07, 0x0B, 0x0C, 0x0D, 0x0E, 0x0F, 0x11,
                      0x14, 0x15, 0x1C, 0x1D, 0x1F, 0x21, 0x2F, 0x30, 0x31, 0x33 };
    engine.pids02 = { 0x02, 0x04, 0x05, 0x0C, 0x0D, 0x11 };
    engine.infoTypes09 = { 0x01, 0x02, 0x03, 0x04, 0x05, 0x06, 0x07, 0x08, 0x0A };
    engine.storedDtcs = { "P0420" };
    engine.readiness.continuousSupported = 0x07;
    engine.readiness.nonContinuousSupported = 0x65;
    engine.readiness.nonContinuousIncomplete = 0x01;  // catalyst
    engine.vin = "WEL14230KWP000003";
    engine.calibrationIds = { "KWPECM0000000001" };
    engine.cvns = { 0xCAFE0101 };
    engine.ecuNameAbbreviation = "ECM";
    engine.ecuNameText = "EngineControl";
    engine.performanceCounters = { 150, 480, 140, 150, 0, 0, 145, 150, 0, 0,
                                   0, 0, 0, 0, 60, 150, 138, 150, 0, 0 };
    //                           TID   CID   min?   value   limit
    engine.legacyMonitorTests = { { 0x01, 0x01, false, 0x0190, 0x0300 },
                                  { 0x01, 0x02, true, 0x0210, 0x0100 },
                                  { 0x05, 0x11, false, 0x0020, 0x0080 } };
    //                          TID   sensor value  min    max  (V or s)
    engine.oxygenSensorTests = { { 0x01, 0x01, 0.450, 0.000, 0.000 },
                                 { 0x02, 0x01, 0.450, 0.000, 0.000 },
                                 { 0x03, 0x01, 0.200, 0.000, 0.000 },
                                 { 0x04, 0x01, 0.700, 0.000, 0.000 },
                                 { 0x05, 0x01, 0.064, 0.000, 0.300 },
                                 { 0x06, 0x01, 0.072, 0.000, 0.300 },
                                 { 0x07, 0x01, 0.055, 0.000, 0.400 },
                                 { 0x08, 0x01, 0.835, 0.600, 1.275 },
                                 { 0x09, 0x01, 1.200, 0.000, 5.000 },
                                 { 0x0A, 0x01, 2.400, 0.000, 10.200 },
                                 { 0x07, 0x02, 0.120, 0.000, 0.400 },
                                 { 0x08, 0x02, 0.760, 0.600, 1.275 } };
    engine.hasFreezeFrame = true;
    engine.freezeFrame.dtc = "P0420";
    engine.freezeFrame.atSeconds = 210.0;
    engine.freezeFrame.pids = { 0x04, 0x05, 0x0C, 0x0D, 0x11 };
    engine.obdStandard = 6;
    engine.oxygenSensors = 0x03;                       // PID 1D: B1S1, B1S2
    engine.distanceSinceClearKm = 5021.0;
    engine.minutesSinceClear = 3000.0;
    engine.distanceWithMilKm = 88.0;
    engine.warmUpsSinceClear = 120;

    EcuProfile gearbox;
    gearbox.id = 0x18;
    gearbox.latencyMs = 45;
    gearbox.name = "transmission";
    gearbox.pids01 = { 0x01, 0x0D };
    gearbox.infoTypes09 = { 0x03, 0x04 };
    gearbox.pendingDtcs = { "P0730" };
    gearbox.codesLightMil = false;
    gearbox.readiness.continuousSupported = 0x04;
    gearbox.calibrationIds = { "KWPTCM0000000002" };
    gearbox.obdStandard = 6;

    p.ecus = { engine, gearbox };
    return p;
}

} // namespace ElmSim
