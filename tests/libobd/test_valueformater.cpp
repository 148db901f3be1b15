#include "valueformater.h"

#include <gtest/gtest.h>

#include <limits>

using namespace Obd;

TEST(Formatting, ValueTypesDecimalsAndRounding)
{
    struct Row
    {
        const char* name;
        unsigned int valueType;
        int metricDecimals;
        int imperialDecimals;
        UnitSystem system;
        float value;
        const char* text;
    } rows[] = {
        {"real, 1 decimal, half rounds up", 2, 1, 1, US_METRIC, 12.25f, "12.3"},
        {"real, 1 decimal, below half rounds down", 2, 1, 1, US_METRIC, 12.24f, "12.2"},
        {"unsigned, 0 decimals truncates", 0, 0, 0, US_METRIC, 12.9f, "12"},
        {"unsigned, 1 decimal truncates then shows .0", 0, 1, 1, US_METRIC, 12.9f, "12.0"},
        {"signed truncates toward zero", 1, 0, 0, US_METRIC, -40.7f, "-40"},
        {"signed, 2 decimals", 1, 2, 2, US_METRIC, -3.99f, "-3.00"},
        {"real, 0 decimals: no point", 2, 0, 0, US_METRIC, 99.5f, "100"},
        {"real, 2 decimals", 2, 2, 2, US_METRIC, 0.125f, "0.13"},
        {"real, negative rounds half up", 2, 1, 1, US_METRIC, -1.25f, "-1.2"},
        {"imperial uses its own decimals", 2, 0, 2, US_IMPERIAL, 14.7f, "14.70"},
        {"metric ignores the imperial decimals", 2, 0, 2, US_METRIC, 14.7f, "15"},
        {"real, 3 decimals, carry into the units", 2, 3, 3, US_METRIC, 0.9996f, "1.000"},
        {"unsigned: a negative value shows 0", 0, 0, 0, US_METRIC, -5.0f, "0"},
        {"not a number shows 0", 2, 1, 1, US_METRIC, std::numeric_limits<float>::quiet_NaN(),
         "0.0"},
        {"infinity shows 0", 0, 0, 0, US_METRIC, std::numeric_limits<float>::infinity(), "0"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        ValueFormater formater(row.valueType, row.metricDecimals, row.imperialDecimals);
        EXPECT_EQ(row.text, formater.format(row.system, row.value));
    }
}

TEST(Formatting, IntegerOverloadsKeepTheUnitSystemsDecimals)
{
    ValueFormater formater(0, 1, 0);
    EXPECT_EQ("7.0", formater.format(US_METRIC, 7));
    EXPECT_EQ("7", formater.format(US_IMPERIAL, 7));
    EXPECT_EQ("-7.0", formater.format(US_METRIC, -7));
    EXPECT_EQ("4000000000.0", formater.format(US_METRIC, 4000000000u));
    EXPECT_EQ(1, formater.getDecimals(US_METRIC));
    EXPECT_EQ(0, formater.getDecimals(US_IMPERIAL));
}
