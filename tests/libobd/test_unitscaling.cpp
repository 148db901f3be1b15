// Unit and scaling ids of the monitor test records: one hand-worked row per
// kind of scaling (plain factor, offset, signed ids from 80, boolean, the
// imperial conversions), the boundaries and the number formatting.

#include "linearscaling.h"
#include "unitscalingfactory.h"
#include "unittable.h"

#include <gtest/gtest.h>

#include <cmath>
#include <memory>

using namespace Obd;

namespace {

std::unique_ptr<IUnitScaling> make(unsigned int id, UnitSystem system)
{
    return std::unique_ptr<IUnitScaling>(UnitScalingFactory::create(static_cast<unsigned char>(id), system));
}

} // namespace

TEST(UnitScaling, HandWorkedTexts)
{
    struct Row
    {
        const char* name;
        unsigned int id;
        UnitSystem system;
        unsigned int raw;
        const char* text;
        unsigned int unit;
    };
    const Row rows[] = {
        { "01 FFFF unsigned, factor 1: 65535", 0x01, US_METRIC, 0xFFFF, "65535", UNIT_NONE },
        { "01 has no imperial row: the metric one", 0x01, US_IMPERIAL, 0xFFFF, "65535", UNIT_NONE },
        { "81 FFFF signed: -1", 0x81, US_METRIC, 0xFFFF, "-1", UNIT_NONE },
        { "81 8000 is the most negative: -32768", 0x81, US_METRIC, 0x8000, "-32768", UNIT_NONE },
        { "81 7FFF is the most positive: 32767", 0x81, US_METRIC, 0x7FFF, "32767", UNIT_NONE },
        { "82 FF9C: -100 * 0.1 = -10.0", 0x82, US_METRIC, 0xFF9C, "-10.0", UNIT_NONE },
        { "07 3000 * 0.25 = 750.00 rpm", 0x07, US_METRIC, 3000, "750.00", UNIT_RPM },
        { "0A 8000: 32768 * 0.0001220703125 = 4 V", 0x0A, US_METRIC, 0x8000, "4.000000", UNIT_VOLT },
        { "8A 8000: -32768 * 0.0001220703125 = -4 V", 0x8A, US_METRIC, 0x8000, "-4.000000", UNIT_VOLT },
        { "16 0: 0 * 0.1 - 40 = -40.0 C", 0x16, US_METRIC, 0, "-40.0", UNIT_CELSIUS },
        { "16 1000: 100 - 40 = 60.0 C", 0x16, US_METRIC, 1000, "60.0", UNIT_CELSIUS },
        { "16 1000: 60 * 1.8 + 32 = 140.0 F", 0x16, US_IMPERIAL, 1000, "140.0", UNIT_FAHRENHEIT },
        { "16 0: -40 C = -40.0 F", 0x16, US_IMPERIAL, 0, "-40.0", UNIT_FAHRENHEIT },
        { "08 10000 * 0.01 = 100 km/h = 62.14 mph", 0x08, US_IMPERIAL, 10000, "62.14", UNIT_MPH },
        { "17 10132 * 0.01 = 101.32 kPa = 14.70 psi", 0x17, US_IMPERIAL, 10132, "14.70", UNIT_PSI },
        { "25 1000 km = 621 miles", 0x25, US_IMPERIAL, 1000, "621", UNIT_MILES },
        { "27 1000 * 0.01 = 10 g/s = 0.022 lb/s", 0x27, US_IMPERIAL, 1000, "0.022", UNIT_LB_PER_S },
        { "30 FFFF * 100/65535 = 100 %", 0x30, US_METRIC, 0xFFFF, "100.000000", UNIT_PERCENT },
        { "36 50000 * 0.01 = 500 g = 1.102 lbs", 0x36, US_IMPERIAL, 50000, "1.102", UNIT_LBS },
        { "39 0: 0 * 0.01 - 327.68 = -327.68 %", 0x39, US_METRIC, 0, "-327.68", UNIT_PERCENT },
        { "39 FFFF: 655.35 - 327.68 = 327.67 %", 0x39, US_METRIC, 0xFFFF, "327.67", UNIT_PERCENT },
        { "96 FF9C: -100 * 0.1 = -10 C = 14.0 F", 0x96, US_IMPERIAL, 0xFF9C, "14.0", UNIT_FAHRENHEIT },
        { "A9 FFFC: -4 * 0.25 = -1 Pa/s = -0.004 inH2O/s", 0xA9, US_IMPERIAL, 0xFFFC, "-0.004", UNIT_INH2O_PER_S },
        { "FE 400 * 0.25 = 100 Pa", 0xFE, US_METRIC, 400, "100.00", UNIT_PA },
        { "FE 400: 100 Pa = 0.401 inH2O", 0xFE, US_IMPERIAL, 400, "0.401", UNIT_INH2O },
        { "2E 0 is false", 0x2E, US_METRIC, 0, "false", UNIT_NONE },
        { "2E 8000 is true in imperial too", 0x2E, US_IMPERIAL, 0x8000, "true", UNIT_NONE },
        { "only the low 16 bits count: 10005 -> 5", 0x01, US_METRIC, 0x10005, "5", UNIT_NONE },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        std::unique_ptr<IUnitScaling> scaling = make(row.id, row.system);
        ASSERT_NE(nullptr, scaling);
        EXPECT_EQ(row.text, scaling->getText(row.raw));
        EXPECT_EQ(row.unit, scaling->getUnit());
    }
}

TEST(UnitScaling, ValuesStayMetricAndUnknownIdsHaveNoScaling)
{
    // The imperial conversion belongs to the text only.
    EXPECT_FLOAT_EQ(60.0f, make(0x16, US_IMPERIAL)->getValue(1000));
    EXPECT_EQ("212.0", make(0x16, US_IMPERIAL)->formatValue(100.0f));
    EXPECT_FLOAT_EQ(-1.0f, make(0x81, US_METRIC)->getValue(0xFFFF));
    EXPECT_FLOAT_EQ(1.0f, make(0x2E, US_METRIC)->getValue(7));
    for (unsigned int id : { 0x00u, 0x3Fu, 0x80u, 0x87u, 0xFFu }) {
        SCOPED_TRACE(id);
        EXPECT_EQ(nullptr, make(id, US_METRIC));
        EXPECT_EQ(nullptr, make(id, US_IMPERIAL));
    }
}

TEST(UnitScaling, NumbersRoundHalfUpWithoutNegativeZero)
{
    struct Row
    {
        const char* name;
        double value;
        unsigned int decimals;
        const char* text;
    };
    const Row rows[] = {
        { "half rounds up", 0.125, 2, "0.13" },
        { "negative half rounds up", -0.125, 2, "-0.12" },
        { "tiny negative is zero", -0.0001, 2, "0.00" },
        { "whole number", 12.9, 0, "13" },
        { "eight decimals", 0.00390625, 8, "0.00390625" },
        { "not a number has no text", std::nan(""), 2, "" },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(row.text, LinearScaling::formatNumber(row.value, row.decimals));
    }
}
