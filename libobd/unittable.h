#ifndef OBD_UNITTABLE_H
#define OBD_UNITTABLE_H

namespace Obd {

// Unit identifiers shared by the PID catalogue, the monitor-test scalings
// and the sensor layer.
enum Unit {
    UNIT_NONE = 0, UNIT_RPM = 1, UNIT_KMH = 2, UNIT_MPH = 3, UNIT_VOLT = 4, UNIT_AMPERE = 5,
    UNIT_MILLIAMPERE = 6, UNIT_MILLIOHM = 7, UNIT_KILOOHM = 8, UNIT_SECOND = 9, UNIT_PERCENT = 10,
    UNIT_CELSIUS = 11, UNIT_FAHRENHEIT = 12, UNIT_OHM = 13, UNIT_KPA = 14, UNIT_DEGREE = 15,
    UNIT_LAMBDA = 16, UNIT_AFR = 17, UNIT_HZ = 18, UNIT_MHZ = 19, UNIT_COUNTS = 20, UNIT_KM = 21,
    UNIT_VOLT_PER_MS = 22, UNIT_GPS = 23, UNIT_KPA_PER_S = 24, UNIT_KG_PER_H = 25,
    UNIT_SWITCHES = 26, UNIT_G_PER_CYL = 27, UNIT_MG_PER_STROKE = 28, UNIT_LITRE = 29, UNIT_MM = 30,
    UNIT_GRAM = 31, UNIT_MICROSECOND = 32, UNIT_MM2 = 33, UNIT_PA_PER_S = 34, UNIT_MV_PER_S = 35,
    UNIT_PA = 36, UNIT_PSI = 37, UNIT_MILES = 38, UNIT_LB_PER_S = 39, UNIT_INH2O_PER_S = 40,
    UNIT_INCH = 41, UNIT_LBS = 42, UNIT_INH2O = 43, UNIT_MINUTE = 44, UNIT_LB_PER_MIN = 45,
    UNIT_INHG = 46, UNIT_H2O = 47, UNIT_ANGLE = 48, UNIT_LITRE_PER_H = 49, UNIT_GALLON_PER_H = 50,
    UNIT_NM = 51, UNIT_LBFT = 52, UNIT_LB_PER_H = 53
};

// Display text of a unit id (UTF-8); empty for an unknown id.
const char* unitText(unsigned int unit);

} // namespace Obd

#endif
