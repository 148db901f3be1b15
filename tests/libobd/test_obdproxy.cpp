// Discovery's edge cases over a scripted adapter; what it finds on every
// simulated vehicle is in test_discovery_e2e.cpp.

#include "fakescantool.h"
#include "logcapture.h"
#include "obdproxy.h"
#include "trlog.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace {

std::vector<unsigned char> supported(const Obd::EcuPtr& ecu, unsigned int service)
{
    std::vector<unsigned char> list;
    ecu->getSupported(service, list);
    std::sort(list.begin(), list.end());
    return list;
}

} // namespace

TEST(ObdProxy, FailedOpeningStepsFailDiscoveryWithTheirTexts)
{
    typedef std::pair<std::string, std::string> Reply;
    const Reply found("0100", "7E8 06 41 00 80 00 00 00 \r\r>");
    const struct { const char* name; bool initialized; std::vector<Reply> replies; const char* text; } rows[] = {
        {"scan tool not initialised", false, {found}, nullptr},
        {"search request fails", true, {{"0100", "SEARCHING...\rUNABLE TO CONNECT\r\r>"}}, "empty response"},
        {"protocol not identified", true, {found, {"ATDPN", ""}}, "Failed to identify protocol"},
        {"headers refused", true, {found, {"ATH1", "?\r\r>"}}, "Failed to turn headers on"},
        {"headed request fails", true, {found, {"0100", "CAN ERROR\r\r>"}}, "Failed to get available ECUs"},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        FakeScantool scantool(Obd::PROTOCOL_CAN_11BIT, false, row.initialized);
        for (const auto& reply : row.replies) {
            if (reply.first == "0100")
                scantool.addReply(reply.first, reply.second); // the search, then the headed request
            else
                scantool.setReply(reply.first, reply.second);
        }
        Obd::ObdProxy proxy;
        LogCapture::instance().clear();
        EXPECT_FALSE(proxy.initialize(&scantool));
        EXPECT_FALSE(proxy.getFirstEcu());
        EXPECT_TRUE(row.text ? LogCapture::instance().contains(row.text, Obd::LOG_ERROR) : scantool.commands().empty());
    }
}

TEST(ObdProxy, LaterRangesAreAskedOnlyOfEcusThatListThemAndMayFail)
{
    FakeScantool scantool(Obd::PROTOCOL_CAN_11BIT, false);
    scantool.setReply("ATDP", "AUTO, ISO 15765-4 (CAN 11/500)");
    // 7E8: BE 1F A8 13 = 1,3-7,12-17,19,21,28,31,32 (32: next range); 7E9 only PID 01.
    scantool.setReply("0100", "7E8 06 41 00 BE 1F A8 13 \r7E9 06 41 00 80 00 00 00 \r\r>");
    // Both answer the second range; only 7E8 said it exists.
    scantool.setReply("0120", "7E9 06 41 20 FF FF FF FF \r7E8 06 41 20 80 00 00 01 \r\r>");
    scantool.setReply("0140", "NO DATA\r\r>");
    Obd::ObdProxy proxy;
    LogCapture::instance().clear();
    ASSERT_TRUE(proxy.initialize(&scantool));
    // The search waits long, then headers go on and the ECUs take the protocol's name.
    EXPECT_EQ(8000u, scantool.timeouts().at(0));
    EXPECT_TRUE(scantool.isHeadersOn());
    Obd::EcuPtr engine = proxy.getEcu(0x7E8);
    Obd::EcuPtr gearbox = proxy.getEcu(0x7E9);
    ASSERT_TRUE(engine && gearbox);
    EXPECT_EQ("ISO 15765-4 (CAN 11/500)", engine->getProtocolName());
    const std::vector<unsigned char> expected = {0x01, 0x03, 0x04, 0x05, 0x06, 0x07, 0x0C, 0x0D, 0x0E, 0x0F,
                                                 0x10, 0x11, 0x13, 0x15, 0x1C, 0x1F, 0x20, 0x21, 0x40};
    EXPECT_EQ(expected, supported(engine, 1));
    EXPECT_EQ(std::vector<unsigned char>{0x01}, supported(gearbox, 1));
    EXPECT_EQ(0u, scantool.commandCount("0160"));
    EXPECT_TRUE(LogCapture::instance().contains("Failed to get supported 01 PIDs 0x41 - 0x60", Obd::LOG_ERROR));
    // The other services do not answer at all: discovery still succeeds.
    EXPECT_TRUE(LogCapture::instance().contains("Failed to get supported 02 PIDs 0x01 - 0x20"));
    EXPECT_TRUE(LogCapture::instance().contains("Failed to get supported 06 MIDs 0x01 - 0x20"));
    EXPECT_TRUE(LogCapture::instance().contains("Failed to get supported 09 infotypes 0x01 - 0x20"));
    EXPECT_TRUE(supported(engine, 2).empty());
    EXPECT_EQ(0u, scantool.commandCount("090a")) << "no ECU lists its name";
}
