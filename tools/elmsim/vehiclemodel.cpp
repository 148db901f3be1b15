#include "vehiclemodel.h"

#include <algorithm>
#include <cmath>

namespace ElmSim {

namespace {

// Speed profile of one loop: (time into the loop s, speed km/h), linear
// between points. Idle first, town driving, a fast stretch, back to idle.
struct SpeedPoint {
    double seconds;
    double kmh;
};

const SpeedPoint SPEED_PROFILE[] = {
    {   0.0,   0.0 },
    {  30.0,   0.0 },
    {  45.0,  32.0 },
    {  60.0,  50.0 },
    {  90.0,  55.0 },
    { 110.0,  38.0 },
    { 125.0,   0.0 },
    { 140.0,   0.0 },
    { 160.0,  60.0 },
    { 185.0, 100.0 },
    { 240.0, 105.0 },
    { 270.0,  40.0 },
    { 285.0,   0.0 },
    { 300.0,   0.0 },
};

constexpr double PI = 3.14159265358979323846;
constexpr double AIR_DENSITY_G_PER_L = 1.184;

} // namespace

VehicleModel::VehicleModel(const VehicleTraits& traits)
    : m_traits(traits)
    , m_cycleDistanceKm(0.0)
{
    m_cycleDistanceKm = loopDistance(CYCLE_SECONDS);
}

double VehicleModel::cycleSpeed(double t) const
{
    const size_t count = sizeof(SPEED_PROFILE) / sizeof(SPEED_PROFILE[0]);
    for (size_t i = 1; i < count; ++i) {
        const SpeedPoint& a = SPEED_PROFILE[i - 1];
        const SpeedPoint& b = SPEED_PROFILE[i];
        if (t <= b.seconds)
            return a.kmh + (b.kmh - a.kmh) * (t - a.seconds) / (b.seconds - a.seconds);
    }
    return 0.0;
}

double VehicleModel::speedAt(double seconds) const
{
    if (seconds < 0.0)
        seconds = 0.0;
    return cycleSpeed(std::fmod(seconds, CYCLE_SECONDS));
}

double VehicleModel::distanceAt(double seconds) const
{
    if (seconds <= 0.0)
        return 0.0;
    const double loops = std::floor(seconds / CYCLE_SECONDS);
    const double rest = seconds - loops * CYCLE_SECONDS;
    return loops * m_cycleDistanceKm + loopDistance(rest);
}

double VehicleModel::loopDistance(double rest) const
{
    // The profile is piecewise linear, so the trapezoids are exact.
    double km = 0.0;
    const size_t count = sizeof(SPEED_PROFILE) / sizeof(SPEED_PROFILE[0]);
    for (size_t i = 1; i < count && SPEED_PROFILE[i - 1].seconds < rest; ++i) {
        const SpeedPoint& a = SPEED_PROFILE[i - 1];
        const double end = std::min(rest, SPEED_PROFILE[i].seconds);
        km += (a.kmh + cycleSpeed(end)) * 0.5 * (end - a.seconds) / 3600.0;
    }
    return km;
}

int VehicleModel::gearFor(double speedKmh, double acceleration) const
{
    if (speedKmh < 1.0)
        return 0;
    // Upshift points in km/h; a little later while accelerating.
    static const double UPSHIFT[] = { 18.0, 34.0, 50.0, 68.0 };
    const double late = acceleration > 0.0 ? 4.0 : 0.0;
    int gear = 1;
    for (double limit : UPSHIFT) {
        if (speedKmh > limit + late && gear < static_cast<int>(m_traits.gearRatios.size()))
            ++gear;
    }
    return gear;
}

VehicleState VehicleModel::stateAt(double seconds) const
{
    VehicleState s;
    const double t = std::max(0.0, seconds);
    const VehicleTraits& v = m_traits;
    s.seconds = t;
    s.speedKmh = speedAt(t);
    const double acceleration = speedAt(t + 0.5) - speedAt(std::max(0.0, t - 0.5));
    s.gear = gearFor(s.speedKmh, acceleration);

    const double wobble = std::sin(2.0 * PI * t / 7.0);
    if (s.gear == 0) {
        s.rpm = v.idleRpm + 15.0 * wobble;
    } else {
        const double wheelRps = s.speedKmh / 3.6 / v.tyreCircumferenceM;
        const double engineRpm = wheelRps * v.gearRatios[static_cast<size_t>(s.gear - 1)] * v.finalDrive * 60.0;
        s.rpm = std::max(v.idleRpm + 150.0, engineRpm);
    }

    // Load: idle base, plus cruising drag, plus acceleration demand.
    const double drag = s.speedKmh * s.speedKmh / 400.0;
    const double demand = std::max(0.0, acceleration) * 9.0;
    s.loadPercent = std::clamp(22.0 + drag + demand + 2.0 * wobble, 15.0, 95.0);
    s.throttlePercent = std::clamp(14.0 + (s.loadPercent - 22.0) * 0.8, 11.0, 90.0);
    s.baroKpa = v.baroKpa;
    s.mapKpa = v.diesel ? std::clamp(v.baroKpa + (s.loadPercent - 30.0) * 1.5, v.baroKpa, 250.0)
                        : std::clamp(s.loadPercent * v.baroKpa / 100.0 + 8.0, 20.0, v.baroKpa);
    s.mafGs = v.displacementLitres * s.rpm / 120.0 * AIR_DENSITY_G_PER_L
              * (v.diesel ? std::max(0.5, s.mapKpa / v.baroKpa) : s.loadPercent / 100.0);

    s.ambientC = v.ambientC;
    s.coolantC = v.ambientC + (v.warmCoolantC - v.ambientC) * (1.0 - std::exp(-t / v.warmUpSeconds));
    s.intakeAirC = v.ambientC + 6.0 + 4.0 * (1.0 - std::exp(-t / 300.0));
    s.timingDeg = std::clamp(8.0 + (s.rpm - v.idleRpm) / 150.0 - (s.loadPercent - 22.0) / 6.0, -5.0, 40.0);

    // Closed-loop fuelling: the upstream sensor switches about once a second
    // and the short-term trim follows it.
    const double phase = std::sin(2.0 * PI * t * 1.1);
    s.upstreamO2Volts = 0.45 + 0.37 * std::tanh(4.0 * phase);
    s.downstreamO2Volts = 0.68 + 0.02 * wobble;
    s.shortTrimPercent[0] = -3.1 * phase;
    s.shortTrimPercent[1] = 2.3 * std::sin(2.0 * PI * t * 0.9);
    s.longTrimPercent[0] = 3.9;
    s.longTrimPercent[1] = -1.6;
    s.lambda = v.diesel ? 1.9 - s.loadPercent / 100.0 : 1.0 + 0.02 * phase;

    s.fuelLevelPercent = std::max(0.0, v.fuelLevelStartPercent - v.fuelUsePercentPerSecond * t);
    s.runSeconds = t;
    s.distanceKm = distanceAt(t);
    s.catalystC = 380.0 + 4.0 * s.loadPercent + 60.0 * (1.0 - std::exp(-t / 90.0));
    s.moduleVolts = 13.9 + 0.1 * wobble;
    s.fuelRailKpa = v.diesel ? 30000.0 + s.rpm * 25.0 + s.loadPercent * 400.0 : 380.0;
    s.egrPercent = v.diesel ? std::clamp(40.0 - s.loadPercent * 0.4, 0.0, 100.0) : 0.0;
    s.purgePercent = s.coolantC > 70.0 ? 18.0 + 6.0 * wobble : 0.0;
    s.vaporPressurePa = -420.0 + 80.0 * wobble;
    return s;
}

} // namespace ElmSim
