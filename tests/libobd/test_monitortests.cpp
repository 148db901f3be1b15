#include "canmonitortestitem.h"
#include "ecu.h"
#include "infotestbytes.h"
#include "logcapture.h"
#include "monitortestitem.h"
#include "parameters/monitortestresult.h"
#include "trlog.h"
#include "unittable.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <random>
#include <string>
#include <vector>

using namespace Obd;
using InfoTest::hexBytes;

namespace {

const unsigned int ISO9141 = 0;
const unsigned int KWP = 1;
const unsigned int J1850 = 2;
const unsigned int CAN11 = 3;
const unsigned int CAN29 = 4;

Ecu ecu(unsigned int id)
{
    return Ecu(id, CAN11, "ISO 15765-4 (CAN 11/500)");
}

bool feed(MonitorTestResult& result, unsigned int protocol, const std::string& hex,
          unsigned int ecuId)
{
    LogCapture::instance().clear();
    return result.parse(protocol, ecuId, hexBytes(hex));
}

std::string hexName(unsigned int id)
{
    char text[8];
    std::snprintf(text, sizeof(text), "%02X", id);
    return text;
}

} // namespace

// ---------------------------------------------------------------- names

TEST(MonitorTestNames, MidNames)
{
    struct Row
    {
        unsigned int mid;
        const char* name;
    };
    const Row rows[] = {
        { 0x00, "OBD Monitor IDs supported ($01 - $20)" },
        { 0x01, "Exhaust Gas Sensor Monitor Bank 1 - Sensor 1" },
        { 0x04, "Exhaust Gas Sensor Monitor Bank 1 - Sensor 4" },
        { 0x05, "Exhaust Gas Sensor Monitor Bank 2 - Sensor 1" },
        { 0x10, "Exhaust Gas Sensor Monitor Bank 4 - Sensor 4" },
        { 0x11, "ISO/SAE reserved" },
        { 0x1F, "ISO/SAE reserved" },
        { 0x20, "OBD Monitor IDs supported ($21 - $40)" },
        { 0x21, "Catalyst Monitor Bank 1" },
        { 0x24, "Catalyst Monitor Bank 4" },
        { 0x25, "ISO/SAE reserved" },
        { 0x30, "ISO/SAE reserved" },
        { 0x31, "EGR Monitor Bank 1" },
        { 0x34, "EGR Monitor Bank 4" },
        { 0x35, "VVT Monitor Bank 1" },
        { 0x38, "VVT Monitor Bank 4" },
        { 0x39, "EVAP Monitor (Cap Off / 0.150\xE2\x80\x9D)" },
        { 0x3A, "EVAP Monitor (0.090\xE2\x80\x9C)" },
        { 0x3B, "EVAP Monitor (0.040\xE2\x80\x9D)" },
        { 0x3C, "EVAP Monitor (0.020\xE2\x80\x9C)" },
        { 0x3D, "Purge Flow Monitor" },
        { 0x3E, "ISO/SAE reserved" },
        { 0x40, "OBD Monitor IDs supported ($41 - $60)" },
        { 0x41, "Exhaust Gas Sensor Heater Monitor Bank 1 - Sensor 1" },
        { 0x46, "Exhaust Gas Sensor Heater Monitor Bank 2 - Sensor 2" },
        { 0x50, "Exhaust Gas Sensor Heater Monitor Bank 4 - Sensor 4" },
        { 0x51, "ISO/SAE reserved" },
        { 0x60, "OBD Monitor IDs supported ($61 - $80)" },
        { 0x61, "Heated Catalyst Monitor Bank 1" },
        { 0x64, "Heated Catalyst Monitor Bank 4" },
        { 0x65, "ISO/SAE reserved" },
        { 0x71, "Secondary Air Monitor 1" },
        { 0x74, "Secondary Air Monitor 4" },
        { 0x75, "ISO/SAE reserved" },
        { 0x80, "OBD Monitor IDs supported ($81 - $A0)" },
        { 0x81, "Fuel System Monitor Bank 1" },
        { 0x84, "Fuel System Monitor Bank 4" },
        { 0x85, "Boost Pressure Control Monitor Bank 1" },
        { 0x86, "Boost Pressure Control Monitor Bank 2" },
        { 0x87, "ISO/SAE reserved" },
        { 0x90, "NOx Adsorber Monitor Bank 1" },
        { 0x91, "NOx Adsorber Monitor Bank 2" },
        { 0x98, "NOx/SCR Catalyst Monitor Bank 1" },
        { 0x99, "NOx/SCR Catalyst Monitor Bank 2" },
        { 0x9A, "ISO/SAE reserved" },
        { 0xA0, "OBD Monitor IDs supported ($A1 - $C0)" },
        { 0xA1, "Misfire Monitor General Data" },
        { 0xA2, "Misfire Cylinder 1 Data" },
        { 0xB1, "Misfire Cylinder 16 Data" },
        { 0xB2, "PM Filter Monitor Bank 1" },
        { 0xB3, "PM Filter Monitor Bank 2" },
        { 0xB4, "ISO/SAE reserved" },
        { 0xC0, "OBD Monitor IDs supported ($C1 - $E0)" },
        { 0xC1, "ISO/SAE reserved" },
        { 0xDF, "ISO/SAE reserved" },
        { 0xE0, "OBD Monitor IDs supported ($E1 - $FF)" },
        { 0xE1, "Vehicle manufacturer defined monitor $E1" },
        { 0xFE, "Vehicle manufacturer defined monitor $FE" },
        { 0xFF, "Vehicle manufacturer defined monitor $FF" },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(hexName(row.mid));
        EXPECT_EQ(row.name, MonitorTestResult::getMidName(static_cast<unsigned char>(row.mid)));
    }
}

TEST(MonitorTestNames, NinetyFourNamedMidsBelowE1)
{
    unsigned int named = 0;
    for (unsigned int mid = 0; mid < 0xE1; ++mid) {
        if (MonitorTestResult::getMidName(static_cast<unsigned char>(mid)) != "ISO/SAE reserved")
            ++named;
    }
    EXPECT_EQ(94u, named);
}

TEST(MonitorTestNames, TidNamesOfService06)
{
    struct Row
    {
        unsigned int tid;
        const char* name;
    };
    const Row rows[] = {
        { 0x00, "ISO/SAE reserved" },
        { 0x01, "Rich to lean sensor threshold voltage (constant)" },
        { 0x04, "High sensor voltage for switch time calculation (constant)" },
        { 0x0A, "Sensor period (calculated)" },
        { 0x0B,
          "Exponential Weighted Moving Average misfire counts for previous driving cycles "
          "(calculated)" },
        { 0x0C, "Misfire counts for last/current driving cycles (calculated)" },
        { 0x0D, "NA" },
        { 0x20, "NA" },
        { 0x7F, "NA" },
        { 0x80, "Manufacturer Defined Test" },
        { 0xFE, "Manufacturer Defined Test" },
        { 0xFF, "ISO/SAE reserved" },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(hexName(row.tid));
        EXPECT_EQ(row.name, MonitorTestResult::getTidName(static_cast<unsigned char>(row.tid)));
    }
}

// ---------------------------------------------------------------- request

TEST(MonitorTestResult, RequestAndSignature)
{
    MonitorTestResult result(0x21);
    std::vector<unsigned char> request;
    result.getRequest(CAN11, request);
    EXPECT_EQ((std::vector<unsigned char> { 0x06, 0x21 }), request);
    std::vector<unsigned char> signature;
    result.getSignature(signature);
    EXPECT_EQ((std::vector<unsigned char> { 0x46, 0x21 }), signature);
    EXPECT_EQ(0x21, result.getId());
}

// ---------------------------------------------------------------- CAN layout

TEST(MonitorTestResult, CanRecords)
{
    struct Row
    {
        const char* name;
        const char* record; // MID TID UASID VAL MIN MAX
        unsigned int tid;
        unsigned int scalingId;
        float value;
        const char* valueText;
        const char* minimumText;
        const char* maximumText;
        bool passed;
        unsigned int unit;
    };
    const Row rows[] = {
        { "switch time within its window", "01 05 10 00 48 00 00 00 96", 0x05, 0x10, 72, "0.072",
          "0.000", "0.150", true, UNIT_SECOND },
        { "voltage, manufacturer TID", "01 85 0A 1B 58 16 A8 FF FF", 0x85, 0x0A, 7000, "0.854492",
          "0.708008", "7.999878", true, UNIT_VOLT },
        { "value above the maximum", "01 80 01 00 10 00 00 00 0F", 0x80, 0x01, 16, "16", "0", "15",
          false, UNIT_NONE },
        { "value below the minimum", "01 80 01 00 01 00 02 00 0F", 0x80, 0x01, 1, "1", "2", "15",
          false, UNIT_NONE },
        { "value on both limits", "01 80 01 00 07 00 07 00 07", 0x80, 0x01, 7, "7", "7", "7", true,
          UNIT_NONE },
        { "signed: -100 between -200 and 100", "01 82 82 FF 9C FF 38 00 64", 0x82, 0x82, 0xFF9C,
          "-10.0", "-20.0", "10.0", true, UNIT_NONE },
        { "signed: 101 above 100", "01 82 82 00 65 FF 38 00 64", 0x82, 0x82, 0x65, "10.1", "-20.0",
          "10.0", false, UNIT_NONE },
        { "temperature with offset", "01 0B 16 03 E8 01 90 07 D0", 0x0B, 0x16, 1000, "60.0", "0.0",
          "160.0", true, UNIT_CELSIUS },
        { "boolean", "01 81 2E 00 01 00 00 00 01", 0x81, 0x2E, 1, "true", "false", "true", true,
          UNIT_NONE },
        { "unknown scaling id: no texts, raw pass", "01 90 40 00 05 00 01 00 09", 0x90, 0x40, 5, "",
          "", "", true, UNIT_NONE },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        MonitorTestResult result(0x01);
        ASSERT_TRUE(feed(result, CAN11, std::string("46 ") + row.record, 0x7E8));
        EXPECT_EQ((std::vector<unsigned char> { 0x01 }), result.getMids(ecu(0x7E8)));
        MonitorTestResult::TestItemData items = result.getTestItems(ecu(0x7E8), 0x01);
        ASSERT_EQ(1u, items.size());
        const IMonitorTestItem& item = *items[0];
        EXPECT_NE(nullptr, dynamic_cast<const CanMonitorTestItem*>(&item));
        EXPECT_EQ(row.tid, item.getTid());
        EXPECT_EQ(MonitorTestResult::getTidName(item.getTid()), item.getTidName());
        EXPECT_EQ(row.scalingId, item.getScalingId());
        EXPECT_FLOAT_EQ(row.value, item.getValue());
        EXPECT_EQ(row.valueText, item.getValueText());
        EXPECT_EQ(row.minimumText, item.getMinimumText());
        EXPECT_EQ(row.maximumText, item.getMaximumText());
        EXPECT_EQ(row.passed, item.isPassed());
        EXPECT_EQ(row.unit, item.getUnit());
    }
}

TEST(MonitorTestResult, CanSeveralRecordsAndMids)
{
    // Catalyst monitor bank 1 with two tests, then a bank 2 record.
    MonitorTestResult result(0x21);
    ASSERT_TRUE(feed(result, CAN29,
                     "46 21 80 01 00 10 00 00 00 20"
                     "21 81 24 00 05 00 00 00 0A"
                     "22 80 01 00 30 00 00 00 20",
                     0x18DAF110));
    const Ecu e = ecu(0x18DAF110);
    EXPECT_EQ((std::vector<unsigned char> { 0x21, 0x22 }), result.getMids(e));
    MonitorTestResult::TestItemData bank1 = result.getTestItems(e, 0x21);
    ASSERT_EQ(2u, bank1.size());
    EXPECT_EQ(0x80, bank1[0]->getTid());
    EXPECT_EQ(0x81, bank1[1]->getTid());
    EXPECT_EQ("5", bank1[1]->getValueText());
    EXPECT_EQ(static_cast<unsigned int>(UNIT_COUNTS), bank1[1]->getUnit());
    MonitorTestResult::TestItemData bank2 = result.getTestItems(e, 0x22);
    ASSERT_EQ(1u, bank2.size());
    EXPECT_FALSE(bank2[0]->isPassed());
    EXPECT_TRUE(result.getTestItems(e, 0x23).empty());
}

TEST(MonitorTestResult, CanWrongLengths)
{
    struct Row
    {
        const char* name;
        const char* hex;
        const char* message;
    };
    const Row rows[] = {
        { "signature only", "46 01", "Invalid length: 2" },
        { "record one byte short", "46 01 05 10 00 48 00 00 00", "Invalid length: 9" },
        { "record and one byte", "46 01 05 10 00 48 00 00 00 96 01", "Invalid length: 11" },
        { "one and a half records", "46 01 05 10 00 48 00 00 00 96 01 06 10 00", "Invalid length: 14" },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        MonitorTestResult result(0x01);
        EXPECT_FALSE(feed(result, CAN11, row.hex, 0x7E8));
        EXPECT_TRUE(LogCapture::instance().contains(row.message, LOG_ERROR))
            << LogCapture::instance().dump();
        LogCapture::instance().clear();
        EXPECT_TRUE(result.getMids(ecu(0x7E8)).empty());
        EXPECT_TRUE(LogCapture::instance().contains("invalid ECU id 2024", LOG_WARN));
    }
}

TEST(MonitorTestResult, NewAnswerReplacesAndFailedAnswerKeeps)
{
    MonitorTestResult result(0x01);
    ASSERT_TRUE(feed(result, CAN11, "46 01 05 10 00 48 00 00 00 96 01 06 10 00 48 00 00 00 96",
                     0x7E8));
    EXPECT_EQ(2u, result.getTestItems(ecu(0x7E8), 0x01).size());
    EXPECT_FALSE(feed(result, CAN11, "46 01 05", 0x7E8));
    EXPECT_EQ(2u, result.getTestItems(ecu(0x7E8), 0x01).size());
    ASSERT_TRUE(feed(result, CAN11, "46 01 07 10 00 48 00 00 00 96", 0x7E8));
    MonitorTestResult::TestItemData items = result.getTestItems(ecu(0x7E8), 0x01);
    ASSERT_EQ(1u, items.size());
    EXPECT_EQ(0x07, items[0]->getTid());
    result.clear();
    std::vector<unsigned int> ids;
    result.getEcuIds(ids);
    EXPECT_TRUE(ids.empty());
}

TEST(MonitorTestResult, UnitSystemChangesTheTexts)
{
    MonitorTestResult result(0x01);
    // Temperature (16), speed (09) and an id without an imperial row (10).
    ASSERT_TRUE(feed(result, CAN11,
                     "46 01 01 16 03 E8 01 90 07 D0"
                     "01 02 09 00 64 00 00 00 C8"
                     "01 03 10 00 48 00 00 00 96",
                     0x7E8));
    auto texts = [&result]() {
        std::vector<std::string> out;
        for (const auto& item : result.getTestItems(ecu(0x7E8), 0x01))
            out.push_back(item->getValueText() + " " + unitText(item->getUnit()));
        return out;
    };
    EXPECT_EQ((std::vector<std::string> { "60.0 \u00b0C", "100 km/h", "0.072 s" }), texts());
    result.setUnitSystem(US_IMPERIAL);
    EXPECT_EQ((std::vector<std::string> { "140.0 \u00b0F", "62 mph", "0.072 s" }), texts());
    EXPECT_EQ("32.0", result.getTestItems(ecu(0x7E8), 0x01)[0]->getMinimumText());

    // Answers decoded later follow the chosen system.
    ASSERT_TRUE(feed(result, CAN11, "46 01 01 16 03 E8 01 90 07 D0", 0x7E9));
    EXPECT_EQ("140.0", result.getTestItems(ecu(0x7E9), 0x01)[0]->getValueText());
    result.setUnitSystem(US_METRIC);
    EXPECT_EQ("60.0", result.getTestItems(ecu(0x7E9), 0x01)[0]->getValueText());
}

TEST(CanMonitorTestItem, ChangingUnitSystemSwapsTheScalingOnlyWhenItDiffers)
{
    CanMonitorTestItem item(0x01, 0x16, 1000, 400, 2000);
    const IUnitScaling* metric = item.getScaling();
    ASSERT_NE(nullptr, metric);
    item.setUnitSystem(US_METRIC);
    EXPECT_EQ(metric, item.getScaling());
    item.setUnitSystem(US_IMPERIAL);
    EXPECT_EQ(US_IMPERIAL, item.getUnitSystem());
    EXPECT_EQ(static_cast<unsigned int>(UNIT_FAHRENHEIT), item.getUnit());
    EXPECT_EQ("320.0", item.getMaximumText()); // 160 degC

    CanMonitorTestItem unknown(0x01, 0x40, 1, 0, 2, US_IMPERIAL);
    EXPECT_EQ(nullptr, unknown.getScaling());
    EXPECT_EQ("", unknown.getValueText());
    EXPECT_TRUE(unknown.isPassed());
}

// ---------------------------------------------------------------- legacy layout

TEST(MonitorTestResult, LegacyLines)
{
    struct Row
    {
        const char* name;
        const char* line; // 46 TID CID VAL LIM
        unsigned int componentId;
        MonitorTestItem::LimitType type;
        const char* component;
        const char* valueText;
        const char* minimumText;
        const char* maximumText;
        bool passed;
    };
    const Row rows[] = {
        { "maximum limit, below it", "46 01 05 00 64 00 C8", 0x05, MonitorTestItem::LIMIT_MAXIMUM,
          "Manufacturer specified component $05", "100", "", "200", true },
        { "maximum limit, equal", "46 01 7F 01 00 01 00", 0x7F, MonitorTestItem::LIMIT_MAXIMUM,
          "Manufacturer specified component $7F", "256", "", "256", true },
        { "maximum limit, above it", "46 01 0A FF FF 00 01", 0x0A, MonitorTestItem::LIMIT_MAXIMUM,
          "Manufacturer specified component $0A", "65535", "", "1", false },
        { "minimum limit, below it", "46 01 85 00 64 00 C8", 0x05, MonitorTestItem::LIMIT_MINIMUM,
          "Manufacturer specified component $05", "100", "200", "", false },
        { "minimum limit, equal", "46 01 FF 01 00 01 00", 0x7F, MonitorTestItem::LIMIT_MINIMUM,
          "Manufacturer specified component $7F", "256", "256", "", true },
        { "minimum limit, component 0", "46 01 80 12 34 00 00", 0x00, MonitorTestItem::LIMIT_MINIMUM,
          "Manufacturer specified component $00", "4660", "0", "", true },
    };
    for (unsigned int protocol : { ISO9141, KWP, J1850 }) {
        for (const Row& row : rows) {
            SCOPED_TRACE(std::string(row.name) + ", protocol " + std::to_string(protocol));
            MonitorTestResult result(0x01);
            ASSERT_TRUE(feed(result, protocol, row.line, 0x10));
            EXPECT_EQ((std::vector<unsigned char> { 0x01 }), result.getMids(ecu(0x10)));
            MonitorTestResult::TestItemData items = result.getTestItems(ecu(0x10), 0x01);
            ASSERT_EQ(1u, items.size());
            auto* item = dynamic_cast<const MonitorTestItem*>(items[0].get());
            ASSERT_NE(nullptr, item);
            EXPECT_EQ(0x01, item->getTid());
            EXPECT_EQ(row.componentId, item->getComponentId());
            EXPECT_EQ(row.type, item->getLimitType());
            EXPECT_EQ(row.component, item->getComponentName());
            EXPECT_EQ(row.valueText, item->getValueText());
            EXPECT_EQ(row.minimumText, item->getMinimumText());
            EXPECT_EQ(row.maximumText, item->getMaximumText());
            EXPECT_EQ(row.passed, item->isPassed());
            EXPECT_EQ(row.passed,
                      item->getMinimum() <= item->getValue() && item->getValue() <= item->getMaximum());
            EXPECT_EQ(0, item->getScalingId());
            EXPECT_EQ(static_cast<unsigned int>(UNIT_NONE), item->getUnit());
            EXPECT_EQ("Rich to lean sensor threshold voltage (constant)", item->getTidName());
        }
    }
}

TEST(MonitorTestResult, LegacySeveralComponents)
{
    MonitorTestResult result(0x01);
    ASSERT_TRUE(feed(result, ISO9141,
                     "46 01 01 00 10 00 20"
                     "46 01 82 00 30 00 20"
                     "46 02 03 00 05 00 04",
                     0x10));
    EXPECT_EQ((std::vector<unsigned char> { 0x01, 0x02 }), result.getMids(ecu(0x10)));
    MonitorTestResult::TestItemData first = result.getTestItems(ecu(0x10), 0x01);
    ASSERT_EQ(2u, first.size());
    EXPECT_TRUE(first[0]->isPassed());
    EXPECT_TRUE(first[1]->isPassed());
    MonitorTestResult::TestItemData second = result.getTestItems(ecu(0x10), 0x02);
    ASSERT_EQ(1u, second.size());
    EXPECT_FALSE(second[0]->isPassed());
    // Unscaled values ignore the unit system.
    result.setUnitSystem(US_IMPERIAL);
    EXPECT_EQ("5", result.getTestItems(ecu(0x10), 0x02)[0]->getValueText());
}

TEST(MonitorTestResult, LegacyWrongLengthsAndHeaders)
{
    struct Row
    {
        const char* name;
        const char* hex;
        const char* message;
    };
    const Row rows[] = {
        { "signature only", "46 01", "Invalid length: 2" },
        { "line one byte short", "46 01 05 00 64 00", "Invalid length: 6" },
        { "line and one byte", "46 01 05 00 64 00 C8 46", "Invalid length: 8" },
        { "CAN record on ISO 9141", "46 01 05 10 00 48 00 00 00 96", "Invalid length: 10" },
        { "second line of service 05", "46 01 05 00 64 00 C8 45 01 05 00 64 00 C8",
          "Invalid data received" },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        MonitorTestResult result(0x01);
        EXPECT_FALSE(feed(result, ISO9141, row.hex, 0x10));
        EXPECT_TRUE(LogCapture::instance().contains(row.message, LOG_ERROR))
            << LogCapture::instance().dump();
        EXPECT_EQ("libobd/parameters/monitortestresult.cpp",
                  LogCapture::instance().find(row.message).file);
    }
}

TEST(MonitorTestResult, UnknownEcu)
{
    MonitorTestResult result(0x01);
    ASSERT_TRUE(feed(result, CAN11, "46 01 05 10 00 48 00 00 00 96", 0x7E8));
    LogCapture::instance().clear();
    EXPECT_TRUE(result.getMids(ecu(0x7E9)).empty());
    EXPECT_TRUE(result.getTestItems(ecu(0x7E9), 0x01).empty());
    EXPECT_EQ(2u, LogCapture::instance().count("invalid ECU id 2025", LOG_WARN));
}

TEST(MonitorTestResult, AnyPayloadOfAnyLength)
{
    std::mt19937 random(0x0606);
    unsigned int accepted = 0;
    for (unsigned int protocol = 0; protocol <= 5; ++protocol) {
        for (size_t length = 0; length <= 60; ++length) {
            for (int round = 0; round < 4; ++round) {
                MonitorTestResult result(0x01);
                std::vector<unsigned char> data = InfoTest::randomBytes(random, length);
                if (round > 0 && length >= 2) {
                    data[0] = 0x46;
                    data[1] = 0x01;
                }
                if (round == 3) {
                    for (size_t at = 0; at < length; at += 7)
                        data[at] = 0x46;
                }
                if (result.parse(protocol, 0x10, data)) {
                    ++accepted;
                    for (unsigned char mid : result.getMids(ecu(0x10))) {
                        for (const auto& item : result.getTestItems(ecu(0x10), mid)) {
                            item->getValueText();
                            item->getMinimumText();
                            item->getMaximumText();
                            item->getTidName();
                            item->isPassed();
                        }
                    }
                }
                result.parsePayload(0x10, data);
            }
        }
    }
    EXPECT_GT(accepted, 0u);
}
