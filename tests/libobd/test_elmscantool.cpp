#include "elmscantool.h"
#include "fakeconnection.h"
#include "logcapture.h"
#include "trlog.h"

#include <gtest/gtest.h>

#include <functional>

using namespace Obd;

namespace {

typedef std::vector<unsigned char> Bytes;

std::vector<std::string> lines(const std::vector<std::string>& commands)
{
    std::vector<std::string> written;
    for (const std::string& command : commands)
        written.push_back(command + "\r");
    return written;
}

// The real scan tool over a scripted link, with the log cleared.
struct Adapter
{
    Adapter()
    {
        LogCapture::instance().clear();
        tool.setConnection(&link);
    }

    // A genuine ELM327 v1.5 after power-up, echo on until ATE0.
    void scriptOpening()
    {
        link.setReply("ATI", "ATI\rELM327 v1.5\r\r>");
        link.setReply("STI", "STI\r?\r\r>");
        link.setReply("AT@1", "AT@1\rOBDII to RS232 Interpreter\r\r>");
        link.setReply("ATE0", "ATE0\rOK\r\r>");
        link.setReply("ATL0", "OK\r\r>");
        link.setReply("ATTP0", "OK\r\r>");
    }

    std::string logged(const std::string& start) const { return LogCapture::instance().find(start).message; }

    FakeConnection link;
    ElmScantool tool;
};

} // namespace

TEST(ElmScantool, WithoutAConnectionEveryOperationFails)
{
    EXPECT_EQ(nullptr, ElmScantool::create(nullptr));
    ElmScantool tool;
    Bytes reply;
    std::string text;
    EXPECT_FALSE(tool.sendCommand(Bytes{'0', '1'}, reply, 100) || tool.sendObdCommand("0100", text, 100));
    EXPECT_FALSE(tool.reset() || tool.identify() || tool.initialize(0) || tool.identifyProtocol());
    EXPECT_FALSE(tool.changeBaudRate(38400));
}

TEST(ElmScantool, OpeningDialogueWithRealAndCloneAdapters)
{
    const struct {
        const char* name;
        std::string atz, ati, sti, description, version, storedDescription, chip;
    } rows[] = {
        {"genuine ELM327 v1.5, echo on after reset", "ATZ\r\r\rELM327 v1.5\r\r>", "ATI\rELM327 v1.5\r\r>",
         "STI\r?\r\r>", "AT@1\rOBDII to RS232 Interpreter\r\r>", "v1.5", "OBDII to RS232 Interpreter", ""},
        {"clone answering ? to AT@1: skipped", "ATZ\r\r\rELM327 v2.1\r\r>", "ATI\rELM327 v2.1\r\r>", "?\r\r>",
         "AT@1\r?\r\r>", "v2.1", "", ""},
        {"STN-based, line feeds on", "ATZ\r\n\r\n\r\nELM327 v1.3a\r\n\r\n>", "ATI\r\nELM327 v1.3a\r\n\r\n>",
         "STI\r\nSTN1110 v4.2.0\r\n\r\n>", "AT@1\r\nSTN adapter\r\n\r\n>", "v1.3a", "STN adapter",
         "STN1110 v4.2.0"},
        {"STN-based refusing AT@1: named by its chip", "ATZ\r\r\rELM327 v1.4b\r\r>", "ATI\rELM327 v1.4b\r\r>",
         "STI\rSTN2120 v5.6.1\r\r>", "AT@1\r?\r\r>", "v1.4b", "STN2120 v5.6.1", "STN2120 v5.6.1"},
        {"NUL and 0xFC bytes around the reset", std::string("\xFC\xFE" "ATZ\r\r\r\0ELM327 v1.4b\r\r\0>", 25),
         "ATI\rELM327 v1.4b\r\r>", "?\r\r>", "AT@1\r  spaced description \r\r>", "v1.4b", "spaced description", ""},
        {"clone without echo, a Bluetooth status line", "\r\rELM327 v1.5\r\r>", "+CONNECTED\rELM327 v1.5\r\r>",
         "?\r\r>", "?\r\r>", "v1.5", "", ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Adapter adapter;
        adapter.scriptOpening();
        adapter.link.setReply("ATZ", row.atz);
        adapter.link.setReply("ATI", row.ati);
        adapter.link.setReply("STI", row.sti);
        adapter.link.setReply("AT@1", row.description);
        EXPECT_TRUE(adapter.tool.reset());
        EXPECT_EQ(row.version, adapter.tool.getDeviceInfo().version);
        EXPECT_TRUE(adapter.tool.identify());
        EXPECT_TRUE(adapter.tool.readDescription());
        EXPECT_TRUE(adapter.tool.initialize(0));
        EXPECT_TRUE(adapter.tool.isInitialized());
        EXPECT_EQ(lines({"ATZ", "ATI", "STI", "AT@1", "ATE0", "ATL0", "ATTP0"}), adapter.link.written());
        EXPECT_EQ("ELM327", adapter.tool.getDeviceInfo().name);
        EXPECT_EQ(row.storedDescription, adapter.tool.getDeviceInfo().description);
        EXPECT_EQ(row.chip, adapter.tool.getDeviceInfo().chip);
        EXPECT_FALSE(adapter.tool.isHeadersOn());
        // A reset sent on leaving does not wait for the banner.
        adapter.tool.sendReset();
        EXPECT_EQ("ATZ\r", adapter.link.written().back());
        EXPECT_EQ(1u, adapter.link.pending());
    }
}

TEST(ElmScantool, UnrecognisedIdentificationFailsAndIsLoggedWithTheReply)
{
    // Long runs without blanks are the worst case for the identification pattern.
    const std::string replies[] = {"?", "OBDII v1.5", "", std::string(100 * 1024, 'E'),
                                   std::string(100 * 1024, '1')};
    Adapter adapter;
    for (const std::string& reply : replies) {
        SCOPED_TRACE(reply.substr(0, 10));
        adapter.link.setReply("ATI", reply + "\r\r>");
        EXPECT_FALSE(adapter.tool.identify());
        EXPECT_EQ("Failed to identify the device. Response: " + reply, adapter.logged("Failed to identify"));
        LogCapture::instance().clear();
    }
    adapter.link.setReply("ATI", "ELM327 v1.5\r\r>");
    EXPECT_TRUE(adapter.tool.identify());
}

TEST(ElmScantool, InitializeSkipsRefusedEchoAndLineFeedSettingsOnly)
{
    const struct {
        const char* refused; std::string reply, logged; std::vector<std::string> sent; bool initialized;
    } rows[] = {
        {"ATE0", "?", "Failed to set echo off. Response: ?", lines({"ATE0", "ATL0", "ATTP0"}), true},
        {"ATL0", "?", "Failed to set linefeed off. Response: ?", lines({"ATE0", "ATL0", "ATTP0"}), true},
        {"ATTP0", "?", "Failed to set try protocol. Response: ?", lines({"ATE0", "ATL0", "ATTP0"}), false},
        {"ATE0", "", "Failed to set echo off. Response: ", lines({"ATE0"}), false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.refused + (" " + row.reply));
        Adapter adapter;
        adapter.scriptOpening();
        adapter.link.setReply(row.refused, row.reply.empty() ? "" : row.reply + "\r\r>");
        EXPECT_EQ(row.initialized, adapter.tool.initialize(0));
        EXPECT_EQ(row.initialized, adapter.tool.isInitialized());
        EXPECT_EQ(row.sent, adapter.link.written());
        EXPECT_EQ(row.logged, adapter.logged("Failed to set"));
    }
}

TEST(ElmScantool, SettingsSendTheirCommandAndWantOk)
{
    const struct {
        const char* name;
        std::function<bool(ElmScantool&)> operation;
        const char* command;
        std::string failure;
        int headers; // the flag after the adapter's OK; -1: not a header setting
    } rows[] = {
        {"headers on", &ElmScantool::setHeadersOn, "ATH1", "Failed to set headers on. Response: ?", 1},
        {"headers off", &ElmScantool::setHeadersOff, "ATH0", "Failed to set headers off. Response: ?", 0},
        {"DLC display on", &ElmScantool::setDlcDisplayOn, "ATD1", "Failed to set DLC display ok", -1},
        {"try protocol in lower-case hex", [](ElmScantool& t) { return t.setTryProtocol(10); }, "ATTPa",
         "Failed to set try protocol. Response: ?", -1},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Adapter adapter;
        adapter.link.addReply(row.command, "OK\r\r>");
        adapter.link.addReply(row.command, "?\r\r>");
        for (bool accepted : {true, false}) {
            EXPECT_EQ(accepted, row.operation(adapter.tool));
            if (row.headers >= 0) {
                EXPECT_EQ(row.headers == 1, adapter.tool.isHeadersOn()) << "a refusal changes nothing";
            }
        }
        EXPECT_EQ(lines({row.command, row.command}), adapter.link.written());
        EXPECT_EQ(row.failure, adapter.logged("Failed to set"));
    }
}

TEST(ElmScantool, DescribedProtocolGivesClassAndName)
{
    const std::string can = "AUTO, ISO 15765-4 (CAN 11/500)", canName = "ISO 15765-4 (CAN 11/500)";
    const struct {
        const char* name;
        std::string atdpn, atdp;
        bool ok;
        unsigned int protocol;
        std::string protocolName;
    } rows[] = {
        {"automatic CAN 11-bit 500k", "A6", can, true, PROTOCOL_CAN_11BIT, canName},
        {"CAN 29-bit 500k", "7", can, true, PROTOCOL_CAN_29BIT, canName},
        {"CAN 11-bit 250k", "8", can, true, PROTOCOL_CAN_11BIT, canName},
        {"automatic CAN 29-bit 250k", "A9", can, true, PROTOCOL_CAN_29BIT, canName},
        {"ISO 9141-2 set by hand", "3", "ISO 9141-2", true, PROTOCOL_ISO9141, "ISO 9141-2"},
        {"KWP 5-baud, blanks around", "4", "  ISO 14230-4 (KWP 5BAUD) ", true, PROTOCOL_KWP2000,
         "ISO 14230-4 (KWP 5BAUD)"},
        {"automatic KWP fast", "A5", "AUTO, ISO 14230-4 (KWP FAST)", true, PROTOCOL_KWP2000, "ISO 14230-4 (KWP FAST)"},
        {"J1850 PWM", "1", "SAE J1850 PWM", true, PROTOCOL_J1850, "SAE J1850 PWM"},
        {"automatic J1850 VPW", "A2", "AUTO, SAE J1850 VPW", true, PROTOCOL_J1850, "SAE J1850 VPW"},
        {"J1939 is not OBD", "AA", "SAE J1939 (CAN 29/250)", true, PROTOCOL_UNKNOWN, "SAE J1939 (CAN 29/250)"},
        {"nothing found yet", "0", "AUTO", true, PROTOCOL_UNKNOWN, ""},
        {"spaces around the digit", " A 6 ", "AUTO, A,B", true, PROTOCOL_CAN_11BIT, "A,B"},
        {"a lone A leaves nothing", "A", can, false, PROTOCOL_UNKNOWN, ""},
        {"two digits", "A61", can, false, PROTOCOL_UNKNOWN, ""},
        {"empty number", "", can, false, PROTOCOL_UNKNOWN, ""},
        {"error word for the number", "NO DATA", can, false, PROTOCOL_UNKNOWN, ""},
        {"empty name", "A6", "", false, PROTOCOL_CAN_11BIT, ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Adapter adapter;
        adapter.link.setReply("ATDPN", row.atdpn + "\r\r>");
        adapter.link.setReply("ATDP", row.atdp + "\r\r>");
        EXPECT_EQ(row.ok, adapter.tool.identifyProtocol());
        EXPECT_EQ(row.protocol, adapter.tool.getProtocol());
        EXPECT_EQ(row.protocolName, adapter.tool.getProtocolName());
        EXPECT_EQ(row.ok || row.atdp.empty() ? 2u : 1u, adapter.link.written().size()) << "no ATDP after a bad number";
    }
}

TEST(ElmScantool, ExchangesStripFramingAndFailOnErrorWordsOrSilence)
{
    const struct {
        const char* name;
        std::string adapter;
        std::string response; // when it succeeds
        std::string log;      // the error logged when it fails
        ScantoolError::Status status = ScantoolError::SE_NONE;
        std::string word = "";
    } rows[] = {
        {"single ECU, headers off", "41 00 BE 3F A8 13 \r\r>", "4100BE3FA813", ""},
        {"two ECUs on CAN, line feeds on", "7EA 06 41 00 98 18 80 13 \r\n7E8 06 41 00 BE 3F A8 13 \r\n\r\n>",
         "7EA06410098188013" "7E8064100BE3FA813", ""},
        {"negative response is data here", "7E8 03 7F 01 12 \r\r>", "7E8037F0112", ""},
        {"ACT ALERT", "ACT ALERT\r\r>", "", "Got error from adapter: ACT ALERT", ScantoolError::SE_ERROR_WORD,
         "ACT ALERT"},
        {"searching, then data", "SEARCHING...\r41 0C 1A F8 \r\r>", "SEARCHING...410C1AF8", ""},
        {"empty reply", "\r\r>", "", ""},
        {"prompts inside the reply", "41 0C>1A F8>\r>", "410C1AF8", ""},
        {"noise bytes and a status line around data", std::string("\0\xFC+PAIRABLE\r41 0C 1A F8 \x80\r\r>", 28),
         "410C1AF8", ""},
        {"a line of garbage next to data", "41 0C 1A F8 \rk#%q\x01\r\r>", "410C1AF8", ""},
        {"only garbage: named in the error", std::string("\0\xFF\xFE\x01 junk \x7F\0\r\r>", 16), "",
         "Unreadable reply to 0100: junk ", ScantoolError::SE_UNREADABLE, "junk "},
        {"echo still on", "0100\r41 0C 1A F8 \r\r>", "410C1AF8", ""},
        {"searching, then no data", "SEARCHING...\rNO DATA\r\r>", "", "Got error from adapter: NO DATA",
         ScantoolError::SE_ERROR_WORD, "NO DATA"},
        {"no data wins over later words", "NO DATA\rCAN ERROR\r\r>", "", "Got error from adapter: NO DATA",
         ScantoolError::SE_ERROR_WORD, "NO DATA"},
        {"K-line init failed", "BUS INIT: ...ERROR\r\r>", "", "Got error from adapter: BUS INIT...ERROR",
         ScantoolError::SE_ERROR_WORD, "BUS INIT...ERROR"},
        {"settings lost, with the number", "ERR94\r\r>", "", "Got error from adapter: ERR94",
         ScantoolError::SE_ERROR_WORD, "ERR94"},
        {"partial data, then the error", "7E8 10 14 49 02 01\r<RX ERROR\r\r>", "", "Got error from adapter: <RX ERROR",
         ScantoolError::SE_ERROR_WORD, "<RX ERROR"},
        {"not understood", "?\r\r>", "", "Got error from adapter: ?", ScantoolError::SE_ERROR_WORD, "?"},
        {"silence", "", "", "Connection timeout: 1000 ms", ScantoolError::SE_TIMEOUT},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Adapter adapter;
        adapter.link.setReply("0100", row.adapter);
        Bytes reply{'o', 'l', 'd'};
        const bool ok = adapter.tool.sendCommand(Bytes{'0', '1', '0', '0'}, reply, 1000);
        const std::string response(reply.begin(), reply.end());
        EXPECT_EQ(row.log.empty(), ok);
        EXPECT_EQ(row.response, response);
        EXPECT_EQ("0100\r", adapter.link.written().front()) << "one line, ended by a carriage return only";
        if (!row.log.empty()) {
            EXPECT_TRUE(LogCapture::instance().contains(row.log, LOG_ERROR));
        }
        EXPECT_EQ(row.status, adapter.tool.lastError().status);
        EXPECT_EQ(row.word, adapter.tool.lastError().word);
    }
}

TEST(ElmScantool, ErrorWordsAreReportedRetriedOnceOrFollowedByASetUp)
{
    const std::vector<std::string> setUp = {"ATE0", "ATL0", "ATTP0", "ATH1"};
    const struct { const char* word; std::vector<std::string> between; bool answered; } rows[] = {
        {"NO DATA", {}, false}, {"CAN ERROR", {}, false}, {"UNABLE TO CONNECT", {}, false},
        {"BUFFER FULL", {"0100"}, true}, {"STOPPED", {"0100"}, true}, {"<DATA ERROR", {"0100"}, true},
        {"BUS INIT: ...ERROR", {"0100"}, true}, {"LV RESET", setUp, true}, {"ERR94", setUp, true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.word);
        Adapter adapter;
        adapter.scriptOpening();
        adapter.link.setReply("ATH1", "OK\r\r>");
        ASSERT_TRUE(adapter.tool.initialize(0) && adapter.tool.setHeadersOn());
        adapter.link.clearWritten();
        adapter.link.addReply("0100", std::string(row.word) + "\r\r>");
        adapter.link.addReply("0100", "7E8 06 41 00 BE 3F A8 13 \r\r>");
        Bytes reply;
        EXPECT_EQ(row.answered, adapter.tool.sendCommand(Bytes{'0', '1', '0', '0'}, reply, 1000));
        std::vector<std::string> sent = {"0100"};
        sent.insert(sent.end(), row.between.begin(), row.between.end());
        if (row.between.size() > 1)
            sent.push_back("0100");
        EXPECT_EQ(lines(sent), adapter.link.written());
        EXPECT_EQ(row.answered ? "7E8064100BE3FA813" : "", std::string(reply.begin(), reply.end()));
        EXPECT_EQ(row.answered ? ScantoolError::SE_NONE : ScantoolError::SE_ERROR_WORD,
                  adapter.tool.lastError().status);
    }
}

TEST(ElmScantool, AReplyLeftUnreadIsDroppedByTheNextCommand)
{
    Adapter adapter;
    // The engine-speed reply comes after the reader gave up.
    adapter.link.setReply("010C", "", "41 0C 1A F8 \r\r>");
    adapter.link.setReply("010D", "41 0D 32 \r\r>");
    auto exchange = [&adapter](char pid) {
        Bytes reply;
        const bool ok = adapter.tool.sendCommand(Bytes{'0', '1', '0', static_cast<unsigned char>(pid)}, reply, 300);
        return ok ? std::string(reply.begin(), reply.end()) : "failed";
    };
    EXPECT_EQ("failed", exchange('C'));
    EXPECT_EQ("410D32", exchange('D'));
    EXPECT_EQ(LOG_DEBUG, LogCapture::instance().find("Payload data discarded").level);
    EXPECT_EQ("Payload data discarded: 41 0C 1A F8 \r\r>", adapter.logged("Payload data discarded"));
    // Printed by the adapter on its own, and an empty line not worth a word.
    for (const char* unprompted : {"STOPPED\r\r>", ""}) {
        LogCapture::instance().clear();
        adapter.link.push(unprompted);
        EXPECT_EQ("410D32", exchange('D'));
        EXPECT_EQ(*unprompted != 0, LogCapture::instance().contains("Payload data discarded"));
    }
}

TEST(ElmScantool, AResetLostInASearchItStoppedIsSentAgain)
{
    // An earlier client left a search running: the reset only stops it.
    Adapter adapter;
    adapter.link.addReply("ATZ", "ATZ\rSTOPPED\r\r>");
    adapter.link.addReply("ATZ", "ATZ\r\r\rELM327 v1.5\r\r>");
    adapter.link.setReply("ATI", "ATI\rELM327 v1.5\r\r>");
    EXPECT_TRUE(adapter.tool.reset());
    EXPECT_EQ("v1.5", adapter.tool.getDeviceInfo().version);
    EXPECT_TRUE(adapter.tool.identify());
    EXPECT_EQ(lines({"ATZ", "ATZ", "ATI", "STI"}), adapter.link.written());
}

TEST(ElmScantool, ALostLinkClearsTheAdapterStateButNotItsDescription)
{
    Adapter adapter;
    adapter.scriptOpening();
    adapter.link.setReply("ATDPN", "A6\r\r>");
    adapter.link.setReply("ATDP", "AUTO, ISO 15765-4 (CAN 11/500)\r\r>");
    ASSERT_TRUE(adapter.tool.identify() && adapter.tool.readDescription());
    ASSERT_TRUE(adapter.tool.initialize(0) && adapter.tool.identifyProtocol());
    adapter.link.close();
    Bytes reply;
    EXPECT_FALSE(adapter.tool.sendCommand(Bytes{'0', '1', '0', '0'}, reply, 1000));
    EXPECT_TRUE(LogCapture::instance().contains("Failed to send data", LOG_ERROR));
    EXPECT_FALSE(adapter.tool.isInitialized());
    EXPECT_EQ(unsigned(PROTOCOL_UNKNOWN), adapter.tool.getProtocol());
    EXPECT_EQ("", adapter.tool.getProtocolName());
    EXPECT_EQ("", adapter.tool.getDeviceInfo().name + adapter.tool.getDeviceInfo().version);
    EXPECT_EQ("OBDII to RS232 Interpreter", adapter.tool.getDeviceInfo().description);
}

TEST(ElmScantool, CheckDeviceAsksTwiceAtMost)
{
    const struct { std::vector<std::string> answers; bool found; } rows[] = {
        {{"ELM327 v1.5"}, true}, {{"?", "ELM327 v2.1"}, true}, {{"?", "OBDII"}, false}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.answers.back());
        Adapter adapter;
        for (const std::string& answer : row.answers)
            adapter.link.addReply("ATI", answer + "\r\r>");
        EXPECT_EQ(row.found, adapter.tool.checkDevice());
        EXPECT_EQ(row.answers.size(), adapter.link.written().size());
    }
}

TEST(ElmScantool, BaudRateChangePerAdapterFamily)
{
    const struct {
        const char* name;
        std::string banner;
        std::vector<std::string> sent; // the timeout setting, then the rate changes
        std::vector<bool> accepted;    // for 9600, 19200, 38400, 57600, 115200 and 4800 bauds
        std::vector<std::string> confirmation;
    } rows[] = {
        {"ordinary adapter", "ELM327 v1.5", {"ATBRT1F", "ATBRDD0", "ATBRD68", "ATBRD45", "ATBRD23"},
         {false, true, true, true, true, false}, {""}},
        {"OBDPros family, no timeout setting", "OBDPros2 v3.4 ELM327 compatible",
         {"ATSCS1", "ATSCS3", "ATSCS4", "ATSCS5", "ATSCS6"}, {true, true, true, true, true, false}, {"ATI"}},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        Adapter adapter;
        adapter.link.setReply("ATI", row.banner + "\r\r>");
        ASSERT_TRUE(adapter.tool.identify());
        adapter.link.clearWritten();
        for (const std::string& command : row.sent)
            adapter.link.setReply(command, "OK\r"); // at the old rate, without a prompt
        EXPECT_TRUE(adapter.tool.setBaudRateTimeout());
        std::vector<bool> accepted;
        for (unsigned int rate : {9600u, 19200u, 38400u, 57600u, 115200u, 4800u})
            accepted.push_back(adapter.tool.changeBaudRate(rate));
        EXPECT_EQ(row.accepted, accepted);
        EXPECT_EQ(lines(row.sent), adapter.link.written());
        EXPECT_TRUE(LogCapture::instance().contains("Baud rate not supported: 4800", LOG_ERROR));
        EXPECT_EQ('\r', adapter.link.delimiter());
        // At the new rate the identification comes by itself; a bare CR confirms.
        adapter.link.clearWritten();
        adapter.link.push(row.banner + "\r");
        adapter.link.setReply("", "OK\r");
        EXPECT_TRUE(adapter.tool.confirmBaudRate());
        EXPECT_EQ(lines(row.confirmation), adapter.link.written());
        adapter.scriptOpening();
        EXPECT_TRUE(adapter.tool.initialize(0));
        EXPECT_EQ('>', adapter.link.delimiter());
    }
}

TEST(ElmScantool, BaudRateRefusalsOfACloneAreReported)
{
    Adapter adapter;
    adapter.link.setReply("ATI", "ELM327 v2.1\r\r>");
    ASSERT_TRUE(adapter.tool.identify());
    adapter.link.setReply("ATBRT1F", "?\r\r>");
    EXPECT_TRUE(adapter.tool.setBaudRateTimeout()) << "best effort";
    EXPECT_EQ("Failed to set baud rate set timeout?", adapter.logged("Failed to set baud rate"));
    adapter.link.setReply("ATBRD45", "?\r");
    EXPECT_FALSE(adapter.tool.changeBaudRate(57600));
    EXPECT_TRUE(LogCapture::instance().contains("Failed to get response to baud rate change", LOG_ERROR));
    // No identification at the new rate: false without a word.
    LogCapture::instance().clear();
    EXPECT_FALSE(adapter.tool.confirmBaudRate());
    EXPECT_FALSE(LogCapture::instance().contains("baud rate"));
    // Identification, but the final CR is not acknowledged.
    adapter.link.push("ELM327 v2.1\r");
    adapter.link.setReply("", "?\r");
    EXPECT_FALSE(adapter.tool.confirmBaudRate());
    EXPECT_EQ("Failed to get final response to baud rate change ?", adapter.logged("Failed to get final response"));
}
