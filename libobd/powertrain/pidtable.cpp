#include "pidtable.h"
#include "unitconversion.h"
#include "unittable.h"

#include <cstdint>

namespace Obd {

namespace {

// ---------------------------------------------------------------------------
// Decode formulas (SAE J1979 service 01). A, B, C, D are the data bytes,
// AB = A*256 + B, CD = C*256 + D. Each formula exists once; the integer steps
// and the 65535 divisors are deliberate.
// ---------------------------------------------------------------------------

unsigned int wordAt(const std::vector<unsigned char>& d, size_t i)
{
    return static_cast<unsigned int>(d[i]) << 8 | d[i + 1];
}

// (x - 128) * 100/128: the fuel trims, the EGR error and the oxygen-sensor
// trim. The product is exact in float and double alike.
float percentAround128(unsigned char x)
{
    return static_cast<float>((static_cast<int>(x) - 128) * 100 * 0.0078125);
}

float byteA(const std::vector<unsigned char>& d) { return d[0]; }
float wordAB(const std::vector<unsigned char>& d) { return static_cast<float>(wordAt(d, 0)); }
float percentOf255(const std::vector<unsigned char>& d) { return d[0] * 100.0f / 255.0f; }
// Integer quotient first: 0x80 gives 50, not 50.196.
float percentOf255Truncated(const std::vector<unsigned char>& d)
{
    return static_cast<float>(static_cast<unsigned int>(d[0]) * 100 / 255);
}
float minus40(const std::vector<unsigned char>& d) { return static_cast<float>(static_cast<int>(d[0]) - 40); }
float trimA(const std::vector<unsigned char>& d) { return percentAround128(d[0]); }
float times3(const std::vector<unsigned char>& d) { return static_cast<float>(d[0] * 3); }
// Quarter revolutions are dropped.
float quarterRpm(const std::vector<unsigned char>& d) { return static_cast<float>(wordAt(d, 0) >> 2); }
float halfMinus64(const std::vector<unsigned char>& d) { return d[0] * 0.5f - 64.0f; }
float hundredthsAB(const std::vector<unsigned char>& d) { return wordAt(d, 0) / 100.0f; }
float relativeRailPressure(const std::vector<unsigned char>& d) { return wordAt(d, 0) * 5178.0f / 65535.0f; }
float tenTimesAB(const std::vector<unsigned char>& d) { return static_cast<float>(wordAt(d, 0) * 10); }
float o2Voltage(const std::vector<unsigned char>& d) { return static_cast<float>(d[0] * 0.005); }
// B = 0xFF: the sensor is not used for trim; the trim stays 0.
float o2Trim(const std::vector<unsigned char>& d) { return d[1] == 0xFF ? 0.0f : percentAround128(d[1]); }
float equivalenceRatioAB(const std::vector<unsigned char>& d) { return static_cast<float>(wordAt(d, 0) * 2.0 / 65535.0); }
float voltageCD(const std::vector<unsigned char>& d) { return static_cast<float>(wordAt(d, 2) * 8.0 / 65535.0); }
// CD*128/32768 - 128 = CD/256 - 128 mA.
float currentCD(const std::vector<unsigned char>& d)
{
    return static_cast<float>(wordAt(d, 2) * 128 * 3.0517578125e-05 - 128.0);
}
float signedQuarterAB(const std::vector<unsigned char>& d)
{
    return static_cast<float>(static_cast<int16_t>(wordAt(d, 0)) * 0.25);
}
float catalystTemperature(const std::vector<unsigned char>& d)
{
    return static_cast<float>(static_cast<int>(wordAt(d, 0) / 10.0 - 40.0));
}

// PIDs 0x40 and above. Their exact J1979 resolutions (1/32768, 1/200, ...)
// are powers of two or short decimals: no deliberate divisors here.
float thousandthsAB(const std::vector<unsigned char>& d) { return wordAt(d, 0) / 1000.0f; }
float percentOf255AB(const std::vector<unsigned char>& d) { return wordAt(d, 0) * 100.0f / 255.0f; }
float ratioAB(const std::vector<unsigned char>& d) { return wordAt(d, 0) / 32768.0f; }
float tenTimesA(const std::vector<unsigned char>& d) { return d[0] * 10.0f; }
float twoHundredthsAB(const std::vector<unsigned char>& d) { return wordAt(d, 0) / 200.0f; }
float signedAB(const std::vector<unsigned char>& d) { return static_cast<float>(static_cast<int16_t>(wordAt(d, 0))); }
float trimB(const std::vector<unsigned char>& d) { return percentAround128(d[1]); }
float injectionTiming(const std::vector<unsigned char>& d)
{
    return (static_cast<int>(wordAt(d, 0)) - 26880) / 128.0f;
}
float twentiethsAB(const std::vector<unsigned char>& d) { return wordAt(d, 0) / 20.0f; }
float minus125(const std::vector<unsigned char>& d) { return static_cast<float>(static_cast<int>(d[0]) - 125); }
float fiftiethsAB(const std::vector<unsigned char>& d) { return wordAt(d, 0) / 50.0f; }
float fiftiethsCD(const std::vector<unsigned char>& d) { return wordAt(d, 2) / 50.0f; }
float fifthsAB(const std::vector<unsigned char>& d) { return wordAt(d, 0) / 5.0f; }
float thirtySecondsAB(const std::vector<unsigned char>& d) { return wordAt(d, 0) / 32.0f; }
float tenthsABCD(const std::vector<unsigned char>& d)
{
    return static_cast<float>((static_cast<double>(wordAt(d, 0)) * 65536.0 + wordAt(d, 2)) / 10.0);
}
float tenthsMinus40AB(const std::vector<unsigned char>& d) { return wordAt(d, 0) / 10.0f - 40.0f; }
// Multi-sensor PIDs lead with a byte that says which sensors are present.
float sensor1Minus40(const std::vector<unsigned char>& d) { return static_cast<float>(static_cast<int>(d[1]) - 40); }
float sensor2Minus40(const std::vector<unsigned char>& d) { return static_cast<float>(static_cast<int>(d[2]) - 40); }

// ---------------------------------------------------------------------------
// Row builders
// ---------------------------------------------------------------------------

const PidFormat NONE = { NO_FORMATTER, 0, 0 };

// The same unit and range in both systems.
PidValue same(const char* name, PidFormula f, unsigned int unit, double lo, double hi, PidFormat fmt)
{
    return PidValue{ name, f, unit, lo, hi, unit, nullptr, fmt };
}

// Metric range; the imperial range is the converted metric range.
PidValue converted(const char* name, PidFormula f, unsigned int unit, double lo, double hi,
                       unsigned int imperialUnit, PidConversion c, PidFormat fmt)
{
    return PidValue{ name, f, unit, lo, hi, imperialUnit, c, fmt };
}

// Enumerated or structured values: no unit, no range, own decoder.
PidValue text(const char* name = nullptr)
{
    return PidValue{ name, nullptr, UNIT_NONE, 0.0, 0.0, UNIT_NONE, nullptr, NONE };
}

std::vector<PidRow> buildTable()
{
    using namespace UnitConversion;

    const PidValue percent = same(nullptr, percentOf255, UNIT_PERCENT, 0, 100, { 2, 1, 1 });
    const PidValue percentTruncated = same(nullptr, percentOf255Truncated, UNIT_PERCENT, 0, 100, { 2, 1, 1 });
    const PidValue trim = same(nullptr, trimA, UNIT_PERCENT, -100, 99.22, { 2, 1, 1 });
    const PidValue temperature = converted(nullptr, minus40, UNIT_CELSIUS, -40, 215, UNIT_FAHRENHEIT, celsiusToFahrenheit, { 1, 0, 0 });
    const PidValue distance = converted(nullptr, wordAB, UNIT_KM, 0, 65535, UNIT_MILES, kmToMiles, NONE);
    const PidValue catalyst = converted(nullptr, catalystTemperature, UNIT_CELSIUS, -40, 6513.5, UNIT_FAHRENHEIT, celsiusToFahrenheit, { 1, 0, 0 });
    // Oxygen sensors: the two values of each group.
    const PidValue o2V = same("Voltage", o2Voltage, UNIT_VOLT, 0, 1.275, { 2, 3, 3 });
    const PidValue o2Stft = same("Short Term Fuel Trim", o2Trim, UNIT_PERCENT, -100, 99.22, { 2, 1, 1 });
    const PidValue lambda = same("Equivalence Ratio", equivalenceRatioAB, UNIT_NONE, 0, 1.999, { 2, 3, 3 });
    const PidValue wideV = same("Voltage", voltageCD, UNIT_VOLT, 0, 7.999, { 2, 3, 3 });
    const PidValue wideMa = same("Current", currentCD, UNIT_MILLIAMPERE, -128, 127.996, { 2, 2, 2 });
    const PidValue torque = same(nullptr, minus125, UNIT_PERCENT, -125, 130, { 1, 0, 0 });
    const PidValue minutes = same(nullptr, wordAB, UNIT_MINUTE, 0, 65535, { 0, 0, 0 });
    const PidValue secondaryTrim1 = same("Bank 1", trimA, UNIT_PERCENT, -100, 99.22, { 2, 1, 1 });
    const PidValue secondaryTrim3 = same("Bank 3", trimB, UNIT_PERCENT, -100, 99.22, { 2, 1, 1 });
    const PidValue secondaryTrim2 = same("Bank 2", trimA, UNIT_PERCENT, -100, 99.22, { 2, 1, 1 });
    const PidValue secondaryTrim4 = same("Bank 4", trimB, UNIT_PERCENT, -100, 99.22, { 2, 1, 1 });

    return {
        // PID  class                                  name text                                          alias          bytes  oxygen group   values
        { 0x01, "MonitorStatus",                       "Monitor status since DTCs cleared",               "monitor",     4, 4, O2_NONE, 1, { text() } },
        { 0x02, "FreezeFrameTroubleCode",              "Freeze Frame Trouble Code",                       "freezedtc",   2, 2, O2_NONE, 1, { text() } },
        { 0x03, "FuelSystem",                          "Fuel system status",                              "fuelsystem",  2, 2, O2_NONE, 2, { text("Fuel system 1"), text("Fuel system 2") } },
        { 0x04, "CalculatedEngineLoad",                "Calculated engine load",                          "load",        1, 1, O2_NONE, 1, { percent } },
        { 0x05, "EngineCoolantTemperature",            "Engine Coolant Temperature",                      "coolant",     1, 1, O2_NONE, 1, { temperature } },
        // A second fuel-trim byte (bank 3/4) is accepted and ignored.
        { 0x06, "ShortTermFuelTrimBank1",              "Short Term Fuel Trim - Bank 1",                   "stft1",       1, 2, O2_NONE, 1, { trim } },
        { 0x07, "LongTermFuelTrimBank1",               "Long Term Fuel Trim - Bank 1",                    "ltft1",       1, 2, O2_NONE, 1, { trim } },
        { 0x08, "ShortTermFuelTrimBank2",              "Short Term Fuel Trim - Bank 2",                   "stft2",       1, 2, O2_NONE, 1, { trim } },
        { 0x09, "LongTermFuelTrimBank2",               "Long Term Fuel Trim - Bank 2",                    "ltft2",       1, 2, O2_NONE, 1, { trim } },
        { 0x0A, "FuelPressure",                        "Fuel Pressure (gauge)",                           "fuelpressure",1, 1, O2_NONE, 1, { converted(nullptr, times3, UNIT_KPA, 0, 765, UNIT_PSI, kpaToPsi, { 0, 0, 1 }) } },
        { 0x0B, "ManifoldPressure",                    "Intake Manifold Absolute Pressure",               "map",         1, 1, O2_NONE, 1, { converted(nullptr, byteA, UNIT_KPA, 0, 255, UNIT_INHG, kpaToInHg, { 2, 1, 1 }) } },
        { 0x0C, "EngineRpm",                           "Engine RPM",                                      "rpm",         2, 2, O2_NONE, 1, { same(nullptr, quarterRpm, UNIT_RPM, 0, 16383.75, { 0, 0, 0 }) } },
        { 0x0D, "VehicleSpeed",                        "Vehicle Speed Sensor",                            "speed",       1, 1, O2_NONE, 1, { converted(nullptr, byteA, UNIT_KMH, 0, 255, UNIT_MPH, kmhToMph, { 0, 0, 0 }) } },
        { 0x0E, "TimingAdvance",                       "Ignition Timing Advance for #1 Cylinder",         "timing",      1, 1, O2_NONE, 1, { same(nullptr, halfMinus64, UNIT_NONE, -64, 63.5, { 2, 1, 1 }) } },
        { 0x0F, "IntakeAirTemperature",                "Intake Air Temperature",                          "iat",         1, 1, O2_NONE, 1, { temperature } },
        { 0x10, "AirFlowRate",                         "Air Flow Rate from Mass Flow Sensor",             "maf",         2, 2, O2_NONE, 1, { converted(nullptr, hundredthsAB, UNIT_GPS, 0, 655.35, UNIT_LB_PER_MIN, gpsToLbPerMin, { 2, 2, 1 }) } },
        { 0x11, "ThrottlePosition",                    "Absolute Throttle Position",                      "throttle",    1, 1, O2_NONE, 1, { percent } },
        { 0x12, "SecondaryAirStatus",                  "Commanded Secondary Air Status",                  "secondaryair",1, 1, O2_NONE, 1, { text() } },
        { 0x13, "OxygenSensorsPresent13",              "Location of Oxygen Sensors",                      "o2sensors",   1, 1, O2_NONE, 1, { text() } },
        { 0x14, "OxygenSensor1Bank1",                  nullptr,                                           nullptr,       2, 2, O2_NARROW, 2, { o2V, o2Stft } },
        { 0x15, "OxygenSensor2Bank1",                  nullptr,                                           nullptr,       2, 2, O2_NARROW, 2, { o2V, o2Stft } },
        { 0x16, "OxygenSensor3Bank1",                  nullptr,                                           nullptr,       2, 2, O2_NARROW, 2, { o2V, o2Stft } },
        { 0x17, "OxygenSensor4Bank1",                  nullptr,                                           nullptr,       2, 2, O2_NARROW, 2, { o2V, o2Stft } },
        { 0x18, "OxygenSensor1Bank2",                  nullptr,                                           nullptr,       2, 2, O2_NARROW, 2, { o2V, o2Stft } },
        { 0x19, "OxygenSensor2Bank2",                  nullptr,                                           nullptr,       2, 2, O2_NARROW, 2, { o2V, o2Stft } },
        { 0x1A, "OxygenSensor3Bank2",                  nullptr,                                           nullptr,       2, 2, O2_NARROW, 2, { o2V, o2Stft } },
        { 0x1B, "OxygenSensor4Bank2",                  nullptr,                                           nullptr,       2, 2, O2_NARROW, 2, { o2V, o2Stft } },
        { 0x1C, "SaeStandard",                         "OBD requirements to which vehicle is certified",  "obdstandard", 1, 1, O2_NONE, 1, { text() } },
        { 0x1D, "OxygenSensorsPresent1d",              "Location of Oxygen Sensors",                      nullptr,       1, 1, O2_NONE, 1, { text() } },
        { 0x1E, "AuxiliaryInputStatus",                "Auxiliary Input Status",                          "pto",         1, 1, O2_NONE, 1, { text() } },
        { 0x1F, "EngineRuntime",                       "Time Since Engine Start",                         "runtime",     2, 2, O2_NONE, 1, { same(nullptr, wordAB, UNIT_SECOND, 0, 65535, NONE) } },
        { 0x21, "MilDistance",                         "Distance Traveled While MIL is Activated",        "mildistance", 2, 2, O2_NONE, 1, { distance } },
        { 0x22, "RelativeFuelRailPressure",            "Fuel Pressure relative to manifold vacuum",       "relrail",     2, 2, O2_NONE, 1, { converted(nullptr, relativeRailPressure, UNIT_KPA, 0, 5177.27, UNIT_PSI, kpaToPsi, { 2, 1, 1 }) } },
        { 0x23, "FuelRailPressure",                    "Fuel Rail Pressure",                              "rail",        2, 2, O2_NONE, 1, { converted(nullptr, tenTimesAB, UNIT_KPA, 0, 655350, UNIT_PSI, kpaToPsi, { 0, 0, 1 }) } },
        { 0x24, "OxygenSensorErvSensor1",              nullptr,                                           nullptr,       4, 4, O2_WIDE_VOLTAGE, 2, { lambda, wideV } },
        { 0x25, "OxygenSensorErvSensor2",              nullptr,                                           nullptr,       4, 4, O2_WIDE_VOLTAGE, 2, { lambda, wideV } },
        { 0x26, "OxygenSensorErvSensor3",              nullptr,                                           nullptr,       4, 4, O2_WIDE_VOLTAGE, 2, { lambda, wideV } },
        { 0x27, "OxygenSensorErvSensor4",              nullptr,                                           nullptr,       4, 4, O2_WIDE_VOLTAGE, 2, { lambda, wideV } },
        { 0x28, "OxygenSensorErvSensor5",              nullptr,                                           nullptr,       4, 4, O2_WIDE_VOLTAGE, 2, { lambda, wideV } },
        { 0x29, "OxygenSensorErvSensor6",              nullptr,                                           nullptr,       4, 4, O2_WIDE_VOLTAGE, 2, { lambda, wideV } },
        { 0x2A, "OxygenSensorErvSensor7",              nullptr,                                           nullptr,       4, 4, O2_WIDE_VOLTAGE, 2, { lambda, wideV } },
        { 0x2B, "OxygenSensorErvSensor8",              nullptr,                                           nullptr,       4, 4, O2_WIDE_VOLTAGE, 2, { lambda, wideV } },
        { 0x2C, "CommandedEgr",                        "Commanded EGR",                                   "egr",         1, 1, O2_NONE, 1, { percent } },
        { 0x2D, "EgrError",                            "EGR Error",                                       "egrerror",    1, 1, O2_NONE, 1, { trim } },
        { 0x2E, "EvaporativePurge",                    "Commanded Evaporative Purge",                     "purge",       1, 1, O2_NONE, 1, { percentTruncated } },
        { 0x2F, "FuelLevelInput",                      "Fuel Level Input",                                "fuel",        1, 1, O2_NONE, 1, { percentTruncated } },
        { 0x30, "WarmUps",                             "Number of warm-ups since DTCs cleared",           "warmups",     1, 1, O2_NONE, 1, { same(nullptr, byteA, UNIT_NONE, 0, 255, NONE) } },
        { 0x31, "DistanceTraveled",                    "Distance traveled since DTCs cleared",            "distance",    2, 2, O2_NONE, 1, { distance } },
        { 0x32, "VaporPressure",                       "Evap System Vapor Pressure",                      "evap",        2, 2, O2_NONE, 1, { converted(nullptr, signedQuarterAB, UNIT_PA, -8192, 8191.75, UNIT_INH2O, paToInH2O, { 2, 1, 3 }) } },
        { 0x33, "BarometricPressure",                  "Barometric Pressure",                             "baro",        1, 1, O2_NONE, 1, { converted(nullptr, byteA, UNIT_KPA, 0, 255, UNIT_INHG, kpaToInHg, { 0, 0, 1 }) } },
        { 0x34, "OxygenSensor1Erc",                    nullptr,                                           nullptr,       4, 4, O2_WIDE_CURRENT, 2, { lambda, wideMa } },
        { 0x35, "OxygenSensor2Erc",                    nullptr,                                           nullptr,       4, 4, O2_WIDE_CURRENT, 2, { lambda, wideMa } },
        { 0x36, "OxygenSensor3Erc",                    nullptr,                                           nullptr,       4, 4, O2_WIDE_CURRENT, 2, { lambda, wideMa } },
        { 0x37, "OxygenSensor4Erc",                    nullptr,                                           nullptr,       4, 4, O2_WIDE_CURRENT, 2, { lambda, wideMa } },
        { 0x38, "OxygenSensor5Erc",                    nullptr,                                           nullptr,       4, 4, O2_WIDE_CURRENT, 2, { lambda, wideMa } },
        { 0x39, "OxygenSensor6Erc",                    nullptr,                                           nullptr,       4, 4, O2_WIDE_CURRENT, 2, { lambda, wideMa } },
        { 0x3A, "OxygenSensor7Erc",                    nullptr,                                           nullptr,       4, 4, O2_WIDE_CURRENT, 2, { lambda, wideMa } },
        { 0x3B, "OxygenSensor8Erc",                    nullptr,                                           nullptr,       4, 4, O2_WIDE_CURRENT, 2, { lambda, wideMa } },
        { 0x3C, "CatalystTemperatureBank1Sensor1",     "Catalyst Temperature Bank 1, Sensor 1",           "cat11",       2, 2, O2_NONE, 1, { catalyst } },
        { 0x3D, "CatalystTemperatureBank2Sensor1",     "Catalyst Temperature Bank 2, Sensor 1",           "cat21",       2, 2, O2_NONE, 1, { catalyst } },
        { 0x3E, "CatalystTemperatureBank1Sensor2",     "Catalyst Temperature Bank 1, Sensor 2",           "cat12",       2, 2, O2_NONE, 1, { catalyst } },
        { 0x3F, "CatalystTemperatureBank2Sensor2",     "Catalyst Temperature Bank 2, Sensor 2",           "cat22",       2, 2, O2_NONE, 1, { catalyst } },
        { 0x41, "DriveCycleMonitorStatus",             "Monitor status this drive cycle",                 "drivecycle",  4, 4, O2_NONE, 1, { text() } },
        // From here on the rows are read by one generic class (ExtendedPid).
        { 0x42, "ExtendedPid", "Control module voltage",                           "voltage",     2, 2, O2_NONE, 1, { same(nullptr, thousandthsAB, UNIT_VOLT, 0, 65.535, { 2, 2, 2 }) } },
        { 0x43, "ExtendedPid", "Absolute load value",                              "absload",     2, 2, O2_NONE, 1, { same(nullptr, percentOf255AB, UNIT_PERCENT, 0, 25700, { 2, 1, 1 }) } },
        { 0x44, "ExtendedPid", "Commanded equivalence ratio",                      "lambda",      2, 2, O2_NONE, 1, { same(nullptr, ratioAB, UNIT_NONE, 0, 2, { 2, 3, 3 }) } },
        { 0x45, "ExtendedPid", "Relative throttle position",                       "relthrottle", 1, 1, O2_NONE, 1, { percent } },
        { 0x46, "ExtendedPid", "Ambient air temperature",                          "ambient",     1, 1, O2_NONE, 1, { temperature } },
        { 0x47, "ExtendedPid", "Absolute throttle position B",                     "throttleb",   1, 1, O2_NONE, 1, { percent } },
        { 0x48, "ExtendedPid", "Absolute throttle position C",                     "throttlec",   1, 1, O2_NONE, 1, { percent } },
        { 0x49, "ExtendedPid", "Accelerator pedal position D",                     "pedald",      1, 1, O2_NONE, 1, { percent } },
        { 0x4A, "ExtendedPid", "Accelerator pedal position E",                     "pedale",      1, 1, O2_NONE, 1, { percent } },
        { 0x4B, "ExtendedPid", "Accelerator pedal position F",                     "pedalf",      1, 1, O2_NONE, 1, { percent } },
        { 0x4C, "ExtendedPid", "Commanded throttle actuator",                      "throttlecmd", 1, 1, O2_NONE, 1, { percent } },
        { 0x4D, "ExtendedPid", "Time run with MIL on",                             "miltime",     2, 2, O2_NONE, 1, { minutes } },
        { 0x4E, "ExtendedPid", "Time since trouble codes cleared",                 "cleartime",   2, 2, O2_NONE, 1, { minutes } },
        { 0x50, "ExtendedPid", "Maximum air flow rate from mass air flow sensor", "mafmax",      4, 4, O2_NONE, 1, { converted(nullptr, tenTimesA, UNIT_GPS, 0, 2550, UNIT_LB_PER_MIN, gpsToLbPerMin, { 0, 0, 1 }) } },
        { 0x51, "FuelType",    "Fuel Type",                                        "fueltype",    1, 1, O2_NONE, 1, { text() } },
        { 0x52, "ExtendedPid", "Ethanol fuel",                                     "ethanol",     1, 1, O2_NONE, 1, { percent } },
        { 0x53, "ExtendedPid", "Absolute evap system vapor pressure",              "absevap",     2, 2, O2_NONE, 1, { converted(nullptr, twoHundredthsAB, UNIT_KPA, 0, 327.675, UNIT_PSI, kpaToPsi, { 2, 3, 3 }) } },
        { 0x54, "ExtendedPid", "Evap system vapor pressure",                       "evap2",       2, 2, O2_NONE, 1, { converted(nullptr, signedAB, UNIT_PA, -32768, 32767, UNIT_INH2O, paToInH2O, { 2, 0, 2 }) } },
        { 0x55, "ExtendedPid", "Short term secondary oxygen sensor trim",          "stsot13",     2, 2, O2_NONE, 2, { secondaryTrim1, secondaryTrim3 } },
        { 0x56, "ExtendedPid", "Long term secondary oxygen sensor trim",           "ltsot13",     2, 2, O2_NONE, 2, { secondaryTrim1, secondaryTrim3 } },
        { 0x57, "ExtendedPid", "Short term secondary oxygen sensor trim, bank 2/4","stsot24",     2, 2, O2_NONE, 2, { secondaryTrim2, secondaryTrim4 } },
        { 0x58, "ExtendedPid", "Long term secondary oxygen sensor trim, bank 2/4", "ltsot24",     2, 2, O2_NONE, 2, { secondaryTrim2, secondaryTrim4 } },
        { 0x59, "ExtendedPid", "Fuel rail absolute pressure",                      "railabs",     2, 2, O2_NONE, 1, { converted(nullptr, tenTimesAB, UNIT_KPA, 0, 655350, UNIT_PSI, kpaToPsi, { 0, 0, 1 }) } },
        { 0x5A, "ExtendedPid", "Relative accelerator pedal position",              "relpedal",    1, 1, O2_NONE, 1, { percent } },
        { 0x5B, "ExtendedPid", "Hybrid battery pack remaining life",               "hybridbattery",1, 1, O2_NONE, 1, { percent } },
        { 0x5C, "ExtendedPid", "Engine oil temperature",                           "oiltemp",     1, 1, O2_NONE, 1, { temperature } },
        { 0x5D, "ExtendedPid", "Fuel injection timing",                            "injection",   2, 2, O2_NONE, 1, { same(nullptr, injectionTiming, UNIT_ANGLE, -210, 301.992, { 2, 2, 2 }) } },
        { 0x5E, "ExtendedPid", "Engine fuel rate",                                 "fuelrate",    2, 2, O2_NONE, 1, { converted(nullptr, twentiethsAB, UNIT_LITRE_PER_H, 0, 3276.75, UNIT_GALLON_PER_H, litresToGallons, { 2, 2, 2 }) } },
        { 0x61, "ExtendedPid", "Driver's demand engine - percent torque",          "demandtorque",1, 1, O2_NONE, 1, { torque } },
        { 0x62, "ExtendedPid", "Actual engine - percent torque",                   "torque",      1, 1, O2_NONE, 1, { torque } },
        { 0x63, "ExtendedPid", "Engine reference torque",                          "reftorque",   2, 2, O2_NONE, 1, { converted(nullptr, wordAB, UNIT_NM, 0, 65535, UNIT_LBFT, nmToLbFt, { 0, 0, 0 }) } },
        { 0x67, "ExtendedPid", "Engine coolant temperature sensors",               "coolant2",    3, 3, O2_NONE, 2, { converted("Sensor 1", sensor1Minus40, UNIT_CELSIUS, -40, 215, UNIT_FAHRENHEIT, celsiusToFahrenheit, { 1, 0, 0 }), converted("Sensor 2", sensor2Minus40, UNIT_CELSIUS, -40, 215, UNIT_FAHRENHEIT, celsiusToFahrenheit, { 1, 0, 0 }) } },
        { 0x7C, "ExtendedPid", "Diesel particulate filter temperature",            "dpftemp",     2, 2, O2_NONE, 1, { converted(nullptr, tenthsMinus40AB, UNIT_CELSIUS, -40, 6513.5, UNIT_FAHRENHEIT, celsiusToFahrenheit, { 2, 1, 1 }) } },
        { 0x8E, "ExtendedPid", "Engine friction - percent torque",                 "friction",    1, 1, O2_NONE, 1, { torque } },
        { 0x9D, "ExtendedPid", "Engine fuel rate (mass)",                          "fuelmass",    4, 4, O2_NONE, 2, { converted("Engine", fiftiethsAB, UNIT_GPS, 0, 1310.7, UNIT_LB_PER_MIN, gpsToLbPerMin, { 2, 2, 2 }), converted("Vehicle", fiftiethsCD, UNIT_GPS, 0, 1310.7, UNIT_LB_PER_MIN, gpsToLbPerMin, { 2, 2, 2 }) } },
        { 0x9E, "ExtendedPid", "Engine exhaust flow rate",                         "exhaustflow", 2, 2, O2_NONE, 1, { converted(nullptr, fifthsAB, UNIT_KG_PER_H, 0, 13107, UNIT_LB_PER_H, kgToPounds, { 2, 1, 1 }) } },
        { 0xA2, "ExtendedPid", "Cylinder fuel rate",                               "cylfuel",     2, 2, O2_NONE, 1, { same(nullptr, thirtySecondsAB, UNIT_MG_PER_STROKE, 0, 2047.97, { 2, 2, 2 }) } },
        { 0xA6, "ExtendedPid", "Odometer",                                         "odometer",    4, 4, O2_NONE, 1, { converted(nullptr, tenthsABCD, UNIT_KM, 0, 429496729.5, UNIT_MILES, kmToMiles, { 2, 1, 1 }) } },
    };
}

// Oxygen-sensor names per layout: 1 = two banks of four (PID 13),
// 2 = four banks of two (PID 1D). Index = position of the PID in its group.
const char* const LAYOUT1_NAMES[8] = {
    "Bank 1 - Sensor 1", "Bank 1 - Sensor 2", "Bank 1 - Sensor 3", "Bank 1 - Sensor 4",
    "Bank 2 - Sensor 1", "Bank 2 - Sensor 2", "Bank 2 - Sensor 3", "Bank 2 - Sensor 4"
};
const char* const LAYOUT2_NAMES[8] = {
    "Bank 1 - Sensor 1", "Bank 1 - Sensor 2", "Bank 2 - Sensor 1", "Bank 2 - Sensor 2",
    "Bank 3 - Sensor 1", "Bank 3 - Sensor 2", "Bank 4 - Sensor 1", "Bank 4 - Sensor 2"
};

unsigned char groupStart(OxygenSensorGroup group)
{
    switch (group) {
    case O2_NARROW: return 0x14;
    case O2_WIDE_VOLTAGE: return 0x24;
    case O2_WIDE_CURRENT: return 0x34;
    default: return 0;
    }
}

} // namespace

double PidValue::convert(UnitSystem unitSystem, double metric) const
{
    if (unitSystem == US_IMPERIAL && toImperial)
        return toImperial(metric);
    return metric;
}

double PidValue::rangeMinimum(UnitSystem unitSystem) const
{
    return convert(unitSystem, minimum);
}

double PidValue::rangeMaximum(UnitSystem unitSystem) const
{
    return convert(unitSystem, maximum);
}

unsigned int PidValue::unit(UnitSystem unitSystem) const
{
    return unitSystem == US_IMPERIAL ? imperialUnit : metricUnit;
}

std::string PidRow::displayName(unsigned int layout) const
{
    if (oxygenGroup == O2_NONE)
        return name ? name : "";
    unsigned int index = static_cast<unsigned int>(pid - groupStart(oxygenGroup));
    if (index > 7)
        return std::string();
    std::string result;
    if (layout == 1)
        result = LAYOUT1_NAMES[index];
    else if (layout == 2)
        result = LAYOUT2_NAMES[index];
    else
        return std::string();
    if (oxygenGroup != O2_NARROW)
        result += " (wide range O2S)";
    return result;
}

namespace PidTable {

const std::vector<PidRow>& rows()
{
    static const std::vector<PidRow> table = buildTable();
    return table;
}

const PidRow* find(unsigned char pid)
{
    for (const PidRow& row : rows()) {
        if (row.pid == pid)
            return &row;
    }
    return nullptr;
}

bool statusBitIndex(unsigned char byte, unsigned int& index)
{
    if (byte == 0 || (byte & (byte - 1)) != 0 || (byte & 0xE0) != 0)
        return false;
    index = 0;
    while (!(byte & (1u << index)))
        ++index;
    return true;
}

} // namespace PidTable
} // namespace Obd
