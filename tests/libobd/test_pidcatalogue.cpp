// Service 01/02 PIDs: one hand-worked row per decoding family (the SAE J1979
// arithmetic is in the row's name) with its minimum, maximum and wrong-length
// rows, the texts in both unit systems, and what is kept per ECU.

#include "ecu.h"
#include "iscantool.h"
#include "logcapture.h"
#include "measurableparameter.h"
#include "trlog.h"

#include "powertrain/enginerpm.h"
#include "powertrain/monitorstatus.h"
#include "powertrain/parameterfactory.h"
#include "powertrain/vehiclespeed.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <memory>
#include <string>
#include <vector>

using namespace Obd;

namespace {

typedef std::vector<unsigned char> Bytes;

const unsigned int ECU_ID = 0x7E8;

const Ecu& ecu()
{
    static const Ecu theEcu(ECU_ID, PROTOCOL_CAN_11BIT, "CAN");
    return theEcu;
}

std::string hex(unsigned int value)
{
    char text[8];
    std::snprintf(text, sizeof(text), "%02X", value);
    return text;
}

const Bytes PERCENT_PIDS = { 0x04, 0x11, 0x2C };
const Bytes TEMPERATURE_PIDS = { 0x05, 0x0F };
const Bytes FUEL_TRIM_PIDS = { 0x06, 0x07, 0x08, 0x09 };
const Bytes KPA_PIDS = { 0x0B, 0x33 };
const Bytes O2_PIDS = { 0x14, 0x15, 0x16, 0x17, 0x18, 0x19, 0x1A, 0x1B };
const Bytes DISTANCE_PIDS = { 0x21, 0x31 };
const Bytes ERV_PIDS = { 0x24, 0x25, 0x26, 0x27, 0x28, 0x29, 0x2A, 0x2B };
const Bytes PURGE_PIDS = { 0x2E, 0x2F };
const Bytes ERC_PIDS = { 0x34, 0x35, 0x36, 0x37, 0x38, 0x39, 0x3A, 0x3B };
const Bytes CATALYST_PIDS = { 0x3C, 0x3D, 0x3E, 0x3F };

std::unique_ptr<PowertrainParameter> make(unsigned char pid)
{
    // The freeze-frame code exists in service 02 only.
    return std::unique_ptr<PowertrainParameter>(ParameterFactory::create(pid, pid == 0x02 ? 2 : 1));
}

// The ECU's message: signature (and frame number in service 02), then data.
bool parseData(PowertrainParameter& parameter, const Bytes& data, unsigned int ecuId = ECU_ID)
{
    Bytes message;
    parameter.getSignature(message);
    if (parameter.getMode() == 2)
        message.push_back(0x00);
    message.insert(message.end(), data.begin(), data.end());
    return parameter.parse(PROTOCOL_CAN_11BIT, ecuId, message);
}

std::vector<std::string> texts(const PowertrainParameter& parameter, UnitSystem system, const Ecu& from = ecu())
{
    std::vector<std::string> list;
    parameter.getFormattedValues(from, system, list);
    return list;
}

std::vector<float> values(const PowertrainParameter& parameter, UnitSystem system, const Ecu& from = ecu())
{
    std::vector<float> list;
    if (auto measurable = dynamic_cast<const MeasurableParameter*>(&parameter))
        measurable->getValues(from, system, list);
    return list;
}

// True when the parameter holds a result for the ECU: a reader of an
// unknown ECU says so with a warning.
bool hasEntry(const PowertrainParameter& parameter)
{
    LogCapture::instance().clear();
    if (auto status = dynamic_cast<const MonitorStatus*>(&parameter))
        status->getDtcCount(ecu());
    else
        texts(parameter, US_METRIC);
    return !LogCapture::instance().contains("invalid ECU id", LOG_WARN);
}

struct DecodeRow
{
    const char* name;
    Bytes pids; // every member of the family gets the row
    Bytes data;
    bool accepted;
    std::vector<double> metric;     // the values of a measurable PID
    std::vector<std::string> texts; // the texts of the others
};

const std::vector<DecodeRow>& decodeRows()
{
    static const std::vector<DecodeRow> rows = {
        { "monitor status: MIL bit 31, count 0x01", { 0x01 }, { 0x81, 0x07, 0x65, 0x00 }, true, {}, { "MIL on, 1 code, 7/7 ready" } },
        // B 07: three continuous monitors complete; C 65: catalyst, EVAP, O2, O2 heater; D 04: EVAP incomplete.
        { "drive cycle, spark: 6 of 3 + 4 complete", { 0x41 }, { 0x00, 0x07, 0x65, 0x04 }, true, {}, { "6/7 ready" } },
        // B 0F: compression ignition; C 0A: NOx/SCR and boost pressure; D 02: NOx/SCR incomplete.
        { "drive cycle, compression: 4 of 3 + 2 complete", { 0x41 }, { 0x00, 0x0F, 0x0A, 0x02 }, true, {}, { "4/5 ready" } },
        { "drive cycle: three bytes", { 0x41 }, { 0x00, 0x07, 0x65 }, false, {}, {} },
        { "monitor status: three bytes", { 0x01 }, { 0x81, 0x07, 0x65 }, false, {}, {} },
        { "freeze frame 01 33: 00 = P, 0, 1, 33 -> P0133", { 0x02 }, { 0x01, 0x33 }, true, {}, { "P0133" } },
        { "freeze frame FF FF: 11 = U, 3, F, FF -> U3FFF", { 0x02 }, { 0xFF, 0xFF }, true, {}, { "U3FFF" } },
        { "freeze frame: one byte", { 0x02 }, { 0x01 }, false, {}, {} },
        { "fuel system 02 00: bit 1; B = 0 leaves system 2 unused", { 0x03 }, { 0x02, 0x00 }, true, {}, { "Closed loop (1)", "NA" } },
        { "fuel system 01 10: bit 0 and bit 4, the lowest and highest", { 0x03 }, { 0x01, 0x10 }, true, {}, { "Open loop (0)", "Closed loop (4)" } },
        { "fuel system 20 00: bit 5 is never valid", { 0x03 }, { 0x20, 0x00 }, false, {}, {} },
        { "fuel system 03 00: two bits", { 0x03 }, { 0x03, 0x00 }, false, {}, {} },
        { "fuel system 02 06: two bits in B", { 0x03 }, { 0x02, 0x06 }, false, {}, {} },
        { "fuel system: one byte", { 0x03 }, { 0x02 }, false, {}, {} },
        { "percent 80: 128 * 100 / 255 = 50.196", PERCENT_PIDS, { 0x80 }, true, { 50.19608 }, {} },
        { "percent FF: 255 * 100 / 255 = 100", PERCENT_PIDS, { 0xFF }, true, { 100.0 }, {} },
        { "percent: two bytes", PERCENT_PIDS, { 0x80, 0x80 }, false, {}, {} },
        { "temperature 7B: 123 - 40 = 83", TEMPERATURE_PIDS, { 0x7B }, true, { 83.0 }, {} },
        { "temperature 00: -40", TEMPERATURE_PIDS, { 0x00 }, true, { -40.0 }, {} },
        { "temperature FF: 255 - 40 = 215", TEMPERATURE_PIDS, { 0xFF }, true, { 215.0 }, {} },
        { "temperature: no byte", TEMPERATURE_PIDS, {}, false, {}, {} },
        { "fuel trim 90: (144 - 128) * 100 / 128 = 12.5", FUEL_TRIM_PIDS, { 0x90 }, true, { 12.5 }, {} },
        { "fuel trim 90 12: the second bank's byte is ignored", FUEL_TRIM_PIDS, { 0x90, 0x12 }, true, { 12.5 }, {} },
        { "fuel trim 00: -128 * 100 / 128 = -100", FUEL_TRIM_PIDS, { 0x00 }, true, { -100.0 }, {} },
        { "fuel trim FF: 127 * 100 / 128 = 99.21875", FUEL_TRIM_PIDS, { 0xFF }, true, { 99.21875 }, {} },
        { "fuel trim: three bytes", FUEL_TRIM_PIDS, { 0x90, 0x12, 0x34 }, false, {}, {} },
        { "fuel pressure 64: 100 * 3 = 300", { 0x0A }, { 0x64 }, true, { 300.0 }, {} },
        { "fuel pressure FF: 255 * 3 = 765", { 0x0A }, { 0xFF }, true, { 765.0 }, {} },
        { "fuel pressure: two bytes", { 0x0A }, { 0x64, 0x00 }, false, {}, {} },
        { "manifold / barometric 65: 101 kPa", KPA_PIDS, { 0x65 }, true, { 101.0 }, {} },
        { "manifold / barometric: two bytes", KPA_PIDS, { 0x65, 0x00 }, false, {}, {} },
        { "rpm 1A F8: (26 * 256 + 248) / 4 = 1726", { 0x0C }, { 0x1A, 0xF8 }, true, { 1726.0 }, {} },
        { "rpm 0B B9: 3001 / 4 = 750.25, the quarter dropped", { 0x0C }, { 0x0B, 0xB9 }, true, { 750.0 }, {} },
        { "rpm FF FF: 65535 / 4 = 16383", { 0x0C }, { 0xFF, 0xFF }, true, { 16383.0 }, {} },
        { "rpm: one byte", { 0x0C }, { 0x1A }, false, {}, {} },
        { "rpm: three bytes", { 0x0C }, { 0x1A, 0xF8, 0x00 }, false, {}, {} },
        { "speed 3C: 60", { 0x0D }, { 0x3C }, true, { 60.0 }, {} },
        { "speed FF: 255", { 0x0D }, { 0xFF }, true, { 255.0 }, {} },
        { "speed: two bytes", { 0x0D }, { 0x3C, 0x00 }, false, {}, {} },
        { "timing 8C: 140 / 2 - 64 = 6", { 0x0E }, { 0x8C }, true, { 6.0 }, {} },
        { "timing 00: -64", { 0x0E }, { 0x00 }, true, { -64.0 }, {} },
        { "timing FF: 255 / 2 - 64 = 63.5", { 0x0E }, { 0xFF }, true, { 63.5 }, {} },
        { "air flow 01 F4: 500 / 100 = 5", { 0x10 }, { 0x01, 0xF4 }, true, { 5.0 }, {} },
        { "air flow FF FF: 65535 / 100 = 655.35", { 0x10 }, { 0xFF, 0xFF }, true, { 655.35 }, {} },
        { "air flow: one byte", { 0x10 }, { 0x01 }, false, {}, {} },
        { "secondary air 01: bit 0", { 0x12 }, { 0x01 }, true, {}, { "Upstream of first catalytic converter" } },
        { "secondary air 08: bit 3", { 0x12 }, { 0x08 }, true, {}, { "Pump commanded on for diagnostics" } },
        { "secondary air 10: bit 4 has no text", { 0x12 }, { 0x10 }, true, {}, { "NA" } },
        { "secondary air 20: bit 5 is never valid", { 0x12 }, { 0x20 }, false, {}, {} },
        { "secondary air 00: no bit", { 0x12 }, { 0x00 }, false, {}, {} },
        { "secondary air: two bytes", { 0x12 }, { 0x01, 0x00 }, false, {}, {} },
        { "O2 present (13) 11: bits 0 and 4 of two banks of four", { 0x13 }, { 0x11 }, true, {}, { "B1S1, B2S1" } },
        { "O2 present (13) FF", { 0x13 }, { 0xFF }, true, {}, { "B1S1, B1S2, B1S3, B1S4, B2S1, B2S2, B2S3, B2S4" } },
        { "O2 present (13) 00", { 0x13 }, { 0x00 }, true, {}, { "" } },
        { "O2 present (13): two bytes", { 0x13 }, { 0x0F, 0x00 }, false, {}, {} },
        { "O2 present (1D) 33: bits 0, 1, 4, 5 of four banks of two", { 0x1D }, { 0x33 }, true, {}, { "B1S1, B1S2, B3S1, B3S2" } },
        { "O2 present (1D) FF", { 0x1D }, { 0xFF }, true, {}, { "B1S1, B1S2, B2S1, B2S2, B3S1, B3S2, B4S1, B4S2" } },
        { "O2 present (1D): no byte", { 0x1D }, {}, false, {}, {} },
        { "O2 5A FF: 90 * 0.005 = 0.45 V; B = FF: no trim, 0", O2_PIDS, { 0x5A, 0xFF }, true, { 0.45, 0.0 }, {} },
        { "O2 C8 A0: 200 * 0.005 = 1 V, (160 - 128) * 100 / 128 = 25", O2_PIDS, { 0xC8, 0xA0 }, true, { 1.0, 25.0 }, {} },
        { "O2 FF 00: 1.275 V, -100", O2_PIDS, { 0xFF, 0x00 }, true, { 1.275, -100.0 }, {} },
        { "O2: one byte", O2_PIDS, { 0x5A }, false, {}, {} },
        { "OBD standard 06", { 0x1C }, { 0x06 }, true, {}, { "EOBD (Euro OBD)" } },
        { "OBD standard 0D, the last one", { 0x1C }, { 0x0D }, true, {}, { "JOBD, EOBD, and OBD II" } },
        { "OBD standard 0E is kept as 0", { 0x1C }, { 0x0E }, true, {}, { "Invalid OBD standard" } },
        { "OBD standard: two bytes", { 0x1C }, { 0x01, 0x01 }, false, {}, {} },
        { "auxiliary input 01: bit 0", { 0x1E }, { 0x01 }, true, {}, { "Power Take Off: Active" } },
        { "auxiliary input FE: bit 0 clear", { 0x1E }, { 0xFE }, true, {}, { "Power Take Off: Not active" } },
        { "run time 01 2C: 300 s", { 0x1F }, { 0x01, 0x2C }, true, {}, { "300" } },
        { "run time FF FF: 65535 s", { 0x1F }, { 0xFF, 0xFF }, true, {}, { "65535" } },
        { "run time: one byte", { 0x1F }, { 0x01 }, false, {}, {} },
        { "distance 12 34: 0x1234 = 4660 km", DISTANCE_PIDS, { 0x12, 0x34 }, true, {}, { "4660" } },
        { "distance: three bytes", DISTANCE_PIDS, { 0x12, 0x34, 0x56 }, false, {}, {} },
        { "relative rail 01 00: 256 * 5178 / 65535 = 20.22687", { 0x22 }, { 0x01, 0x00 }, true, { 20.22687 }, {} },
        { "relative rail FF FF: 5178", { 0x22 }, { 0xFF, 0xFF }, true, { 5178.0 }, {} },
        { "rail 01 00: 256 * 10 = 2560", { 0x23 }, { 0x01, 0x00 }, true, { 2560.0 }, {} },
        { "rail FF FF: 655350", { 0x23 }, { 0xFF, 0xFF }, true, { 655350.0 }, {} },
        { "rail: one byte", { 0x23 }, { 0x01 }, false, {}, {} },
        { "wide O2 voltage 80 00 80 00: 32768 * 2 / 65535 = 1.0000153, 32768 * 8 / 65535 = 4.000061 V", ERV_PIDS,
          { 0x80, 0x00, 0x80, 0x00 }, true, { 1.0000153, 4.0000610 }, {} },
        { "wide O2 voltage FF FF FF FF: 2, 8 V", ERV_PIDS, { 0xFF, 0xFF, 0xFF, 0xFF }, true, { 2.0, 8.0 }, {} },
        { "wide O2 voltage: two bytes", ERV_PIDS, { 0x80, 0x00 }, false, {}, {} },
        { "EGR error 40: (64 - 128) * 100 / 128 = -50", { 0x2D }, { 0x40 }, true, { -50.0 }, {} },
        { "EGR error: two bytes", { 0x2D }, { 0x40, 0x00 }, false, {}, {} },
        { "purge / fuel level 80: 12800 div 255 = 50, whole percent", PURGE_PIDS, { 0x80 }, true, { 50.0 }, {} },
        { "purge / fuel level 01: 100 div 255 = 0", PURGE_PIDS, { 0x01 }, true, { 0.0 }, {} },
        { "purge / fuel level FF: 100", PURGE_PIDS, { 0xFF }, true, { 100.0 }, {} },
        { "warm-ups 0A: 10", { 0x30 }, { 0x0A }, true, {}, { "10" } },
        { "warm-ups: two bytes", { 0x30 }, { 0x0A, 0x00 }, false, {}, {} },
        { "vapour FF FC: signed -4 * 0.25 = -1 Pa", { 0x32 }, { 0xFF, 0xFC }, true, { -1.0 }, {} },
        { "vapour 80 00: -32768 * 0.25 = -8192", { 0x32 }, { 0x80, 0x00 }, true, { -8192.0 }, {} },
        { "vapour 7F FF: 32767 * 0.25 = 8191.75", { 0x32 }, { 0x7F, 0xFF }, true, { 8191.75 }, {} },
        { "vapour: one byte", { 0x32 }, { 0x80 }, false, {}, {} },
        { "wide O2 current 40 00 81 00: 16384 * 2 / 65535 = 0.5000076, 33024 / 256 - 128 = 1 mA", ERC_PIDS,
          { 0x40, 0x00, 0x81, 0x00 }, true, { 0.5000076, 1.0 }, {} },
        { "wide O2 current 00 00 00 00: 0, -128 mA", ERC_PIDS, { 0x00, 0x00, 0x00, 0x00 }, true, { 0.0, -128.0 }, {} },
        { "wide O2 current FF FF FF FF: 2, 65535 / 256 - 128 = 127.99609 mA", ERC_PIDS, { 0xFF, 0xFF, 0xFF, 0xFF }, true,
          { 2.0, 127.99609 }, {} },
        { "wide O2 current: three bytes", ERC_PIDS, { 0x80, 0x00, 0x80 }, false, {}, {} },
        { "catalyst 0F A0: 4000 / 10 - 40 = 360", CATALYST_PIDS, { 0x0F, 0xA0 }, true, { 360.0 }, {} },
        { "catalyst 00 05: 0.5 - 40 = -39.5, truncated to -39", CATALYST_PIDS, { 0x00, 0x05 }, true, { -39.0 }, {} },
        { "catalyst FF FF: 6553.5 - 40 = 6513.5, truncated to 6513", CATALYST_PIDS, { 0xFF, 0xFF }, true, { 6513.0 }, {} },
        { "catalyst: one byte", CATALYST_PIDS, { 0x0F }, false, {}, {} },
    };
    return rows;
}

} // namespace

TEST(PidCatalogue, DecodesEachFamilyByHand)
{
    for (const DecodeRow& row : decodeRows()) {
        for (unsigned char pid : row.pids) {
            SCOPED_TRACE(std::string(row.name) + ", PID " + hex(pid));
            std::unique_ptr<PowertrainParameter> parameter = make(pid);
            ASSERT_TRUE(parameter);
            EXPECT_EQ(row.accepted, parseData(*parameter, row.data));
            ASSERT_EQ(row.accepted, hasEntry(*parameter)) << "a refused answer is not kept";
            if (!row.accepted)
                continue;
            const std::vector<float> got = values(*parameter, US_METRIC);
            ASSERT_EQ(row.metric.size(), got.size());
            for (size_t i = 0; i < got.size(); ++i)
                EXPECT_NEAR(row.metric[i], got[i], 1e-4 * std::max(1.0, std::fabs(row.metric[i]))) << "value " << i;
            if (got.empty()) {
                EXPECT_EQ(row.texts, texts(*parameter, US_METRIC));
            }
        }
    }
}

TEST(PidCatalogue, TextsInBothUnitSystems)
{
    struct Row
    {
        const char* name;
        unsigned char pid;
        Bytes data;
        std::vector<std::string> metric;
        std::vector<std::string> imperial;
    };
    const Row rows[] = {
        { "load 80: 50.196, one decimal", 0x04, { 0x80 }, { "50.2" }, { "50.2" } },
        { "coolant 7B: 83 C; 83 * 1.8 + 32 = 181.4 F, truncated", 0x05, { 0x7B }, { "83" }, { "181" } },
        { "coolant 00: -40 C = -40 F", 0x05, { 0x00 }, { "-40" }, { "-40" } },
        { "fuel trim 00: -100.0", 0x07, { 0x00 }, { "-100.0" }, { "-100.0" } },
        { "fuel pressure 64: 300 kPa; 300 * 0.1450377 = 43.51 psi, shown whole", 0x0A, { 0x64 }, { "300" }, { "43.0" } },
        { "manifold 65: 101 kPa; 101 * 0.29530059 = 29.8 inHg", 0x0B, { 0x65 }, { "101.0" }, { "29.8" } },
        { "rpm 1A F8: 1726 in both", 0x0C, { 0x1A, 0xF8 }, { "1726" }, { "1726" } },
        { "speed 64: 100 km/h; 100 * 0.62137 = 62.1 mph, truncated", 0x0D, { 0x64 }, { "100" }, { "62" } },
        { "air flow 01 F4: 5.00 g/s; 5 * 0.132277 = 0.661 lb/min", 0x10, { 0x01, 0xF4 }, { "5.00" }, { "0.7" } },
        { "O2 C8 A0: 1.000 V, 25.0 %", 0x14, { 0xC8, 0xA0 }, { "1.000", "25.0" }, { "1.000", "25.0" } },
        { "distance FF FF: 65535 km; 65535 * 0.62137 = 40721.5 miles", 0x31, { 0xFF, 0xFF }, { "65535" }, { "40721" } },
        { "rail 01 00: 2560 kPa; 2560 * 0.1450377 = 371.3 psi, shown whole", 0x23, { 0x01, 0x00 }, { "2560" }, { "371.0" } },
        { "vapour 80 00: -8192 Pa; -8192 * 0.0040146 = -32.888 inH2O", 0x32, { 0x80, 0x00 }, { "-8192.0" }, { "-32.888" } },
        { "wide O2 current 40 00 81 00: 0.500, 1.00 mA", 0x34, { 0x40, 0x00, 0x81, 0x00 }, { "0.500", "1.00" }, { "0.500", "1.00" } },
        { "catalyst 0F A0: 360 C; 360 * 1.8 + 32 = 680 F", 0x3C, { 0x0F, 0xA0 }, { "360" }, { "680" } },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        std::unique_ptr<PowertrainParameter> parameter = make(row.pid);
        ASSERT_TRUE(parseData(*parameter, row.data));
        EXPECT_EQ(row.metric, texts(*parameter, US_METRIC));
        EXPECT_EQ(row.imperial, texts(*parameter, US_IMPERIAL));
    }
}

TEST(PidCatalogue, ValuesAreKeptPerEcuUntilTheNextAcceptedAnswer)
{
    const Ecu second(0x7E9, PROTOCOL_CAN_11BIT, "CAN");
    EngineRpm rpm;
    ASSERT_TRUE(parseData(rpm, { 0x1A, 0xF8 }));
    ASSERT_TRUE(parseData(rpm, { 0x0B, 0xB8 }, 0x7E9));
    EXPECT_FALSE(parseData(rpm, { 0x20 }));
    EXPECT_FALSE(rpm.parse(PROTOCOL_CAN_11BIT, ECU_ID, { 0x41, 0x0D, 0x20, 0x00 })) << "the signature of PID 0D";
    EXPECT_FALSE(rpm.parse(PROTOCOL_ISO9141, ECU_ID, { 0x41, 0x0C }));
    EXPECT_FLOAT_EQ(1726.0f, rpm.getValue(ecu()));
    EXPECT_FLOAT_EQ(750.0f, rpm.getValue(second));
    ASSERT_TRUE(parseData(rpm, { 0x0F, 0xA0 }));
    EXPECT_FLOAT_EQ(1000.0f, rpm.getValue(ecu()));

    const Ecu unknown(4242, PROTOCOL_CAN_11BIT, "CAN");
    for (unsigned char pid : ParameterFactory::knownPids()) {
        SCOPED_TRACE("PID " + hex(pid));
        std::unique_ptr<PowertrainParameter> parameter = make(pid);
        parseData(*parameter, Bytes(4, 0x01));
        EXPECT_TRUE(texts(*parameter, US_METRIC, unknown).empty());
        EXPECT_TRUE(values(*parameter, US_IMPERIAL, unknown).empty());
    }
}

TEST(PidCatalogue, RequestsOfServices01And02)
{
    std::unique_ptr<PowertrainParameter> live(ParameterFactory::create(0x0C, 1));
    Bytes request;
    live->getRequest(PROTOCOL_KWP2000, request);
    EXPECT_EQ((Bytes { 0x01, 0x0C }), request);
    std::unique_ptr<PowertrainParameter> frozen(ParameterFactory::create(0x0C, 2));
    frozen->getRequest(PROTOCOL_KWP2000, request);
    EXPECT_EQ((Bytes { 0x02, 0x0C, 0x00 }), request);
    // 42 0C 00 1A F8: the data follow the frame number.
    ASSERT_TRUE(frozen->parse(PROTOCOL_KWP2000, 0x10, { 0x42, 0x0C, 0x00, 0x1A, 0xF8 }));
    EXPECT_EQ((std::vector<float> { 1726.0f }), values(*frozen, US_METRIC, Ecu(0x10, PROTOCOL_KWP2000, "KWP")));
    EXPECT_FALSE(frozen->parse(PROTOCOL_KWP2000, 0x10, { 0x41, 0x0C, 0x1A, 0xF8 })) << "a live answer";

    for (unsigned int mode : { 0u, 3u, 9u })
        EXPECT_EQ(nullptr, ParameterFactory::create(0x0C, static_cast<unsigned char>(mode))) << mode;
}

TEST(PidCatalogue, OxygenSensorNamesFollowTheLayoutTheEcuSupports)
{
    // PID 13: two banks of four sensors; PID 1D: four banks of two. 13 wins.
    Ecu with13(1, PROTOCOL_CAN_11BIT, "CAN");
    with13.addSupported(1, 0x13);
    Ecu with1d(2, PROTOCOL_CAN_11BIT, "CAN");
    with1d.addSupported(1, 0x1D);
    Ecu withBoth(3, PROTOCOL_CAN_11BIT, "CAN");
    withBoth.setSupported(1, { 0x1D, 0x13 });
    Ecu withNeither(4, PROTOCOL_CAN_11BIT, "CAN");
    withNeither.addSupported(1, 0x0C);
    struct Row
    {
        unsigned char pid;
        const Ecu& ecu;
        const char* name;
    };
    const Row rows[] = {
        { 0x16, with13, "Bank 1 - Sensor 3" },
        { 0x16, with1d, "Bank 2 - Sensor 1" },
        { 0x16, withBoth, "Bank 1 - Sensor 3" },
        { 0x16, withNeither, "" },
        { 0x1B, with1d, "Bank 4 - Sensor 2" },
        { 0x26, with1d, "Bank 2 - Sensor 1 (wide range O2S)" },
        { 0x3B, with13, "Bank 2 - Sensor 4 (wide range O2S)" },
        { 0x0C, with1d, "Engine RPM" },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE("PID " + hex(row.pid) + ", ECU " + std::to_string(row.ecu.getId()));
        EXPECT_EQ(row.name, make(row.pid)->getName(row.ecu));
    }
}

TEST(PidCatalogue, PidByName)
{
    const std::pair<const char*, int> rows[] = {
        { "rpm", 0x0C }, { "RPM", 0x0C }, { "coolant", 0x05 }, { "engine coolant temperature", 0x05 },
        { "VEHICLE SPEED SENSOR", 0x0D }, { "Location of Oxygen Sensors", 0x13 }, { "Bank 2 - Sensor 4", 0x1B },
        { "bank 1 - sensor 1 (wide range o2s)", 0x24 }, { "0x0c", 0x0C }, { "0X3F", 0x3F },
        { "0x100", -1 }, { "0xzz", -1 }, { "revs", -1 }, { "", -1 }, { "rpm ", -1 },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string("'") + row.first + "'");
        EXPECT_EQ(row.second, ParameterFactory::pidByName(row.first));
    }
}
