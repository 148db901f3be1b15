#include "unitscalingfactory.h"
#include "boolscaling.h"
#include "linearoffsetscaling.h"
#include "linearscaling.h"
#include "trlog.h"
#include "unitconversion.h"
#include "unittable.h"

namespace Obd {

namespace {

enum Kind { LINEAR, OFFSET, BOOLEAN };

struct ScalingRow
{
    unsigned char id;
    Kind kind;
    float factor;
    unsigned int decimals;
    unsigned int unit;
    float offset;
    LinearScaling::Conversion conversion;
};

using namespace UnitConversion;

// Metric: scaling id, kind, factor, decimals, unit (, offset).
const ScalingRow METRIC[] = {
    { 0x01, LINEAR, 1,                     0, UNIT_NONE,          0,       nullptr },
    { 0x02, LINEAR, 0.1,                   1, UNIT_NONE,          0,       nullptr },
    { 0x03, LINEAR, 0.01,                  2, UNIT_NONE,          0,       nullptr },
    { 0x04, LINEAR, 0.001,                 3, UNIT_NONE,          0,       nullptr },
    { 0x05, LINEAR, 3.0517578125e-05,      7, UNIT_NONE,          0,       nullptr },
    { 0x06, LINEAR, 0.00030517578125,      6, UNIT_NONE,          0,       nullptr },
    { 0x07, LINEAR, 0.25,                  2, UNIT_RPM,           0,       nullptr },
    { 0x08, LINEAR, 0.01,                  2, UNIT_KMH,           0,       nullptr },
    { 0x09, LINEAR, 1,                     0, UNIT_KMH,           0,       nullptr },
    { 0x0A, LINEAR, 0.0001220703125,       6, UNIT_VOLT,          0,       nullptr },
    { 0x0B, LINEAR, 0.001,                 3, UNIT_VOLT,          0,       nullptr },
    { 0x0C, LINEAR, 0.01,                  2, UNIT_VOLT,          0,       nullptr },
    { 0x0D, LINEAR, 0.00390625,            8, UNIT_MILLIAMPERE,   0,       nullptr },
    { 0x0E, LINEAR, 0.001,                 3, UNIT_AMPERE,        0,       nullptr },
    { 0x0F, LINEAR, 0.01,                  2, UNIT_AMPERE,        0,       nullptr },
    { 0x10, LINEAR, 0.001,                 3, UNIT_SECOND,        0,       nullptr },
    { 0x11, LINEAR, 0.1,                   1, UNIT_SECOND,        0,       nullptr },
    { 0x12, LINEAR, 1,                     0, UNIT_SECOND,        0,       nullptr },
    { 0x13, LINEAR, 0.001,                 3, UNIT_OHM,           0,       nullptr },
    { 0x14, LINEAR, 0.001,                 3, UNIT_KILOOHM,       0,       nullptr },
    { 0x15, LINEAR, 1,                     0, UNIT_KILOOHM,       0,       nullptr },
    { 0x16, OFFSET, 0.1,                   1, UNIT_CELSIUS,       -40,     nullptr },
    { 0x17, LINEAR, 0.01,                  2, UNIT_KPA,           0,       nullptr },
    { 0x18, LINEAR, 0.0117,                4, UNIT_KPA,           0,       nullptr },
    { 0x19, LINEAR, 0.079,                 3, UNIT_KPA,           0,       nullptr },
    { 0x1A, LINEAR, 1,                     0, UNIT_KPA,           0,       nullptr },
    { 0x1B, LINEAR, 10,                    0, UNIT_KPA,           0,       nullptr },
    { 0x1C, LINEAR, 0.01,                  2, UNIT_DEGREE,        0,       nullptr },
    { 0x1D, LINEAR, 0.5,                   1, UNIT_DEGREE,        0,       nullptr },
    { 0x1E, LINEAR, 3.0517578125e-05,      7, UNIT_LAMBDA,        0,       nullptr },
    { 0x1F, LINEAR, 0.05,                  2, UNIT_AFR,           0,       nullptr },
    { 0x20, LINEAR, 0.00390625,            7, UNIT_NONE,          0,       nullptr },
    { 0x21, LINEAR, 0.001,                 3, UNIT_HZ,            0,       nullptr },
    { 0x22, LINEAR, 1,                     0, UNIT_HZ,            0,       nullptr },
    { 0x23, LINEAR, 0.001,                 3, UNIT_MHZ,           0,       nullptr },
    { 0x24, LINEAR, 1,                     0, UNIT_COUNTS,        0,       nullptr },
    { 0x25, LINEAR, 1,                     0, UNIT_KM,            0,       nullptr },
    { 0x26, LINEAR, 0.0001,                4, UNIT_VOLT_PER_MS,   0,       nullptr },
    { 0x27, LINEAR, 0.01,                  2, UNIT_GPS,           0,       nullptr },
    { 0x28, LINEAR, 1,                     0, UNIT_GPS,           0,       nullptr },
    { 0x29, LINEAR, 0.00025,               4, UNIT_KPA_PER_S,     0,       nullptr },
    { 0x2A, LINEAR, 0.001,                 3, UNIT_KG_PER_H,      0,       nullptr },
    { 0x2B, LINEAR, 1,                     0, UNIT_SWITCHES,      0,       nullptr },
    { 0x2C, LINEAR, 0.01,                  2, UNIT_G_PER_CYL,     0,       nullptr },
    { 0x2D, LINEAR, 0.01,                  2, UNIT_MG_PER_STROKE, 0,       nullptr },
    { 0x2E, BOOLEAN, 0,                    0, UNIT_NONE,          0,       nullptr },
    { 0x2F, LINEAR, 0.01,                  2, UNIT_PERCENT,       0,       nullptr },
    { 0x30, LINEAR, 0.0015259021893143654, 6, UNIT_PERCENT,       0,       nullptr },
    { 0x31, LINEAR, 0.001,                 3, UNIT_LITRE,         0,       nullptr },
    { 0x32, LINEAR, 0.0007751464727334678, 7, UNIT_MM,            0,       nullptr },
    { 0x33, LINEAR, 0.000244140625,        8, UNIT_LAMBDA,        0,       nullptr },
    { 0x34, LINEAR, 1,                     0, UNIT_MINUTE,        0,       nullptr },
    { 0x35, LINEAR, 0.01,                  2, UNIT_SECOND,        0,       nullptr },
    { 0x36, LINEAR, 0.01,                  2, UNIT_GRAM,          0,       nullptr },
    { 0x37, LINEAR, 0.1,                   1, UNIT_GRAM,          0,       nullptr },
    { 0x38, LINEAR, 1,                     0, UNIT_GRAM,          0,       nullptr },
    { 0x39, OFFSET, 0.01,                  2, UNIT_PERCENT,       -327.68, nullptr },
    { 0x3A, LINEAR, 0.001,                 3, UNIT_GRAM,          0,       nullptr },
    { 0x3B, LINEAR, 0.0001,                4, UNIT_GRAM,          0,       nullptr },
    { 0x3C, LINEAR, 0.1,                   1, UNIT_MICROSECOND,   0,       nullptr },
    { 0x3D, LINEAR, 0.01,                  2, UNIT_MILLIAMPERE,   0,       nullptr },
    { 0x3E, LINEAR, 6.103516352595761e-05, 2, UNIT_MM2,           0,       nullptr },
    // Signed ids: the raw value is a signed 16-bit number.
    { 0x81, LINEAR, 1,                     0, UNIT_NONE,          0,       nullptr },
    { 0x82, LINEAR, 0.1,                   1, UNIT_NONE,          0,       nullptr },
    { 0x83, LINEAR, 0.01,                  2, UNIT_NONE,          0,       nullptr },
    { 0x84, LINEAR, 0.001,                 3, UNIT_NONE,          0,       nullptr },
    { 0x85, LINEAR, 3.0517578125e-05,      7, UNIT_NONE,          0,       nullptr },
    { 0x86, LINEAR, 0.00030517578125,      6, UNIT_NONE,          0,       nullptr },
    { 0x8A, LINEAR, 0.0001220703125,       6, UNIT_VOLT,          0,       nullptr },
    { 0x8B, LINEAR, 0.001,                 3, UNIT_VOLT,          0,       nullptr },
    { 0x8C, LINEAR, 0.01,                  2, UNIT_VOLT,          0,       nullptr },
    { 0x8D, LINEAR, 0.00390625,            8, UNIT_MILLIAMPERE,   0,       nullptr },
    { 0x8E, LINEAR, 0.001,                 3, UNIT_AMPERE,        0,       nullptr },
    { 0x90, LINEAR, 0.001,                 3, UNIT_SECOND,        0,       nullptr },
    { 0x96, LINEAR, 0.1,                   1, UNIT_CELSIUS,       0,       nullptr },
    { 0x99, LINEAR, 0.1,                   1, UNIT_KPA,           0,       nullptr },
    { 0x9C, LINEAR, 0.01,                  2, UNIT_DEGREE,        0,       nullptr },
    { 0x9D, LINEAR, 0.5,                   1, UNIT_DEGREE,        0,       nullptr },
    { 0xA8, LINEAR, 1,                     0, UNIT_GPS,           0,       nullptr },
    { 0xA9, LINEAR, 0.25,                  2, UNIT_PA_PER_S,      0,       nullptr },
    { 0xAD, LINEAR, 0.01,                  2, UNIT_MG_PER_STROKE, 0,       nullptr },
    { 0xAE, LINEAR, 0.1,                   1, UNIT_MG_PER_STROKE, 0,       nullptr },
    { 0xAF, LINEAR, 0.01,                  2, UNIT_PERCENT,       0,       nullptr },
    { 0xB0, LINEAR, 0.0030517578125,       6, UNIT_PERCENT,       0,       nullptr },
    { 0xB1, LINEAR, 2,                     0, UNIT_MV_PER_S,      0,       nullptr },
    { 0xFC, LINEAR, 0.01,                  2, UNIT_KPA,           0,       nullptr },
    { 0xFD, LINEAR, 0.001,                 3, UNIT_KPA,           0,       nullptr },
    { 0xFE, LINEAR, 0.25,                  2, UNIT_PA,            0,       nullptr },
};
static_assert(sizeof(METRIC) / sizeof(METRIC[0]) == 88, "88 metric rows");

// Imperial: scaling id, kind, factor, decimals, unit, offset, conversion of
// the metric value. The factor gives the metric value; A9 and FE scale to kPa
// here so that the kPa conversion applies, and 32 is already in inches.
const ScalingRow IMPERIAL[] = {
    { 0x08, LINEAR, 0.01,     2, UNIT_MPH,         0,   kmhToMph },
    { 0x09, LINEAR, 1,        0, UNIT_MPH,         0,   kmhToMph },
    { 0x16, OFFSET, 0.1,      1, UNIT_FAHRENHEIT,  -40, celsiusToFahrenheit },
    { 0x17, LINEAR, 0.01,     2, UNIT_PSI,         0,   kpaToPsi },
    { 0x18, LINEAR, 0.0117,   1, UNIT_PSI,         0,   kpaToPsi },
    { 0x19, LINEAR, 0.079,    1, UNIT_PSI,         0,   kpaToPsi },
    { 0x1A, LINEAR, 1,        1, UNIT_PSI,         0,   kpaToPsi },
    { 0x1B, LINEAR, 10,       1, UNIT_PSI,         0,   kpaToPsi },
    { 0x25, LINEAR, 1,        0, UNIT_MILES,       0,   kmToMiles },
    { 0x27, LINEAR, 0.01,     3, UNIT_LB_PER_S,    0,   gpsToLbPerSec },
    { 0x28, LINEAR, 1,        2, UNIT_LB_PER_S,    0,   gpsToLbPerSec },
    { 0x29, LINEAR, 0.00025,  3, UNIT_INH2O_PER_S, 0,   kpaToInH2O },
    { 0x32, LINEAR, 3.05e-05, 3, UNIT_INCH,        0,   nullptr },
    { 0x36, LINEAR, 0.01,     3, UNIT_LBS,         0,   gramsToPounds },
    { 0x37, LINEAR, 0.1,      3, UNIT_LBS,         0,   gramsToPounds },
    { 0x38, LINEAR, 1,        2, UNIT_LBS,         0,   gramsToPounds },
    { 0x3A, LINEAR, 0.001,    4, UNIT_LBS,         0,   gramsToPounds },
    { 0x3B, LINEAR, 0.0001,   5, UNIT_LBS,         0,   gramsToPounds },
    { 0x96, LINEAR, 0.1,      1, UNIT_FAHRENHEIT,  0,   celsiusToFahrenheit },
    { 0x99, LINEAR, 0.1,      2, UNIT_PSI,         0,   kpaToPsi },
    { 0xA8, LINEAR, 1,        2, UNIT_LB_PER_S,    0,   gpsToLbPerSec },
    { 0xA9, LINEAR, 0.00025,  3, UNIT_INH2O_PER_S, 0,   kpaToInH2O },
    { 0xFE, LINEAR, 0.00025,  3, UNIT_INH2O,       0,   kpaToInH2O },
};
static_assert(sizeof(IMPERIAL) / sizeof(IMPERIAL[0]) == 23, "23 imperial rows");

template <size_t N>
const ScalingRow* findRow(const ScalingRow (&table)[N], unsigned char id)
{
    for (const ScalingRow& row : table) {
        if (row.id == id)
            return &row;
    }
    return nullptr;
}

const ScalingRow* lookup(unsigned char id, UnitSystem system)
{
    const ScalingRow* row = nullptr;
    if (system == US_IMPERIAL)
        row = findRow(IMPERIAL, id);
    if (!row)
        row = findRow(METRIC, id);
    return row;
}

} // namespace

IUnitScaling* UnitScalingFactory::create(unsigned char scalingId, UnitSystem system)
{
    const ScalingRow* row = lookup(scalingId, system);
    if (!row) {
        OBD_DEBUG << "Invalid scaling ID: " << static_cast<unsigned int>(scalingId);
        return nullptr;
    }
    switch (row->kind) {
    case BOOLEAN:
        return new BoolScaling();
    case OFFSET:
        return new LinearOffsetScaling(row->id, row->factor, row->decimals, row->unit,
                                       row->offset, row->conversion);
    case LINEAR:
        break;
    }
    return new LinearScaling(row->id, row->factor, row->decimals, row->unit, row->conversion);
}

bool UnitScalingFactory::isKnown(unsigned char scalingId, UnitSystem system)
{
    return lookup(scalingId, system) != nullptr;
}

unsigned int UnitScalingFactory::metricRowCount()
{
    return sizeof(METRIC) / sizeof(METRIC[0]);
}

unsigned int UnitScalingFactory::imperialRowCount()
{
    return sizeof(IMPERIAL) / sizeof(IMPERIAL[0]);
}

} // namespace Obd
