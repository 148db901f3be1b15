#include "unittable.h"

namespace Obd {

namespace {

// "°0" (15) and "H20" (47) are the texts as the screens have always shown them.
const char* const UNIT_TEXTS[] = {
    "",          "RPM",    "km/h",     "mph",       "V",         "A",       "mA",
    "mOhm",      "kOhm",   "s",        "%",         "\u00b0C",   "\u00b0F", "Ohm",
    "kPa",       "\u00b0" "0", "lambda", "A/F ratio", "Hz",      "MHz",     "counts",
    "km",        "V/ms",   "g/s",      "kPa/s",     "kg/h",      "switches", "g/cyl",
    "mg/stroke", "L",      "mm",       "g",         "\u00b5s",   "mm2",     "Pa/s",
    "mV/s",      "Pa",     "PSI",      "miles",     "lb/s",      "inH2O/s", "inch",
    "lbs",       "inH2O",  "min",      "lb/min",    "inHg",      "H20",     "\u00b0",
    "L/h",       "gal/h",  "Nm",       "lb-ft",     "lb/h"
};

const unsigned int UNIT_COUNT = sizeof(UNIT_TEXTS) / sizeof(UNIT_TEXTS[0]);
static_assert(sizeof(UNIT_TEXTS) / sizeof(UNIT_TEXTS[0]) == 54, "54 unit texts");

} // namespace

const char* unitText(unsigned int unit)
{
    return unit < UNIT_COUNT ? UNIT_TEXTS[unit] : "";
}

} // namespace Obd
