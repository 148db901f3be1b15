#include "canresponse.h"
#include "iscantool.h"
#include "logcapture.h"
#include "trlog.h"

#include <gtest/gtest.h>

#include <sstream>

using namespace Obd;

namespace {

typedef std::vector<unsigned char> Bytes;

// "10 14 49" -> {0x10, 0x14, 0x49}
Bytes fromHex(const std::string& text)
{
    Bytes out;
    std::istringstream in(text);
    std::string pair;
    while (in >> pair)
        out.push_back(static_cast<unsigned char>(std::stoul(pair, nullptr, 16)));
    return out;
}

struct FrameStep
{
    const char* frame;
    int used;              // addFrame's answer
    const char* note;      // a level-0 text this frame logs, or nullptr
};

struct AssemblyRow
{
    const char* name;
    std::vector<FrameStep> steps;
    bool complete;
    // When complete. A response that never accepted a frame announces 0
    // bytes and so reads as an empty, complete message.
    const char* payload;
};

} // namespace

class CanAssembly : public ::testing::Test
{
protected:
    void SetUp() override { LogCapture::instance().clear(); }
};

TEST_F(CanAssembly, FramesOfRealRepliesAssembleByTableRow)
{
    const AssemblyRow rows[] = {
        {"single frame without padding occupies length + 1",
         {{"06 41 00 BE 3F B8 13", 7, nullptr}}, true, "41 00 BE 3F B8 13"},
        {"single frame with one AA filler occupies all 8",
         {{"06 41 00 BE 3F B8 13 AA", 8, nullptr}}, true, "41 00 BE 3F B8 13"},
        {"single frame followed by the next identifier 7E9 stops before it",
         {{"06 41 00 BE 3F B8 13 7E 90 64 10", 7, nullptr}}, true, "41 00 BE 3F B8 13"},
        {"last data byte 00 is data, not filler",
         {{"03 41 0D 00", 4, nullptr}}, true, "41 0D 00"},
        {"two data bytes then one filler byte",
         {{"02 41 0D 00", 4, nullptr}}, true, "41 0D"},
        {"short frame padded with 55 stops at the first non-filler",
         {{"02 41 0D 55 55 55 55 55", 3, nullptr}}, true, "41 0D"},
        {"VIN in three frames, last one fills 7 bytes exactly",
         {{"10 14 49 02 01 31 47 31", 8, nullptr},
          {"21 4A 43 35 34 34 34 52", 8, nullptr},
          {"22 37 32 35 32 33 36 37", 8, nullptr}},
         true,
         "49 02 01 31 47 31 4A 43 35 34 34 34 52 37 32 35 32 33 36 37"},
        {"22 bytes: the third consecutive frame carries 2 and notes it",
         {{"10 16 49 04 01 41 42 43", 8, nullptr},
          {"21 44 45 46 47 48 49 4A", 8, nullptr},
          {"22 4B 4C 4D 4E 4F 50 51", 8, nullptr},
          {"23 52 53 00 00 00 00 00", 8,
           "Last CF. Expecting only 2 bytes of payload but frame size to be 7 bytes"}},
         true,
         "49 04 01 41 42 43 44 45 46 47 48 49 4A 4B 4C 4D 4E 4F 50 51 52 53"},
        {"consecutive frames out of order are placed by sequence number",
         {{"10 14 49 02 01 31 47 31", 8, nullptr},
          {"22 37 32 35 32 33 36 37", 8, nullptr},
          {"21 4A 43 35 34 34 34 52", 8, nullptr}},
         true,
         "49 02 01 31 47 31 4A 43 35 34 34 34 52 37 32 35 32 33 36 37"},
        {"repeated consecutive frame is counted twice and never completes",
         {{"10 14 49 02 01 31 47 31", 8, nullptr},
          {"21 4A 43 35 34 34 34 52", 8, nullptr},
          {"21 4A 43 35 34 34 34 52", 8, nullptr},
          {"22 37 32 35 32 33 36 37", 8, nullptr}},
         false, nullptr},
        {"missing consecutive frame leaves the message incomplete",
         {{"10 14 49 02 01 31 47 31", 8, nullptr}, {"22 37 32 35 32 33 36 37", 8, nullptr}},
         false, nullptr},
        {"consecutive frame before any first frame",
         {{"21 4A 43 35 34 34 34 52", -1, "Consecutive frame received before FF"}}, true,
         ""},
        {"flow control frame is refused silently",
         {{"30 00 00 00 00 00 00 00", -1, nullptr}}, true, ""},
        {"consecutive frame of 7 bytes without its filler",
         {{"10 16 49 04 01 41 42 43", 8, nullptr},
          {"21 44 45 46 47 48 49 4A", 8, nullptr},
          {"22 4B 4C 4D 4E 4F 50 51", 8, nullptr},
          {"23 52 53", -1, "Not enough data"}},
         false, nullptr},
        {"sequence number 0 after a wrap lands past the payload",
         {{"10 14 49 02 01 31 47 31", 8, nullptr}, {"20 4A 43 35 34 34 34 52", -1, "Not enough data"}},
         false, nullptr},
        {"sequence number beyond the announced length",
         {{"10 08 49 02 01 31 47 31", 8, nullptr},
          {"21 4A 43 00 00 00 00 00", 8, "Last CF. Expecting only 2 bytes"},
          {"25 4A 43 35 34 34 34 52", -1, "Not enough data"}},
         true, "49 02 01 31 47 31 4A 43"},
        {"first frame announcing 4095 bytes is taken but never completes",
         {{"1F FF 49 02 01 31 47 31", 8, nullptr}, {"21 4A 43 35 34 34 34 52", 8, nullptr}},
         false, nullptr},
        {"first frame shorter than 8 bytes",
         {{"10 14 49 02 01 31 47", -1, "Not enough data"}}, true, ""},
        {"first frame announcing fewer bytes than it carries",
         {{"10 03 49 02 01 31 47 31", -1, "Invalid first frame length: 3"}}, true, ""},
        {"single frame announcing more data than present",
         {{"06 41 00 BE", -1, "Not enough data"}}, true, ""},
        {"single frame announcing 15 data bytes cannot fit a frame",
         {{"0F 01 02 03 04 05 06 07 08 09 0A 0B 0C 0D 0E 0F", -1,
           "Invalid single frame length: 15"}},
         true, ""},
        {"empty input has no frame type", {{"", -1, "Failed to get CAN frame type"}}, true, ""},
        {"single frame after a first frame replaces the message",
         {{"10 14 49 02 01 31 47 31", 8, nullptr}, {"03 41 0D 32", 4, nullptr}}, true,
         "41 0D 32"},
        {"empty single frame is a complete empty message", {{"00", 1, nullptr}}, true, ""},
    };
    for (const AssemblyRow& row : rows) {
        SCOPED_TRACE(row.name);
        LogCapture::instance().clear();
        CanResponse response(PROTOCOL_CAN_11BIT);
        for (const FrameStep& step : row.steps) {
            SCOPED_TRACE(step.frame);
            EXPECT_EQ(step.used, response.addFrame(fromHex(step.frame)));
            if (step.note) {
                EXPECT_TRUE(LogCapture::instance().contains(step.note, LOG_DEBUG))
                    << LogCapture::instance().dump();
            }
        }
        Bytes payload;
        EXPECT_EQ(row.complete, response.getPayload(payload));
        if (row.complete) {
            EXPECT_EQ(fromHex(row.payload), payload);
        }
    }
}

TEST_F(CanAssembly, RefusalsLogAtDebugFromCanresponseAndKeepState)
{
    CanResponse response(3);
    ASSERT_EQ(8, response.addFrame(fromHex("10 14 49 02 01 31 47 31")));
    EXPECT_EQ(-1, response.addFrame(fromHex("21 4A 43")));
    LogCapture::Record record = LogCapture::instance().find("Not enough data");
    EXPECT_EQ(LOG_DEBUG, record.level);
    EXPECT_EQ("libobd/canresponse.cpp", record.file);
    EXPECT_EQ(20u, response.getLength());
    EXPECT_EQ(6u, response.getReceived());
    EXPECT_EQ(3u, response.getProtocol());
    // Still usable after the refusal.
    EXPECT_EQ(8, response.addFrame(fromHex("21 4A 43 35 34 34 34 52")));
    EXPECT_EQ(8, response.addFrame(fromHex("22 37 32 35 32 33 36 37")));
    Bytes payload;
    EXPECT_TRUE(response.getPayload(payload));
    EXPECT_EQ(20u, payload.size());
    // No note for a frame that fills exactly 7 bytes.
    EXPECT_FALSE(LogCapture::instance().contains("Last CF"));
}

TEST_F(CanAssembly, NeverConsumesMoreThanEightBytes)
{
    CanResponse response(3);
    EXPECT_EQ(8, response.addFrame(fromHex("01 41 00 00 00 00 00 00 00 00 00 00")));
    EXPECT_EQ(8, response.addFrame(fromHex("10 0A 49 02 01 31 47 31 21 22 23")));
    EXPECT_EQ(8, response.addFrame(fromHex("21 4A 43 35 34 34 34 52 21 22 23")));
}
