// Trouble codes: the two bytes of a code, the code database, stored and
// pending codes in the counted (CAN) and frame (legacy) layouts, clearing,
// the freeze-frame code and the monitor status word of PID 01.

#include "dtc.h"
#include "ecu.h"
#include "iscantool.h"
#include "logcapture.h"
#include "trlog.h"

#include "parameters/cleartroublecodes.h"
#include "parameters/pendingtroublecodes.h"
#include "parameters/storedtroublecodes.h"
#include "powertrain/freezeframetroublecode.h"
#include "powertrain/monitorstatus.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

using namespace Obd;

namespace {

typedef std::vector<unsigned char> Bytes;
typedef std::vector<std::string> Codes;

const unsigned int ECU_ID = 0x7E8;

Ecu ecu(unsigned int id = ECU_ID)
{
    return Ecu(id, PROTOCOL_CAN_11BIT, "CAN");
}

Codes codesOf(const DtcParameter& parameter, unsigned int ecuId = ECU_ID)
{
    std::vector<Dtc> dtcs;
    parameter.getDtcs(ecu(ecuId), dtcs);
    Codes codes;
    for (const Dtc& dtc : dtcs)
        codes.push_back(dtc.getCode());
    return codes;
}

} // namespace

TEST(Dtc, CodeFromTwoBytesWithCategoryAndDescription)
{
    // A = [7:6] letter P C B U, [5:4] first digit, [3:0] second digit; B = the last two.
    struct Row
    {
        const char* name;
        unsigned char a;
        unsigned char b;
        const char* code;
        const char* category;
        const char* description; // nullptr: not looked at
    };
    const Row rows[] = {
        { "03 00: 00 = P, 0, 3, 00", 0x03, 0x00, "P0300", "Powertrain", "Random/Multiple Cylinder Misfire Detected" },
        { "12 34: 00 = P, 1 (manufacturer, not in the database)", 0x12, 0x34, "P1234", "Powertrain", "manufacturer-specific" },
        { "20 35: 00 = P, 2", 0x20, 0x35, "P2035", "Powertrain", "Exhaust Gas Temperature Sensor Circuit Low (Bank 2 Sensor 2)" },
        { "40 35: 01 = C, 0", 0x40, 0x35, "C0035", "Chassis", "Right Front Wheel Speed Sensor Supply" },
        { "80 01: 10 = B, 0", 0x80, 0x01, "B0001", "Body", "Driver Frontal Stage 1 Deployment Control" },
        { "9A BC: 10 = B, 1, A, BC in upper case", 0x9A, 0xBC, "B1ABC", "Body", "manufacturer-specific" },
        { "33 FF: P3, 3 (last of the makers' P3 block)", 0x33, 0xFF, "P33FF", "Powertrain", "manufacturer-specific" },
        { "34 A0: P3, 4 (past the makers' P3 block, not in the database)", 0x34, 0xA0, "P34A0", "Powertrain", "ISO/SAE Reserved" },
        { "6F FF: 01 = C, 2 (makers')", 0x6F, 0xFF, "C2FFF", "Chassis", "manufacturer-specific" },
        { "C1 00: 11 = U, 0", 0xC1, 0x00, "U0100", "Network", "Lost Communication With ECM/PCM \"A\"" },
        { "F0 11: 11 = U, 3", 0xF0, 0x11, "U3011", "Network", "Ignition Input Off" },
        { "00 01: B alone makes a code", 0x00, 0x01, "P0001", "Powertrain", nullptr },
        { "FF FF: the highest", 0xFF, 0xFF, "U3FFF", "Network", "ISO/SAE Reserved" },
        { "00 00: no code", 0x00, 0x00, "", nullptr, nullptr },
        { "10 00: no code, the upper nibble is not looked at", 0x10, 0x00, "", nullptr, nullptr },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(row.code, Dtc::codeFromBytes(row.a, row.b));
        EXPECT_EQ(!*row.code, Dtc::isEmptyPair(row.a, row.b));
        if (!*row.code)
            continue;
        const Dtc dtc = Dtc::describe(row.code);
        EXPECT_EQ(row.category, dtc.getCategory());
        if (row.description) {
            EXPECT_EQ(row.description, dtc.getDescription());
        }
    }
}

TEST(Dtc, LookupIsExactAndCategoryComesFromTheLetter)
{
    const std::pair<const char*, const char*> rows[] = {
        { "p0300", "Undefined" }, { "P0364", "Powertrain" }, { "U3012", "Network" },
        { "P0300 ", "Powertrain" }, { "P030", "Powertrain" }, { "X0001", "Undefined" }, { "", "Undefined" },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(std::string("'") + row.first + "'");
        const Dtc dtc = Dtc::describe(row.first);
        EXPECT_EQ("ISO/SAE Reserved", dtc.getDescription());
        EXPECT_EQ(row.second, dtc.getCategory());
    }
}

TEST(TroubleCodes, StoredAndPendingAnswers)
{
    enum Kind { STORED, PENDING };
    struct Row
    {
        const char* name;
        Kind kind;
        unsigned int protocol;
        Bytes data; // the ECU's message, signature included
        bool accepted;
        Codes codes;
        const char* log; // a log text expected, or nullptr
    };
    const Row rows[] = {
        // Counted layout: [43][N][N pairs]
        { "CAN 43 02 01 33 00 00: the 00 00 pair skipped", STORED, PROTOCOL_CAN_11BIT, { 0x43, 0x02, 0x01, 0x33, 0x00, 0x00 }, true, { "P0133" }, "DTC count 2" },
        { "CAN 43 03: three codes in order", STORED, PROTOCOL_CAN_11BIT, { 0x43, 0x03, 0x03, 0x00, 0xC1, 0x00, 0x40, 0x35 }, true, { "P0300", "U0100", "C0035" }, nullptr },
        { "CAN 29-bit counts too", STORED, PROTOCOL_CAN_29BIT, { 0x43, 0x01, 0x80, 0x01 }, true, { "B0001" }, nullptr },
        { "CAN 43 00: no codes", STORED, PROTOCOL_CAN_11BIT, { 0x43, 0x00 }, true, {}, "DTC count 0" },
        { "CAN 43 03 with one pair: accepted without codes", STORED, PROTOCOL_CAN_11BIT, { 0x43, 0x03, 0x01, 0x33 }, true, {}, "Invalid length: 4" },
        { "CAN 43 01 and a byte too many", STORED, PROTOCOL_CAN_11BIT, { 0x43, 0x01, 0x01, 0x33, 0x00 }, true, {}, "Invalid length: 5" },
        { "CAN 43 alone: no count byte", STORED, PROTOCOL_CAN_11BIT, { 0x43 }, false, {}, nullptr },
        // Frame layout: 7-byte frames [43][3 pairs]
        { "ISO 9141 one code", STORED, PROTOCOL_ISO9141, { 0x43, 0x01, 0x33, 0x00, 0x00, 0x00, 0x00 }, true, { "P0133" }, nullptr },
        { "KWP three codes", STORED, PROTOCOL_KWP2000, { 0x43, 0x01, 0x71, 0x04, 0x20, 0x03, 0x00 }, true, { "P0171", "P0420", "P0300" }, nullptr },
        { "J1850 two frames", STORED, PROTOCOL_J1850, { 0x43, 0x01, 0x33, 0x00, 0x00, 0x00, 0x00, 0x43, 0x9A, 0xBC, 0x10, 0x00, 0x41, 0x23 }, true, { "P0133", "B1ABC", "C0123" }, nullptr },
        { "ISO 9141 13 bytes", STORED, PROTOCOL_ISO9141, { 0x43, 0x01, 0x33, 0x00, 0x00, 0x00, 0x00, 0x43, 0x01, 0x34, 0x00, 0x00, 0x00 }, false, {}, "Invalid length: 13" },
        { "KWP 43 01: a counted answer on a legacy protocol", STORED, PROTOCOL_KWP2000, { 0x43, 0x01 }, false, {}, "Invalid length: 2" },
        { "second frame without 43: the first frame's codes stay", STORED, PROTOCOL_ISO9141, { 0x43, 0x01, 0x33, 0x00, 0x00, 0x00, 0x00, 0x47, 0x01, 0x34, 0x00, 0x00, 0x00, 0x00 }, false, { "P0133" }, "Invalid data received" },
        { "a pending answer to the stored request", STORED, PROTOCOL_CAN_11BIT, { 0x47, 0x01, 0x01, 0x71 }, false, {}, "Signature mismatch" },
        // Pending codes: the same layouts under 47
        { "pending CAN 47 01 01 71", PENDING, PROTOCOL_CAN_11BIT, { 0x47, 0x01, 0x01, 0x71 }, true, { "P0171" }, nullptr },
        { "pending ISO 9141 frame", PENDING, PROTOCOL_ISO9141, { 0x47, 0x04, 0x20, 0x00, 0x00, 0x00, 0x00 }, true, { "P0420" }, nullptr },
        { "pending answer with a stored frame", PENDING, PROTOCOL_ISO9141, { 0x47, 0x04, 0x20, 0x00, 0x00, 0x00, 0x00, 0x43, 0x01, 0x33, 0x00, 0x00, 0x00, 0x00 }, false, { "P0420" }, "Invalid data received" },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        LogCapture::instance().clear();
        StoredTroubleCodes stored;
        PendingTroubleCodes pending;
        DtcParameter& parameter = row.kind == STORED ? static_cast<DtcParameter&>(stored) : pending;
        EXPECT_EQ(row.accepted, parameter.parse(row.protocol, ECU_ID, row.data));
        EXPECT_EQ(row.codes, codesOf(parameter));
        if (row.log) {
            EXPECT_TRUE(LogCapture::instance().contains(row.log)) << LogCapture::instance().dump();
        }
    }
}

TEST(TroubleCodes, EachAnswerReplacesTheEcusListAndARefusedOneKeepsIt)
{
    StoredTroubleCodes stored;
    ASSERT_TRUE(stored.parse(PROTOCOL_CAN_11BIT, ECU_ID, { 0x43, 0x02, 0x01, 0x33, 0x03, 0x00 }));
    ASSERT_TRUE(stored.parse(PROTOCOL_CAN_11BIT, 0x7E9, { 0x43, 0x01, 0x01, 0x71 }));
    ASSERT_TRUE(stored.parse(PROTOCOL_CAN_11BIT, ECU_ID, { 0x43, 0x01, 0x03, 0x00 }));
    EXPECT_EQ((Codes { "P0300" }), codesOf(stored));
    EXPECT_EQ((Codes { "P0171" }), codesOf(stored, 0x7E9));
    EXPECT_FALSE(stored.parse(PROTOCOL_CAN_11BIT, ECU_ID, { 0x43 }));
    EXPECT_EQ((Codes { "P0300" }), codesOf(stored));
    ASSERT_TRUE(stored.parse(PROTOCOL_CAN_11BIT, ECU_ID, { 0x43, 0x00 })); // cleared in the car
    EXPECT_TRUE(codesOf(stored).empty());

    LogCapture::instance().clear();
    std::vector<Dtc> dtcs;
    EXPECT_FALSE(stored.getDtcs(ecu(4242), dtcs));
    EXPECT_TRUE(LogCapture::instance().contains("invalid ECU id 4242", LOG_WARN));
}

TEST(TroubleCodes, ClearingIsConfirmedByTheSingleByte44)
{
    ClearTroubleCodes clear;
    EXPECT_TRUE(clear.parse(PROTOCOL_CAN_11BIT, ECU_ID, { 0x44 }));
    EXPECT_TRUE(clear.isCleared(ecu()));
    EXPECT_FALSE(clear.parse(PROTOCOL_CAN_11BIT, ECU_ID, { 0x44, 0x00 }));
    EXPECT_FALSE(clear.isCleared(ecu())) << "a later refused answer stores false";
    EXPECT_FALSE(clear.parse(PROTOCOL_CAN_11BIT, 0x7E9, { 0x7F, 0x04, 0x22 })); // negative response
    EXPECT_FALSE(clear.isCleared(ecu(0x7E9)));
}

TEST(TroubleCodes, FreezeFrameCodeOfService02)
{
    FreezeFrameTroubleCode code;
    Bytes request;
    code.getRequest(PROTOCOL_KWP2000, request);
    EXPECT_EQ((Bytes { 0x02, 0x02, 0x00 }), request);
    const Ecu kwp(0x10, PROTOCOL_KWP2000, "KWP");
    ASSERT_TRUE(code.parse(PROTOCOL_KWP2000, 0x10, { 0x42, 0x02, 0x00, 0x40, 0x35 }));
    EXPECT_EQ("C0035", code.getCode(kwp));
    EXPECT_EQ("Chassis", code.getCategory(kwp));
    EXPECT_EQ("Right Front Wheel Speed Sensor Supply", code.getDescription(kwp));
    EXPECT_FALSE(code.parse(PROTOCOL_KWP2000, 0x10, { 0x42, 0x02, 0x00, 0x40 }));
    EXPECT_EQ("C0035", code.getCode(kwp)) << "a refused answer keeps the code";
    ASSERT_TRUE(code.parse(PROTOCOL_KWP2000, 0x10, { 0x42, 0x02, 0x00, 0x10, 0x00 }));
    EXPECT_EQ("", code.getCode(kwp)) << "10 00: no code stored";
}

TEST(MonitorStatusWord, BitsOfTheFourBytes)
{
    // W = A B C D. A: bit 7 MIL, bits 0-6 code count. B: bits 0-2 continuous
    // monitors supported, bit 3 compression ignition, bits 4-6 incomplete.
    // C: supported, D: incomplete, of the non-continuous ones. Per monitor id
    // 0..17: '-' not supported, 'i' incomplete, 'c' complete.
    struct Row
    {
        const char* name;
        Bytes data;
        bool mil;
        unsigned int codes;
        bool compression;
        const char* monitors;
    };
    const Row rows[] = {
        { "81 07 65 00: MIL, 1 code, spark; C = 0110 0101: catalyst, evap, O2, O2 heater", { 0x81, 0x07, 0x65, 0x00 },
          true, 1, false, "cccc-c-cc-c--cc---" },
        { "7F 7D FF 0F: 127 codes, compression; B = 0111 1101, D = 0000 1111", { 0x7F, 0x7D, 0xFF, 0x0F },
          false, 127, true, "i-iiiiiccciiicccc-" },
        { "00 00 00 00: nothing", { 0x00, 0x00, 0x00, 0x00 }, false, 0, false, "------------------" },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        MonitorStatus status;
        Bytes message { 0x41, 0x01 };
        message.insert(message.end(), row.data.begin(), row.data.end());
        ASSERT_TRUE(status.parse(PROTOCOL_CAN_11BIT, ECU_ID, message));
        EXPECT_EQ(row.mil, status.isMilOn(ecu()));
        EXPECT_EQ(row.codes, status.getDtcCount(ecu()));
        EXPECT_EQ(row.compression, status.isCompressionIgnition(ecu()));
        std::string monitors;
        for (unsigned int id = 0; id < 18; ++id)
            monitors += !status.isSupported(ecu(), id) ? '-' : status.isComplete(ecu(), id) ? 'c' : 'i';
        EXPECT_EQ(row.monitors, monitors);
    }
}
