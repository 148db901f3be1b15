// On-board monitor test results: service 06 in the CAN record layout
// (scaled by unit and scaling id) and the legacy line layout (a limit that is
// a minimum or a maximum), and the oxygen sensor tests of service 05.

#include "ecu.h"
#include "infotestbytes.h"
#include "iscantool.h"
#include "logcapture.h"
#include "oxygensensortestitem.h"
#include "parameters/monitortestresult.h"
#include "parameters/oxygensensortestresult.h"
#include "trlog.h"
#include "unittable.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <string>
#include <vector>

using namespace Obd;
using InfoTest::hexBytes;

namespace {

const unsigned int ISO9141 = PROTOCOL_ISO9141;
const unsigned int CAN11 = PROTOCOL_CAN_11BIT;

Ecu ecu(unsigned int id = 0x10)
{
    return Ecu(id, CAN11, "");
}

std::string hex(unsigned int value)
{
    char text[8];
    std::snprintf(text, sizeof(text), "%02X", value);
    return text;
}

// "value [minimum, maximum] unit pass|fail" of one result.
template <class Item>
std::string shown(const Item& item)
{
    const std::string unit = unitText(item.getUnit());
    return item.getValueText() + " [" + item.getMinimumText() + ", " + item.getMaximumText() + "]"
        + (unit.empty() ? "" : " " + unit) + (item.isPassed() ? " pass" : " fail");
}

// Every item of a service 06 result: "MID/TID value [min, max] unit pass; ...".
std::string shown(const MonitorTestResult& result, const Ecu& ecu)
{
    std::string out;
    for (unsigned char mid : result.getMids(ecu)) {
        for (const auto& item : result.getTestItems(ecu, mid))
            out += (out.empty() ? "" : "; ") + hex(mid) + "/" + hex(item->getTid()) + " " + shown(*item);
    }
    return out;
}

// Every sensor of a service 05 result: "B1S1 value [min, max] unit pass; ...".
std::string shown(const OxygenSensorTestResult& result, const Ecu& ecu)
{
    std::string out;
    for (OxygenSensorLocation sensor : result.getSensors(ecu))
        out += (out.empty() ? "" : "; ") + oxygenSensorLocationName(sensor) + " " + shown(*result.getItem(ecu, sensor));
    return out;
}

struct ResultRow
{
    const char* name;
    unsigned int protocol;
    const char* hex;
    const char* shown; // nullptr: refused
    const char* log = nullptr;
};

// Each row parsed by a fresh result: what it shows, or that it refused the
// answer and logged why.
template <class Result, size_t N>
void expectRows(const ResultRow (&rows)[N])
{
    for (const ResultRow& row : rows) {
        SCOPED_TRACE(row.name);
        LogCapture::instance().clear();
        Result result(hexBytes(row.hex)[1]);
        EXPECT_EQ(row.shown != nullptr, result.parse(row.protocol, 0x10, hexBytes(row.hex)));
        if (row.shown) {
            EXPECT_EQ(row.shown, shown(result, ecu()));
        } else {
            std::vector<unsigned int> ids;
            result.getEcuIds(ids);
            EXPECT_TRUE(ids.empty());
        }
        if (row.log) {
            EXPECT_TRUE(LogCapture::instance().contains(row.log, LOG_ERROR)) << LogCapture::instance().dump();
        }
    }
}

} // namespace

TEST(MonitorTestResults, Service06RecordsAndLines)
{
    const ResultRow rows[] = {
        // CAN: MID TID scaling-id value(2) minimum(2) maximum(2)
        { "id 10 is 0.001 s: 0x48 = 72 -> 0.072 within 0.000..0.150", CAN11, "46 01 05 10 00 48 00 00 00 96", "01/05 0.072 [0.000, 0.150] s pass" },
        { "id 0A is 1/8192 V: 7000 -> 0.854492", CAN11, "46 01 85 0A 1B 58 16 A8 FF FF", "01/85 0.854492 [0.708008, 7.999878] V pass" },
        { "id 16 is 0.1 C - 40: 1000 -> 60.0", CAN11, "46 01 0B 16 03 E8 01 90 07 D0", "01/0B 60.0 [0.0, 160.0] \u00b0C pass" },
        { "value 16 above the maximum 15", CAN11, "46 01 80 01 00 10 00 00 00 0F", "01/80 16 [0, 15] fail" },
        { "value 1 below the minimum 2", CAN11, "46 01 80 01 00 01 00 02 00 0F", "01/80 1 [2, 15] fail" },
        { "value on both limits passes", CAN11, "46 01 80 01 00 07 00 07 00 07", "01/80 7 [7, 7] pass" },
        { "signed id 82: FF9C = -100 -> -10.0 between -20.0 and 10.0", CAN11, "46 01 82 82 FF 9C FF 38 00 64", "01/82 -10.0 [-20.0, 10.0] pass" },
        { "signed id 82: 0065 = 101 -> 10.1 above 10.0", CAN11, "46 01 82 82 00 65 FF 38 00 64", "01/82 10.1 [-20.0, 10.0] fail" },
        { "boolean id 2E", CAN11, "46 01 81 2E 00 01 00 00 00 01", "01/81 true [false, true] pass" },
        { "unknown scaling id 40: no texts, raw 1 <= 5 <= 9 passes", CAN11, "46 01 90 40 00 05 00 01 00 09", "01/90  [, ] pass" },
        { "CAN 29-bit, two tests of MID 21 and one of MID 22", PROTOCOL_CAN_29BIT,
          "46 21 80 01 00 10 00 00 00 20 21 81 24 00 05 00 00 00 0A 22 80 01 00 30 00 00 00 20",
          "21/80 16 [0, 32] pass; 21/81 5 [0, 10] counts pass; 22/80 48 [0, 32] fail" },
        { "CAN signature only", CAN11, "46 01", nullptr, "Invalid length: 2" },
        { "CAN record one byte short", CAN11, "46 01 05 10 00 48 00 00 00", nullptr, "Invalid length: 9" },
        { "CAN record and one byte", CAN11, "46 01 05 10 00 48 00 00 00 96 01", nullptr, "Invalid length: 11" },
        // Legacy: TID component value(2) limit(2); component bit 7 set: the limit is a minimum
        { "component 05: 100 below the maximum 200", ISO9141, "46 01 05 00 64 00 C8", "01/01 100 [, 200] pass" },
        { "component 0A: FFFF above the maximum 1", PROTOCOL_KWP2000, "46 01 0A FF FF 00 01", "01/01 65535 [, 1] fail" },
        { "component 85: 100 below the minimum 200", PROTOCOL_J1850, "46 01 85 00 64 00 C8", "01/01 100 [200, ] fail" },
        { "component FF: 256 on the minimum", ISO9141, "46 01 FF 01 00 01 00", "01/01 256 [256, ] pass" },
        { "three lines, two TIDs", ISO9141, "46 01 01 00 10 00 20 46 01 82 00 30 00 20 46 02 03 00 05 00 04",
          "01/01 16 [, 32] pass; 01/01 48 [32, ] pass; 02/02 5 [, 4] fail" },
        { "line one byte short", ISO9141, "46 01 05 00 64 00", nullptr, "Invalid length: 6" },
        { "CAN record on ISO 9141", ISO9141, "46 01 05 10 00 48 00 00 00 96", nullptr, "Invalid length: 10" },
        { "second line of service 05", ISO9141, "46 01 05 00 64 00 C8 45 01 05 00 64 00 C8", nullptr, "Invalid data received" },
    };
    expectRows<MonitorTestResult>(rows);
}

TEST(MonitorTestResults, AnswersReplaceAndTheUnitSystemChangesTheTexts)
{
    MonitorTestResult result(0x01);
    ASSERT_TRUE(result.parse(CAN11, 0x7E8, hexBytes("46 01 05 10 00 48 00 00 00 96 01 06 10 00 48 00 00 00 96")));
    EXPECT_FALSE(result.parse(CAN11, 0x7E8, hexBytes("46 01 05")));
    EXPECT_EQ(2u, result.getTestItems(ecu(0x7E8), 0x01).size()) << "a refused answer keeps the last one";
    // Temperature (16), speed (09) and an id without an imperial row (10).
    ASSERT_TRUE(result.parse(CAN11, 0x7E8, hexBytes("46 01 01 16 03 E8 01 90 07 D0 01 02 09 00 64 00 00 00 C8 01 03 10 00 48 00 00 00 96")));
    EXPECT_EQ("01/01 60.0 [0.0, 160.0] \u00b0C pass; 01/02 100 [0, 200] km/h pass; 01/03 0.072 [0.000, 0.150] s pass",
              shown(result, ecu(0x7E8)));
    result.setUnitSystem(US_IMPERIAL);
    EXPECT_EQ("01/01 140.0 [32.0, 320.0] \u00b0F pass; 01/02 62 [0, 124] mph pass; 01/03 0.072 [0.000, 0.150] s pass",
              shown(result, ecu(0x7E8)));
    // Later answers follow the chosen system.
    ASSERT_TRUE(result.parse(CAN11, 0x7E9, hexBytes("46 01 01 16 03 E8 01 90 07 D0")));
    EXPECT_EQ("01/01 140.0 [32.0, 320.0] \u00b0F pass", shown(result, ecu(0x7E9)));
}

TEST(MonitorTestResults, Service05OxygenSensorLines)
{
    // TID sensor-bit value minimum maximum; TIDs 01-04, 07, 08 are 0.005 V,
    // 05 and 06 0.004 s, 09 and 0A 0.04 s, the others unscaled.
    const ResultRow rows[] = {
        { "01 threshold 5A = 90 * 0.005 = 0.450 V, bit 0", ISO9141, "45 01 01 5A 00 C8", "B1S1 0.450 [0.000, 1.000] V pass" },
        { "03 on its maximum FF = 1.275 V, bit 2", ISO9141, "45 03 04 FF 00 FF", "B1S3 1.275 [0.000, 1.275] V pass" },
        { "04 below the minimum 14 = 0.100 V, bit 3", ISO9141, "45 04 08 0A 14 C8", "B1S4 0.050 [0.100, 1.000] V fail" },
        { "05 switch time 19 = 25 * 0.004 = 0.100 s, bit 4", ISO9141, "45 05 10 19 00 4B", "B2S1 0.100 [0.000, 0.300] s pass" },
        { "06 above the maximum: 50 = 0.320 s, bit 5", ISO9141, "45 06 20 50 00 4B", "B2S2 0.320 [0.000, 0.300] s fail" },
        { "08 maximum voltage B4 = 0.900 V, bit 7", ISO9141, "45 08 80 B4 96 FF", "B2S4 0.900 [0.750, 1.275] V pass" },
        { "09 transitions 32 = 50 * 0.04 = 2.00 s", ISO9141, "45 09 01 32 0A 64", "B1S1 2.00 [0.40, 4.00] s pass" },
        { "0A period FF = 10.20 s", ISO9141, "45 0A 02 FF 00 FF", "B1S2 10.20 [0.00, 10.20] s pass" },
        { "0B unscaled", ISO9141, "45 0B 01 07 00 10", "B1S1 7 [0, 16] pass" },
        { "manufacturer TID 21 unscaled: 128 above 127", ISO9141, "45 21 01 80 10 7F", "B1S1 128 [16, 127] fail" },
        { "three sensors, B2S1 first, come sorted (KWP)", PROTOCOL_KWP2000, "45 01 10 5A 00 C8 45 01 01 64 00 C8 45 01 02 D2 00 C8",
          "B1S1 0.500 [0.000, 1.000] V pass; B1S2 1.050 [0.000, 1.000] V fail; B2S1 0.450 [0.000, 1.000] V pass" },
        { "two sensors (J1850)", PROTOCOL_J1850, "45 01 01 5A 00 C8 45 01 02 5A 00 C8", "B1S1 0.450 [0.000, 1.000] V pass; B1S2 0.450 [0.000, 1.000] V pass" },
        { "signature only", ISO9141, "45 01", nullptr, "TID1: invalid number of data bytes:2" },
        { "line one byte short", ISO9141, "45 01 01 5A 00", nullptr, "TID1: invalid number of data bytes:5" },
        { "three-byte echo layout", ISO9141, "45 05 01 19 00 4B 00 00 00", nullptr, "TID5: invalid number of data bytes:9" },
        { "second line of another TID", ISO9141, "45 01 01 5A 00 C8 45 02 01 5A 00 C8", nullptr, "Invalid data received" },
        { "no sensor bit", ISO9141, "45 01 00 5A 00 C8", nullptr, "Invalid sensor byte: 0" },
        { "two sensor bits", ISO9141, "45 01 03 5A 00 C8", nullptr, "Invalid sensor byte: 3" },
    };
    expectRows<OxygenSensorTestResult>(rows);

    OxygenSensorTestResult result(0x01);
    ASSERT_TRUE(result.parse(ISO9141, 0x10, hexBytes("45 01 01 5A 00 C8 45 01 02 5A 00 C8")));
    EXPECT_FALSE(result.parse(ISO9141, 0x10, hexBytes("45 01 01")));
    EXPECT_EQ(2u, result.getSensors(ecu()).size()) << "a refused answer keeps the last one";
    ASSERT_TRUE(result.parse(ISO9141, 0x10, hexBytes("45 01 04 5A 00 C8")));
    EXPECT_EQ("B1S3 0.450 [0.000, 1.000] V pass", shown(result, ecu()));
}
