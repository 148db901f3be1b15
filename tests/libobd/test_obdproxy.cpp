#include "fakescantool.h"
#include "logcapture.h"
#include "trlog.h"
#include "obdproxy.h"

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

size_t countStartingWith(const std::vector<std::string>& commands, const std::string& prefix)
{
    return std::count_if(commands.begin(), commands.end(), [&](const std::string& c) {
        return c.compare(0, prefix.size(), prefix) == 0;
    });
}

} // namespace

TEST(ObdProxyEcus, EcusAreSortedAndNamedByNumberWithoutEcuNames)
{
    FakeScantool scantool(Obd::PROTOCOL_CAN_11BIT, false);
    scantool.setProtocolName("ISO 15765-4 (CAN 11/500)");
    scantool.setReply("0100", "7E9 06 41 00 80 00 00 00 \r7E8 06 41 00 BE 3F A8 12 \r\r>");
    Obd::ObdProxy proxy;
    LogCapture::instance().clear();
    ASSERT_TRUE(proxy.initialize(&scantool));
    std::vector<Obd::EcuPtr> ecus;
    proxy.getEcus(ecus);
    ASSERT_EQ(2u, ecus.size());
    EXPECT_EQ(0x7E8u, ecus[0]->getId());
    EXPECT_EQ(0x7E9u, ecus[1]->getId());
    EXPECT_EQ("ECU#1", ecus[0]->getShortName());
    EXPECT_EQ("Engine Control Unit 0x7E8", ecus[0]->getLongName());
    EXPECT_EQ("ECU#2", ecus[1]->getShortName());
    EXPECT_EQ("Engine Control Unit 0x7E9", ecus[1]->getLongName());
    EXPECT_EQ("ISO 15765-4 (CAN 11/500)", ecus[0]->getProtocolName());
    EXPECT_TRUE(LogCapture::instance().contains("Found ECU: 2024 with protocol 3", Obd::LOG_DEBUG));
    EXPECT_TRUE(LogCapture::instance().contains("Found ECU: 2025 with protocol 3", Obd::LOG_DEBUG));
    // The search request uses the long time-out, then headers go on.
    ASSERT_FALSE(scantool.timeouts().empty());
    EXPECT_EQ(8000u, scantool.timeouts().front());
    EXPECT_TRUE(scantool.isHeadersOn());
    // No ECU lists info type 0A: no name request.
    EXPECT_EQ(0u, scantool.commandCount("090a"));
    EXPECT_EQ(ecus[0], proxy.getFirstEcu());
    EXPECT_EQ(ecus[1], proxy.getEcu(0x7E9));
    EXPECT_FALSE(proxy.getEcu(0x7EA));
}

TEST(ObdProxyEcus, OpeningStepsFailWithTheirTexts)
{
    struct Row
    {
        const char* name;
        const char* failingOperation;
        bool searchFails;
        const char* text;
    } rows[] = {
        { "search request fails", nullptr, true, "empty response" },
        { "protocol not identified", "identifyProtocol", false, "Failed to identify protocol" },
        { "headers refused", "setHeadersOn", false, "Failed to turn headers on" },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        FakeScantool scantool(Obd::PROTOCOL_CAN_11BIT, false);
        scantool.setReply("0100", row.searchFails ? "UNABLE TO CONNECT\r\r>" : "7E8 06 41 00 80 00 00 00 \r\r>",
                          !row.searchFails);
        if (row.failingOperation)
            scantool.setResult(row.failingOperation, false);
        Obd::ObdProxy proxy;
        LogCapture::instance().clear();
        EXPECT_FALSE(proxy.initialize(&scantool));
        EXPECT_TRUE(LogCapture::instance().contains(row.text, Obd::LOG_ERROR));
        EXPECT_FALSE(proxy.getFirstEcu());
    }
}

TEST(ObdProxyEcus, UninitialisedScantoolIsNotUsed)
{
    FakeScantool scantool(Obd::PROTOCOL_CAN_11BIT, true, false);
    Obd::ObdProxy proxy;
    EXPECT_FALSE(proxy.initialize(&scantool));
    EXPECT_TRUE(scantool.commands().empty());
    EXPECT_FALSE(proxy.isInitialized());
}

TEST(ObdProxyRanges, NextRangeOnlyForEcusThatListIt)
{
    FakeScantool scantool(Obd::PROTOCOL_CAN_11BIT, false);
    // 7E8: BE 1F A8 13 = 1,3-7,12-17,19,21,28,31,32 (32: next range); 7E9 only PID 01.
    scantool.setReply("0100", "7E8 06 41 00 BE 1F A8 13 \r7E9 06 41 00 80 00 00 00 \r\r>");
    // Both answer the second range; only 7E8 said it exists.
    scantool.setReply("0120", "7E9 06 41 20 FF FF FF FF \r7E8 06 41 20 80 00 00 01 \r\r>");
    scantool.setReply("0140", "NO DATA\r\r>", false);
    Obd::ObdProxy proxy;
    LogCapture::instance().clear();
    ASSERT_TRUE(proxy.initialize(&scantool));
    Obd::EcuPtr engine = proxy.getEcu(0x7E8);
    Obd::EcuPtr gearbox = proxy.getEcu(0x7E9);
    ASSERT_TRUE(engine && gearbox);
    std::vector<unsigned char> expected = { 0x01, 0x03, 0x04, 0x05, 0x06, 0x07, 0x0C, 0x0D, 0x0E,
                                            0x0F, 0x10, 0x11, 0x13, 0x15, 0x1C, 0x1F, 0x20,
                                            0x21, 0x40 };
    EXPECT_EQ(expected, supported(engine, 1));
    EXPECT_EQ(std::vector<unsigned char>{ 0x01 }, supported(gearbox, 1));
    EXPECT_TRUE(LogCapture::instance().contains("Failed to get supported 01 PIDs 0x41 - 0x60",
                                                Obd::LOG_ERROR));
    EXPECT_TRUE(LogCapture::instance().contains("Supported 01 PIDS for ECU 2024"));
    EXPECT_TRUE(LogCapture::instance().contains("0x1 0x3 0x4 "));
    EXPECT_EQ(0u, scantool.commandCount("0160"));
}

TEST(ObdProxyRanges, LaterServicesFailWithoutFailingDiscovery)
{
    FakeScantool scantool(Obd::PROTOCOL_CAN_11BIT, false);
    scantool.setReply("0100", "7E8 06 41 00 80 00 00 00 \r\r>");
    Obd::ObdProxy proxy;
    LogCapture::instance().clear();
    ASSERT_TRUE(proxy.initialize(&scantool));
    EXPECT_TRUE(LogCapture::instance().contains("Failed to get supported 02 PIDs 0x01 - 0x20"));
    EXPECT_TRUE(LogCapture::instance().contains("Failed to get supported 06 MIDs 0x01 - 0x20"));
    EXPECT_TRUE(LogCapture::instance().contains("Failed to get supported 09 infotypes 0x01 - 0x20"));
    EXPECT_TRUE(supported(proxy.getFirstEcu(), 2).empty());
}

TEST(ObdProxyRanges, FirstRangeFailureFailsDiscovery)
{
    FakeScantool scantool(Obd::PROTOCOL_CAN_11BIT, false);
    // The search answers, the headed request then fails.
    scantool.addReply("0100", "41 00 80 00 00 00 \r\r>");
    scantool.addReply("0100", "CAN ERROR\r\r>", false);
    Obd::ObdProxy proxy;
    LogCapture::instance().clear();
    EXPECT_FALSE(proxy.initialize(&scantool));
    EXPECT_TRUE(LogCapture::instance().contains("Failed to get available ECUs", Obd::LOG_ERROR));
}

TEST(ObdProxyNames, EcuNamesFromServiceNineWhereSupported)
{
    FakeScantool scantool(Obd::PROTOCOL_CAN_11BIT, false);
    scantool.setReply("0100", "7E8 06 41 00 80 00 00 00 \r7E9 06 41 00 80 00 00 00 \r\r>");
    // 7E8 lists info types 02 and 0A, 7E9 only 02.
    scantool.setReply("0900", "7E8 06 49 00 40 40 00 00 \r7E9 06 49 00 40 00 00 00 \r\r>");
    // "ECM" NUL '-' "EngineControl" NUL NUL: 20 characters after 49 0A 01.
    scantool.setReply("090a",
                      "7E8 10 17 49 0A 01 45 43 4D \r7E8 21 00 2D 45 6E 67 69 6E \r"
                      "7E8 22 65 43 6F 6E 74 72 6F \r7E8 23 6C 00 00 00 00 00 00 \r\r>");
    Obd::ObdProxy proxy;
    ASSERT_TRUE(proxy.initialize(&scantool));
    EXPECT_EQ("ECM", proxy.getEcu(0x7E8)->getShortName());
    EXPECT_EQ("Engine Control Module", proxy.getEcu(0x7E8)->getLongName());
    EXPECT_EQ("ECU#2", proxy.getEcu(0x7E9)->getShortName());
    EXPECT_EQ(1u, scantool.commandCount("090a"));
}

TEST(ObdProxyOxygenSensors, CanVehiclesAreNeverAskedForServiceFive)
{
    FakeScantool scantool(Obd::PROTOCOL_CAN_11BIT, false);
    scantool.setReply("0100", "7E8 06 41 00 BE 3F A8 12 \r\r>"); // lists PID 13
    Obd::ObdProxy proxy;
    ASSERT_TRUE(proxy.initialize(&scantool));
    EXPECT_EQ(0u, countStartingWith(scantool.commands(), "05"));
    EXPECT_EQ(0u, scantool.commandCount("0113"));
}

TEST(ObdProxyOxygenSensors, KwpWithoutSensorPidsAsksNothing)
{
    FakeScantool scantool(Obd::PROTOCOL_KWP2000, false);
    // Format 86: six data bytes 41 00 80 00 00 00, then the checksum: only PID 01.
    scantool.setReply("0100", "86 F1 10 41 00 80 00 00 00 48 \r\r>");
    Obd::ObdProxy proxy;
    LogCapture::instance().clear();
    ASSERT_TRUE(proxy.initialize(&scantool));
    EXPECT_TRUE(LogCapture::instance().contains("No oxygen sensors banks"));
    EXPECT_TRUE(LogCapture::instance().contains("Failed to query oxygen sensors present",
                                                Obd::LOG_ERROR));
    EXPECT_EQ(0u, countStartingWith(scantool.commands(), "05"));
}

TEST(ObdProxyOxygenSensors, KwpSensorsAndTheirTests)
{
    FakeScantool scantool(Obd::PROTOCOL_KWP2000, false);
    // PID 01 and PID 13 supported.
    scantool.setReply("0100", "86 F1 10 41 00 80 00 20 00 48 \r\r>");
    // Bank 1 sensors 1 and 2.
    scantool.setReply("0113", "83 F1 10 41 13 03 00 \r\r>");
    // Sensor 1 reports TID 18, sensor 2 TID 12; 01..0A are always assumed.
    scantool.setReply("050001", "87 F1 10 45 00 01 00 00 01 00 00 \r\r>");
    scantool.setReply("050002", "87 F1 10 45 00 02 00 00 40 00 00 \r\r>");
    Obd::ObdProxy proxy;
    ASSERT_TRUE(proxy.initialize(&scantool));
    Obd::EcuPtr ecu = proxy.getFirstEcu();
    ASSERT_TRUE(ecu);
    std::vector<Obd::OxygenSensorLocation> expected = { Obd::B1S1, Obd::B1S2 };
    EXPECT_EQ(expected, ecu->getOxygenSensors());
    std::vector<unsigned char> tids;
    ASSERT_TRUE(ecu->getSupportedTids(Obd::B1S1, tids));
    std::sort(tids.begin(), tids.end());
    tids.erase(std::unique(tids.begin(), tids.end()), tids.end());
    std::vector<unsigned char> sensor1 = { 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 0x18 };
    EXPECT_EQ(sensor1, tids);
    ASSERT_TRUE(ecu->getSupportedTids(Obd::B1S2, tids));
    std::sort(tids.begin(), tids.end());
    tids.erase(std::unique(tids.begin(), tids.end()), tids.end());
    std::vector<unsigned char> sensor2 = { 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 0x12 };
    EXPECT_EQ(sensor2, tids);
}
