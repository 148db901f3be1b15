// The ELM327 dialogue: echo, line feeds, identification, protocol search
// and description, malformed input, clearing codes, reconnecting.

#include "simclient.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

struct Step {
    const char* send;                    // without the CR
    const char* expected;                // whole reply, echo included
};

struct DialogueRow {
    const char* name;
    const char* profile;
    std::vector<Step> steps;
    const char* banner = "";             // identity text; empty: the default
    bool identify = true;
};

const std::vector<DialogueRow> DIALOGUES = {
    { "power-up echo is on and ATZ prints the banner after two CRs", "can11",
      { { "ATZ", "ATZ\r\r\rELM327 v1.5\r\r>" }, { "ATI", "ATI\rELM327 v1.5\r\r>" } } },
    { "echo off stops the command coming back", "can11", { { "ATE0", "ATE0\rOK\r\r>" }, { "ATI", "ELM327 v1.5\r\r>" },
      { "AT@1", "OBDII to RS232 Interpreter\r\r>" } } },
    { "line feeds on add LF after every CR", "can11", { { "ATE0", "ATE0\rOK\r\r>" }, { "ATL1", "OK\r\n\r\n>" },
      { "ATI", "ELM327 v1.5\r\n\r\n>" }, { "ATZ", "\r\rELM327 v1.5\r\r>" } } },
    { "lower case and spaces are ignored in commands", "can11", { { "at e0", "at e0\rOK\r\r>" },
      { "at i", "ELM327 v1.5\r\r>" }, { "at sp 6", "OK\r\r>" }, { "01 0d", "41 0D 00 \r41 0D 00 \r\r>" } } },
    { "ATD restores the defaults, echo included", "can11", { { "ATE0", "ATE0\rOK\r\r>" }, { "ATH1", "OK\r\r>" },
      { "ATD", "OK\r\r>" }, { "ATI", "ATI\rELM327 v1.5\r\r>" } } },
    { "protocol before and after an automatic search", "can11", { { "ATE0", "ATE0\rOK\r\r>" },
      { "ATDP", "AUTO\r\r>" }, { "ATDPN", "A0\r\r>" },
      { "0100", "SEARCHING...\r41 00 BE 3F B8 13 \r41 00 80 08 00 10 \r\r>" },
      { "010D", "41 0D 00 \r41 0D 00 \r\r>" }, { "ATDP", "AUTO, ISO 15765-4 (CAN 11/500)\r\r>" },
      { "ATDPN", "A6\r\r>" } } },
    { "ATTP0 starts a new search", "can29", { { "ATE0", "ATE0\rOK\r\r>" },
      { "0902", "SEARCHING...\r014\r0: 49 02 01 57 45 4C \r1: 32 39 42 49 54 37 43 \r2: 41 4E 30 30 30 30 32 \r\r>" },
      { "ATTP0", "OK\r\r>" }, { "ATDP", "AUTO\r\r>" }, { "010D", "SEARCHING...\r41 0D 00 \r41 0D 00 \r\r>" },
      { "ATDPN", "A7\r\r>" } } },
    { "protocol set explicitly", "kwp", { { "ATE0", "ATE0\rOK\r\r>" }, { "ATSP5", "OK\r\r>" },
      { "ATDP", "ISO 14230-4 (KWP FAST)\r\r>" }, { "ATDPN", "5\r\r>" }, { "010D", "41 0D 00 \r41 0D 00 \r\r>" } } },
    { "wrong protocol set explicitly", "kwp", { { "ATE0", "ATE0\rOK\r\r>" }, { "ATSP6", "OK\r\r>" },
      { "010D", "CAN ERROR\r\r>" }, { "ATSP3", "OK\r\r>" }, { "010D", "UNABLE TO CONNECT\r\r>" } } },
    { "automatic with a first guess", "iso9141", { { "ATE0", "ATE0\rOK\r\r>" }, { "ATSPA3", "OK\r\r>" },
      { "ATDP", "AUTO, ISO 9141-2\r\r>" }, { "ATDPN", "A3\r\r>" }, { "010D", "SEARCHING...\r41 0D 00 \r\r>" } } },
    { "K-line bus init shown on the first request of a set protocol only", "iso9141", { { "ATE0", "ATE0\rOK\r\r>" },
      { "ATSP3", "OK\r\r>" }, { "010D", "BUS INIT: ...OK\r41 0D 00 \r\r>" }, { "010D", "41 0D 00 \r\r>" },
      { "ATZ", "\r\rELM327 v1.5\r\r>" }, { "010D", "010D\rSEARCHING...\r41 0D 00 \r\r>" } } },
    { "no vehicle: every request searches and fails", "none", { { "ATE0", "ATE0\rOK\r\r>" },
      { "0100", "SEARCHING...\rUNABLE TO CONNECT\r\r>" }, { "0100", "SEARCHING...\rUNABLE TO CONNECT\r\r>" },
      { "ATDP", "AUTO\r\r>" }, { "ATRV", "12.6V\r\r>" } } },
    { "unsupported requests answer NO DATA", "can11", { { "ATE0", "ATE0\rOK\r\r>" }, { "ATSP6", "OK\r\r>" },
      { "0122", "NO DATA\r\r>" }, { "2101", "NO DATA\r\r>" }, { "020201", "NO DATA\r\r>" },
      { "09FF", "NO DATA\r\r>" } } },
    { "malformed requests and unknown AT commands answer ?", "can11", { { "ATE0", "ATE0\rOK\r\r>" },
      { "0", "?\r\r>" }, { "01G0", "?\r\r>" }, { "XYZ", "?\r\r>" }, { "ATXYZ", "?\r\r>" }, { "ATMA", "?\r\r>" },
      { "0102030405060708", "?\r\r>" } } },
    { "a bare CR repeats the previous command", "can11", { { "ATE0", "ATE0\rOK\r\r>" }, { "ATSP6", "OK\r\r>" },
      { "010D", "41 0D 00 \r41 0D 00 \r\r>" }, { "", "41 0D 00 \r41 0D 00 \r\r>" } } },
    { "battery voltage with the engine running", "can11", { { "ATRV", "ATRV\r13.9V\r\r>" } } },
    { "clearing codes empties services 03 and 07, MIL off, monitors incomplete", "can11",
      { { "ATE0", "ATE0\rOK\r\r>" }, { "ATSP6", "OK\r\r>" }, { "04", "44 \r44 \r\r>" },
      { "03", "43 00 \r43 00 \r\r>" }, { "07", "47 00 \r47 00 \r\r>" },
      { "0101", "41 01 00 04 00 00 \r41 01 00 07 E5 E5 \r\r>" }, { "020200", "42 02 00 00 00 \r\r>" },
      { "020C00", "NO DATA\r\r>" } } },
    { "a diesel refuses to clear with the engine running", "diesel", { { "ATE0", "ATE0\rOK\r\r>" },
      { "ATSP6", "OK\r\r>" }, { "04", "7F 04 22 \r\r>" }, { "03", "43 01 20 02 \r\r>" } } },
    { "a custom banner", "can11", { { "ATZ", "ATZ\r\r\rELM327 v2.1\r\r>" }, { "ATI", "ATI\rELM327 v2.1\r\r>" } },
      "ELM327 v2.1" },
    { "an adapter that does not identify", "can11", { { "ATZ", "ATZ\r?\r\r>" }, { "ATI", "ATI\r?\r\r>" } }, "",
      false },
};

class DialogueTest : public ::testing::TestWithParam<DialogueRow>
{
};

TEST_P(DialogueTest, AnswersEveryStepExactly)
{
    const DialogueRow& row = GetParam();
    ElmSim::ServerOptions options = SimLink::quickOptions(row.profile);
    options.banner = row.banner;
    options.identify = row.identify;
    SimRig rig(options);
    ASSERT_TRUE(rig.open({}, false));
    for (const Step& step : row.steps) {
        SCOPED_TRACE(std::string("sent: ") + step.send);
        EXPECT_EQ(rig.client.exchange(step.send), step.expected);
    }
}

INSTANTIATE_TEST_SUITE_P(Dialogues, DialogueTest, ::testing::ValuesIn(DIALOGUES),
                         [](const ::testing::TestParamInfo<DialogueRow>& info) { return testName(info.param.name); });

TEST(ElmSimAdapter, LineEndingsLfAndCrLfEachEndOneCommand)
{
    SimRig rig("can11");
    ASSERT_TRUE(rig.open());
    ASSERT_TRUE(rig.client.sendRaw("ATI\r\nATI\n"));
    EXPECT_EQ(rig.client.readUntil(">"), "ELM327 v1.5\r\r>");
    EXPECT_EQ(rig.client.readUntil(">"), "ELM327 v1.5\r\r>");
    // Nothing else follows: the LF after the CR was not a second command.
    EXPECT_EQ(rig.client.exchange("ATRV"), "13.9V\r\r>");
    EXPECT_EQ(rig.server.requestLog(), (std::vector<std::string>{ "ATE0", "ATI", "ATI", "ATRV" }));
}

TEST(ElmSimAdapter, BaudRateChangeShowsIdentityThenConfirms)
{
    SimRig rig("can11");
    ASSERT_TRUE(rig.open({ "ATBRT1F" }));
    ASSERT_TRUE(rig.client.sendRaw("ATBRD23\r"));
    EXPECT_EQ(rig.client.readUntil("\r"), "OK\r");
    EXPECT_EQ(rig.client.readUntil("\r"), "ELM327 v1.5\r");
    EXPECT_EQ(rig.client.exchange(""), "OK\r\r>");
    EXPECT_EQ(rig.client.exchange("ATI"), "ELM327 v1.5\r\r>");
}

TEST(ElmSimAdapter, FailsToStartWithAReason)
{
    ElmSim::ElmSimServer unknown(SimLink::quickOptions("tractor"));
    EXPECT_FALSE(unknown.start());
    EXPECT_NE(unknown.errorString().find("tractor"), std::string::npos) << unknown.errorString();
    ElmSim::ElmSimServer first(SimLink::quickOptions("can11"));
    ASSERT_TRUE(first.start()) << first.errorString();
    ElmSim::ServerOptions options = SimLink::quickOptions("can11");
    options.port = first.port();
    ElmSim::ElmSimServer second(options);
    EXPECT_FALSE(second.start());
    EXPECT_NE(second.errorString().find("cannot listen"), std::string::npos) << second.errorString();
}

} // namespace
