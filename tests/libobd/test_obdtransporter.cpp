// The transporter and the CAN assembler on replies recorded from real
// adapters: how a reply splits per ECU (CAN identifiers, KWP length bytes,
// guessed legacy headers, headers off) and which payload each ECU's parser
// gets, and how the frames of one CAN identifier assemble.

#include "canresponse.h"
#include "fakeproxy.h"
#include "fakescantool.h"
#include "iscantool.h"
#include "logcapture.h"
#include "obdtransporter.h"
#include "recordingparameter.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <sstream>

using namespace Obd;

namespace {

typedef std::vector<unsigned char> Bytes;

Bytes fromHex(const std::string& text)
{
    Bytes out;
    std::istringstream in(text);
    std::string pair;
    while (in >> pair)
        out.push_back(static_cast<unsigned char>(std::stoul(pair, nullptr, 16)));
    return out;
}

std::string toHex(const Bytes& bytes)
{
    static const char DIGITS[] = "0123456789ABCDEF";
    std::string out;
    for (unsigned char b : bytes) {
        if (!out.empty())
            out += ' ';
        out += DIGITS[b >> 4];
        out += DIGITS[b & 0x0F];
    }
    return out;
}

struct Delivered
{
    unsigned int ecuId;
    const char* payload;
};

// One 01 00 exchange, the reply written as the adapter prints it.
struct ReplyRow
{
    const char* name;
    unsigned int protocol;
    bool headers;
    const char* reply;
    ExchangeResult result;
    std::vector<Delivered> delivered; // every parse call, in order
    const char* note = nullptr;       // a log text the exchange leaves
    const char* signature = "";       // empty: the parameter takes anything
    std::vector<std::pair<unsigned int, ReadState>> states = {}; // read status left per ECU
};

const unsigned int CAN11 = PROTOCOL_CAN_11BIT;
const unsigned int CAN29 = PROTOCOL_CAN_29BIT;
const unsigned int KWP = PROTOCOL_KWP2000;

const char* const VIN_7E8 = "7E8 10 14 49 02 01 31 47 31 \r7E8 21 4A 43 35 34 34 34 52 \r"
                            "7E8 22 37 32 35 32 33 36 37 \r\r>";
const char* const VIN = "49 02 01 31 47 31 4A 43 35 34 34 34 52 37 32 35 32 33 36 37";
const char* const SF_7E8 = "41 00 BE 3F A8 13";
const char* const SF_7E9 = "41 00 98 18 80 11";

// A message as the adapter prints it: first frame, consecutive frames 21, 22,
// ... (sequence numbers past 2F wrap to 20), the last one padded with 00.
std::string multiFrame(const std::string& id, const Bytes& payload)
{
    char pci[16];
    std::snprintf(pci, sizeof(pci), " 1%X %02X", static_cast<unsigned int>(payload.size() >> 8),
                  static_cast<unsigned int>(payload.size() & 0xFF));
    std::string out = id + pci + " " + toHex(Bytes(payload.begin(), payload.begin() + 6));
    for (size_t at = 6, sequence = 1; at < payload.size(); at += 7, ++sequence) {
        Bytes frame { static_cast<unsigned char>(0x20 | (sequence & 0x0F)) };
        for (size_t i = at; i < at + 7; ++i)
            frame.push_back(i < payload.size() ? payload[i] : 0x00);
        out += " \r" + id + " " + toHex(frame);
    }
    return out + " \r\r>";
}

} // namespace

TEST(TransporterReplies, RecordedRepliesReachTheParserPerEcu)
{
    // Four calibration ids: 3 + 4 * 16 = 67 bytes, consecutive frames 1 to 9.
    Bytes calibrationIds { 0x49, 0x04, 0x04 };
    for (unsigned char i = 0; i < 64; ++i)
        calibrationIds.push_back(static_cast<unsigned char>('A' + i % 26));
    const std::string longReply = multiFrame("7E8", calibrationIds);
    const std::string longPayload = toHex(calibrationIds);
    const ReplyRow rows[] = {
        // CAN, 11-bit identifiers
        { "CAN one ECU, adapter spacing and prompt", CAN11, true, "7E8 06 41 00 BE 3F A8 13 \r\r>", ER_OK, { { 0x7E8, SF_7E8 } } },
        { "CAN single frame padded with AA", CAN11, true, "7E8 06 41 00 BE 3F A8 13 AA \r\r>", ER_OK, { { 0x7E8, SF_7E8 } } },
        { "CAN short single frame padded with 00 to 8 bytes", CAN11, true, "7E8 03 41 0D 32 00 00 00 00 \r\r>", ER_OK, { { 0x7E8, "41 0D 32" } } },
        { "CAN three ECUs, 7EA first, padded: delivered in id order", CAN11, true,
          "7EA 06 41 00 80 00 00 01 \r7E9 06 41 00 98 18 80 11 AA \r7E8 06 41 00 BE 3F A8 13 AA \r", ER_OK,
          { { 0x7E8, SF_7E8 }, { 0x7E9, SF_7E9 }, { 0x7EA, "41 00 80 00 00 01" } } },
        { "CAN duplicated single frame of one ECU is delivered once", CAN11, true,
          "7E8 06 41 00 BE 3F A8 13 \r7E8 06 41 00 BE 3F A8 13 \r\r>", ER_OK, { { 0x7E8, SF_7E8 } } },
        { "CAN VIN in three frames", CAN11, true, VIN_7E8, ER_OK, { { 0x7E8, VIN } } },
        { "CAN VIN of two ECUs, frames interleaved", CAN11, true,
          "7E9 10 14 49 02 01 32 48 32 \r7E8 10 14 49 02 01 31 47 31 \r7E8 21 4A 43 35 34 34 34 52 \r"
          "7E9 21 4B 44 36 35 35 35 53 \r7E9 22 38 33 36 33 34 37 38 \r7E8 22 37 32 35 32 33 36 37 \r\r>",
          ER_OK, { { 0x7E8, VIN }, { 0x7E9, "49 02 01 32 48 32 4B 44 36 35 35 35 53 38 33 36 33 34 37 38" } } },
        { "CAN 67 bytes: 6 + 9 consecutive frames of 7", CAN11, true, longReply.c_str(), ER_OK, { { 0x7E8, longPayload.c_str() } } },
        { "CAN consecutive frames out of order are placed by sequence number", CAN11, true,
          "7E8 10 14 49 02 01 31 47 31 \r7E8 22 37 32 35 32 33 36 37 \r7E8 21 4A 43 35 34 34 34 52 \r\r>",
          ER_OK, { { 0x7E8, VIN } } },
        { "CAN 22 bytes: 6 + 7 + 7 + 2 of the last frame, filler dropped", CAN11, true,
          "7E8 10 16 49 04 01 41 42 43 \r7E8 21 44 45 46 47 48 49 4A \r"
          "7E8 22 4B 4C 4D 4E 4F 50 51 \r7E8 23 52 53 00 00 00 00 00 \r\r>",
          ER_OK, { { 0x7E8, "49 04 01 41 42 43 44 45 46 47 48 49 4A 4B 4C 4D 4E 4F 50 51 52 53" } } },
        { "CAN multi-frame ECU and a negative response mixed", CAN11, true,
          "7E8 10 14 49 02 01 31 47 31 \r7E9 03 7F 09 12 \r7E8 21 4A 43 35 34 34 34 52 \r"
          "7E8 22 37 32 35 32 33 36 37 \r\r>",
          ER_OK, { { 0x7E8, VIN }, { 0x7E9, "7F 09 12" } } },
        { "CAN rejected ECU is noted and the next one still delivered", CAN11, true,
          "7E9 06 41 00 98 18 80 11 \r7E8 03 7F 01 12 \r\r>", ER_OK,
          { { 0x7E8, "7F 01 12" }, { 0x7E9, SF_7E9 } }, "Invalid data received for 2024", "41 00",
          { { 0x7E8, READ_NEGATIVE }, { 0x7E9, READ_OK } } },
        // CAN, 29-bit identifiers
        { "CAN 29-bit two ECUs, F118 first", CAN29, true,
          "18 DA F1 18 06 41 00 98 18 80 11 \r18 DA F1 10 06 41 00 BE 3F A8 13 \r\r>", ER_OK,
          { { 0x18DAF110, SF_7E8 }, { 0x18DAF118, SF_7E9 } } },
        { "CAN 29-bit VIN in three frames", CAN29, true,
          "18 DA F1 10 10 14 49 02 01 31 47 31 \r18 DA F1 10 21 4A 43 35 34 34 34 52 \r"
          "18 DA F1 10 22 37 32 35 32 33 36 37 \r\r>",
          ER_OK, { { 0x18DAF110, VIN } } },
        { "CAN 29-bit: F8 & 1F = 18, the top three bits are not the identifier's", CAN29, true,
          "F8 DA F1 10 06 41 00 BE 3F A8 13 \r", ER_OK, { { 0x18DAF110, SF_7E8 } } },
        // CAN, broken replies
        { "CAN identifier with nothing after it", CAN11, true, "7E8 \r\r>", ER_ERROR, {}, "Failed to get CAN frame type" },
        { "CAN trailing half identifier: the line is dropped", CAN11, true, "7E8 06 41 00 BE 3F A8 13 \r7E", ER_OK, { { 0x7E8, SF_7E8 } },
          "Failed to extract ECU id" },
        { "CAN progress word, data glued after its dots", CAN11, true, "SEARCHING...7E8 06 41 00 BE 3F A8 13 \r\r>", ER_OK, { { 0x7E8, SF_7E8 } } },
        { "CAN noise line between frames is dropped", CAN11, true, "+CONNECTED\r7E8 06 41 00 BE 3F A8 13 \r\r>", ER_OK,
          { { 0x7E8, SF_7E8 } }, "line dropped" },
        { "CAN non-hex character inside the data", CAN11, true, "7E8 06 41 00 BE 3G A8 13", ER_ERROR, {}, "Failed to parse message payload" },
        { "CAN consecutive frame with no first frame", CAN11, true, "7E8 21 4A 43 35 34 34 34 52 \r\r>", ER_ERROR, {}, "Consecutive frame received before FF" },
        { "CAN flow control frame in the reply", CAN11, true, "7E8 30 00 00 00 00 00 00 00 \r", ER_ERROR, {}, "Failed to parse message payload" },
        { "CAN lines that are not frames: the reply is unreadable", CAN11, true, "ZZZ 06 41\r7E\r\r>", ER_ERROR, {}, nullptr, "",
          { { 0x7E8, READ_MALFORMED } } },
        { "CAN first frame only", CAN11, true, "7E8 10 14 49 02 01 31 47 31 \r\r>", ER_ERROR, {}, "Invalid data received for 2024" },
        { "CAN repeated consecutive frame does not spoil the message", CAN11, true,
          "7E8 10 14 49 02 01 31 47 31 \r7E8 21 4A 43 35 34 34 34 52 \r7E8 21 4A 43 35 34 34 34 52 \r"
          "7E8 22 37 32 35 32 33 36 37 \r\r>",
          ER_OK, { { 0x7E8, VIN } } },
        { "CAN sequence number 0 after a wrap lands past the payload", CAN11, true,
          "7E8 10 14 49 02 01 31 47 31 \r7E8 20 4A 43 35 34 34 34 52 \r\r>", ER_ERROR, {}, "Not enough data" },
        { "CAN last consecutive frame printed without its filler", CAN11, true,
          "7E8 10 16 49 04 01 41 42 43 \r7E8 21 44 45 46 47 48 49 4A \r7E8 22 4B 4C 4D 4E 4F 50 51 \r"
          "7E8 23 52 53 \r\r>",
          ER_OK, { { 0x7E8, "49 04 01 41 42 43 44 45 46 47 48 49 4A 4B 4C 4D 4E 4F 50 51 52 53" } } },
        { "CAN mode 03, last frame unpadded, then a second ECU (recorded)", CAN11, true,
          "7E8 10 0A 43 04 01 33 03 00 \r7E8 21 41 23 92 34 \r7E9 06 43 02 07 00 C1 00 \r\r>", ER_OK,
          { { 0x7E8, "43 04 01 33 03 00 41 23 92 34" }, { 0x7E9, "43 02 07 00 C1 00" } }, nullptr, "",
          { { 0x7E8, READ_OK }, { 0x7E9, READ_OK } } },
        { "CAN last frame with 55 filler", CAN11, true,
          "7E8 10 08 49 02 01 31 47 31 \r7E8 21 4A 43 55 55 55 55 55 \r\r>", ER_OK, { { 0x7E8, "49 02 01 31 47 31 4A 43" } } },
        { "CAN stale 41 0C inside the reply is dropped by its signature", CAN11, true,
          "7E8 06 41 00 BE 3F A8 13 \r7E8 04 41 0C 1A F8 \r\r>", ER_OK, { { 0x7E8, SF_7E8 } }, "another request", "41 00" },
        { "CAN first ECU incomplete: later ECUs still delivered", CAN11, true,
          "7E8 10 14 49 02 01 31 47 31 \r7E9 06 41 00 98 18 80 11 \r\r>", ER_OK, { { 0x7E9, SF_7E9 } },
          "Invalid data received for 2024", "", { { 0x7E8, READ_MALFORMED }, { 0x7E9, READ_OK }, { 0x7EA, READ_NOT_ANSWERED } } },
        { "CAN second ECU incomplete: the first delivered", CAN11, true,
          "7E8 06 41 00 BE 3F A8 13 \r7E9 10 14 49 02 01 31 47 31 \r\r>", ER_OK, { { 0x7E8, SF_7E8 } },
          "Invalid data received for 2025" },
        // KWP: format byte 10LLLLLL, target, source, L data bytes, checksum
        { "KWP engine speed, 84: four data bytes", KWP, true, "84 F1 10 41 0C 1A F8 D6 \r\r>", ER_OK, { { 0x10, "41 0C 1A F8" } } },
        { "KWP two ECUs, 0x11 line first", KWP, true,
          "86 F1 11 41 00 98 18 80 11 50 \r86 F1 10 41 00 BE 3F A8 13 C2 \r\r>", ER_OK,
          { { 0x10, SF_7E8 }, { 0x11, SF_7E9 } } },
        { "KWP two lines of one ECU are joined", KWP, true,
          "87 F1 10 49 02 01 00 00 00 31 2F \r87 F1 10 49 02 02 31 47 31 4A 85 \r\r>", ER_OK,
          { { 0x10, "49 02 01 00 00 00 31 49 02 02 31 47 31 4A" } } },
        { "KWP format byte C3 without physical addressing: length 3 still splits", KWP, true,
          "C3 F1 10 41 0D 32 26 \r", ER_OK, { { 0x10, "41 0D 32" } }, "Invalid header bit: 195" },
        { "KWP 80: a message without data", KWP, true, "80 F1 10 00", ER_OK, { { 0x10, "" } } },
        { "KWP declared length longer than arrived", KWP, true, "85 F1 10 41 0C 1A F8", ER_ERROR, {}, "Not enough data: 4 vs 6" },
        { "KWP checksum missing", KWP, true, "84 F1 10 41 0C 1A F8", ER_ERROR, {}, "Not enough data: 4 vs 5" },
        { "KWP bus init text before the data", KWP, true, "BUS INIT: ...OK\r84 F1 10 41 0C 1A F8 D6 \r\r>", ER_OK,
          { { 0x10, "41 0C 1A F8" } } },
        { "KWP response pending skipped, the answer after it delivered", KWP, true,
          "83 F1 10 7F 01 78 7C \r84 F1 10 41 0C 1A F8 D6 \r\r>", ER_OK, { { 0x10, "41 0C 1A F8" } }, "Response pending from 16" },
        { "ISO 9141 stale 41 13 and a repeated line in a VIN reply (noisy clone)", PROTOCOL_ISO9141, true,
          "48 6B 10 41 13 33 4A \r48 6B 10 49 02 01 00 00 00 57 66 \r48 6B 10 49 02 02 45 4C 39 31 0B \r"
          "48 6B 10 49 02 02 45 4C 39 31 0B \r\r>", ER_OK, { { 0x10, "49 02 01 00 00 00 57 49 02 02 45 4C 39 31" } },
          "Repeated line dropped", "49 02" },
        { "J1850 response pending skipped", PROTOCOL_J1850, true, "48 6B 10 7F 01 78 00 \r48 6B 10 41 0C 1A F8 C5 \r\r>",
          ER_OK, { { 0x10, "41 0C 1A F8" } } },
        { "KWP one ECU's broken line costs only that ECU", KWP, true, "85 F1 11 41 0C 1A \r84 F1 10 41 0C 1A F8 D6 \r\r>",
          ER_OK, { { 0x10, "41 0C 1A F8" } }, "Not enough data", "", { { 0x10, READ_OK }, { 0x11, READ_MALFORMED } } },
        // ISO 9141 / J1850: no length byte, a line ends where its header repeats
        { "J1850 two lines of one ECU", PROTOCOL_J1850, true,
          "48 6B 10 41 00 BE 1F A8 13 5C \r48 6B 10 41 20 80 00 00 00 1D \r\r>", ER_OK,
          { { 0x10, "41 00 BE 1F A8 13 41 20 80 00 00 00" } }, "Guessing response to be multiline" },
        { "ISO 9141 two ECUs", PROTOCOL_ISO9141, true, "48 6B 18 41 0C 1B 00 AA \r48 6B 10 41 0C 1A F8 C5 \r\r>", ER_OK,
          { { 0x10, "41 0C 1A F8" }, { 0x18, "41 0C 1B 00" } }, "Guessing response to be multi ECU" },
        { "J1850 data bytes equal to the header split the line", PROTOCOL_J1850, true, "48 6B 10 41 05 48 6B 20 9A \r\r>",
          ER_OK, { { 0x10, "41" }, { 0x20, "" } } },
        { "ISO 9141 header repeated at the line start", PROTOCOL_ISO9141, true, "48 6B 10 48 6B 10 41 0D 32 0F", ER_OK,
          { { 0x10, "41 0D 32" } } },
        { "ISO 9141 one byte only", PROTOCOL_ISO9141, true, "48", ER_ERROR, {}, "Not enough data: 1 vs 3" },
        // Headers off: the whole reply belongs to ECU 0
        { "headers off, CAN one line", CAN11, false, "41 00 BE 3F A8 13 \r\r>", ER_OK, { { 0, SF_7E8 } } },
        { "headers off, two ECUs' lines run together", CAN11, false, "41 00 BE 3F A8 13 \r41 00 98 18 80 11 \r\r>",
          ER_OK, { { 0, "41 00 BE 3F A8 13 41 00 98 18 80 11" } } },
        { "headers off, KWP", KWP, false, "41 0C 1A F8 \r\r>", ER_OK, { { 0, "41 0C 1A F8" } } },
        { "headers off, multi-frame is not hex", CAN11, false, "014\r0: 49 02 01 31 47 31 \r1: 4A 43 35 34 34 34 52 \r",
          ER_ERROR, {}, "Failed to convert response to bytes" },
        { "headers off, odd length", CAN11, false, "41 00 BE 3F A8 1", ER_ERROR, {}, "Failed to convert response to bytes" },
        // No answer at all
        { "NO DATA", CAN11, true, "NO DATA\r\r>", ER_NO_DATA, {} },
        { "searching, then NO DATA", CAN11, true, "SEARCHING...\rNO DATA\r\r>", ER_NO_DATA, {} },
        { "CAN ERROR", CAN11, true, "CAN ERROR\r\r>", ER_NO_DATA, {}, nullptr, "", { { 0x7E8, READ_ADAPTER_ERROR } } },
        { "no answer at all", CAN11, true, "", ER_NO_DATA, {}, nullptr, "", { { 0x7E8, READ_TIMEOUT } } },
        { "data, then an error word: the data kept, the silent ECU has the word", CAN11, true,
          "7E8 06 41 00 BE 3F A8 13 \r<RX ERROR\r\r>", ER_OK, { { 0x7E8, SF_7E8 } }, nullptr, "",
          { { 0x7E8, READ_OK }, { 0x7E9, READ_ADAPTER_ERROR } } },
        { "headers on, protocol unknown", PROTOCOL_UNKNOWN, true, "7E8 06 41 00 BE 3F A8 13", ER_ERROR, {} },
    };
    for (const ReplyRow& row : rows) {
        SCOPED_TRACE(row.name);
        LogCapture::instance().clear();
        FakeScantool tool(row.protocol, row.headers, true);
        tool.setReply("0100", row.reply);
        FakeProxy proxy(&tool);
        RecordingParameter parameter(fromHex("01 00"), fromHex(row.signature));
        EXPECT_EQ(row.result, ObdTransporter().execute(&proxy, &parameter)) << LogCapture::instance().dump();
        EXPECT_EQ(std::vector<std::string> { "0100" }, tool.commands());
        ASSERT_EQ(row.delivered.size(), parameter.parseCalls().size()) << LogCapture::instance().dump();
        for (size_t i = 0; i < row.delivered.size(); ++i) {
            EXPECT_EQ(row.delivered[i].ecuId, parameter.parseCalls()[i].ecuId) << "delivery " << i;
            EXPECT_EQ(row.delivered[i].payload, toHex(parameter.parseCalls()[i].data)) << "delivery " << i;
            EXPECT_EQ(row.protocol, parameter.parseCalls()[i].protocol);
        }
        if (row.note) {
            EXPECT_TRUE(LogCapture::instance().contains(row.note)) << LogCapture::instance().dump();
        }
        for (const auto& state : row.states) {
            EXPECT_EQ(state.second, parameter.readStatus(state.first).state) << "ECU " << state.first;
        }
    }
}

TEST(TransporterReplies, CommandIsTheRequestInLowerCaseHexAndNeedsAnInitialisedTool)
{
    const std::pair<const char*, const char*> rows[] = { { "09 0A", "090a" }, { "02 0C 00", "020c00" }, { "03", "03" } };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.first);
        FakeScantool tool;
        FakeProxy proxy(&tool);
        RecordingParameter parameter(fromHex(row.first), Bytes());
        EXPECT_EQ(ER_NO_DATA, ObdTransporter().execute(&proxy, &parameter));
        EXPECT_EQ(std::vector<std::string> { row.second }, tool.commands());
    }

    RecordingParameter parameter(fromHex("01 00"), Bytes());
    FakeProxy empty;
    EXPECT_EQ(ER_ERROR, ObdTransporter().execute(&empty, &parameter));
    FakeScantool closed(CAN11, true, false);
    closed.setReply("0100", "7E8 06 41 00 BE 3F A8 13");
    FakeProxy proxy(&closed);
    EXPECT_EQ(ER_ERROR, ObdTransporter().execute(&proxy, &parameter));
    EXPECT_TRUE(closed.commands().empty());
    EXPECT_TRUE(parameter.parseCalls().empty());
}

namespace {

struct FrameStep
{
    const char* frame;
    int used; // bytes of the text the frame takes, -1 refused
};

struct AssemblyRow
{
    const char* name;
    std::vector<FrameStep> steps;
    const char* payload; // nullptr: incomplete. Nothing accepted reads as complete and empty.
};

} // namespace

TEST(CanAssembly, FramesOfOneIdentifierAssembleAndSayHowMuchTextIsTheirs)
{
    const AssemblyRow rows[] = {
        { "single frame without padding: length 6 + 1", { { "06 41 00 BE 3F B8 13", 7 } }, "41 00 BE 3F B8 13" },
        { "single frame with one AA filler takes all 8", { { "06 41 00 BE 3F B8 13 AA", 8 } }, "41 00 BE 3F B8 13" },
        { "single frame stops before the next identifier 7E9", { { "06 41 00 BE 3F B8 13 7E 90 64 10", 7 } }, "41 00 BE 3F B8 13" },
        { "last data byte 00 is data, not filler", { { "03 41 0D 00", 4 } }, "41 0D 00" },
        { "two data bytes then one 00 filler", { { "02 41 0D 00", 4 } }, "41 0D" },
        { "55 is not a filler", { { "02 41 0D 55 55 55 55 55", 3 } }, "41 0D" },
        { "never more than 8 bytes, even of fillers", { { "01 41 00 00 00 00 00 00 00 00 00 00", 8 } }, "41" },
        { "empty single frame", { { "00", 1 } }, "" },
        { "VIN: first frame 0x014 = 20 bytes, then 21 and 22",
          { { "10 14 49 02 01 31 47 31", 8 }, { "21 4A 43 35 34 34 34 52", 8 }, { "22 37 32 35 32 33 36 37 21 22", 8 } }, VIN },
        { "missing consecutive frame", { { "10 14 49 02 01 31 47 31", 8 }, { "22 37 32 35 32 33 36 37", 8 } }, nullptr },
        { "sequence 5 beyond the announced 8 bytes is refused, the message stays whole",
          { { "10 08 49 02 01 31 47 31", 8 }, { "21 4A 43 00 00 00 00 00", 8 }, { "25 4A 43 35 34 34 34 52", -1 } },
          "49 02 01 31 47 31 4A 43" },
        { "first frame announcing 0xFFF = 4095 bytes never completes",
          { { "1F FF 49 02 01 31 47 31", 8 }, { "21 4A 43 35 34 34 34 52", 8 } }, nullptr },
        { "a refused short frame leaves the message usable",
          { { "10 14 49 02 01 31 47 31", 8 }, { "21 4A 43", -1 }, { "21 4A 43 35 34 34 34 52", 8 }, { "22 37 32 35 32 33 36 37", 8 } },
          VIN },
        { "single frame after a first frame replaces the message", { { "10 14 49 02 01 31 47 31", 8 }, { "03 41 0D 32", 4 } }, "41 0D 32" },
        { "consecutive frame before any first frame", { { "21 4A 43 35 34 34 34 52", -1 } }, "" },
        { "flow control frame", { { "30 00 00 00 00 00 00 00", -1 } }, "" },
        { "first frame shorter than 8 bytes", { { "10 14 49 02 01 31 47", -1 } }, "" },
        { "first frame announcing 3 bytes: that would be a single frame", { { "10 03 49 02 01 31 47 31", -1 } }, "" },
        { "single frame announcing more than present", { { "06 41 00 BE", -1 } }, "" },
        { "single frame announcing 15 bytes cannot fit 8", { { "0F 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F", -1 } }, "" },
        { "no byte at all", { { "", -1 } }, "" },
        { "last consecutive frame without filler takes its 3 bytes",
          { { "10 08 49 02 01 31 47 31", 8 }, { "21 4A 43", 3 } }, "49 02 01 31 47 31 4A 43" },
        { "last consecutive frame one data byte short", { { "10 09 49 02 01 31 47 31", 8 }, { "21 4A 43", -1 } }, nullptr },
        { "repeated consecutive frame counted once",
          { { "10 0F 49 02 01 31 47 31", 8 }, { "21 4A 43 35 34 34 34 52", 8 }, { "21 4A 43 35 34 34 34 52", 8 },
            { "22 37 32", 3 } }, "49 02 01 31 47 31 4A 43 35 34 34 34 52 37 32" },
    };
    for (const AssemblyRow& row : rows) {
        SCOPED_TRACE(row.name);
        CanResponse response(CAN11);
        for (const FrameStep& step : row.steps)
            EXPECT_EQ(step.used, response.addFrame(fromHex(step.frame))) << step.frame;
        Bytes payload;
        EXPECT_EQ(row.payload != nullptr, response.getPayload(payload));
        if (row.payload) {
            EXPECT_EQ(row.payload, toHex(payload));
        }
    }
}
