#include "ecu.h"
#include "infotestbytes.h"
#include "logcapture.h"
#include "oxygensensortestitem.h"
#include "parameters/monitortestresult.h"
#include "parameters/oxygensensortestresult.h"
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

Ecu ecu(unsigned int id = 0x10)
{
    return Ecu(id, ISO9141, "ISO 9141-2");
}

bool feed(OxygenSensorTestResult& result, unsigned int protocol, const std::string& hex,
          unsigned int ecuId = 0x10)
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

TEST(OxygenSensorTestNames, TidNamesOfService05)
{
    struct Row
    {
        unsigned int tid;
        const char* name;
    };
    const Row rows[] = {
        { 0x00, "NA" },
        { 0x01, "Rich to lean sensor threshold voltage (constant)" },
        { 0x02, "Lean to rich sensor threshold voltage (constant)" },
        { 0x03, "Low sensor voltage for switch time calculation (constant)" },
        { 0x04, "High sensor voltage for switch time calculation (constant)" },
        { 0x05, "Rich to lean sensor switch time (calculated)" },
        { 0x06, "Lean to rich sensor switch time (calculated)" },
        { 0x07, "Minimum sensor voltage for test cycle (calculated)" },
        { 0x08, "Maximum sensor voltage for test cycle (calculated)" },
        { 0x09, "Time between sensor transitions (calculated)" },
        { 0x0A, "Sensor period (calculated)" },
        { 0x0B, "Not applicable" },
        { 0x0C, "Not applicable" },
        { 0x0D, "ISO/SAE reserved" },
        { 0x1F, "ISO/SAE reserved" },
        { 0x20, "NA" },
        { 0x21, "Manufacturer Defined Test" },
        { 0x80, "Manufacturer Defined Test" },
        { 0xFE, "Manufacturer Defined Test" },
        { 0xFF, "ISO/SAE reserved" },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(hexName(row.tid));
        EXPECT_EQ(row.name, OxygenSensorTestResult::getTidName(static_cast<unsigned char>(row.tid)));
    }
}

TEST(OxygenSensorTestNames, DifferFromService06Where)
{
    struct Row
    {
        unsigned int tid;
        const char* service05;
        const char* service06;
    };
    const Row rows[] = {
        { 0x00, "NA", "ISO/SAE reserved" },
        { 0x0B, "Not applicable",
          "Exponential Weighted Moving Average misfire counts for previous driving cycles "
          "(calculated)" },
        { 0x0C, "Not applicable", "Misfire counts for last/current driving cycles (calculated)" },
        { 0x0D, "ISO/SAE reserved", "NA" },
        { 0x20, "NA", "NA" },
        { 0x21, "Manufacturer Defined Test", "NA" },
        { 0x7F, "Manufacturer Defined Test", "NA" },
        { 0x80, "Manufacturer Defined Test", "Manufacturer Defined Test" },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(hexName(row.tid));
        const unsigned char tid = static_cast<unsigned char>(row.tid);
        EXPECT_EQ(row.service05, OxygenSensorTestResult::getTidName(tid));
        EXPECT_EQ(row.service06, MonitorTestResult::getTidName(tid));
    }
    for (unsigned int tid = 0x01; tid <= 0x0A; ++tid) {
        SCOPED_TRACE(hexName(tid));
        EXPECT_EQ(MonitorTestResult::getTidName(static_cast<unsigned char>(tid)),
                  OxygenSensorTestResult::getTidName(static_cast<unsigned char>(tid)));
    }
}

TEST(OxygenSensorTestResult, RequestAndSignature)
{
    OxygenSensorTestResult result(0x05);
    std::vector<unsigned char> request { 0x01, 0x02, 0x03 };
    result.getRequest(ISO9141, request);
    EXPECT_EQ((std::vector<unsigned char> { 0x05, 0x05 }), request);
    std::vector<unsigned char> signature;
    result.getSignature(signature);
    EXPECT_EQ((std::vector<unsigned char> { 0x45, 0x05 }), signature);
    EXPECT_EQ(0x05, result.getTid());
}

TEST(OxygenSensorTestResult, ScaledLines)
{
    struct Row
    {
        const char* name;
        unsigned int tid;
        const char* line; // 45 TID SS VAL MIN MAX
        OxygenSensorLocation location;
        const char* value;
        const char* minimum;
        const char* maximum;
        unsigned int unit;
        bool passed;
    };
    const Row rows[] = {
        { "01 threshold 0.450 V, bank 1 sensor 1", 0x01, "45 01 01 5A 00 C8", B1S1, "0.450",
          "0.000", "1.000", UNIT_VOLT, true },
        { "02 threshold, bank 1 sensor 2", 0x02, "45 02 02 5A 00 C8", B1S2, "0.450", "0.000",
          "1.000", UNIT_VOLT, true },
        { "03 on its maximum, bank 1 sensor 3", 0x03, "45 03 04 FF 00 FF", B1S3, "1.275", "0.000",
          "1.275", UNIT_VOLT, true },
        { "04 below minimum, bank 1 sensor 4", 0x04, "45 04 08 0A 14 C8", B1S4, "0.050", "0.100",
          "1.000", UNIT_VOLT, false },
        { "05 switch time 0.100 s, bank 2 sensor 1", 0x05, "45 05 10 19 00 4B", B2S1, "0.100",
          "0.000", "0.300", UNIT_SECOND, true },
        { "06 above maximum, bank 2 sensor 2", 0x06, "45 06 20 50 00 4B", B2S2, "0.320", "0.000",
          "0.300", UNIT_SECOND, false },
        { "07 minimum voltage, bank 2 sensor 3", 0x07, "45 07 40 14 00 32", B2S3, "0.100", "0.000",
          "0.250", UNIT_VOLT, true },
        { "08 maximum voltage, bank 2 sensor 4", 0x08, "45 08 80 B4 96 FF", B2S4, "0.900", "0.750",
          "1.275", UNIT_VOLT, true },
        { "09 transitions 2.00 s", 0x09, "45 09 01 32 0A 64", B1S1, "2.00", "0.40", "4.00",
          UNIT_SECOND, true },
        { "0A period 10.20 s at full scale", 0x0A, "45 0A 02 FF 00 FF", B1S2, "10.20", "0.00",
          "10.20", UNIT_SECOND, true },
        { "0B unscaled", 0x0B, "45 0B 01 07 00 10", B1S1, "7", "0", "16", UNIT_NONE, true },
        { "manufacturer TID 21 unscaled", 0x21, "45 21 01 80 10 7F", B1S1, "128", "16", "127",
          UNIT_NONE, false },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        OxygenSensorTestResult result(static_cast<unsigned char>(row.tid));
        ASSERT_TRUE(feed(result, ISO9141, row.line));
        EXPECT_EQ((std::vector<OxygenSensorLocation> { row.location }), result.getSensors(ecu()));
        std::shared_ptr<OxygenSensorTestItem> item = result.getItem(ecu(), row.location);
        ASSERT_TRUE(item);
        EXPECT_EQ(row.tid, item->getTid());
        EXPECT_EQ(row.location, item->getLocation());
        EXPECT_EQ(row.value, item->getValueText());
        EXPECT_EQ(row.minimum, item->getMinimumText());
        EXPECT_EQ(row.maximum, item->getMaximumText());
        EXPECT_EQ(row.unit, item->getUnit());
        EXPECT_EQ(row.passed, item->isPassed());
    }
}

TEST(OxygenSensorTestResult, ValuesOfAnItem)
{
    OxygenSensorTestItem item(0x01, B2S1, 0x5A, 0x00, 0xC8);
    EXPECT_FLOAT_EQ(0.45f, item.getValue());
    EXPECT_FLOAT_EQ(0.0f, item.getMinimum());
    EXPECT_FLOAT_EQ(1.0f, item.getMaximum());
    EXPECT_EQ(0x5A, item.getRawValue());
    EXPECT_EQ(0x00, item.getRawMinimum());
    EXPECT_EQ(0xC8, item.getRawMaximum());
    LogCapture::instance().clear();
    item.setUnitSystem(US_IMPERIAL);
    EXPECT_TRUE(LogCapture::instance().contains("TODO: not implemented", LOG_DEBUG));
    EXPECT_EQ("0.450", item.getValueText());
}

TEST(OxygenSensorTestResult, SeveralSensorsOnSeveralProtocols)
{
    for (unsigned int protocol : { ISO9141, KWP, J1850 }) {
        SCOPED_TRACE(protocol);
        OxygenSensorTestResult result(0x01);
        // Sensors in the order B2S1, B1S1, B1S2 arrive sorted by location.
        ASSERT_TRUE(feed(result, protocol,
                         "45 01 10 5A 00 C8"
                         "45 01 01 64 00 C8"
                         "45 01 02 D2 00 C8"));
        EXPECT_EQ((std::vector<OxygenSensorLocation> { B1S1, B1S2, B2S1 }),
                  result.getSensors(ecu()));
        EXPECT_EQ("0.500", result.getItem(ecu(), B1S1)->getValueText());
        EXPECT_FALSE(result.getItem(ecu(), B1S2)->isPassed());
        EXPECT_FALSE(result.getItem(ecu(), B2S2));
    }
}

TEST(OxygenSensorTestResult, WrongLengthsAndLines)
{
    struct Row
    {
        const char* name;
        unsigned int tid;
        const char* hex;
        const char* message;
    };
    const Row rows[] = {
        { "signature only", 0x01, "45 01", "TID1: invalid number of data bytes:2" },
        { "line one byte short", 0x01, "45 01 01 5A 00", "TID1: invalid number of data bytes:5" },
        { "line and one byte", 0x0A, "45 0A 01 5A 00 C8 45", "TID10: invalid number of data bytes:7" },
        { "three-byte request echo layout", 0x05, "45 05 01 19 00 4B 00 00 00",
          "TID5: invalid number of data bytes:9" },
        { "second line of another TID", 0x01, "45 01 01 5A 00 C8 45 02 01 5A 00 C8",
          "Invalid data received" },
        { "second line of service 06", 0x01, "45 01 01 5A 00 C8 46 01 01 5A 00 C8",
          "Invalid data received" },
        { "no sensor bit", 0x01, "45 01 00 5A 00 C8", "Invalid sensor byte: 0" },
        { "two sensor bits", 0x01, "45 01 03 5A 00 C8", "Invalid sensor byte: 3" },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        OxygenSensorTestResult result(static_cast<unsigned char>(row.tid));
        EXPECT_FALSE(feed(result, ISO9141, row.hex));
        EXPECT_TRUE(LogCapture::instance().contains(row.message, LOG_ERROR))
            << LogCapture::instance().dump();
        EXPECT_EQ("libobd/parameters/oxygensensortestresult.cpp",
                  LogCapture::instance().find(row.message).file);
        std::vector<unsigned int> ids;
        result.getEcuIds(ids);
        EXPECT_TRUE(ids.empty());
    }
}

TEST(OxygenSensorTestResult, UnknownEcuAndReplacement)
{
    OxygenSensorTestResult result(0x01);
    ASSERT_TRUE(feed(result, ISO9141, "45 01 01 5A 00 C8 45 01 02 5A 00 C8"));
    EXPECT_FALSE(feed(result, ISO9141, "45 01 01"));
    EXPECT_EQ(2u, result.getSensors(ecu()).size());
    ASSERT_TRUE(feed(result, ISO9141, "45 01 04 5A 00 C8"));
    EXPECT_EQ((std::vector<OxygenSensorLocation> { B1S3 }), result.getSensors(ecu()));

    LogCapture::instance().clear();
    EXPECT_TRUE(result.getSensors(ecu(0x11)).empty());
    EXPECT_FALSE(result.getItem(ecu(0x11), B1S1));
    EXPECT_EQ(2u, LogCapture::instance().count("invalid ECU id 17", LOG_WARN));
    result.clear();
    EXPECT_TRUE(result.getSensors(ecu()).empty());
}

TEST(OxygenSensorTestResult, AnyPayloadOfAnyLength)
{
    std::mt19937 random(0x0505);
    unsigned int accepted = 0;
    for (unsigned int protocol = 0; protocol <= 5; ++protocol) {
        for (size_t length = 0; length <= 60; ++length) {
            for (int round = 0; round < 4; ++round) {
                OxygenSensorTestResult result(0x01);
                std::vector<unsigned char> data = InfoTest::randomBytes(random, length);
                if (round > 0) {
                    for (size_t at = 0; at + 1 < length; at += 6) {
                        data[at] = 0x45;
                        data[at + 1] = 0x01;
                        if (round == 3 && at + 2 < length)
                            data[at + 2] = static_cast<unsigned char>(1u << (data[at + 2] % 8));
                    }
                }
                if (result.parse(protocol, 0x10, data)) {
                    ++accepted;
                    for (OxygenSensorLocation sensor : result.getSensors(ecu()))
                        EXPECT_TRUE(result.getItem(ecu(), sensor));
                }
                result.parsePayload(0x10, data);
            }
        }
    }
    EXPECT_GT(accepted, 0u);
}
