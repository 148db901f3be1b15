#include "fakeproxy.h"
#include "fakescantool.h"

#include <gtest/gtest.h>

using namespace Obd;

namespace {

std::vector<unsigned char> bytes(const std::string& text)
{
    return std::vector<unsigned char>(text.begin(), text.end());
}

std::string text(const std::vector<unsigned char>& bytes)
{
    return std::string(bytes.begin(), bytes.end());
}

} // namespace

TEST(FakeScantoolReplies, CleansAdapterFramingAndSpacesLikeTheRealScantool)
{
    FakeScantool tool;
    tool.addReply("0100", "7E8 06 41 00 BE 3F A8 13 \r7E9 06 41 00 98 18 80 11 \r\r>");
    std::vector<unsigned char> response;
    EXPECT_TRUE(tool.sendCommand(bytes("0100"), response, 10000));
    EXPECT_EQ("7E8064100BE3FA8137E906410098188011", text(response));

    std::string raw;
    EXPECT_TRUE(tool.sendObdCommand("0100", raw, 500));
    EXPECT_EQ("7E8 06 41 00 BE 3F A8 13 7E9 06 41 00 98 18 80 11 ", raw);
}

TEST(FakeScantoolReplies, QueueAdvancesAndLastReplyRepeats)
{
    FakeScantool tool;
    tool.addReply("010C", "41 0C 1A F8");
    tool.addReply("010C", "41 0C 1B 00");
    std::vector<unsigned char> response;
    tool.sendCommand(bytes("010C"), response, 1200);
    EXPECT_EQ("410C1AF8", text(response));
    tool.sendCommand(bytes("010C"), response, 1200);
    EXPECT_EQ("410C1B00", text(response));
    tool.sendCommand(bytes("010C"), response, 1200);
    EXPECT_EQ("410C1B00", text(response));
    EXPECT_EQ(3u, tool.commandCount("010C"));
    EXPECT_EQ((std::vector<unsigned int>{1200, 1200, 1200}), tool.timeouts());
}

TEST(FakeScantoolReplies, ErrorWordsAndUnscriptedCommandsGiveEmptyFailure)
{
    struct Row
    {
        const char* name;
        const char* reply;
    } rows[] = {
        {"no data after search", "SEARCHING...\rNO DATA\r\r>"},
        {"unable to connect", "SEARCHING...\rUNABLE TO CONNECT\r\r>"},
        {"can error", "CAN ERROR\r\r>"},
        {"lost settings", "ERR94\r\r>"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        FakeScantool tool;
        tool.setReply("0100", row.reply);
        std::vector<unsigned char> response = bytes("stale");
        EXPECT_FALSE(tool.sendCommand(bytes("0100"), response, 8000));
        EXPECT_TRUE(response.empty());
    }
    FakeScantool tool;
    std::vector<unsigned char> response;
    EXPECT_FALSE(tool.sendCommand(bytes("0902"), response, 1200));
    EXPECT_TRUE(response.empty());
}

TEST(FakeScantoolState, OperationsRecordedAndConfigurable)
{
    FakeScantool tool(PROTOCOL_UNKNOWN, false, false);
    tool.setIdentifiedProtocol(PROTOCOL_KWP2000);
    tool.setResult("setHeadersOn", false);
    EXPECT_TRUE(tool.initialize(0));
    EXPECT_TRUE(tool.isInitialized());
    EXPECT_TRUE(tool.identifyProtocol());
    EXPECT_EQ(unsigned(PROTOCOL_KWP2000), tool.getProtocol());
    EXPECT_FALSE(tool.setHeadersOn());
    EXPECT_FALSE(tool.isHeadersOn());
    EXPECT_EQ((std::vector<std::string>{"initialize 0", "identifyProtocol", "setHeadersOn"}),
              tool.calls());
}

TEST(FakeProxyLending, LendsScantoolAndKeepsEcusSorted)
{
    FakeScantool tool;
    FakeProxy proxy(&tool);
    EXPECT_EQ(&tool, proxy.getScantool());
    EXPECT_TRUE(proxy.isInitialized());
    proxy.addEcu(0x7E9);
    proxy.addEcu(0x7E8);
    ASSERT_TRUE(proxy.getFirstEcu());
    EXPECT_EQ(0x7E8u, proxy.getFirstEcu()->getId());
    EXPECT_TRUE(proxy.getEcu(0x7E9));
    EXPECT_FALSE(proxy.getEcu(0x7EA));
    proxy.reset();
    EXPECT_EQ(nullptr, proxy.getScantool());
    EXPECT_FALSE(proxy.getFirstEcu());
    EXPECT_FALSE(proxy.isInitialized());
}
