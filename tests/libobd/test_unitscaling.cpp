#include "boolscaling.h"
#include "dummyscaling.h"
#include "linearoffsetscaling.h"
#include "linearscaling.h"
#include "logcapture.h"
#include "trlog.h"
#include "unitconversion.h"
#include "unitscalingfactory.h"
#include "unittable.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <map>
#include <memory>
#include <sstream>
#include <string>

using namespace Obd;

namespace {

// The two unit-and-scaling tables as the system's documentation lists them:
// "id: factor/decimals/unit", "(offset x)" where there is one.
const char* const METRIC_ROWS =
    "01: 1/0/0; 02: 0.1/1/0; 03: 0.01/2/0; 04: 0.001/3/0; 05: 3.0517578125e-05/7/0; "
    "06: 0.00030517578125/6/0; 07: 0.25/2/1; 08: 0.01/2/2; 09: 1/0/2; 0A: 0.0001220703125/6/4; "
    "0B: 0.001/3/4; 0C: 0.01/2/4; 0D: 0.00390625/8/6; 0E: 0.001/3/5; 0F: 0.01/2/5; "
    "10: 0.001/3/9; 11: 0.1/1/9; 12: 1/0/9; 13: 0.001/3/13; 14: 0.001/3/8; 15: 1/0/8; "
    "16: 0.1/1/11 (offset -40); 17: 0.01/2/14; 18: 0.0117/4/14; 19: 0.079/3/14; 1A: 1/0/14; "
    "1B: 10/0/14; 1C: 0.01/2/15; 1D: 0.5/1/15; 1E: 3.0517578125e-05/7/16; 1F: 0.05/2/17; "
    "20: 0.00390625/7/0; 21: 0.001/3/18; 22: 1/0/18; 23: 0.001/3/19; 24: 1/0/20; 25: 1/0/21; "
    "26: 0.0001/4/22; 27: 0.01/2/23; 28: 1/0/23; 29: 0.00025/4/24; 2A: 0.001/3/25; 2B: 1/0/26; "
    "2C: 0.01/2/27; 2D: 0.01/2/28; 2E: boolean; 2F: 0.01/2/10; 30: 0.0015259021893143654/6/10; "
    "31: 0.001/3/29; 32: 0.0007751464727334678/7/30; 33: 0.000244140625/8/16; 34: 1/0/44; "
    "35: 0.01/2/9; 36: 0.01/2/31; 37: 0.1/1/31; 38: 1/0/31; 39: 0.01/2/10 (offset -327.68); "
    "3A: 0.001/3/31; 3B: 0.0001/4/31; 3C: 0.1/1/32; 3D: 0.01/2/6; "
    "3E: 6.103516352595761e-05/2/33; 81: 1/0/0; 82: 0.1/1/0; 83: 0.01/2/0; 84: 0.001/3/0; "
    "85: 3.0517578125e-05/7/0; 86: 0.00030517578125/6/0; 8A: 0.0001220703125/6/4; "
    "8B: 0.001/3/4; 8C: 0.01/2/4; 8D: 0.00390625/8/6; 8E: 0.001/3/5; 90: 0.001/3/9; "
    "96: 0.1/1/11; 99: 0.1/1/14; 9C: 0.01/2/15; 9D: 0.5/1/15; A8: 1/0/23; A9: 0.25/2/34; "
    "AD: 0.01/2/28; AE: 0.1/1/28; AF: 0.01/2/10; B0: 0.0030517578125/6/10; B1: 2/0/35; "
    "FC: 0.01/2/14; FD: 0.001/3/14; FE: 0.25/2/36";

const char* const IMPERIAL_ROWS =
    "08: 0.01/2/3; 09: 1/0/3; 16: 0.1/1/12 (offset -40); 17: 0.01/2/37; 18: 0.0117/1/37; "
    "19: 0.079/1/37; 1A: 1/1/37; 1B: 10/1/37; 25: 1/0/38; 27: 0.01/3/39; 28: 1/2/39; "
    "29: 0.00025/3/40; 32: 3.05e-05/3/41 (no conversion); 36: 0.01/3/42; 37: 0.1/3/42; "
    "38: 1/2/42; 3A: 0.001/4/42; 3B: 0.0001/5/42; 96: 0.1/1/12; 99: 0.1/2/37; A8: 1/2/39; "
    "A9: 0.00025/3/40; FE: 0.00025/3/43";

struct ExpectedRow
{
    unsigned int id = 0;
    bool boolean = false;
    double factor = 0;
    unsigned int decimals = 0;
    unsigned int unit = 0;
    double offset = 0;
};

std::map<unsigned int, ExpectedRow> parseRows(const std::string& text)
{
    std::map<unsigned int, ExpectedRow> rows;
    std::stringstream stream(text);
    std::string item;
    while (std::getline(stream, item, ';')) {
        ExpectedRow row;
        const size_t colon = item.find(':');
        row.id = static_cast<unsigned int>(std::stoul(item.substr(0, colon), nullptr, 16));
        const std::string rest = item.substr(colon + 1);
        if (rest.find("boolean") != std::string::npos) {
            row.boolean = true;
        } else {
            char* end = nullptr;
            row.factor = std::strtod(rest.c_str(), &end);
            row.decimals = static_cast<unsigned int>(std::strtoul(end + 1, &end, 10));
            row.unit = static_cast<unsigned int>(std::strtoul(end + 1, &end, 10));
            const size_t offset = rest.find("offset ");
            if (offset != std::string::npos)
                row.offset = std::strtod(rest.c_str() + offset + 7, nullptr);
        }
        rows[row.id] = row;
    }
    return rows;
}

// The metric-to-imperial conversion a unit implies, from the shared
// conversion functions.
double toImperial(unsigned int imperialUnit, double metric)
{
    switch (imperialUnit) {
    case UNIT_MPH:
        return UnitConversion::kmhToMph(metric);
    case UNIT_FAHRENHEIT:
        return UnitConversion::celsiusToFahrenheit(metric);
    case UNIT_PSI:
        return UnitConversion::kpaToPsi(metric);
    case UNIT_MILES:
        return UnitConversion::kmToMiles(metric);
    case UNIT_LB_PER_S:
        return UnitConversion::gpsToLbPerSec(metric);
    case UNIT_INH2O_PER_S:
    case UNIT_INH2O:
        return UnitConversion::kpaToInH2O(metric);
    case UNIT_LBS:
        return UnitConversion::gramsToPounds(metric);
    default:
        return metric; // inches: already scaled to the unit
    }
}

int rawNumber(unsigned int id, unsigned int raw)
{
    return id >= 0x80 && raw >= 0x8000 ? static_cast<int>(raw) - 0x10000 : static_cast<int>(raw);
}

size_t decimalsOf(const std::string& text)
{
    const size_t point = text.find('.');
    return point == std::string::npos ? 0 : text.size() - point - 1;
}

const unsigned int RAWS[] = { 0x0000, 0x0001, 0x0064, 0x1234, 0x7FFF, 0x8000, 0xFFFF };

std::unique_ptr<IUnitScaling> make(unsigned int id, UnitSystem system)
{
    return std::unique_ptr<IUnitScaling>(
        UnitScalingFactory::create(static_cast<unsigned char>(id), system));
}

} // namespace

TEST(UnitScalingTables, EveryMetricRowMatchesTheListedRow)
{
    const std::map<unsigned int, ExpectedRow> rows = parseRows(METRIC_ROWS);
    ASSERT_EQ(88u, rows.size());
    EXPECT_EQ(88u, UnitScalingFactory::metricRowCount());
    for (const auto& entry : rows) {
        const ExpectedRow& row = entry.second;
        char name[32];
        std::snprintf(name, sizeof(name), "metric id %02X", row.id);
        SCOPED_TRACE(name);
        std::unique_ptr<IUnitScaling> scaling = make(row.id, US_METRIC);
        ASSERT_NE(nullptr, scaling);
        if (row.boolean) {
            EXPECT_NE(nullptr, dynamic_cast<BoolScaling*>(scaling.get()));
            EXPECT_EQ(static_cast<unsigned int>(UNIT_NONE), scaling->getUnit());
            continue;
        }
        auto* linear = dynamic_cast<LinearScaling*>(scaling.get());
        ASSERT_NE(nullptr, linear);
        EXPECT_EQ(row.id, linear->getScalingId());
        EXPECT_EQ(static_cast<float>(row.factor), linear->getFactor());
        EXPECT_EQ(row.decimals, linear->getDecimals());
        EXPECT_EQ(row.unit, scaling->getUnit());
        EXPECT_EQ(nullptr, linear->getConversion());
        auto* offset = dynamic_cast<LinearOffsetScaling*>(scaling.get());
        EXPECT_EQ(row.offset != 0, offset != nullptr);
        for (unsigned int raw : RAWS) {
            SCOPED_TRACE(raw);
            const double value = rawNumber(row.id, raw) * static_cast<double>(
                                     static_cast<float>(row.factor)) + static_cast<float>(row.offset);
            EXPECT_NEAR(value, scaling->getValue(raw), std::fabs(value) * 1e-6 + 1e-6);
            const std::string text = scaling->getText(raw);
            EXPECT_EQ(row.decimals, decimalsOf(text)) << text;
            EXPECT_NEAR(value, std::strtod(text.c_str(), nullptr),
                        0.5 * std::pow(10.0, -static_cast<int>(row.decimals)) + 1e-9) << text;
        }
    }
}

TEST(UnitScalingTables, EveryImperialRowMatchesTheListedRow)
{
    const std::map<unsigned int, ExpectedRow> rows = parseRows(IMPERIAL_ROWS);
    ASSERT_EQ(23u, rows.size());
    EXPECT_EQ(23u, UnitScalingFactory::imperialRowCount());
    for (const auto& entry : rows) {
        const ExpectedRow& row = entry.second;
        char name[32];
        std::snprintf(name, sizeof(name), "imperial id %02X", row.id);
        SCOPED_TRACE(name);
        std::unique_ptr<IUnitScaling> scaling = make(row.id, US_IMPERIAL);
        ASSERT_NE(nullptr, scaling);
        auto* linear = dynamic_cast<LinearScaling*>(scaling.get());
        ASSERT_NE(nullptr, linear);
        EXPECT_EQ(static_cast<float>(row.factor), linear->getFactor());
        EXPECT_EQ(row.decimals, linear->getDecimals());
        EXPECT_EQ(row.unit, scaling->getUnit());
        EXPECT_EQ(row.id != 0x32, linear->getConversion() != nullptr);
        EXPECT_EQ(row.offset != 0, dynamic_cast<LinearOffsetScaling*>(scaling.get()) != nullptr);
        for (unsigned int raw : RAWS) {
            SCOPED_TRACE(raw);
            const double metric = rawNumber(row.id, raw) * static_cast<double>(
                                      static_cast<float>(row.factor)) + static_cast<float>(row.offset);
            EXPECT_NEAR(metric, scaling->getValue(raw), std::fabs(metric) * 1e-6 + 1e-6);
            const double imperial = toImperial(row.unit, metric);
            const std::string text = scaling->getText(raw);
            EXPECT_EQ(row.decimals, decimalsOf(text)) << text;
            EXPECT_EQ(LinearScaling::formatNumber(imperial, row.decimals), text);
        }
    }
}

TEST(UnitScalingTables, ImperialFallsBackToMetricAndUnknownIdsHaveNoScaling)
{
    const std::map<unsigned int, ExpectedRow> metric = parseRows(METRIC_ROWS);
    const std::map<unsigned int, ExpectedRow> imperial = parseRows(IMPERIAL_ROWS);
    for (unsigned int id = 0; id <= 0xFF; ++id) {
        char name[32];
        std::snprintf(name, sizeof(name), "id %02X", id);
        SCOPED_TRACE(name);
        if (!metric.count(id)) {
            EXPECT_FALSE(imperial.count(id));
            for (UnitSystem system : { US_METRIC, US_IMPERIAL }) {
                LogCapture::instance().clear();
                EXPECT_EQ(nullptr, make(id, system));
                EXPECT_FALSE(UnitScalingFactory::isKnown(static_cast<unsigned char>(id), system));
                EXPECT_TRUE(LogCapture::instance().contains(
                    "Invalid scaling ID: " + std::to_string(id), LOG_DEBUG));
            }
            continue;
        }
        if (imperial.count(id))
            continue;
        std::unique_ptr<IUnitScaling> m = make(id, US_METRIC);
        std::unique_ptr<IUnitScaling> i = make(id, US_IMPERIAL);
        ASSERT_NE(nullptr, i);
        EXPECT_EQ(m->getUnit(), i->getUnit());
        for (unsigned int raw : RAWS)
            EXPECT_EQ(m->getText(raw), i->getText(raw));
    }
}

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
        { "16 raw 0 is -40 degC", 0x16, US_METRIC, 0x0000, "-40.0", UNIT_CELSIUS },
        { "16 raw 0 is -40 degF", 0x16, US_IMPERIAL, 0x0000, "-40.0", UNIT_FAHRENHEIT },
        { "16 raw 400 is 0 degC", 0x16, US_METRIC, 400, "0.0", UNIT_CELSIUS },
        { "16 raw 400 is 32 degF", 0x16, US_IMPERIAL, 400, "32.0", UNIT_FAHRENHEIT },
        { "16 raw 1000 is 60 degC", 0x16, US_METRIC, 1000, "60.0", UNIT_CELSIUS },
        { "16 raw 1000 is 140 degF", 0x16, US_IMPERIAL, 1000, "140.0", UNIT_FAHRENHEIT },
        { "01 raw FFFF unsigned", 0x01, US_METRIC, 0xFFFF, "65535", UNIT_NONE },
        { "81 raw FFFF signed", 0x81, US_METRIC, 0xFFFF, "-1", UNIT_NONE },
        { "81 raw 8000 is the most negative", 0x81, US_METRIC, 0x8000, "-32768", UNIT_NONE },
        { "81 raw 7FFF is the most positive", 0x81, US_METRIC, 0x7FFF, "32767", UNIT_NONE },
        { "82 raw FF9C is -10.0", 0x82, US_METRIC, 0xFF9C, "-10.0", UNIT_NONE },
        { "07 raw 3000 is 750 rpm", 0x07, US_METRIC, 3000, "750.00", UNIT_RPM },
        { "08 raw 10000 is 100 km/h", 0x08, US_METRIC, 10000, "100.00", UNIT_KMH },
        { "08 raw 10000 is 62.14 mph", 0x08, US_IMPERIAL, 10000, "62.14", UNIT_MPH },
        { "09 raw 100 is 62 mph", 0x09, US_IMPERIAL, 100, "62", UNIT_MPH },
        { "0A raw 8000 is 4 V", 0x0A, US_METRIC, 0x8000, "4.000000", UNIT_VOLT },
        { "8A raw 8000 is -4 V", 0x8A, US_METRIC, 0x8000, "-4.000000", UNIT_VOLT },
        { "17 raw 10132 is 101.32 kPa", 0x17, US_METRIC, 10132, "101.32", UNIT_KPA },
        { "17 raw 10132 is 14.70 PSI", 0x17, US_IMPERIAL, 10132, "14.70", UNIT_PSI },
        { "1A raw 100 is 14.5 PSI", 0x1A, US_IMPERIAL, 100, "14.5", UNIT_PSI },
        { "25 raw 1000 is 621 miles", 0x25, US_IMPERIAL, 1000, "621", UNIT_MILES },
        { "27 raw 1000 is 10 g/s", 0x27, US_METRIC, 1000, "10.00", UNIT_GPS },
        { "27 raw 1000 is 0.022 lb/s", 0x27, US_IMPERIAL, 1000, "0.022", UNIT_LB_PER_S },
        { "30 raw FFFF is 100 %", 0x30, US_METRIC, 0xFFFF, "100.000000", UNIT_PERCENT },
        { "36 raw 50000 is 1.102 lbs", 0x36, US_IMPERIAL, 50000, "1.102", UNIT_LBS },
        { "39 raw 0 is -327.68 %", 0x39, US_METRIC, 0, "-327.68", UNIT_PERCENT },
        { "39 raw 8000 is 0 %", 0x39, US_METRIC, 0x8000, "0.00", UNIT_PERCENT },
        { "39 raw FFFF is 327.67 %", 0x39, US_METRIC, 0xFFFF, "327.67", UNIT_PERCENT },
        { "3E raw 4000 is 1 mm2", 0x3E, US_METRIC, 0x4000, "1.00", UNIT_MM2 },
        { "96 raw FF9C is -10 degC", 0x96, US_METRIC, 0xFF9C, "-10.0", UNIT_CELSIUS },
        { "96 raw FF9C is 14 degF", 0x96, US_IMPERIAL, 0xFF9C, "14.0", UNIT_FAHRENHEIT },
        { "99 raw FFF6 is -1 kPa", 0x99, US_METRIC, 0xFFF6, "-1.0", UNIT_KPA },
        { "99 raw FFF6 is -0.15 PSI", 0x99, US_IMPERIAL, 0xFFF6, "-0.15", UNIT_PSI },
        { "A8 raw 8000 is -72.24 lb/s", 0xA8, US_IMPERIAL, 0x8000, "-72.24", UNIT_LB_PER_S },
        { "A9 raw FFFC is -1 Pa/s", 0xA9, US_METRIC, 0xFFFC, "-1.00", UNIT_PA_PER_S },
        { "A9 raw FFFC is -0.004 inH2O/s", 0xA9, US_IMPERIAL, 0xFFFC, "-0.004", UNIT_INH2O_PER_S },
        { "FE raw 400 is 100 Pa", 0xFE, US_METRIC, 400, "100.00", UNIT_PA },
        { "FE raw 400 is 0.401 inH2O", 0xFE, US_IMPERIAL, 400, "0.401", UNIT_INH2O },
        { "FE raw FFFF is -0.25 Pa", 0xFE, US_METRIC, 0xFFFF, "-0.25", UNIT_PA },
        { "2E raw 0 is false", 0x2E, US_METRIC, 0, "false", UNIT_NONE },
        { "2E raw 1 is true", 0x2E, US_METRIC, 1, "true", UNIT_NONE },
        { "2E raw 8000 is true in imperial too", 0x2E, US_IMPERIAL, 0x8000, "true", UNIT_NONE },
        { "only the low 16 bits count", 0x01, US_METRIC, 0x10005, "5", UNIT_NONE },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        std::unique_ptr<IUnitScaling> scaling = make(row.id, row.system);
        ASSERT_NE(nullptr, scaling);
        EXPECT_EQ(row.text, scaling->getText(row.raw));
        EXPECT_EQ(row.unit, scaling->getUnit());
    }
}

TEST(UnitScaling, ValuesAndFormattedValues)
{
    std::unique_ptr<IUnitScaling> celsius = make(0x16, US_METRIC);
    EXPECT_FLOAT_EQ(-40.0f, celsius->getValue(0));
    EXPECT_FLOAT_EQ(60.0f, celsius->getValue(1000));
    EXPECT_EQ("21.5", celsius->formatValue(21.5f));
    std::unique_ptr<IUnitScaling> fahrenheit = make(0x16, US_IMPERIAL);
    // The value stays metric; the conversion belongs to the text.
    EXPECT_FLOAT_EQ(-40.0f, fahrenheit->getValue(0));
    EXPECT_EQ("212.0", fahrenheit->formatValue(100.0f));
    EXPECT_FLOAT_EQ(-1.0f, make(0x81, US_METRIC)->getValue(0xFFFF));
    EXPECT_FLOAT_EQ(65535.0f, make(0x01, US_METRIC)->getValue(0xFFFF));
    EXPECT_FLOAT_EQ(1.0f, make(0x2E, US_METRIC)->getValue(7));
    EXPECT_FLOAT_EQ(0.0f, make(0x2E, US_METRIC)->getValue(0));
    EXPECT_EQ("false", make(0x2E, US_METRIC)->formatValue(0.0f));
}

TEST(UnitScaling, RoundingHalfUpAndNoNegativeZero)
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

TEST(UnitScaling, SignedIdsStartAt80)
{
    EXPECT_FALSE(LinearScaling::isSignedId(0x7F));
    EXPECT_TRUE(LinearScaling::isSignedId(0x80));
    EXPECT_EQ(65535, LinearScaling::rawNumber(0x7F, 0xFFFF));
    EXPECT_EQ(-1, LinearScaling::rawNumber(0x80, 0xFFFF));
    EXPECT_EQ(32767, LinearScaling::rawNumber(0xFE, 0x7FFF));
}

TEST(UnitScaling, DummyScalingShowsTheRawNumber)
{
    DummyScaling dummy;
    EXPECT_EQ("0", dummy.getText(0));
    EXPECT_EQ("65535", dummy.getText(0xFFFF));
    EXPECT_FLOAT_EQ(4660.0f, dummy.getValue(0x1234));
    EXPECT_EQ("17", dummy.formatValue(17.0f));
    EXPECT_EQ(static_cast<unsigned int>(UNIT_NONE), dummy.getUnit());
}
