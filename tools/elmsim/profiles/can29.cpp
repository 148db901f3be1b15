// ISO 15765-4 CAN 29/500: engine and gearbox on extended identifiers,
// single frames without visible filler, no ECU names.
#include "profilecatalog.h"

namespace ElmSim {

Profile ProfileCatalog::can29()
{
    Profile p;
    p.name = "can29";
    p.summary = "ISO 15765-4 CAN 29/500, petrol, engine 18DAF110 + transmission 18DAF118, no 09 0A";
    p.protocol = 7;
    p.order = EcuOrder::Descending;
    p.vehicle.displacementLitres = 2.0;
    p.vehicle.idleRpm = 720.0;
    p.vehicle.ambientC = 9.0;

    EcuProfile engine;
    engine.id = 0x18DAF110;
    engine.latencyMs = 10;
    engine.name = "engine";
    engine.padByte = 0xAA;
    engine.printPadding = false;
    engine.pids01 = { 0x01, 0x03, 0x04, 0x05, 0x06, 0x07, 0x08, 0x09, 0x0B, 0x0C, 0x0D, 0x0E, 0x0F,
                      0x10, 0x11, 0x13, 0x14, 0x15, 0x18, 0x19, 0x1C, 0x1F, 0x21, 0x2F, 0x31, 0x33, 0x41 };
    engine.pids02 = { 0x02, 0x04, 0x05, 0x0C, 0x0D };
    engine.infoTypes09 = { 0x02, 0x04, 0x06, 0x08 };
    engine.storedDtcs = { "P0301", "P0300" };
    engine.readiness.continuousSupported = 0x07;
    engine.readiness.continuousIncomplete = 0x01;     // misfire monitor running
    engine.readiness.nonContinuousSupported = 0x65;
    engine.readiness.nonContinuousIncomplete = 0x00;
    engine.readiness.driveCycleIncomplete = 0x01;     // catalyst not yet run this trip
    engine.vin = "WEL29BIT7CAN00002";
    engine.calibrationIds = { "CAL29ECM0000A001", "CAL29ECM0000B002" };
    engine.cvns = { 0xDEADBEEF, 0x00C0FFEE };
    engine.performanceCounters = { 97, 300, 90, 97, 88, 97, 95, 97, 92, 97,
                                   0, 0, 0, 0, 41, 97, 90, 97, 89, 97 };
    engine.monitorTests = { { 0x01, 0x80, 0x0B, 0x0320, 0x01F4, 0x03E8 },
                            { 0x05, 0x80, 0x0B, 0x0310, 0x01F4, 0x03E8 },
                            { 0x21, 0x80, 0x24, 0x0020, 0x0000, 0x0060 },
                            { 0x22, 0x80, 0x24, 0x0025, 0x0000, 0x0060 } };
    engine.hasFreezeFrame = true;
    engine.freezeFrame.dtc = "P0301";
    engine.freezeFrame.atSeconds = 200.0;
    engine.freezeFrame.pids = { 0x04, 0x05, 0x0C, 0x0D };
    engine.obdStandard = 1;                            // OBD II (CARB)
    engine.oxygenSensors = 0x33;                       // B1S1, B1S2, B2S1, B2S2
    engine.distanceSinceClearKm = 310.0;
    engine.distanceWithMilKm = 12.0;
    engine.minutesSinceClear = 240.0;
    engine.warmUpsSinceClear = 9;

    EcuProfile gearbox;
    gearbox.id = 0x18DAF118;
    gearbox.latencyMs = 25;
    gearbox.name = "transmission";
    gearbox.padByte = 0xAA;
    gearbox.printPadding = false;
    gearbox.pids01 = { 0x01, 0x0D };
    gearbox.infoTypes09 = { 0x04, 0x06 };
    gearbox.storedDtcs = { "U0100" };
    gearbox.codesLightMil = false;
    gearbox.readiness.continuousSupported = 0x04;
    gearbox.calibrationIds = { "CAL29TCM0000C003" };
    gearbox.cvns = { 0x12345678 };
    gearbox.obdStandard = 1;

    p.ecus = { engine, gearbox };
    return p;
}

} // namespace ElmSim
