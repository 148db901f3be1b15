#ifndef OBD_UNITCONVERSION_H
#define OBD_UNITCONVERSION_H

namespace Obd {

// Every metric-to-imperial conversion of the system lives here. The factors
// are the ones the display ranges were worked out with (255 km/h reads
// 158.449356 mph, 765 kPa reads 110.953842 psi), so they are kept as they are.
namespace UnitConversion {

const double KM_TO_MILES = 0.62137;
const double KPA_TO_PSI = 0.1450377;
const double KPA_TO_INHG = 0.29530059;
const double GPS_TO_LB_PER_MIN = 0.132277357;
const double GRAMS_TO_POUNDS = 0.00220462262;
const double PA_TO_INH2O = 0.0040146309;
const double MM_TO_INCH = 0.0393700787;
const double LITRES_TO_US_GALLONS = 0.264172052;
const double NM_TO_LBFT = 0.737562149;
const double KG_TO_POUNDS = 2.20462262;

inline double kmhToMph(double kmh) { return kmh * KM_TO_MILES; }
inline double kmToMiles(double km) { return km * KM_TO_MILES; }
inline double celsiusToFahrenheit(double c) { return c * 1.8 + 32.0; }
inline double kpaToPsi(double kpa) { return kpa * KPA_TO_PSI; }
inline double kpaToInHg(double kpa) { return kpa * KPA_TO_INHG; }
inline double gpsToLbPerMin(double gps) { return gps * GPS_TO_LB_PER_MIN; }
inline double gpsToLbPerSec(double gps) { return gps * GRAMS_TO_POUNDS; }
inline double gramsToPounds(double g) { return g * GRAMS_TO_POUNDS; }
inline double paToInH2O(double pa) { return pa * PA_TO_INH2O; }
inline double kpaToInH2O(double kpa) { return kpa * 1000.0 * PA_TO_INH2O; }
inline double mmToInch(double mm) { return mm * MM_TO_INCH; }
inline double litresToGallons(double l) { return l * LITRES_TO_US_GALLONS; }
inline double nmToLbFt(double nm) { return nm * NM_TO_LBFT; }
inline double kgToPounds(double kg) { return kg * KG_TO_POUNDS; }

} // namespace UnitConversion
} // namespace Obd

#endif
