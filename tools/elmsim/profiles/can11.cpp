// ISO 15765-4 CAN 11/500: a petrol hatchback with engine and gearbox ECUs.
#include "profilecatalog.h"

namespace ElmSim {

Profile ProfileCatalog::can11()
{
    Profile p;
    p.name = "can11";
    p.summary = "ISO 15765-4 CAN 11/500, petrol, engine 7E8 + transmission 7E9, MIL on";
    p.protocol = 6;
    p.order = EcuOrder::ReversedOnOddRequests;

    EcuProfile engine;
    engine.id = 0x7E8;
    engine.latencyMs = 12;
    engine.name = "engine";
    engine.padByte = 0xAA;
    engine.pids01 = { 0x01, 0x03, 0x04, 0x05, 0x06, 0x07, 0x0B, 0x0C, 0x0D, 0x0E, 0x0F, 0x10, 0x11,
                      0x13, 0x14, 0x15, 0x1C, 0x1F, 0x21, 0x2E, 0x2F, 0x30, 0x31, 0x33, 0x3C,
                      0x42, 0x46, 0x49, 0x4E, 0x51 };
    engine.pids02 = { 0x02, 0x04, 0x05, 0x06, 0x07, 0x0B, 0x0C, 0x0D, 0x0F, 0x11 };
    engine.infoTypes09 = { 0x02, 0x04, 0x06, 0x08, 0x0A };
    engine.storedDtcs = { "P0133", "P0420" };
    engine.pendingDtcs = { "P0171" };
    engine.readiness.continuousSupported = 0x07;
    engine.readiness.nonContinuousSupported = 0xE5;   // catalyst, EVAP, O2, O2 heater, EGR/VVT
    engine.readiness.nonContinuousIncomplete = 0x04;  // EVAP not yet run
    engine.vin = "WEL5M327C11A00001";
    engine.calibrationIds = { "CAL11ECM00012345" };
    engine.cvns = { 0x1A2B3C4D };
    engine.ecuNameAbbreviation = "ECM";
    engine.ecuNameText = "EngineControl";
    engine.performanceCounters = { 412, 1260, 388, 412, 0, 0, 401, 412, 0, 0,
                                   350, 412, 0, 0, 210, 412, 380, 412, 0, 0 };
    //                     MID   TID   UASID value   min     max
    engine.monitorTests = { { 0x01, 0x80, 0x0B, 0x02EE, 0x01F4, 0x03E8 },   // O2 B1S1 voltage
                            { 0x01, 0x81, 0x10, 0x0096, 0x0000, 0x012C },   // O2 B1S1 switch time
                            { 0x21, 0x80, 0x24, 0x0034, 0x0000, 0x0060 },   // catalyst B1
                            { 0xA2, 0x0B, 0x24, 0x0000, 0x0000, 0x00C8 },   // misfire cyl 1
                            { 0xA2, 0x0C, 0x24, 0x0002, 0x0000, 0xFFFF } };
    engine.hasFreezeFrame = true;
    engine.freezeFrame.dtc = "P0133";
    engine.freezeFrame.atSeconds = 95.0;
    engine.freezeFrame.pids = { 0x04, 0x05, 0x06, 0x07, 0x0B, 0x0C, 0x0D, 0x0F, 0x11 };
    engine.obdStandard = 6;                            // EOBD
    engine.oxygenSensors = 0x03;                       // B1S1, B1S2
    engine.distanceSinceClearKm = 1234.0;
    engine.distanceWithMilKm = 56.0;
    engine.minutesSinceClear = 820.0;
    engine.warmUpsSinceClear = 37;

    EcuProfile gearbox;
    gearbox.id = 0x7E9;
    gearbox.latencyMs = 20;
    gearbox.name = "transmission";
    gearbox.padByte = 0x00;
    gearbox.pids01 = { 0x01, 0x0D, 0x1C };
    gearbox.infoTypes09 = { 0x04, 0x06, 0x0A };
    gearbox.pendingDtcs = { "P0715" };
    gearbox.codesLightMil = false;
    gearbox.readiness.continuousSupported = 0x04;     // comprehensive components
    gearbox.calibrationIds = { "CAL11TCM00004321" };
    gearbox.cvns = { 0x0BADF00D };
    gearbox.ecuNameAbbreviation = "TCM";
    gearbox.ecuNameText = "TransmissionCtl";
    gearbox.obdStandard = 6;

    p.ecus = { engine, gearbox };
    return p;
}

} // namespace ElmSim
