#include "connection.h"
#include "elmscantool.h"
#include "logcapture.h"
#include "scriptedserver.h"
#include "tcpbus.h"
#include "trlog.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <memory>
#include <thread>

using namespace Obd;

namespace {

typedef std::vector<unsigned char> Bytes;
typedef ScriptedServer Server;

Bytes bytes(const std::string& text)
{
    return Bytes(text.begin(), text.end());
}

std::string text(const Bytes& data)
{
    return std::string(data.begin(), data.end());
}

long long millisecondsSince(std::chrono::steady_clock::time_point start)
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(
               std::chrono::steady_clock::now() - start).count();
}

// A scan tool over the real TCP bus and connection, talking to a scripted adapter.
class ElmScantoolTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        LogCapture::instance().clear();
        ASSERT_TRUE(server.isListening());
        TcpBus* bus = new TcpBus;
        ASSERT_TRUE(bus->init("127.0.0.1", server.port()));
        connection.reset(new Connection(bus));
        ASSERT_EQ(IMessageBus::OS_OK, connection->open(nullptr));
        ASSERT_TRUE(server.waitForConnections(1, 2000));
        scantool.reset(ElmScantool::create(connection.get()));
        ASSERT_TRUE(scantool);
    }

    // A genuine adapter after power-up: echo on until ATE0.
    void scriptOpening(const std::string& banner, const std::string& description)
    {
        server.on("ATZ", Server::reply("ATZ\r\r\r" + banner + "\r\r>"));
        server.on("ATI", Server::reply("ATI\r" + banner + "\r\r>"));
        server.on("AT@1", Server::reply("AT@1\r" + description + "\r\r>"));
        server.on("ATE0", Server::reply("ATE0\rOK\r\r>"));
        server.on("ATL0", Server::answer("OK"));
        server.on("ATTP0", Server::answer("OK"));
    }

    bool exchange(const std::string& command, std::string& response, unsigned int timeoutMs = 1000)
    {
        Bytes reply;
        bool ok = scantool->sendCommand(bytes(command), reply, timeoutMs);
        response = text(reply);
        return ok;
    }

    Server server;
    std::unique_ptr<Connection> connection;
    std::unique_ptr<ElmScantool> scantool;
};

} // namespace

TEST(ElmScantoolCreate, NoConnectionNoScantool)
{
    EXPECT_EQ(nullptr, ElmScantool::create(nullptr));
}

TEST(ElmScantoolDetached, EveryOperationFailsQuietlyWithoutAConnection)
{
    ElmScantool scantool;
    Bytes reply;
    std::string text;
    EXPECT_FALSE(scantool.sendCommand(bytes("0100"), reply, 100));
    EXPECT_FALSE(scantool.sendObdCommand("0100", text, 100));
    EXPECT_FALSE(scantool.reset());
    EXPECT_FALSE(scantool.identify());
    EXPECT_FALSE(scantool.initialize(0));
    EXPECT_FALSE(scantool.identifyProtocol());
    EXPECT_FALSE(scantool.changeBaudRate(38400));
    EXPECT_FALSE(scantool.isInitialized());
    EXPECT_EQ(unsigned(PROTOCOL_UNKNOWN), scantool.getProtocol());
    scantool.sendReset();
}

TEST_F(ElmScantoolTest, OpeningDialogueWithRealAndCloneAdapters)
{
    struct Row
    {
        const char* name;
        std::string atz;
        std::string ati;
        std::string description;
        std::string deviceName;
        std::string version;
        std::string storedDescription;
    };
    const Row rows[] = {
        {"genuine ELM327 v1.5, echo on after reset", "ATZ\r\r\rELM327 v1.5\r\r>",
         "ATI\rELM327 v1.5\r\r>", "AT@1\rOBDII to RS232 Interpreter\r\r>", "ELM327", "v1.5",
         "OBDII to RS232 Interpreter"},
        {"clone reporting v2.1 and answering ? to AT@1", "ATZ\r\r\rELM327 v2.1\r\r>",
         "ATI\rELM327 v2.1\r\r>", "AT@1\r?\r\r>", "ELM327", "v2.1", "?"},
        {"STN-based adapter, ELM327 v1.4b", "ATZ\r\r\rELM327 v1.4b\r\r>",
         "ATI\rELM327 v1.4b\r\r>", "AT@1\rOBD-II to UART Interpreter\r\r>", "ELM327", "v1.4b",
         "OBD-II to UART Interpreter"},
        {"STN-based adapter, ELM327 v1.3a, line feeds on", "ATZ\r\n\r\n\r\nELM327 v1.3a\r\n\r\n>",
         "ATI\r\nELM327 v1.3a\r\n\r\n>", "AT@1\r\nSTN adapter\r\n\r\n>", "ELM327", "v1.3a",
         "STN adapter"},
        {"NUL and 0xFC bytes around the reset", std::string("\xFC\xFE" "ATZ\r\r\r\0ELM327 v1.5\r\r\0>", 24),
         "ATI\rELM327 v1.5\r\r>", "AT@1\r  spaced description \r\r>", "ELM327", "v1.5",
         "spaced description"},
        {"clone without echo", "\r\rELM327 v1.5\r\r>", "ELM327 v1.5\r\r>", "?\r\r>", "ELM327",
         "v1.5", "?"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        LogCapture::instance().clear();
        server.clearCommands();
        server.on("ATZ", Server::reply(row.atz));
        server.on("ATI", Server::reply(row.ati));
        server.on("AT@1", Server::reply(row.description));
        server.on("ATE0", Server::reply("ATE0\rOK\r\r>"));
        server.on("ATL0", Server::answer("OK"));
        server.on("ATTP0", Server::answer("OK"));

        EXPECT_TRUE(scantool->reset());
        EXPECT_EQ(row.deviceName, scantool->getDeviceInfo().name);
        EXPECT_EQ(row.version, scantool->getDeviceInfo().version);
        EXPECT_TRUE(scantool->identify());
        EXPECT_TRUE(scantool->readDescription());
        EXPECT_TRUE(scantool->initialize(0));

        EXPECT_EQ((std::vector<std::string>{"ATZ", "ATI", "AT@1", "ATE0", "ATL0", "ATTP0"}),
                  server.commands());
        EXPECT_TRUE(scantool->isInitialized());
        DeviceInfo info = scantool->getDeviceInfo();
        EXPECT_EQ(row.deviceName, info.name);
        EXPECT_EQ(row.version, info.version);
        EXPECT_EQ(row.storedDescription, info.description);
        EXPECT_FALSE(scantool->isHeadersOn());
        // Once from reset(), once from identify().
        EXPECT_EQ(2u, LogCapture::instance().count(
                          "Interface " + row.deviceName + " (" + row.version + ")", LOG_DEBUG));
    }
}

TEST_F(ElmScantoolTest, ResetWaitsForTheBannerWhenOnlyTheEchoCame)
{
    server.on("ATZ", Server::Reply().send("ATZ\r>").pause(600).send("\r\rELM327 v1.5\r\r>"));
    EXPECT_TRUE(scantool->reset());
    EXPECT_EQ("ELM327", scantool->getDeviceInfo().name);
    EXPECT_EQ("v1.5", scantool->getDeviceInfo().version);
}

TEST_F(ElmScantoolTest, ResetOfAnAdapterThatHangsUpFails)
{
    server.on("ATZ", Server::hangUp());
    EXPECT_FALSE(scantool->reset());
    EXPECT_FALSE(connection->isConnected());
    EXPECT_TRUE(LogCapture::instance().contains("Failed to identify the device. Response: ", LOG_ERROR));
}

TEST_F(ElmScantoolTest, UnrecognisedIdentificationIsLoggedWithTheReply)
{
    struct Row
    {
        const char* name;
        std::string reply;
        std::string logged;
    };
    const Row rows[] = {
        {"question mark", "?\r\r>", "?"},
        {"name without digits", "OBDII v1.5\r\r>", "OBDII v1.5"},
        {"nothing at all", "\r\r>", ""},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        LogCapture::instance().clear();
        server.once("ATI", Server::reply(row.reply));
        EXPECT_FALSE(scantool->identify());
        LogCapture::Record record = LogCapture::instance().find("Failed to identify the device");
        EXPECT_EQ(LOG_ERROR, record.level);
        EXPECT_EQ("Failed to identify the device. Response: " + row.logged, record.message);
    }
}

TEST_F(ElmScantoolTest, InitializeStopsAtTheFirstRefusedSetting)
{
    struct Row
    {
        const char* name;
        const char* refused;
        std::string logged;
        std::vector<std::string> sent;
    };
    const Row rows[] = {
        {"echo off refused", "ATE0", "Failed to set echo off. Response: ?", {"ATE0"}},
        {"line feeds off refused", "ATL0", "Failed to set linefeed off. Response: ?",
         {"ATE0", "ATL0"}},
        {"protocol search refused", "ATTP0", "Failed to set try protocol. Response: ?",
         {"ATE0", "ATL0", "ATTP0"}},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        LogCapture::instance().clear();
        server.clearCommands();
        server.on("ATE0", Server::answer("OK"));
        server.on("ATL0", Server::answer("OK"));
        server.on("ATTP0", Server::answer("OK"));
        server.on(row.refused, Server::answer("?"));
        EXPECT_FALSE(scantool->initialize(0));
        EXPECT_FALSE(scantool->isInitialized());
        EXPECT_EQ(row.sent, server.commands());
        LogCapture::Record record = LogCapture::instance().find(row.logged);
        EXPECT_EQ(LOG_ERROR, record.level);
        EXPECT_EQ(row.logged, record.message);
    }
}

TEST_F(ElmScantoolTest, InitializePutsThePromptBackAsDelimiter)
{
    connection->setDelimiter('\r');
    server.on("ATE0", Server::answer("OK"));
    server.on("ATL0", Server::answer("OK"));
    server.on("ATTP3", Server::answer("OK"));
    EXPECT_TRUE(scantool->initialize(3));
    server.on("0100", Server::answer("41 00 BE 3F A8 13 "));
    std::string response;
    EXPECT_TRUE(exchange("0100", response));
    EXPECT_EQ("4100BE3FA813", response);
}

TEST_F(ElmScantoolTest, SettingsSendTheirCommandAndCheckForOk)
{
    struct Row
    {
        const char* name;
        bool (ElmScantool::*operation)();
        const char* command;
        std::string failure;
    };
    const Row rows[] = {
        {"headers on", &ElmScantool::setHeadersOn, "ATH1", "Failed to set headers on. Response: ?"},
        {"headers off", &ElmScantool::setHeadersOff, "ATH0",
         "Failed to set headers off. Response: ?"},
        {"DLC display on, reply not appended", &ElmScantool::setDlcDisplayOn, "ATD1",
         "Failed to set DLC display ok"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        server.clearCommands();
        server.once(row.command, Server::answer("OK"));
        EXPECT_TRUE((scantool.get()->*row.operation)());
        server.once(row.command, Server::answer("?"));
        LogCapture::instance().clear();
        EXPECT_FALSE((scantool.get()->*row.operation)());
        EXPECT_EQ((std::vector<std::string>{row.command, row.command}), server.commands());
        LogCapture::Record record = LogCapture::instance().find("Failed to set");
        EXPECT_EQ(LOG_ERROR, record.level);
        EXPECT_EQ(row.failure, record.message);
    }
}

TEST_F(ElmScantoolTest, HeadersFlagFollowsTheAdapter)
{
    server.on("ATH1", Server::answer("OK"));
    server.on("ATH0", Server::answer("OK"));
    EXPECT_FALSE(scantool->isHeadersOn());
    EXPECT_TRUE(scantool->setHeadersOn());
    EXPECT_TRUE(scantool->isHeadersOn());
    server.once("ATH0", Server::answer("?"));
    EXPECT_FALSE(scantool->setHeadersOff());
    EXPECT_TRUE(scantool->isHeadersOn());
    EXPECT_TRUE(scantool->setHeadersOff());
    EXPECT_FALSE(scantool->isHeadersOn());
}

TEST_F(ElmScantoolTest, TryProtocolIsWrittenInLowerCaseHex)
{
    server.onAnything(Server::answer("OK"));
    for (unsigned int protocol : {0u, 6u, 9u, 10u, 12u}) {
        EXPECT_TRUE(scantool->setTryProtocol(protocol));
    }
    EXPECT_EQ((std::vector<std::string>{"ATTP0", "ATTP6", "ATTP9", "ATTPa", "ATTPc"}),
              server.commands());
}

TEST_F(ElmScantoolTest, DescribedProtocolNumberGivesTheProtocolClass)
{
    struct Row
    {
        const char* name;
        std::string atdpn;
        unsigned int protocol;
    };
    const Row rows[] = {
        {"automatic CAN 11-bit 500k", "A6", PROTOCOL_CAN_11BIT},
        {"CAN 29-bit 500k", "7", PROTOCOL_CAN_29BIT},
        {"automatic ISO 9141-2", "A3", PROTOCOL_ISO9141},
        {"KWP 5-baud init", "4", PROTOCOL_KWP2000},
        {"KWP fast init", "A5", PROTOCOL_KWP2000},
        {"J1850 PWM", "1", PROTOCOL_J1850},
        {"J1850 VPW", "A2", PROTOCOL_J1850},
        {"CAN 11-bit 250k", "8", PROTOCOL_CAN_11BIT},
        {"CAN 29-bit 250k", "A9", PROTOCOL_CAN_29BIT},
        {"J1939 is not OBD", "A", PROTOCOL_UNKNOWN}, // "AA": one 'A' cut, the other kept
        {"user CAN B", "B", PROTOCOL_UNKNOWN},
        {"automatic with nothing found yet", "0", PROTOCOL_UNKNOWN},
        {"spaces around the digit", " A 6 ", PROTOCOL_CAN_11BIT},
    };
    server.on("ATDP", Server::answer("AUTO, ISO 15765-4 (CAN 11/500)"));
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        std::string reply = row.atdpn == "A" ? "AA" : row.atdpn;
        server.once("ATDPN", Server::answer(reply));
        EXPECT_TRUE(scantool->identifyProtocol());
        EXPECT_EQ(row.protocol, scantool->getProtocol());
    }
}

TEST_F(ElmScantoolTest, DescribedProtocolNumberThatIsNotOneCharacterIsRejected)
{
    struct Row
    {
        const char* name;
        std::string atdpn;
        bool logged;
    };
    const Row rows[] = {
        {"a lone A leaves nothing", "A", true},
        {"two digits", "A61", true},
        {"question mark and more", "?? ", true},
        {"empty reply returns silently", "", false},
        {"error word", "NO DATA", false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        LogCapture::instance().clear();
        server.clearCommands();
        server.once("ATDPN", Server::answer(row.atdpn));
        EXPECT_FALSE(scantool->identifyProtocol());
        EXPECT_EQ(row.logged, LogCapture::instance().contains("Invalid response", LOG_DEBUG));
        EXPECT_EQ(std::vector<std::string>{"ATDPN"}, server.commands()) << "no ATDP after a bad number";
        EXPECT_EQ(unsigned(PROTOCOL_UNKNOWN), scantool->getProtocol());
    }
}

TEST_F(ElmScantoolTest, DescribedProtocolNameIsCleanedUp)
{
    struct Row
    {
        const char* name;
        std::string atdp;
        std::string protocolName;
    };
    const Row rows[] = {
        {"automatic CAN", "AUTO, ISO 15765-4 (CAN 11/500)", "ISO 15765-4 (CAN 11/500)"},
        {"set by hand", "ISO 9141-2", "ISO 9141-2"},
        {"automatic J1850", "AUTO, SAE J1850 VPW", "SAE J1850 VPW"},
        {"blanks around", "  ISO 14230-4 (KWP FAST) ", "ISO 14230-4 (KWP FAST)"},
        {"only the first comma goes", "AUTO, A,B", "A,B"},
    };
    server.on("ATDPN", Server::answer("A6"));
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        server.once("ATDP", Server::answer(row.atdp));
        EXPECT_TRUE(scantool->identifyProtocol());
        EXPECT_EQ(row.protocolName, scantool->getProtocolName());
    }
    server.once("ATDP", Server::answer(""));
    EXPECT_FALSE(scantool->identifyProtocol());
}

TEST_F(ElmScantoolTest, SendCommandRemovesSpacesAndFraming)
{
    struct Row
    {
        const char* name;
        std::string adapter;
        std::string response;
    };
    const Row rows[] = {
        {"single ECU, headers off", "41 00 BE 3F A8 13 \r\r>", "4100BE3FA813"},
        {"11-bit CAN headers on", "7E8 06 41 00 BE 3F A8 13 \r\r>", "7E8064100BE3FA813"},
        {"two ECUs, 7EA first", "7EA 06 41 00 98 18 80 13 \r7E8 06 41 00 BE 3F A8 13 \r\r>",
         "7EA06410098188013" "7E8064100BE3FA813"},
        {"29-bit CAN", "18 DA F1 10 04 41 0C 1A F8 \r\r>", "18DAF11004410C1AF8"},
        {"negative response is data here", "7E8 03 7F 01 12 \r\r>", "7E8037F0112"},
        {"ACT ALERT is not an error word", "ACT ALERT\r\r>", "ACTALERT"},
        {"searching, then data", "SEARCHING...\r41 0C 1A F8 \r\r>", "SEARCHING...410C1AF8"},
        {"clone glues data to the dots", "SEARCHING...41 0C 1A F8\r\r>", "SEARCHING...410C1AF8"},
        {"empty reply", "\r\r>", ""},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        server.once("0100", Server::reply(row.adapter));
        std::string response = "old";
        EXPECT_TRUE(exchange("0100", response));
        EXPECT_EQ(row.response, response);
    }
}

TEST_F(ElmScantoolTest, SendObdCommandKeepsTheSpaces)
{
    server.on("010C", Server::answer("SEARCHING...\r41 0C 1A F8 "));
    std::string response;
    EXPECT_TRUE(scantool->sendObdCommand("010C", response, 1000));
    EXPECT_EQ("SEARCHING...41 0C 1A F8 ", response);
}

TEST_F(ElmScantoolTest, ErrorWordsFailTheExchangeWithTheirCode)
{
    struct Row
    {
        const char* name;
        std::string adapter;
        int code;
    };
    const Row rows[] = {
        {"no data", "NO DATA", 0},
        {"searching, then no data", "SEARCHING...\rNO DATA", 0},
        {"no vehicle", "SEARCHING...\rUNABLE TO CONNECT", 12},
        {"buffer full", "41 0C 1A F8 \rBUFFER FULL", 2},
        {"bus busy", "BUS BUSY", 3},
        {"bus error", "BUS ERROR", 4},
        {"CAN error", "CAN ERROR", 5},
        {"data error", "DATA ERROR", 6},
        {"data error after partial data", "41 0C 1A <DATA ERROR", 6},
        {"feedback error", "FB ERROR", 8},
        {"low-voltage reset", "LV RESET", 9},
        {"receive error after partial data", "7E8 10 14 49 <RX ERROR", 10},
        {"a byte came before the prompt", "STOPPED", 11},
        {"adapter lost its settings", "ERR94", 7},
        {"K-line init failed", "BUS INIT: ...ERROR", 7},
        {"no data wins over later words", "NO DATA\rCAN ERROR", 0},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        LogCapture::instance().clear();
        server.once("0100", Server::answer(row.adapter));
        std::string response;
        EXPECT_FALSE(exchange("0100", response));
        EXPECT_TRUE(response.empty());
        LogCapture::Record record = LogCapture::instance().find("Got error from adapter: ");
        EXPECT_EQ(LOG_ERROR, record.level);
        EXPECT_EQ("Got error from adapter: " + std::to_string(row.code), record.message);
        EXPECT_EQ("libobd/elmscantool.cpp", record.file);
    }
}

TEST_F(ElmScantoolTest, TimeoutFailsWithinGenerousBounds)
{
    server.on("0100", Server::silence());
    std::string response;
    auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(exchange("0100", response, 500));
    long long elapsed = millisecondsSince(start);
    EXPECT_GE(elapsed, 400);
    EXPECT_LE(elapsed, 2000);
    EXPECT_TRUE(LogCapture::instance().contains("Connection timeout: 500 ms", LOG_ERROR));
    EXPECT_TRUE(connection->isConnected());
}

TEST_F(ElmScantoolTest, ReplyArrivingAfterATimeoutIsNotTakenForTheNextReply)
{
    server.on("0105", Server::Reply().pause(700).send("41 05 7B \r\r>"));
    server.on("010C", Server::answer("41 0C 1A F8 "));
    std::string response;
    EXPECT_FALSE(exchange("0105", response, 200));
    // The late reply reaches the queue before the next command goes out.
    ASSERT_TRUE(server.waitForReplies(1, 3000));
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    EXPECT_TRUE(exchange("010C", response));
    EXPECT_EQ("410C1AF8", response);
    LogCapture::Record record = LogCapture::instance().find("Payload data discarded: ");
    EXPECT_EQ(LOG_DEBUG, record.level);
    EXPECT_EQ("Payload data discarded: 41 05 7B \r\r>", record.message);
    // And the exchanges after it stay in step.
    for (int i = 0; i < 3; ++i) {
        EXPECT_TRUE(exchange("010C", response));
        EXPECT_EQ("410C1AF8", response);
    }
}

TEST_F(ElmScantoolTest, UnpromptedBytesAreDiscardedByTheNextSend)
{
    server.push("STOPPED\r\r>");
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    server.on("010D", Server::answer("41 0D 32 "));
    std::string response;
    EXPECT_TRUE(exchange("010D", response));
    EXPECT_EQ("410D32", response);
    EXPECT_TRUE(LogCapture::instance().contains("Payload data discarded: STOPPED", LOG_DEBUG));
}

TEST_F(ElmScantoolTest, PromptInTheMiddleOfAReplyCostsOneExchangeAtMost)
{
    // The adapter prints a stray '>' mid-reply; the tail arrives as a message of its own.
    server.once("0100", Server::Reply().send("41 00 BE>").pause(100).send("3F A8 13 \r\r>"));
    server.on("010C", Server::answer("41 0C 1A F8 "));
    std::string response;
    EXPECT_TRUE(exchange("0100", response));
    EXPECT_EQ("4100BE", response);
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    EXPECT_TRUE(exchange("010C", response));
    EXPECT_EQ("410C1AF8", response);
}

TEST_F(ElmScantoolTest, GarbageAndNulBytesDoNotDerailTheDialogue)
{
    server.once("0100", Server::reply(std::string("\0\0\xFF\xFE\x01 junk \x7F\0\r\r>", 16)));
    server.once("ATI", Server::reply(std::string("\0\xFC\xFF\r>", 5)));
    server.on("010C", Server::answer("41 0C 1A F8 "));
    std::string response;
    EXPECT_TRUE(exchange("0100", response));
    EXPECT_EQ(std::string("\xFF\xFE\x01junk\x7F", 8), response);
    EXPECT_FALSE(scantool->identify());
    EXPECT_TRUE(exchange("010C", response));
    EXPECT_EQ("410C1AF8", response);
}

TEST_F(ElmScantoolTest, HundredKilobyteReplyIsSurvivedAndTheNextExchangeIsInStep)
{
    std::string huge;
    while (huge.size() < 100 * 1024)
        huge += "7E8 21 41 0C 1A F8 00 00 \r";
    server.once("0902", Server::reply(huge + "\r>"));
    server.on("010C", Server::answer("41 0C 1A F8 "));
    std::string response;
    auto start = std::chrono::steady_clock::now();
    exchange("0902", response, 5000); // the front of it may have been dropped by the cap
    EXPECT_LE(response.size(), huge.size());
    EXPECT_TRUE(exchange("010C", response));
    EXPECT_EQ("410C1AF8", response);
    EXPECT_LT(millisecondsSince(start), 5000);
}

TEST_F(ElmScantoolTest, HundredKilobyteBannerDoesNotStallIdentification)
{
    // Long runs without blanks are the worst case for the identification pattern.
    for (char filler : {'E', '1'}) {
        SCOPED_TRACE(std::string(1, filler));
        server.once("ATI", Server::reply(std::string(100 * 1024, filler) + "\r\r>"));
        auto start = std::chrono::steady_clock::now();
        EXPECT_FALSE(scantool->identify());
        EXPECT_LT(millisecondsSince(start), 5000);
    }
    server.once("ATI", Server::answer("ELM327 v1.5"));
    EXPECT_TRUE(scantool->identify());
}

TEST_F(ElmScantoolTest, APeerThatNeverPromptsOnlyCostsTimeouts)
{
    server.onAnything(Server::reply("41 0C 1A F8 \r\r"));
    std::string response;
    auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < 3; ++i)
        EXPECT_FALSE(exchange("010C", response, 300));
    EXPECT_LT(millisecondsSince(start), 3000);
    EXPECT_EQ(3u, LogCapture::instance().count("Connection timeout: 300 ms", LOG_ERROR));
    EXPECT_TRUE(connection->isConnected());
}

TEST_F(ElmScantoolTest, LostLinkClearsTheScantoolState)
{
    scriptOpening("ELM327 v1.5", "OBDII to RS232 Interpreter");
    server.on("ATDPN", Server::answer("A6"));
    server.on("ATDP", Server::answer("AUTO, ISO 15765-4 (CAN 11/500)"));
    ASSERT_TRUE(scantool->identify());
    ASSERT_TRUE(scantool->readDescription());
    ASSERT_TRUE(scantool->initialize(0));
    ASSERT_TRUE(scantool->identifyProtocol());
    ASSERT_EQ(unsigned(PROTOCOL_CAN_11BIT), scantool->getProtocol());

    server.on("0100", Server::Reply().pause(50).close());
    std::string response;
    EXPECT_FALSE(exchange("0100", response, 3000));
    EXPECT_TRUE(LogCapture::instance().contains("Failed to receive data", LOG_ERROR));
    EXPECT_FALSE(scantool->isInitialized());
    EXPECT_EQ(unsigned(PROTOCOL_UNKNOWN), scantool->getProtocol());
    EXPECT_EQ("", scantool->getProtocolName());
    EXPECT_EQ("", scantool->getDeviceInfo().name);
    EXPECT_EQ("", scantool->getDeviceInfo().version);
    EXPECT_EQ("OBDII to RS232 Interpreter", scantool->getDeviceInfo().description);

    EXPECT_FALSE(exchange("0100", response));
    EXPECT_TRUE(LogCapture::instance().contains("Failed to send data", LOG_ERROR));
}

TEST_F(ElmScantoolTest, SendResetDoesNotWaitForTheBanner)
{
    server.on("ATZ", Server::Reply().pause(500).send("\r\rELM327 v1.5\r\r>"));
    auto start = std::chrono::steady_clock::now();
    scantool->sendReset();
    EXPECT_LT(millisecondsSince(start), 400);
    ASSERT_TRUE(server.waitForCommands(1, 2000));
    EXPECT_EQ(std::vector<std::string>{"ATZ"}, server.commands());
}

TEST_F(ElmScantoolTest, CheckDeviceAsksTwiceAtMost)
{
    struct Row
    {
        const char* name;
        std::vector<std::string> answers;
        bool found;
        size_t asked;
    };
    const Row rows[] = {
        {"first answer", {"ELM327 v1.5"}, true, 1},
        {"second answer", {"?", "ELM327 v2.1"}, true, 2},
        {"never", {"?", "OBDII"}, false, 2},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        server.clearCommands();
        for (const std::string& answer : row.answers)
            server.once("ATI", Server::answer(answer));
        EXPECT_EQ(row.found, scantool->checkDevice());
        EXPECT_EQ(row.asked, server.commandCount());
    }
}

TEST_F(ElmScantoolTest, BaudRateChangeWithAnOrdinaryAdapter)
{
    server.on("ATI", Server::answer("ELM327 v1.5"));
    ASSERT_TRUE(scantool->identify());
    server.clearCommands();

    server.on("ATBRT1F", Server::answer("OK"));
    EXPECT_TRUE(scantool->setBaudRateTimeout());

    // OK at the old rate, then the identification at the new one; a bare CR confirms.
    server.on("ATBRD23", Server::Reply().send("OK\r").pause(100).send("ELM327 v1.5\r"));
    server.on("", Server::answer("OK"));
    EXPECT_TRUE(scantool->changeBaudRate(115200));
    EXPECT_TRUE(scantool->confirmBaudRate());
    EXPECT_EQ((std::vector<std::string>{"ATBRT1F", "ATBRD23", ""}), server.commands());

    // initialize() goes back to the prompt.
    server.on("ATE0", Server::answer("OK"));
    server.on("ATL0", Server::answer("OK"));
    server.on("ATTP0", Server::answer("OK"));
    EXPECT_TRUE(scantool->initialize(0));
}

TEST_F(ElmScantoolTest, BaudRateDivisorsOfAnOrdinaryAdapter)
{
    server.on("ATI", Server::answer("ELM327 v2.1"));
    ASSERT_TRUE(scantool->identify());
    server.clearCommands();
    server.onAnything(Server::reply("OK\r"));
    for (unsigned int baud : {19200u, 38400u, 57600u, 115200u})
        EXPECT_TRUE(scantool->changeBaudRate(baud)) << baud;
    EXPECT_EQ((std::vector<std::string>{"ATBRDD0", "ATBRD68", "ATBRD45", "ATBRD23"}),
              server.commands());

    LogCapture::instance().clear();
    server.clearCommands();
    EXPECT_FALSE(scantool->changeBaudRate(9600));
    EXPECT_FALSE(scantool->changeBaudRate(4800));
    EXPECT_EQ(0u, server.commandCount());
    EXPECT_EQ("Baud rate not supported: 9600",
              LogCapture::instance().find("Baud rate not supported").message);
    EXPECT_TRUE(LogCapture::instance().contains("Baud rate not supported: 4800", LOG_ERROR));
}

TEST_F(ElmScantoolTest, BaudRateRefusalsOfACloneAreReported)
{
    server.on("ATI", Server::answer("ELM327 v2.1"));
    ASSERT_TRUE(scantool->identify());

    // A clone answers "?" to every baud-rate command.
    server.on("ATBRT1F", Server::answer("?"));
    EXPECT_TRUE(scantool->setBaudRateTimeout());
    EXPECT_EQ(LOG_ERROR, LogCapture::instance().find("Failed to set baud rate set timeout").level);
    EXPECT_EQ("Failed to set baud rate set timeout?",
              LogCapture::instance().find("Failed to set baud rate set timeout").message);

    server.on("ATBRD45", Server::reply("?\r"));
    EXPECT_FALSE(scantool->changeBaudRate(57600));
    EXPECT_TRUE(LogCapture::instance().contains("Failed to get response to baud rate change", LOG_ERROR));

    // No identification at the new rate: false without a message.
    LogCapture::instance().clear();
    EXPECT_FALSE(scantool->confirmBaudRate());
    EXPECT_FALSE(LogCapture::instance().contains("baud rate"));

    // Identification came but the final CR is not acknowledged.
    server.push("ELM327 v2.1\r");
    server.on("", Server::reply("?\r"));
    EXPECT_FALSE(scantool->confirmBaudRate());
    EXPECT_EQ("Failed to get final response to baud rate change ?",
              LogCapture::instance().find("Failed to get final response").message);
}

TEST_F(ElmScantoolTest, BaudRateChangeWithTheOBDProsFamily)
{
    server.on("ATI", Server::answer("OBDPros2 v3.4 ELM327 compatible"));
    ASSERT_TRUE(scantool->identify());
    ASSERT_EQ("OBDPros2", scantool->getDeviceInfo().name);
    server.clearCommands();

    EXPECT_TRUE(scantool->setBaudRateTimeout());
    EXPECT_EQ(0u, server.commandCount()) << "no ATBRT for this family";

    server.onAnything(Server::reply("OK\r"));
    for (unsigned int baud : {9600u, 19200u, 38400u, 57600u, 115200u})
        EXPECT_TRUE(scantool->changeBaudRate(baud)) << baud;
    EXPECT_EQ((std::vector<std::string>{"ATSCS1", "ATSCS3", "ATSCS4", "ATSCS5", "ATSCS6"}),
              server.commands());

    // Confirmed by asking for the identification again.
    server.clearCommands();
    server.on("ATI", Server::reply("OBDPros2 v3.4 ELM327 compatible\r"));
    EXPECT_TRUE(scantool->confirmBaudRate());
    EXPECT_EQ(std::vector<std::string>{"ATI"}, server.commands());
}

TEST_F(ElmScantoolTest, ThroughputOfSendCommand)
{
    server.on("010C", Server::answer("41 0C 1A F8 "));
    const int exchanges = 2000;
    Bytes command = bytes("010C");
    Bytes response;
    int good = 0;
    auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < exchanges; ++i) {
        if (scantool->sendCommand(command, response, 1000) && text(response) == "410C1AF8")
            ++good;
    }
    long long elapsed = std::max(1LL, millisecondsSince(start));
    EXPECT_EQ(exchanges, good);
    long long rate = exchanges * 1000LL / elapsed;
    RecordProperty("exchanges_per_second", static_cast<int>(rate));
    std::printf("%d exchanges in %lld ms: %lld per second\n", exchanges, elapsed, rate);
    EXPECT_FALSE(LogCapture::instance().contains("Payload data discarded"));
}
