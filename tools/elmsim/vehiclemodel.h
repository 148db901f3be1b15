#ifndef ELMSIM_VEHICLEMODEL_H
#define ELMSIM_VEHICLEMODEL_H

#include <vector>

namespace ElmSim {

// Fixed facts of one simulated car that shape its live data.
struct VehicleTraits {
    double displacementLitres = 1.6;
    double idleRpm = 780.0;
    double ambientC = 18.0;
    double warmCoolantC = 90.0;
    double warmUpSeconds = 120.0;          // time constant of the coolant curve
    double baroKpa = 101.0;
    double fuelLevelStartPercent = 62.0;
    double fuelUsePercentPerSecond = 0.002;
    std::vector<double> gearRatios = { 3.55, 1.95, 1.31, 1.03, 0.82 };
    double finalDrive = 4.06;
    double tyreCircumferenceM = 1.93;
    bool diesel = false;
};

// Every physical quantity of the car at one instant, in SI-ish units
// (rpm, km/h, degC, g/s, kPa, %, V, s, km).
struct VehicleState {
    double seconds = 0.0;
    double rpm = 0.0;
    double speedKmh = 0.0;
    int gear = 0;                          // 0 stopped or idling
    double loadPercent = 0.0;
    double throttlePercent = 0.0;
    double coolantC = 0.0;
    double intakeAirC = 0.0;
    double ambientC = 0.0;
    double mafGs = 0.0;
    double mapKpa = 0.0;
    double baroKpa = 0.0;
    double timingDeg = 0.0;
    double shortTrimPercent[2] = { 0.0, 0.0 };
    double longTrimPercent[2] = { 0.0, 0.0 };
    double upstreamO2Volts = 0.0;
    double downstreamO2Volts = 0.0;
    double lambda = 1.0;
    double fuelLevelPercent = 0.0;
    double runSeconds = 0.0;
    double distanceKm = 0.0;               // driven since t = 0
    double catalystC = 0.0;
    double moduleVolts = 0.0;
    double fuelRailKpa = 0.0;
    double egrPercent = 0.0;
    double purgePercent = 0.0;
    double vaporPressurePa = 0.0;
};

// A car idling, then driving a repeating urban/extra-urban loop. Every
// quantity is a pure function of time, so tests can recompute the truth.
class VehicleModel
{
public:
    explicit VehicleModel(const VehicleTraits& traits);

    VehicleState stateAt(double seconds) const;
    double speedAt(double seconds) const;
    double distanceAt(double seconds) const;

    static constexpr double CYCLE_SECONDS = 300.0;

private:
    double cycleSpeed(double cycleSeconds) const;
    double loopDistance(double cycleSeconds) const;
    int gearFor(double speedKmh, double acceleration) const;

    VehicleTraits m_traits;
    double m_cycleDistanceKm;
};

} // namespace ElmSim

#endif
