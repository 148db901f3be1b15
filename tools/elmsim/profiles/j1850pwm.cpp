// SAE J1850 PWM: one powertrain module at 0x10.
#include "profilecatalog.h"

namespace ElmSim {

Profile ProfileCatalog::j1850pwm()
{
    Profile p;
    p.name = "j1850pwm";
    p.summary = "SAE J1850 PWM, engine 0x10, one stored code, MIL on";
    p.protocol = 1;
    p.vehicle.displacementLitres = 2.0;

    EcuProfile engine;
    engine.id = 0x10;
    engine.latencyMs = 12;
    engine.name = "engine";
    engine.pids01 = { 0x01, 0x03, 0x04, 0x05, 0x06, 0x07, 0x0B, 0x0C, 0x0D, 0x0E, 0x0F, 0x11,
                      0x13, 0x14, 0x15, 0x1C };
    engine.pids02 = { 0x02, 0x05, 0x0C };
    engine.infoTypes09 = { 0x01, 0x02 };
    engine.storedDtcs = { "P0128" };
    engine.readiness.continuousSupported = 0x07;
    engine.readiness.nonContinuousSupported = 0x25;
    engine.readiness.nonContinuousIncomplete = 0x20;
    engine.vin = "1WELJ1850PWM00006";
    engine.hasFreezeFrame = true;
    engine.freezeFrame.dtc = "P0128";
    engine.freezeFrame.atSeconds = 20.0;
    engine.freezeFrame.pids = { 0x05, 0x0C };
    engine.obdStandard = 1;
    engine.oxygenSensors = 0x03;
    engine.distanceSinceClearKm = 402.0;
    engine.distanceWithMilKm = 40.0;
    engine.warmUpsSinceClear = 14;

    p.ecus = { engine };
    return p;
}

} // namespace ElmSim
