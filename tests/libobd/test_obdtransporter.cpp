#include "canresponse.h"
#include "fakeproxy.h"
#include "fakescantool.h"
#include "iscantool.h"
#include "logcapture.h"
#include "obdtransporter.h"
#include "recordingparameter.h"
#include "trlog.h"

#include <gtest/gtest.h>

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
    std::ostringstream out;
    for (size_t i = 0; i < bytes.size(); ++i) {
        static const char DIGITS[] = "0123456789ABCDEF";
        if (i)
            out << ' ';
        out << DIGITS[bytes[i] >> 4] << DIGITS[bytes[i] & 0x0F];
    }
    return out.str();
}

struct Delivered
{
    unsigned int ecuId;
    const char* payload;
};

struct Note
{
    const char* text;
    int level;
};

// One exchange of a 01 00 request with headers on, the reply written as the
// adapter prints it.
struct ExchangeRow
{
    const char* name;
    unsigned int protocol;
    const char* reply;
    ExchangeResult result;
    std::vector<Delivered> delivered; // in delivery order
    std::vector<Note> notes;
};

void runRows(const std::vector<ExchangeRow>& rows)
{
    for (const ExchangeRow& row : rows) {
        SCOPED_TRACE(row.name);
        LogCapture::instance().clear();
        FakeScantool tool(row.protocol, true, true);
        tool.setReply("0100", row.reply);
        FakeProxy proxy(&tool);
        // Empty signature: every split payload reaches the recorder.
        RecordingParameter parameter(fromHex("01 00"), Bytes());
        EXPECT_EQ(row.result, ObdTransporter().execute(&proxy, &parameter))
            << LogCapture::instance().dump();
        ASSERT_EQ(row.delivered.size(), parameter.parseCalls().size())
            << LogCapture::instance().dump();
        for (size_t i = 0; i < row.delivered.size(); ++i) {
            EXPECT_EQ(row.delivered[i].ecuId, parameter.parseCalls()[i].ecuId) << "delivery " << i;
            EXPECT_EQ(row.delivered[i].payload, toHex(parameter.parseCalls()[i].data))
                << "delivery " << i;
            EXPECT_EQ(row.protocol, parameter.parseCalls()[i].protocol);
        }
        for (const Note& note : row.notes) {
            LogCapture::Record record = LogCapture::instance().find(note.text);
            EXPECT_EQ(note.level, record.level) << "log text: " << note.text << "\n"
                                                << LogCapture::instance().dump();
            if (record.line >= 0) {
                EXPECT_TRUE(record.file == "libobd/obdtransporter.cpp"
                            || record.file == "libobd/canresponse.cpp")
                    << record.file;
            }
        }
    }
}

const char* VIN_7E8 = "7E8 10 14 49 02 01 31 47 31 \r"
                      "7E8 21 4A 43 35 34 34 34 52 \r"
                      "7E8 22 37 32 35 32 33 36 37 \r\r>";
const char* VIN_PAYLOAD = "49 02 01 31 47 31 4A 43 35 34 34 34 52 37 32 35 32 33 36 37";

} // namespace

class CanSplitting : public ::testing::Test
{
protected:
    void SetUp() override { LogCapture::instance().clear(); }
};

TEST_F(CanSplitting, RealRepliesSplitPerEcuInIdOrder)
{
    runRows({
        {"11-bit, one ECU, text without spaces", PROTOCOL_CAN_11BIT, "7E8064100BE3FB813", ER_OK,
         {{0x7E8, "41 00 BE 3F B8 13"}}, {}},
        {"11-bit, one ECU, adapter spacing and prompt", PROTOCOL_CAN_11BIT,
         "7E8 06 41 00 BE 3F A8 13 \r\r>", ER_OK, {{0x7E8, "41 00 BE 3F A8 13"}}, {}},
        {"11-bit, single frame padded with AA", PROTOCOL_CAN_11BIT,
         "7E8 06 41 00 BE 3F A8 13 AA \r\r>", ER_OK, {{0x7E8, "41 00 BE 3F A8 13"}}, {}},
        {"11-bit, short single frame padded with 00 to 8 bytes", PROTOCOL_CAN_11BIT,
         "7E8 03 41 0D 32 00 00 00 00 \r\r>", ER_OK, {{0x7E8, "41 0D 32"}}, {}},
        {"two ECUs, 7E8 first", PROTOCOL_CAN_11BIT,
         "7E8 06 41 00 BE 3F A8 13 \r7E9 06 41 00 98 18 80 11 \r\r>", ER_OK,
         {{0x7E8, "41 00 BE 3F A8 13"}, {0x7E9, "41 00 98 18 80 11"}}, {}},
        {"two ECUs, 7E9 first", PROTOCOL_CAN_11BIT,
         "7E9 06 41 00 98 18 80 11 \r7E8 06 41 00 BE 3F A8 13 \r\r>", ER_OK,
         {{0x7E8, "41 00 BE 3F A8 13"}, {0x7E9, "41 00 98 18 80 11"}}, {}},
        {"three ECUs, 7EA before 7E8, padded frames", PROTOCOL_CAN_11BIT,
         "7EA 06 41 00 80 00 00 01 \r7E9 06 41 00 98 18 80 11 AA \r7E8 06 41 00 BE 3F A8 13 AA \r",
         ER_OK,
         {{0x7E8, "41 00 BE 3F A8 13"}, {0x7E9, "41 00 98 18 80 11"}, {0x7EA, "41 00 80 00 00 01"}},
         {}},
        {"duplicated single frame of one ECU is delivered once", PROTOCOL_CAN_11BIT,
         "7E8 06 41 00 BE 3F A8 13 \r7E8 06 41 00 BE 3F A8 13 \r\r>", ER_OK,
         {{0x7E8, "41 00 BE 3F A8 13"}}, {}},
        {"VIN in three frames, filler shown", PROTOCOL_CAN_11BIT, VIN_7E8, ER_OK,
         {{0x7E8, VIN_PAYLOAD}}, {}},
        {"VIN of two ECUs, frames interleaved", PROTOCOL_CAN_11BIT,
         "7E9 10 14 49 02 01 32 48 32 \r7E8 10 14 49 02 01 31 47 31 \r"
         "7E8 21 4A 43 35 34 34 34 52 \r7E9 21 4B 44 36 35 35 35 53 \r"
         "7E9 22 38 33 36 33 34 37 38 \r7E8 22 37 32 35 32 33 36 37 \r\r>",
         ER_OK,
         {{0x7E8, VIN_PAYLOAD},
          {0x7E9, "49 02 01 32 48 32 4B 44 36 35 35 35 53 38 33 36 33 34 37 38"}},
         {}},
        {"consecutive frames out of order", PROTOCOL_CAN_11BIT,
         "7E8 10 14 49 02 01 31 47 31 \r7E8 22 37 32 35 32 33 36 37 \r"
         "7E8 21 4A 43 35 34 34 34 52 \r\r>",
         ER_OK, {{0x7E8, VIN_PAYLOAD}}, {}},
        {"22-byte message, short last frame with filler", PROTOCOL_CAN_11BIT,
         "7E8 10 16 49 04 01 41 42 43 \r7E8 21 44 45 46 47 48 49 4A \r"
         "7E8 22 4B 4C 4D 4E 4F 50 51 \r7E8 23 52 53 00 00 00 00 00 \r\r>",
         ER_OK,
         {{0x7E8, "49 04 01 41 42 43 44 45 46 47 48 49 4A 4B 4C 4D 4E 4F 50 51 52 53"}},
         {{"Last CF. Expecting only 2 bytes of payload but frame size to be 7 bytes", LOG_DEBUG}}},
        {"multi-frame ECU and single-frame ECU mixed", PROTOCOL_CAN_11BIT,
         "7E8 10 14 49 02 01 31 47 31 \r7E9 03 7F 09 12 \r7E8 21 4A 43 35 34 34 34 52 \r"
         "7E8 22 37 32 35 32 33 36 37 \r\r>",
         ER_OK, {{0x7E8, VIN_PAYLOAD}, {0x7E9, "7F 09 12"}}, {}},
        {"29-bit, one ECU", PROTOCOL_CAN_29BIT, "18 DA F1 10 06 41 00 BE 3F A8 13 \r\r>", ER_OK,
         {{0x18DAF110, "41 00 BE 3F A8 13"}}, {}},
        {"29-bit, two ECUs, F118 first", PROTOCOL_CAN_29BIT,
         "18 DA F1 18 06 41 00 98 18 80 11 \r18 DA F1 10 06 41 00 BE 3F A8 13 \r\r>", ER_OK,
         {{0x18DAF110, "41 00 BE 3F A8 13"}, {0x18DAF118, "41 00 98 18 80 11"}}, {}},
        {"29-bit, VIN in three frames", PROTOCOL_CAN_29BIT,
         "18 DA F1 10 10 14 49 02 01 31 47 31 \r18 DA F1 10 21 4A 43 35 34 34 34 52 \r"
         "18 DA F1 10 22 37 32 35 32 33 36 37 \r\r>",
         ER_OK, {{0x18DAF110, VIN_PAYLOAD}}, {}},
        {"29-bit identifier with bits above 0x1F set loses them", PROTOCOL_CAN_29BIT,
         "F8 DA F1 10 06 41 00 BE 3F A8 13 \r", ER_OK, {{0x18DAF110, "41 00 BE 3F A8 13"}}, {}},
    });
}

TEST_F(CanSplitting, BrokenRepliesAreRefusedWithTheirLogTexts)
{
    runRows({
        {"identifier with nothing after it", PROTOCOL_CAN_11BIT, "7E8 \r\r>", ER_ERROR, {},
         {{"Failed to get CAN frame type", LOG_DEBUG},
          {"Failed to parse message payload", LOG_ERROR},
          {"Failed to extract message payload", LOG_ERROR}}},
        {"trailing half identifier", PROTOCOL_CAN_11BIT, "7E8 06 41 00 BE 3F A8 13 \r7E", ER_ERROR,
         {}, {{"Failed to extract ECU id", LOG_ERROR}}},
        {"progress word left in the reply", PROTOCOL_CAN_11BIT,
         "SEARCHING...\r7E8 06 41 00 BE 3F A8 13 \r\r>", ER_ERROR, {},
         {{"Failed to extract ECU id", LOG_ERROR}}},
        {"29-bit identifier cut short", PROTOCOL_CAN_29BIT, "18 DA F1", ER_ERROR, {},
         {{"Failed to extract ECU id", LOG_ERROR}}},
        {"non-hex character inside the data", PROTOCOL_CAN_11BIT, "7E8 06 41 00 BE 3G A8 13",
         ER_ERROR, {},
         {{"Not enough data", LOG_DEBUG}, {"Failed to parse message payload", LOG_ERROR}}},
        {"single frame cut short", PROTOCOL_CAN_11BIT, "7E8 06 41 00 BE", ER_ERROR, {},
         {{"Not enough data", LOG_DEBUG}, {"Failed to extract message payload", LOG_ERROR}}},
        {"consecutive frame with no first frame", PROTOCOL_CAN_11BIT,
         "7E8 21 4A 43 35 34 34 34 52 \r\r>", ER_ERROR, {},
         {{"Consecutive frame received before FF", LOG_DEBUG},
          {"Failed to parse message payload", LOG_ERROR}}},
        {"flow control frame in the reply", PROTOCOL_CAN_11BIT, "7E8 30 00 00 00 00 00 00 00 \r",
         ER_ERROR, {}, {{"Failed to parse message payload", LOG_ERROR}}},
        {"first frame only", PROTOCOL_CAN_11BIT, "7E8 10 14 49 02 01 31 47 31 \r\r>", ER_ERROR, {},
         {{"Invalid data received for 2024", LOG_DEBUG}}},
        {"first frame announcing 4095 bytes", PROTOCOL_CAN_11BIT,
         "7E8 1F FF 49 02 01 31 47 31 \r7E8 21 4A 43 35 34 34 34 52 \r\r>", ER_ERROR, {},
         {{"Invalid data received for 2024", LOG_DEBUG}}},
        {"repeated consecutive frame never completes", PROTOCOL_CAN_11BIT,
         "7E8 10 14 49 02 01 31 47 31 \r7E8 21 4A 43 35 34 34 34 52 \r"
         "7E8 21 4A 43 35 34 34 34 52 \r7E8 22 37 32 35 32 33 36 37 \r\r>",
         ER_ERROR, {}, {{"Invalid data received for 2024", LOG_DEBUG}}},
        {"sequence number 0 after a wrap", PROTOCOL_CAN_11BIT,
         "7E8 10 14 49 02 01 31 47 31 \r7E8 20 4A 43 35 34 34 34 52 \r\r>", ER_ERROR, {},
         {{"Not enough data", LOG_DEBUG}, {"Failed to extract message payload", LOG_ERROR}}},
        {"last consecutive frame printed without filler", PROTOCOL_CAN_11BIT,
         "7E8 10 16 49 04 01 41 42 43 \r7E8 21 44 45 46 47 48 49 4A \r"
         "7E8 22 4B 4C 4D 4E 4F 50 51 \r7E8 23 52 53 \r\r>",
         ER_ERROR, {}, {{"Not enough data", LOG_DEBUG}}},
        {"first ECU incomplete: later ECUs not delivered", PROTOCOL_CAN_11BIT,
         "7E8 10 14 49 02 01 31 47 31 \r7E9 06 41 00 98 18 80 11 \r\r>", ER_ERROR, {},
         {{"Invalid data received for 2024", LOG_DEBUG}}},
        {"second ECU incomplete: first already delivered", PROTOCOL_CAN_11BIT,
         "7E8 06 41 00 BE 3F A8 13 \r7E9 10 14 49 02 01 31 47 31 \r\r>", ER_ERROR,
         {{0x7E8, "41 00 BE 3F A8 13"}}, {{"Invalid data received for 2025", LOG_DEBUG}}},
    });
}

TEST_F(CanSplitting, EcuIdExtractionByProtocol)
{
    struct Row
    {
        const char* name;
        unsigned int protocol;
        const char* text;
        bool ok;
        unsigned int ecuId;
        const char* rest;
    } rows[] = {
        {"11-bit 7E8", PROTOCOL_CAN_11BIT, "7E8064100", true, 0x7E8, "064100"},
        {"11-bit lower case", PROTOCOL_CAN_11BIT, "7e9", true, 0x7E9, ""},
        {"11-bit two characters", PROTOCOL_CAN_11BIT, "7E", false, 0, "7E"},
        {"11-bit non-hex", PROTOCOL_CAN_11BIT, "7G8064100", false, 0, "7G8064100"},
        {"29-bit 18DAF110", PROTOCOL_CAN_29BIT, "18DAF11006", true, 0x18DAF110, "06"},
        {"29-bit all bits set keeps 29", PROTOCOL_CAN_29BIT, "FFFFFFFF", true, 0x1FFFFFFF, ""},
        {"29-bit seven characters", PROTOCOL_CAN_29BIT, "18DAF11", false, 0, "18DAF11"},
        {"KWP has no CAN identifier", PROTOCOL_KWP2000, "84F110", false, 0, "84F110"},
        {"unknown protocol", PROTOCOL_UNKNOWN, "7E8064100", false, 0, "7E8064100"},
        {"empty text", PROTOCOL_CAN_11BIT, "", false, 0, ""},
    };
    ObdTransporter transporter;
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        std::string text = row.text;
        unsigned int ecuId = 0;
        EXPECT_EQ(row.ok, transporter.extractEcuId(row.protocol, text, ecuId));
        EXPECT_EQ(row.ecuId, ecuId);
        EXPECT_EQ(row.rest, text);
    }
}

TEST_F(CanSplitting, AddCanFrameRemovesTheFrameFromTheText)
{
    ObdTransporter transporter;
    CanResponse response(PROTOCOL_CAN_11BIT);
    std::string text = "064100BE3FA8137E906410098188011";
    ASSERT_TRUE(transporter.addCanFrame(text, response));
    EXPECT_EQ("7E906410098188011", text);

    ObdTransporter::CanTable table;
    ASSERT_TRUE(transporter.splitCanResponse(PROTOCOL_CAN_11BIT,
                                             "7E9064100981880117E8064100BE3FA813", table));
    ASSERT_EQ(2u, table.size());
    EXPECT_EQ(0x7E8u, table.begin()->first);
    Bytes payload;
    EXPECT_TRUE(table.begin()->second->getPayload(payload));
    EXPECT_EQ("41 00 BE 3F A8 13", toHex(payload));
}

class KwpLengthSplitting : public ::testing::Test
{
protected:
    void SetUp() override { LogCapture::instance().clear(); }
};

TEST_F(KwpLengthSplitting, FramesSplitByTheFormatByteLength)
{
    runRows({
        {"KWP, one ECU, engine speed", PROTOCOL_KWP2000, "84 F1 10 41 0C 1A F8 D6 \r\r>", ER_OK,
         {{0x10, "41 0C 1A F8"}}, {}},
        {"KWP, three data bytes 83 F1 10 41 00 0D", PROTOCOL_KWP2000, "83 F1 10 41 00 0D 16", ER_OK,
         {{0x10, "41 00 0D"}}, {}},
        {"KWP, supported PIDs", PROTOCOL_KWP2000, "86 F1 10 41 00 BE 3F A8 13 C2 \r\r>", ER_OK,
         {{0x10, "41 00 BE 3F A8 13"}}, {}},
        {"KWP, two ECUs, 0x11 line first", PROTOCOL_KWP2000,
         "86 F1 11 41 00 98 18 80 11 50 \r86 F1 10 41 00 BE 3F A8 13 C2 \r\r>", ER_OK,
         {{0x10, "41 00 BE 3F A8 13"}, {0x11, "41 00 98 18 80 11"}}, {}},
        {"KWP, two lines of one ECU are joined", PROTOCOL_KWP2000,
         "87 F1 10 49 02 01 00 00 00 31 2F \r87 F1 10 49 02 02 31 47 31 4A 85 \r\r>", ER_OK,
         {{0x10, "49 02 01 00 00 00 31 49 02 02 31 47 31 4A"}}, {}},
        {"KWP format byte without physical addressing", PROTOCOL_KWP2000,
         "C3 F1 10 41 0D 32 26 \r", ER_OK, {{0x10, "41 0D 32"}},
         {{"Invalid header bit: 195", LOG_DEBUG}}},
        {"KWP format byte with bit 7 clear", PROTOCOL_KWP2000, "03 F1 10 41 0D 32 26 \r", ER_OK,
         {{0x10, "41 0D 32"}}, {{"Invalid header bit: 3", LOG_DEBUG}}},
        {"KWP negative response reaches the parameter", PROTOCOL_KWP2000,
         "83 F1 10 7F 01 11 15 \r", ER_OK, {{0x10, "7F 01 11"}}, {}},
    });
}

TEST_F(KwpLengthSplitting, ShortOrUnreadableRepliesFailTheSplit)
{
    runRows({
        {"KWP declared length longer than arrived", PROTOCOL_KWP2000, "85 F1 10 41 0C 1A F8",
         ER_ERROR, {}, {{"Not enough data: 4 vs 6", LOG_ERROR}}},
        {"KWP checksum missing", PROTOCOL_KWP2000, "84 F1 10 41 0C 1A F8", ER_ERROR, {},
         {{"Not enough data: 4 vs 5", LOG_ERROR}}},
        {"KWP two bytes after a whole message", PROTOCOL_KWP2000,
         "84 F1 10 41 0C 1A F8 D6 \r84 F1", ER_ERROR, {}, {{"Not enough data: 2 vs 3", LOG_ERROR}}},
        {"KWP reply of odd length", PROTOCOL_KWP2000, "84 F1 10 41 0C 1A F8 D", ER_ERROR, {},
         {{"Failed to convert response to bytes", LOG_ERROR}}},
        {"KWP bus init text before the data", PROTOCOL_KWP2000,
         "BUS INIT: ...OK\r84 F1 10 41 0C 1A F8 D6 \r\r>", ER_ERROR, {},
         {{"Failed to convert response to bytes", LOG_ERROR}}},
    });
}

TEST_F(KwpLengthSplitting, SplitOnBytesDirectly)
{
    ObdTransporter transporter;
    ObdTransporter::ByteTable table;
    EXPECT_TRUE(transporter.splitKwpResponse(Bytes(), table));
    EXPECT_TRUE(table.empty());
    EXPECT_TRUE(transporter.splitKwpResponse(fromHex("80 F1 10 00"), table));
    ASSERT_EQ(1u, table.count(0x10));
    EXPECT_TRUE(table[0x10].empty());
    table.clear();
    EXPECT_FALSE(transporter.splitKwpResponse(fromHex("80 F1 10"), table));
    EXPECT_TRUE(LogCapture::instance().contains("Not enough data: 0 vs 1", LOG_ERROR));
}

class GuessedHeaderSplitting : public ::testing::Test
{
protected:
    void SetUp() override { LogCapture::instance().clear(); }
};

TEST_F(GuessedHeaderSplitting, LinesFoundByRepeatedHeaderBytes)
{
    runRows({
        {"J1850, two lines of one ECU", PROTOCOL_J1850,
         "48 6B 10 41 00 BE 1F A8 13 5C \r48 6B 10 41 20 80 00 00 00 1D \r\r>", ER_OK,
         {{0x10, "41 00 BE 1F A8 13 41 20 80 00 00 00"}},
         {{"Guessing response to be multiline", LOG_DEBUG}}},
        {"ISO 9141, two ECUs", PROTOCOL_ISO9141,
         "48 6B 18 41 0C 1B 00 AA \r48 6B 10 41 0C 1A F8 C5 \r\r>", ER_OK,
         {{0x10, "41 0C 1A F8"}, {0x18, "41 0C 1B 00"}},
         {{"Guessing response to be multi ECU", LOG_DEBUG}}},
        {"ISO 9141, engine at 0x11", PROTOCOL_ISO9141, "48 6B 11 41 0D 32 0F \r\r>", ER_OK,
         {{0x11, "41 0D 32"}}, {}},
        {"data bytes equal to the header split the line", PROTOCOL_J1850,
         "48 6B 10 41 05 48 6B 20 9A \r\r>", ER_OK, {{0x10, "41"}, {0x20, ""}},
         {{"Guessing response to be multi ECU", LOG_DEBUG}}},
        {"header only", PROTOCOL_J1850, "48 6B 10", ER_OK, {{0x10, ""}}, {}},
        {"one byte only", PROTOCOL_ISO9141, "48", ER_ERROR, {},
         {{"Not enough data: 1 vs 3", LOG_ERROR}}},
        {"non-hex reply", PROTOCOL_J1850, "48 6B 10 41 0D 3Z 0F", ER_ERROR, {},
         {{"Failed to convert response to bytes", LOG_ERROR}}},
    });
}

TEST_F(GuessedHeaderSplitting, HeaderRepeatedAtTheLineStartGivesAnEmptyLine)
{
    ObdTransporter transporter;
    ObdTransporter::ByteTable table;
    ASSERT_TRUE(transporter.splitGuessedResponse(fromHex("48 6B 10 48 6B 10 41 0D 32 0F"), table));
    ASSERT_EQ(1u, table.size());
    EXPECT_EQ("41 0D 32", toHex(table[0x10]));
    EXPECT_TRUE(LogCapture::instance().contains("Guessing response to be multiline", LOG_DEBUG));
}

class ExchangeFlow : public ::testing::Test
{
protected:
    void SetUp() override { LogCapture::instance().clear(); }
};

TEST_F(ExchangeFlow, NoUsableScantoolSendsNothing)
{
    RecordingParameter parameter(fromHex("01 00"), fromHex("41 00"));
    FakeProxy empty;
    EXPECT_EQ(ER_ERROR, ObdTransporter().execute(&empty, &parameter));
    EXPECT_EQ(ER_ERROR, ObdTransporter().execute(nullptr, &parameter));

    FakeScantool tool(PROTOCOL_CAN_11BIT, true, false);
    tool.setReply("0100", "7E8 06 41 00 BE 3F A8 13");
    FakeProxy proxy(&tool);
    EXPECT_EQ(ER_ERROR, ObdTransporter().execute(&proxy, &parameter));
    EXPECT_TRUE(tool.commands().empty());
    EXPECT_EQ(0, parameter.requestCount());
}

TEST_F(ExchangeFlow, CommandTextIsLowerCaseHexAndTimeoutComesFromTheParameter)
{
    struct Row
    {
        const char* name;
        const char* request;
        unsigned int timeout;
        const char* command;
    } rows[] = {
        {"engine speed", "01 0C", 1200, "010c"},
        {"ECU name", "09 0A", 3000, "090a"},
        {"freeze frame", "02 0C 00", 1200, "020c00"},
        {"stored codes", "03", 1200, "03"},
        {"O2 test", "05 01 01", 1200, "050101"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        FakeScantool tool;
        FakeProxy proxy(&tool);
        RecordingParameter parameter(fromHex(row.request), Bytes(), row.timeout);
        EXPECT_EQ(ER_NO_DATA, ObdTransporter().execute(&proxy, &parameter));
        ASSERT_EQ(1u, tool.commands().size());
        EXPECT_EQ(row.command, tool.commands()[0]);
        EXPECT_EQ(row.timeout, tool.timeouts()[0]);
    }
}

TEST_F(ExchangeFlow, EmptyReplyIsNoDataAndTheParameterIsNotCalled)
{
    const char* replies[] = {"NO DATA\r\r>", "SEARCHING...\rNO DATA\r\r>", "\r\r>", "CAN ERROR\r\r>"};
    for (const char* reply : replies) {
        SCOPED_TRACE(reply);
        FakeScantool tool;
        tool.setReply("0100", reply);
        FakeProxy proxy(&tool);
        RecordingParameter parameter(fromHex("01 00"), fromHex("41 00"));
        EXPECT_EQ(ER_NO_DATA, ObdTransporter().execute(&proxy, &parameter));
        EXPECT_TRUE(parameter.parseCalls().empty());
    }
}

TEST_F(ExchangeFlow, HeadersOffGivesTheWholeReplyToEcuZero)
{
    struct Row
    {
        const char* name;
        unsigned int protocol;
        const char* reply;
        ExchangeResult result;
        const char* payload; // nullptr: parameter not called
    } rows[] = {
        {"CAN, one line", PROTOCOL_CAN_11BIT, "41 00 BE 3F A8 13 \r\r>", ER_OK,
         "41 00 BE 3F A8 13"},
        {"KWP, one line", PROTOCOL_KWP2000, "41 0C 1A F8 \r\r>", ER_ERROR, "41 0C 1A F8"},
        {"two ECUs' lines run together", PROTOCOL_CAN_11BIT,
         "41 00 BE 3F A8 13 \r41 00 98 18 80 11 \r\r>", ER_OK,
         "41 00 BE 3F A8 13 41 00 98 18 80 11"},
        {"multi-frame without headers is not hex", PROTOCOL_CAN_11BIT,
         "014\r0: 49 02 01 31 47 31 \r1: 4A 43 35 34 34 34 52 \r", ER_ERROR, nullptr},
        {"odd length", PROTOCOL_CAN_11BIT, "41 00 BE 3F A8 1", ER_ERROR, nullptr},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        LogCapture::instance().clear();
        FakeScantool tool(row.protocol, false, true);
        tool.setReply("0100", row.reply);
        FakeProxy proxy(&tool);
        // The KWP row answers another PID: the signature rejects it.
        RecordingParameter parameter(fromHex("01 00"), fromHex("41 00"));
        EXPECT_EQ(row.result, ObdTransporter().execute(&proxy, &parameter));
        if (row.payload) {
            ASSERT_EQ(1u, parameter.parseCalls().size());
            EXPECT_EQ(0u, parameter.parseCalls()[0].ecuId);
            EXPECT_EQ(row.protocol, parameter.parseCalls()[0].protocol);
            EXPECT_EQ(row.payload, toHex(parameter.parseCalls()[0].data));
        } else {
            EXPECT_TRUE(parameter.parseCalls().empty());
            EXPECT_TRUE(LogCapture::instance().contains("Failed to convert response to bytes",
                                                        LOG_ERROR));
        }
    }
}

TEST_F(ExchangeFlow, UnknownProtocolWithHeadersIsAnError)
{
    FakeScantool tool(PROTOCOL_UNKNOWN, true, true);
    tool.setReply("0100", "7E8 06 41 00 BE 3F A8 13");
    FakeProxy proxy(&tool);
    RecordingParameter parameter(fromHex("01 00"), Bytes());
    EXPECT_EQ(ER_ERROR, ObdTransporter().execute(&proxy, &parameter));
    EXPECT_TRUE(parameter.parseCalls().empty());
}

TEST_F(ExchangeFlow, RejectionIsLoggedAndTheNextEcuFollows)
{
    FakeScantool tool;
    tool.setReply("0100", "7E9 06 41 00 98 18 80 11 \r7E8 03 7F 01 12 \r\r>");
    FakeProxy proxy(&tool);
    RecordingParameter parameter(fromHex("01 00"), fromHex("41 00"));
    ObdTransporter transporter;
    EXPECT_EQ(ER_OK, transporter.execute(&proxy, &parameter));
    ASSERT_EQ(2u, parameter.parseCalls().size());
    EXPECT_EQ(0x7E8u, parameter.parseCalls()[0].ecuId);
    ASSERT_EQ(1u, parameter.payloads().size());
    EXPECT_EQ(0x7E9u, parameter.payloads()[0].ecuId);
    EXPECT_TRUE(LogCapture::instance().contains("Signature mismatch", LOG_ERROR));
    LogCapture::Record record = LogCapture::instance().find("Invalid data received for 2024");
    EXPECT_EQ(LOG_DEBUG, record.level);
    EXPECT_EQ("libobd/obdtransporter.cpp", record.file);

    // Rejected by parsePayload too: still not an exchange failure. The same
    // transporter serves the next exchange.
    RecordingParameter picky(fromHex("01 00"), fromHex("41 00"));
    picky.rejectEcu(0x7E9);
    EXPECT_EQ(ER_OK, transporter.execute(&proxy, &picky));
    EXPECT_TRUE(LogCapture::instance().contains("Invalid data received for 2025", LOG_DEBUG));
}
