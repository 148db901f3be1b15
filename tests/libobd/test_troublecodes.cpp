// Trouble codes: the DTC record and byte conversion, stored/pending codes in
// the counted (CAN) and frame (legacy) layouts, clearing, the freeze-frame
// code and the monitor status of PID 01.

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

#include <random>
#include <string>
#include <vector>

using namespace Obd;

namespace {

typedef std::vector<unsigned char> Bytes;

const unsigned int ECU_ID = 0x7E8;
const unsigned int OTHER_ECU_ID = 0x7E9;

std::vector<std::string> codesOf(const DtcParameter& parameter, unsigned int ecuId = ECU_ID)
{
    std::vector<Dtc> dtcs;
    parameter.getDtcs(Ecu(ecuId, PROTOCOL_CAN_11BIT, "CAN"), dtcs);
    std::vector<std::string> codes;
    for (const Dtc& dtc : dtcs)
        codes.push_back(dtc.getCode());
    return codes;
}

typedef std::vector<std::string> Codes;

} // namespace

// ---------------------------------------------------------------------------
// Dtc record and conversion
// ---------------------------------------------------------------------------

TEST(Dtc, ConstructionAndSetters)
{
    Dtc empty;
    EXPECT_EQ("", empty.getCode());
    EXPECT_EQ("", empty.getDescription());
    EXPECT_EQ("", empty.getCategory());
    Dtc dtc("P0301");
    EXPECT_EQ("P0301", dtc.getCode());
    EXPECT_EQ("", dtc.getDescription());
    EXPECT_EQ("", dtc.getCategory());
    dtc.setDescription("Cylinder 1 Misfire Detected");
    dtc.setCategory("Powertrain");
    dtc.setCode("P0302");
    EXPECT_EQ("P0302", dtc.getCode());
    EXPECT_EQ("Cylinder 1 Misfire Detected", dtc.getDescription());
    EXPECT_EQ("Powertrain", dtc.getCategory());
}

TEST(Dtc, CategoryByFirstCharacter)
{
    EXPECT_EQ("Powertrain", Dtc::categoryOf("P0300"));
    EXPECT_EQ("Body", Dtc::categoryOf("B0001"));
    EXPECT_EQ("Chassis", Dtc::categoryOf("C0035"));
    EXPECT_EQ("Network", Dtc::categoryOf("U3011"));
    EXPECT_EQ("Undefined", Dtc::categoryOf("X1234"));
    EXPECT_EQ("Undefined", Dtc::categoryOf("p0300"));
    EXPECT_EQ("Undefined", Dtc::categoryOf(""));
}

TEST(Dtc, AllSixteenPrefixes)
{
    // A = prefix nibble, then digit 1; B = 23.
    const char* const expected[16] = { "P0123", "P1123", "P2123", "P3123", "C0123", "C1123", "C2123", "C3123",
                                       "B0123", "B1123", "B2123", "B3123", "U0123", "U1123", "U2123", "U3123" };
    for (unsigned int nibble = 0; nibble < 16; ++nibble) {
        SCOPED_TRACE("prefix nibble " + std::to_string(nibble));
        EXPECT_EQ(expected[nibble], Dtc::codeFromBytes(static_cast<unsigned char>(nibble << 4 | 0x01), 0x23));
    }
}

TEST(Dtc, ConversionEdgeCases)
{
    struct Row
    {
        const char* name;
        unsigned char a;
        unsigned char b;
        const char* code;
    };
    const std::vector<Row> rows = {
        { "01 33 -> P0 1 33", 0x01, 0x33, "P0133" },
        { "41 23 -> C0 1 23", 0x41, 0x23, "C0123" },
        { "C1 00 -> U0 1 00", 0xC1, 0x00, "U0100" },
        { "9A BC -> B1 A BC, upper case", 0x9A, 0xBC, "B1ABC" },
        { "0A 0B -> P0 A 0B, second byte zero-filled", 0x0A, 0x0B, "P0A0B" },
        { "00 01 -> P0001: B alone makes a code", 0x00, 0x01, "P0001" },
        { "F0 01 -> U3001", 0xF0, 0x01, "U3001" },
        { "FF FF -> U3FFF", 0xFF, 0xFF, "U3FFF" },
        { "00 00 -> no code", 0x00, 0x00, "" },
        { "10 00 -> no code: the upper nibble is not looked at", 0x10, 0x00, "" },
        { "F0 00 -> no code", 0xF0, 0x00, "" },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(row.code, Dtc::codeFromBytes(row.a, row.b));
        EXPECT_EQ(std::string(row.code).empty(), Dtc::isEmptyPair(row.a, row.b));
    }
}

TEST(Dtc, DescribeUsesTheDatabase)
{
    Dtc misfire = Dtc::describe("P0300");
    EXPECT_EQ("P0300", misfire.getCode());
    EXPECT_EQ("Random/Multiple Cylinder Misfire Detected", misfire.getDescription());
    EXPECT_EQ("Powertrain", misfire.getCategory());
    Dtc network = Dtc::describe("U0100");
    EXPECT_EQ("Lost Communication With ECM/PCM \"A\"", network.getDescription());
    EXPECT_EQ("Network", network.getCategory());
    Dtc manufacturer = Dtc::describe("P1234"); // no P1 codes in the database
    EXPECT_EQ("ISO/SAE Reserved", manufacturer.getDescription());
    EXPECT_EQ("Powertrain", manufacturer.getCategory());
}

// ---------------------------------------------------------------------------
// Stored and pending codes
// ---------------------------------------------------------------------------

TEST(TroubleCodes, RequestsAndSignatures)
{
    StoredTroubleCodes stored;
    PendingTroubleCodes pending;
    ClearTroubleCodes clear;
    Bytes bytes;
    stored.getRequest(PROTOCOL_CAN_11BIT, bytes);
    EXPECT_EQ((Bytes{ 0x03 }), bytes);
    stored.getSignature(bytes);
    EXPECT_EQ((Bytes{ 0x43 }), bytes);
    pending.getRequest(PROTOCOL_CAN_11BIT, bytes);
    EXPECT_EQ((Bytes{ 0x07 }), bytes);
    pending.getSignature(bytes);
    EXPECT_EQ((Bytes{ 0x47 }), bytes);
    clear.getRequest(PROTOCOL_CAN_11BIT, bytes);
    EXPECT_EQ((Bytes{ 0x04 }), bytes);
    clear.getSignature(bytes);
    EXPECT_EQ((Bytes{ 0x44 }), bytes);
}

namespace {

struct CodeRow
{
    const char* name;
    unsigned int protocol;
    Bytes data; // the ECU's message, signature included
    bool accepted;
    Codes codes;
    const char* log; // expected log text, or nullptr
    int level;
};

} // namespace

TEST(TroubleCodes, StoredCodesRows)
{
    const std::vector<CodeRow> rows = {
        // Counted layout: [43][N][pairs]
        { "CAN 43 02 01 33 00 00: one code, the 00 00 pair skipped", PROTOCOL_CAN_11BIT, { 0x43, 0x02, 0x01, 0x33, 0x00, 0x00 }, true, { "P0133" }, "DTC count 2", LOG_DEBUG },
        { "CAN 43 03 03 00 C1 00 40 35: three codes in order", PROTOCOL_CAN_11BIT, { 0x43, 0x03, 0x03, 0x00, 0xC1, 0x00, 0x40, 0x35 }, true, { "P0300", "U0100", "C0035" }, "DTC count 3", LOG_DEBUG },
        { "29-bit CAN counts too: 43 01 80 01", PROTOCOL_CAN_29BIT, { 0x43, 0x01, 0x80, 0x01 }, true, { "B0001" }, nullptr, 0 },
        { "CAN 43 00: no codes", PROTOCOL_CAN_11BIT, { 0x43, 0x00 }, true, {}, "DTC count 0", LOG_DEBUG },
        { "CAN 43 03 01 33: 2 bytes for 3 pairs, accepted without codes", PROTOCOL_CAN_11BIT, { 0x43, 0x03, 0x01, 0x33 }, true, {}, "Invalid length: 4", LOG_ERROR },
        { "CAN 43 01 01 33 00: one byte too many", PROTOCOL_CAN_11BIT, { 0x43, 0x01, 0x01, 0x33, 0x00 }, true, {}, "Invalid length: 5", LOG_ERROR },
        { "CAN 43 FF: count without pairs", PROTOCOL_CAN_11BIT, { 0x43, 0xFF }, true, {}, "Invalid length: 2", LOG_ERROR },
        { "CAN 43 alone: no count byte", PROTOCOL_CAN_11BIT, { 0x43 }, false, {}, nullptr, 0 },
        // Frame layout: 7-byte frames [43][3 pairs]
        { "ISO 9141 43 01 33 00 00 00 00: one code", PROTOCOL_ISO9141, { 0x43, 0x01, 0x33, 0x00, 0x00, 0x00, 0x00 }, true, { "P0133" }, nullptr, 0 },
        { "KWP 43 01 71 04 20 03 00: three codes", PROTOCOL_KWP2000, { 0x43, 0x01, 0x71, 0x04, 0x20, 0x03, 0x00 }, true, { "P0171", "P0420", "P0300" }, nullptr, 0 },
        { "J1850 two frames: 43 01 33 00 00 00 00 | 43 9A BC 10 00 41 23", PROTOCOL_J1850, { 0x43, 0x01, 0x33, 0x00, 0x00, 0x00, 0x00, 0x43, 0x9A, 0xBC, 0x10, 0x00, 0x41, 0x23 }, true, { "P0133", "B1ABC", "C0123" }, nullptr, 0 },
        { "ISO 9141 43 00 00 00 00 00 00: no codes", PROTOCOL_ISO9141, { 0x43, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00 }, true, {}, nullptr, 0 },
        { "ISO 9141 13 bytes", PROTOCOL_ISO9141, { 0x43, 0x01, 0x33, 0x00, 0x00, 0x00, 0x00, 0x43, 0x01, 0x34, 0x00, 0x00, 0x00 }, false, {}, "Invalid length: 13", LOG_ERROR },
        { "KWP 43 01: a counted answer on a legacy protocol", PROTOCOL_KWP2000, { 0x43, 0x01 }, false, {}, "Invalid length: 2", LOG_ERROR },
        { "unknown protocol uses frames too", PROTOCOL_UNKNOWN, { 0x43, 0x01, 0x33, 0x00, 0x00, 0x00, 0x00 }, true, { "P0133" }, nullptr, 0 },
        { "second frame without 43: the first frame's codes stay", PROTOCOL_ISO9141, { 0x43, 0x01, 0x33, 0x00, 0x00, 0x00, 0x00, 0x47, 0x01, 0x34, 0x00, 0x00, 0x00, 0x00 }, false, { "P0133" }, "Invalid data received", LOG_ERROR },
    };
    for (const CodeRow& row : rows) {
        SCOPED_TRACE(row.name);
        LogCapture::instance().clear();
        StoredTroubleCodes stored;
        EXPECT_EQ(row.accepted, stored.parse(row.protocol, ECU_ID, row.data));
        EXPECT_EQ(row.codes, codesOf(stored));
        if (row.log) {
            LogCapture::Record record = LogCapture::instance().find(row.log);
            EXPECT_EQ(row.log, record.message);
            EXPECT_EQ(row.level, record.level);
            EXPECT_EQ("libobd/parameters/dtcparameter.cpp", record.file);
        }
    }
}

TEST(TroubleCodes, CodesCarryDescriptionAndCategory)
{
    StoredTroubleCodes stored;
    ASSERT_TRUE(stored.parse(PROTOCOL_CAN_11BIT, ECU_ID, { 0x43, 0x03, 0x03, 0x00, 0xD2, 0x34, 0x80, 0x01 }));
    std::vector<Dtc> dtcs;
    ASSERT_TRUE(stored.getDtcs(Ecu(ECU_ID, PROTOCOL_CAN_11BIT, "CAN"), dtcs));
    ASSERT_EQ(3u, dtcs.size());
    EXPECT_EQ("Random/Multiple Cylinder Misfire Detected", dtcs[0].getDescription());
    EXPECT_EQ("Powertrain", dtcs[0].getCategory());
    EXPECT_EQ("U1234", dtcs[1].getCode());
    EXPECT_EQ("ISO/SAE Reserved", dtcs[1].getDescription());
    EXPECT_EQ("Network", dtcs[1].getCategory());
    EXPECT_EQ("Driver Frontal Stage 1 Deployment Control", dtcs[2].getDescription());
    EXPECT_EQ("Body", dtcs[2].getCategory());
}

TEST(TroubleCodes, PendingCodesUseTheirOwnSignature)
{
    PendingTroubleCodes pending;
    ASSERT_TRUE(pending.parse(PROTOCOL_CAN_11BIT, ECU_ID, { 0x47, 0x01, 0x01, 0x71 }));
    EXPECT_EQ((Codes{ "P0171" }), codesOf(pending));
    ASSERT_TRUE(pending.parse(PROTOCOL_ISO9141, 0x10, { 0x47, 0x04, 0x20, 0x00, 0x00, 0x00, 0x00 }));
    EXPECT_EQ((Codes{ "P0420" }), codesOf(pending, 0x10));
    // A stored-codes frame inside a pending answer is refused.
    EXPECT_FALSE(pending.parse(PROTOCOL_ISO9141, 0x10, { 0x47, 0x04, 0x20, 0x00, 0x00, 0x00, 0x00,
                                                         0x43, 0x01, 0x33, 0x00, 0x00, 0x00, 0x00 }));
    LogCapture::instance().clear();
    StoredTroubleCodes stored;
    EXPECT_FALSE(stored.parse(PROTOCOL_CAN_11BIT, ECU_ID, { 0x47, 0x01, 0x01, 0x71 }));
    EXPECT_TRUE(LogCapture::instance().contains("Signature mismatch", LOG_ERROR));
}

TEST(TroubleCodes, NewAnswerReplacesTheList)
{
    StoredTroubleCodes stored;
    ASSERT_TRUE(stored.parse(PROTOCOL_CAN_11BIT, ECU_ID, { 0x43, 0x02, 0x01, 0x33, 0x03, 0x00 }));
    ASSERT_TRUE(stored.parse(PROTOCOL_CAN_11BIT, OTHER_ECU_ID, { 0x43, 0x01, 0x01, 0x71 }));
    ASSERT_TRUE(stored.parse(PROTOCOL_CAN_11BIT, ECU_ID, { 0x43, 0x01, 0x03, 0x00 }));
    EXPECT_EQ((Codes{ "P0300" }), codesOf(stored)) << "the same codes read twice are not doubled";
    EXPECT_EQ((Codes{ "P0171" }), codesOf(stored, OTHER_ECU_ID));
    std::vector<unsigned int> ids;
    stored.getEcuIds(ids);
    EXPECT_EQ((std::vector<unsigned int>{ ECU_ID, OTHER_ECU_ID }), ids);
    // Cleared in the car: the next answer has no codes.
    ASSERT_TRUE(stored.parse(PROTOCOL_CAN_11BIT, ECU_ID, { 0x43, 0x00 }));
    EXPECT_TRUE(codesOf(stored).empty());
}

TEST(TroubleCodes, RefusedAnswerKeepsThePreviousList)
{
    StoredTroubleCodes stored;
    ASSERT_TRUE(stored.parse(PROTOCOL_ISO9141, 0x10, { 0x43, 0x01, 0x33, 0x00, 0x00, 0x00, 0x00 }));
    EXPECT_FALSE(stored.parse(PROTOCOL_ISO9141, 0x10, { 0x43, 0x03, 0x00, 0x00 }));
    EXPECT_EQ((Codes{ "P0133" }), codesOf(stored, 0x10));
    StoredTroubleCodes can;
    ASSERT_TRUE(can.parse(PROTOCOL_CAN_11BIT, ECU_ID, { 0x43, 0x01, 0x01, 0x33 }));
    EXPECT_FALSE(can.parsePayload(ECU_ID, { 0x43 }));
    EXPECT_EQ((Codes{ "P0133" }), codesOf(can));
}

TEST(TroubleCodes, UnknownEcuWarns)
{
    LogCapture::instance().clear();
    StoredTroubleCodes stored;
    std::vector<Dtc> dtcs;
    EXPECT_FALSE(stored.getDtcs(Ecu(4242, PROTOCOL_CAN_11BIT, "CAN"), dtcs));
    EXPECT_TRUE(dtcs.empty());
    LogCapture::Record record = LogCapture::instance().find("invalid ECU id 4242");
    EXPECT_EQ(LOG_WARN, record.level);
}

TEST(TroubleCodes, RandomAnswersOfEveryLength)
{
    std::mt19937 random(7u);
    std::uniform_int_distribution<int> byte(0, 255);
    for (unsigned int protocol = PROTOCOL_ISO9141; protocol <= PROTOCOL_UNKNOWN; ++protocol) {
        for (size_t length = 0; length <= 40; ++length) {
            SCOPED_TRACE("protocol " + std::to_string(protocol) + ", length " + std::to_string(length));
            for (int round = 0; round < 8; ++round) {
                Bytes data(length);
                for (unsigned char& b : data)
                    b = static_cast<unsigned char>(byte(random));
                if (!data.empty() && round % 2 == 0)
                    data[0] = 0x43; // past the signature check
                StoredTroubleCodes stored;
                const bool accepted = stored.parsePayload(ECU_ID, data) || stored.parse(protocol, ECU_ID, data);
                const Codes codes = codesOf(stored);
                if (!accepted)
                    continue;
                // Never more codes than pairs; each code is five characters.
                EXPECT_LE(codes.size(), length / 2);
                for (const std::string& code : codes)
                    EXPECT_EQ(5u, code.size());
            }
        }
    }
}

// ---------------------------------------------------------------------------
// Clearing
// ---------------------------------------------------------------------------

TEST(ClearCodes, ConfirmationIsTheSingleByte44)
{
    Ecu ecu(ECU_ID, PROTOCOL_CAN_11BIT, "CAN");
    ClearTroubleCodes clear;
    EXPECT_TRUE(clear.parse(PROTOCOL_CAN_11BIT, ECU_ID, { 0x44 }));
    EXPECT_TRUE(clear.isCleared(ecu));

    LogCapture::instance().clear();
    EXPECT_FALSE(clear.parse(PROTOCOL_CAN_11BIT, ECU_ID, { 0x44, 0x00 }));
    EXPECT_FALSE(clear.isCleared(ecu)) << "a later refused answer stores false";
    LogCapture::Record record = LogCapture::instance().find("Failed to parse response");
    EXPECT_EQ(LOG_ERROR, record.level);
    EXPECT_EQ("libobd/parameters/cleartroublecodes.cpp", record.file);

    // A negative response (7F 04 22) is not a confirmation.
    EXPECT_FALSE(clear.parse(PROTOCOL_CAN_11BIT, OTHER_ECU_ID, { 0x7F, 0x04, 0x22 }));
    LogCapture::instance().clear();
    EXPECT_FALSE(clear.isCleared(Ecu(OTHER_ECU_ID, PROTOCOL_CAN_11BIT, "CAN")));
    EXPECT_TRUE(LogCapture::instance().contains("invalid ECU id 2025", LOG_WARN));
}

// ---------------------------------------------------------------------------
// Freeze-frame trouble code (service 02 PID 02)
// ---------------------------------------------------------------------------

TEST(FreezeFrameCode, RequestAndDecode)
{
    FreezeFrameTroubleCode code;
    EXPECT_EQ("Freeze Frame Trouble Code", code.getName());
    EXPECT_EQ(0x02, code.getPid());
    Bytes request;
    code.getRequest(PROTOCOL_KWP2000, request);
    EXPECT_EQ((Bytes{ 0x02, 0x02, 0x00 }), request);

    Ecu ecu(0x10, PROTOCOL_KWP2000, "KWP");
    // 42 02 00 | 03 00 -> P0300
    ASSERT_TRUE(code.parse(PROTOCOL_KWP2000, 0x10, { 0x42, 0x02, 0x00, 0x03, 0x00 }));
    EXPECT_EQ("P0300", code.getCode(ecu));
    EXPECT_EQ("Powertrain", code.getCategory(ecu));
    EXPECT_EQ("Random/Multiple Cylinder Misfire Detected", code.getDescription(ecu));
    std::vector<std::string> texts;
    code.getFormattedValues(ecu, US_IMPERIAL, texts);
    EXPECT_EQ((std::vector<std::string>{ "P0300" }), texts);

    // 42 02 00 | 40 35 -> C0035
    ASSERT_TRUE(code.parse(PROTOCOL_KWP2000, 0x10, { 0x42, 0x02, 0x00, 0x40, 0x35 }));
    EXPECT_EQ("C0035", code.getCode(ecu));
    EXPECT_EQ("Chassis", code.getCategory(ecu));
    EXPECT_EQ("Right Front Wheel Speed Sensor Supply", code.getDescription(ecu));

    EXPECT_FALSE(code.parse(PROTOCOL_KWP2000, 0x10, { 0x42, 0x02, 0x00, 0x40 }));
    EXPECT_FALSE(code.parse(PROTOCOL_KWP2000, 0x10, { 0x42, 0x02, 0x00, 0x40, 0x35, 0x00 }));
    EXPECT_EQ("C0035", code.getCode(ecu)) << "refused answers keep the code";
}

TEST(FreezeFrameCode, NoCodeStored)
{
    Ecu ecu(0x10, PROTOCOL_KWP2000, "KWP");
    FreezeFrameTroubleCode code;
    ASSERT_TRUE(code.parse(PROTOCOL_KWP2000, 0x10, { 0x42, 0x02, 0x00, 0x01, 0x33 }));
    // 10 00: (A & 0F) = 0 and B = 0, no code although A is not 0
    ASSERT_TRUE(code.parse(PROTOCOL_KWP2000, 0x10, { 0x42, 0x02, 0x00, 0x10, 0x00 }));
    LogCapture::instance().clear();
    EXPECT_EQ("", code.getCode(ecu));
    EXPECT_EQ("", code.getCategory(ecu));
    EXPECT_EQ("", code.getDescription(ecu));
    std::vector<std::string> texts;
    code.getFormattedValues(ecu, US_METRIC, texts);
    EXPECT_TRUE(texts.empty());
    EXPECT_EQ(4u, LogCapture::instance().count("invalid ECU id or no DTC detected 16", LOG_WARN));
}

// ---------------------------------------------------------------------------
// Monitor status (PID 01)
// ---------------------------------------------------------------------------

TEST(MonitorStatusBits, SparkIgnitionExample)
{
    // 81 07 65 00: A = 1000 0001 -> MIL on, 1 DTC; B = 0000 0111 -> three
    // continuous monitors supported and complete, bit 3 clear: spark;
    // C = 0110 0101 -> catalyst, evaporative, O2 sensor, O2 heater
    // supported; D = 0 -> all complete.
    MonitorStatus status;
    ASSERT_TRUE(status.parse(PROTOCOL_CAN_11BIT, ECU_ID, { 0x41, 0x01, 0x81, 0x07, 0x65, 0x00 }));
    Ecu ecu(ECU_ID, PROTOCOL_CAN_11BIT, "CAN");
    EXPECT_TRUE(status.isMilOn(ecu));
    EXPECT_EQ(1u, status.getDtcCount(ecu));
    EXPECT_FALSE(status.isCompressionIgnition(ecu));
    const bool supported[10] = { true, true, true, true, false, true, false, true, true, false };
    for (unsigned int id = 0; id < 10; ++id) {
        SCOPED_TRACE(MonitorStatus::getMonitorName(id));
        EXPECT_EQ(supported[id], status.isSupported(ecu, id));
        EXPECT_EQ(supported[id], status.isComplete(ecu, id));
    }
}

TEST(MonitorStatusBits, CompressionIgnitionExample)
{
    // 7F 7D FF 0F: A = 0111 1111 -> MIL off, 127 DTCs.
    // B = 0111 1101: misfire (bit 0) and components (bit 2) supported,
    //   fuel system (bit 1) not; bit 3 -> compression ignition; bits 4, 5, 6
    //   -> misfire, fuel system, components incomplete.
    // C = FF: every non-continuous monitor supported.
    // D = 0000 1111: NMHC (bit 0), NOx (bit 1), boost (bit 3) incomplete;
    //   exhaust gas sensor (bit 5), PM filter (bit 6), EGR/VVT (bit 7) complete.
    MonitorStatus status;
    ASSERT_TRUE(status.parse(PROTOCOL_CAN_11BIT, ECU_ID, { 0x41, 0x01, 0x7F, 0x7D, 0xFF, 0x0F }));
    Ecu ecu(ECU_ID, PROTOCOL_CAN_11BIT, "CAN");
    EXPECT_FALSE(status.isMilOn(ecu));
    EXPECT_EQ(127u, status.getDtcCount(ecu));
    EXPECT_TRUE(status.isCompressionIgnition(ecu));
    struct Row
    {
        unsigned int id;
        bool supported;
        bool complete;
    };
    const Row rows[] = {
        { 0, true, false }, { 1, false, false }, { 2, true, false },
        { 10, true, false }, { 11, true, false }, { 12, true, false },
        { 13, true, true }, { 14, true, true }, { 15, true, true },
        // ignition-type bits: supported bit 19 set, incomplete bit 23 clear
        { 16, true, true },
        { 17, false, false }, { 1000, false, false },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE("monitor " + std::to_string(row.id));
        EXPECT_EQ(row.supported, status.isSupported(ecu, row.id));
        EXPECT_EQ(row.complete, status.isComplete(ecu, row.id));
    }
}

TEST(MonitorStatusBits, NamesAndKinds)
{
    const char* const names[16] = { "Misfire", "Fuel System", "Comperehensive Component", "Catalyst",
                                    "Heated Catalyst", "Evaporative System", "Secondary Air System",
                                    "Oxygen Sensor", "Oxygen Sensor Heater", "EGR and/or VVT System",
                                    "NMHC Catalyst", "NOx/SCR Aftertreatment", "Boost Pressure",
                                    "Exhaust Gas Sensor", "PM filter", "EGR and/or VVT System" };
    for (unsigned int id = 0; id < 16; ++id) {
        SCOPED_TRACE("monitor " + std::to_string(id));
        EXPECT_EQ(names[id], MonitorStatus::getMonitorName(id));
        EXPECT_EQ(id < 3 ? MonitorStatus::CONTINUOUS : MonitorStatus::NON_CONTINUOUS,
                  MonitorStatus::getMonitorKind(id));
    }
    EXPECT_EQ("NA", MonitorStatus::getMonitorName(16));
    EXPECT_EQ("NA", MonitorStatus::getMonitorName(17));
}

TEST(MonitorStatusBits, WrongLengthAndUnknownEcu)
{
    MonitorStatus status;
    EXPECT_EQ("Monitor status since DTCs cleared", status.getName());
    EXPECT_FALSE(status.parse(PROTOCOL_CAN_11BIT, ECU_ID, { 0x41, 0x01, 0x81, 0x07, 0x65 }));
    EXPECT_FALSE(status.parse(PROTOCOL_CAN_11BIT, ECU_ID, { 0x41, 0x01, 0x81, 0x07, 0x65, 0x00, 0x00 }));
    LogCapture::instance().clear();
    Ecu ecu(ECU_ID, PROTOCOL_CAN_11BIT, "CAN");
    EXPECT_FALSE(status.isMilOn(ecu));
    EXPECT_EQ(0u, status.getDtcCount(ecu));
    EXPECT_FALSE(status.isCompressionIgnition(ecu));
    EXPECT_FALSE(status.isSupported(ecu, 3));
    EXPECT_FALSE(status.isComplete(ecu, 3));
    EXPECT_EQ(5u, LogCapture::instance().count("invalid ECU id 2024", LOG_WARN));
}
