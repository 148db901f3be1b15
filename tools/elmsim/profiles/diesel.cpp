// ISO 15765-4 CAN 11/500 diesel: compression-ignition readiness and
// counters, wide-range lambda, filler 55 not shown, refuses to clear
// codes while the engine runs.
#include "profilecatalog.h"

namespace ElmSim {

Profile ProfileCatalog::diesel()
{
    Profile p;
    p.name = "diesel";
    p.summary = "ISO 15765-4 CAN 11/500, diesel, engine 7E8, compression-ignition monitors, 04 refused (7F 04 22)";
    p.protocol = 6;
    p.vehicle.displacementLitres = 2.0;
    p.vehicle.idleRpm = 830.0;
    p.vehicle.diesel = true;
    p.vehicle.gearRatios = { 3.83, 2.05, 1.30, 0.97, 0.76, 0.62 };
    p.vehicle.finalDrive = 3.65;

    EcuProfile engine;
    engine.id = 0x7E8;
    engine.latencyMs = 18;
    engine.name = "engine";
    engine.padByte = 0x55;
    engine.printPadding = false;
    engine.compressionIgnition = true;
    engine.pids01 = { 0x01, 0x04, 0x05, 0x0B, 0x0C, 0x0D, 0x0F, 0x10, 0x11, 0x1C, 0x1F, 0x21,
                      0x22, 0x23, 0x24, 0x2C, 0x2F, 0x30, 0x31, 0x33, 0x34, 0x41, 0x42, 0x46, 0x51 };
    engine.pids02 = { 0x02, 0x04, 0x05, 0x0B, 0x0C, 0x0D, 0x23 };
    engine.infoTypes09 = { 0x02, 0x04, 0x06, 0x0A, 0x0B };
    engine.storedDtcs = { "P2002" };
    engine.pendingDtcs = { "P0401" };
    engine.readiness.continuousSupported = 0x07;
    engine.readiness.nonContinuousSupported = 0xEB;   // NMHC, NOx/SCR, boost, EGS, PM, EGR
    engine.readiness.nonContinuousIncomplete = 0x40;  // PM filter
    engine.readiness.driveCycleIncomplete = 0x48;     // PM filter and boost not yet run this trip
    engine.vin = "WELD1ESEL20000007";
    engine.calibrationIds = { "DSLECM0000007777" };
    engine.cvns = { 0x7E57AB1E };
    engine.ecuNameAbbreviation = "ECM";
    engine.ecuNameText = "EngineControl";
    engine.performanceCounters = { 233, 700, 220, 233, 0, 0, 0, 0, 201, 233,
                                   225, 233, 230, 233, 228, 233, 231, 233 };
    engine.monitorTests = { { 0x31, 0x80, 0x9D, 0x0004, 0xFFF0, 0x0010 },  // EGR flow error
                            { 0x85, 0x80, 0x17, 0x2710, 0x1F40, 0x3A98 },  // boost pressure
                            { 0xB2, 0x80, 0x17, 0x0190, 0x0000, 0x07D0 } }; // PM filter dP
    engine.hasFreezeFrame = true;
    engine.freezeFrame.dtc = "P2002";
    engine.freezeFrame.atSeconds = 230.0;
    engine.freezeFrame.pids = { 0x04, 0x05, 0x0B, 0x0C, 0x0D, 0x23 };
    engine.obdStandard = 6;
    engine.distanceSinceClearKm = 8800.0;
    engine.distanceWithMilKm = 420.0;
    engine.warmUpsSinceClear = 200;
    engine.refusesClearWhileRunning = true;

    p.ecus = { engine };
    return p;
}

} // namespace ElmSim
