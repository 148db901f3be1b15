// Adapter personalities, the timing model, noise and replay, seen by a
// client on the simulator's TCP port. Modelled time is checked through the
// simulator's report, never on the clock.

#include "elmsimserver.h"
#include "simclient.h"
#include "simlink.h"
#include "timingmodel.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <map>
#include <random>
#include <string>
#include <vector>
#include <unistd.h>

namespace {

const double NOT_CHECKED = -2.0;
const double SHORTER = -1.0;             // below AT ST, above nothing: adaptive timing learned

struct Step {
    const char* send;
    const char* expected;                // whole reply; nullptr: the link closes instead
    double waitMs = NOT_CHECKED;         // modelled listening after the last answer
    double adapterMinMs = 0.0;           // the personality's own time
    double adapterMaxMs = 0.0;
};

struct DialogueRow {
    const char* name;
    const char* adapter;
    const char* timing;
    const char* profile;
    std::vector<Step> steps;
};

const std::vector<DialogueRow> DIALOGUES = {
    { "genuine prints the last consecutive frame filled, knows AT@1 ATAT ATST, not STI", "genuine", "none", "can11",
      { { "STI", "?\r\r>" }, { "ATH1", "OK\r\r>" }, { "AT@1", "OBDII to RS232 Interpreter\r\r>" },
        { "ATAT1", "OK\r\r>" }, { "ATST10", "OK\r\r>" }, { "ATSP6", "OK\r\r>" },
        { "09041", "7E8 10 13 49 04 01 43 41 4C \r7E8 21 31 31 45 43 4D 30 30 \r7E8 22 30 31 32 33 34 35 AA \r"
                   "\r>" } } },
    { "clone v1.5: last frame without filler, ? to AT@1 ATAT1 ATST, trailing spaces", "clone-v15", "none", "can11",
      { { "ATH1", "OK \r\r>" }, { "ATI", "ELM327 v1.5 \r\r>" }, { "AT@1", "? \r\r>" }, { "ATAT1", "? \r\r>" },
        { "ATST10", "? \r\r>" }, { "ATSP6", "OK \r\r>" },
        { "09041", "7E8 10 13 49 04 01 43 41 4C \r7E8 21 31 31 45 43 4D 30 30 \r7E8 22 30 31 32 33 34 35 \r\r>" },
        { "ATS0", "OK \r\r>" }, { "010D1", "7E903410D0000000000 \r\r>" } } },
    { "clone v2.1: identifies as v2.1, ? to more commands, ATWS resets, ATZ drops the link", "clone-v21", "none",
      "can11",
      { { "ATI", "ELM327 v2.1 \r\r>" }, { "ATIGN", "? \r\r>" }, { "ATD1", "? \r\r>" }, { "ATRV", "13.9V \r\r>" },
        { "ATWS", "\r\rELM327 v2.1 \r\r>" }, { "ATZ", nullptr } } },
    { "slow Bluetooth: 600 ms per AT reply, 1.5 s reset, 40-80 ms per OBD reply", "slow-bt", "none", "can11",
      { { "ATI", "ELM327 v1.5\r\r>", NOT_CHECKED, 600, 600 },
        { "ATZ", "\r\rELM327 v1.5\r\r>", NOT_CHECKED, 1500, 1500 }, { "ATE0", "ATE0\rOK\r\r>", NOT_CHECKED, 600, 600 },
        { "010D1", "SEARCHING...\r41 0D 00 \r\r>", NOT_CHECKED, 40, 80 } } },
    { "STN chip: answers STI, identifies as v1.4b", "stn", "none", "can11",
      { { "ATI", "ELM327 v1.4b\r\r>" }, { "STI", "STN1110 v4.2.0\r\r>" },
        { "ATZ", "\r\rELM327 v1.4b\r\r>", NOT_CHECKED, 100, 100 } } },
    { "multi-PID request: one single frame per ECU with each supported PID and its data", "genuine", "none",
      "can11",
      { { "ATH1", "OK\r\r>" }, { "ATSP6", "OK\r\r>" },
        { "010C0D", "7E9 03 41 0D 00 00 00 00 00 \r7E8 06 41 0C 0C 30 0D 00 AA \r\r>" },
        { "0140411", "7E8 06 41 40 44 84 80 00 AA \r\r>" }, { "012223", "NO DATA\r\r>" } } },
    { "multi-PID request of six PIDs: a multi-frame message, headers on and off", "genuine", "none", "can11",
      { { "ATH1", "OK\r\r>" }, { "ATSP6", "OK\r\r>" },
        { "010C0D05110F041",
          "7E8 10 0E 41 0C 0C 30 0D 00 \r7E8 21 05 3A 11 24 0F 40 04 \r7E8 22 38 AA AA AA AA AA AA \r\r>" },
        { "ATH0", "OK\r\r>" },
        { "010C0D05110F041", "00E\r0: 41 0C 0C 30 0D 00 \r1: 05 3A 11 24 0F 40 04 \r2: 38 \r\r>" } } },
    { "multi-PID request on K-line: NO DATA", "genuine", "none", "kwp",
      { { "ATSP5", "OK\r\r>" }, { "010C0D", "NO DATA\r\r>" } } },
    { "genuine timing: the responses-expected digit ends the wait, adaptive timing shortens it, AT0 restores it",
      "genuine", "genuine", "can11",
      { { "ATSP6", "OK\r\r>" }, { "010C", "41 0C 0C 30 \r\r>", 200 }, { "010C", "41 0C 0C 30 \r\r>", SHORTER },
        { "010C1", "41 0C 0C 30 \r\r>", 0 }, { "010D2", "41 0D 00 \r41 0D 00 \r\r>", 0 },
        { "010C2", "41 0C 0C 30 \r\r>", SHORTER }, { "ATAT0", "OK\r\r>" }, { "010C", "41 0C 0C 30 \r\r>", 200 },
        { "ATST19", "OK\r\r>" }, { "010C", "41 0C 0C 30 \r\r>", 100 }, { "ATST01", "OK\r\r>" },
        { "010C", "NO DATA\r\r>", 4 }, { "ATZ", "\r\rELM327 v1.5\r\r>" }, { "ATE0", "ATE0\rOK\r\r>" },
        { "010C", "SEARCHING...\r41 0C 0C 30 \r\r>", 200 } } },
    { "Bluetooth clone timing: no adaptive timing, the digit still ends the wait", "genuine", "bt-clone", "kwp",
      { { "ATSP5", "OK\r\r>" }, { "010C", "41 0C 0C D0 \r\r>", 200 }, { "010C", "41 0C 0C D0 \r\r>", 200 },
        { "ATAT2", "OK\r\r>" }, { "010C", "41 0C 0C D0 \r\r>", 200 }, { "010C1", "41 0C 0C D0 \r\r>", 0 } } },
};

class PersonalityDialogue : public ::testing::TestWithParam<DialogueRow>
{
};

TEST_P(PersonalityDialogue, AnswersEveryStepInItsShape)
{
    const DialogueRow& row = GetParam();
    ElmSim::ServerOptions options = SimLink::quickOptions(row.profile);
    options.adapter = row.adapter;
    options.timing = row.timing;
    options.seed = 1;
    options.timeScale = 0.0;             // modelled and reported, not waited
    ElmSim::ElmSimServer server(options);
    ASSERT_TRUE(server.start()) << server.errorString();
    SimClient client;
    ASSERT_TRUE(client.connectTo(server.port()));
    ASSERT_NE(client.exchange("ATE0").find("OK"), std::string::npos);
    for (const Step& step : row.steps) {
        SCOPED_TRACE(std::string("sent: ") + step.send);
        if (!step.expected) {
            ASSERT_TRUE(client.sendRaw(std::string(step.send) + "\r"));
            EXPECT_TRUE(client.waitClosed(3000));
            continue;
        }
        EXPECT_EQ(client.exchange(step.send), step.expected);
        const ElmSim::ExchangeTiming timing = server.lastExchange();
        if (step.waitMs == SHORTER) {
            EXPECT_GT(timing.waitMs, 0.0);
            EXPECT_LT(timing.waitMs, 200.0);
        } else if (step.waitMs != NOT_CHECKED) {
            EXPECT_DOUBLE_EQ(timing.waitMs, step.waitMs);
        }
        EXPECT_GE(timing.adapterMs, step.adapterMinMs);
        EXPECT_LE(timing.adapterMs, step.adapterMaxMs);
    }
}

INSTANTIATE_TEST_SUITE_P(Personalities, PersonalityDialogue, ::testing::ValuesIn(DIALOGUES),
                         [](const ::testing::TestParamInfo<DialogueRow>& info) {
                             std::string name;
                             for (const char* c = info.param.name; *c; ++c)
                                 name.push_back(std::isalnum(static_cast<unsigned char>(*c)) ? *c : '_');
                             return name;
                         });

// Noise is whatever a tolerant reader drops: non-printable bytes, "+..."
// status lines, a repeated frame, a frame of the previous request, 7F xx 78.
// What is left must be the genuine adapter's reply to the same command.
struct NoiseCount {
    int bytes = 0, status = 0, repeated = 0, stale = 0, pending = 0;
};

std::vector<std::string> splitLines(const std::string& text)
{
    std::vector<std::string> lines(1);
    for (char c : text) {
        if (c == '\r')
            lines.emplace_back();
        else
            lines.back().push_back(c);
    }
    return lines;
}

std::vector<std::string> withoutNoise(const std::string& reply, const std::vector<std::string>& expected,
                                      const std::vector<std::string>& previous, NoiseCount& count)
{
    std::string text;
    for (unsigned char c : reply) {
        if ((c < 0x20 && c != '\r') || c >= 0x7F)
            ++count.bytes;
        else
            text.push_back(static_cast<char>(c));
    }
    std::vector<std::string> kept;
    for (const std::string& line : splitLines(text)) {
        if (!line.empty() && line[0] == '+')
            ++count.status;
        else if (line.find(" 7F ") == 8 && line.find(" 78 ") == 14)
            ++count.pending;
        else if (!line.empty() && !kept.empty() && line == kept.back())
            ++count.repeated;
        else if (std::find(previous.begin(), previous.end(), line) != previous.end()
                 && std::find(expected.begin(), expected.end(), line) == expected.end())
            ++count.stale;
        else
            kept.push_back(line);
    }
    return kept;
}

struct NoiseRow {
    const char* name;
    const char* adapter;
    bool noise;
    const char* profile;
    std::vector<std::string> requests;   // sent in turn, several rounds, then ATZ
    bool framesTouched;                  // repeated, stale or pending frames expected
};

TEST(ElmSimPersonalities, NoiseIsAddedAroundTheGenuineReply)
{
    const std::vector<NoiseRow> rows = {
        { "noisy adapter on CAN", "noisy", false, "can11", { "0902", "010C", "03", "0100", "07", "010D" }, true },
        { "noisy adapter on K-line", "noisy", false, "kwp", { "010C", "03", "0100", "07", "0902" }, true },
        { "noise option on a genuine adapter", "genuine", true, "can11", { "0902", "010C", "03", "0100" }, false },
    };
    for (const NoiseRow& row : rows) {
        SCOPED_TRACE(row.name);
        ElmSim::ServerOptions options = SimLink::quickOptions(row.profile);
        ElmSim::ElmSimServer genuine(options);
        options.adapter = row.adapter;
        options.noise = row.noise;
        options.seed = 5;
        ElmSim::ElmSimServer noisy(options);
        ASSERT_TRUE(genuine.start() && noisy.start());
        SimClient plain, other;
        ASSERT_TRUE(plain.connectTo(genuine.port()) && other.connectTo(noisy.port()));
        std::vector<std::string> commands = { "ATH1" };
        for (int round = 0; round < 8; ++round)
            commands.insert(commands.end(), row.requests.begin(), row.requests.end());
        commands.push_back("ATZ");
        NoiseCount count;
        std::vector<std::string> previous;
        for (const std::string& command : commands) {
            SCOPED_TRACE(command);
            const std::vector<std::string> expected = splitLines(plain.exchange(command));
            EXPECT_EQ(withoutNoise(other.exchange(command), expected, previous, count), expected);
            previous = expected;
        }
        EXPECT_GT(count.bytes, 0);
        EXPECT_GT(count.status, 0);
        if (row.framesTouched) {
            EXPECT_GT(count.repeated, 0);
            EXPECT_GT(count.stale, 0);
        } else {
            EXPECT_EQ(count.repeated + count.stale + count.pending, 0);
        }
        EXPECT_EQ(count.pending > 0, row.framesTouched && std::string(row.profile) == "kwp");
    }
}

TEST(ElmSimPersonalities, AdaptiveTimingLearnsNeverBelowTheSlowestAnswer)
{
    // Two ECUs, the second 30 ms after the first: what each model waits after
    // the last answer once it has seen one exchange.
    const std::vector<ElmSim::Arrival> answers = { { 12.0, 12.5 }, { 42.0, 42.5 } };
    std::map<std::string, double> waits;
    const struct {
        const char* name;
        ElmSim::TimingModel::Kind kind;
        unsigned int adaptive;           // AT AT n
    } rows[] = {
        { "genuine AT0: AT ST", ElmSim::TimingModel::Kind::Genuine, 0 },
        { "genuine AT1", ElmSim::TimingModel::Kind::Genuine, 1 },
        { "genuine AT2", ElmSim::TimingModel::Kind::Genuine, 2 },
        { "bt-clone AT2: AT ST", ElmSim::TimingModel::Kind::BtClone, 2 },
        { "stn AT1", ElmSim::TimingModel::Kind::Stn, 1 },
        { "wifi AT1", ElmSim::TimingModel::Kind::Wifi, 1 },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        std::mt19937 random(1);
        ElmSim::TimingModel model(row.kind, random);
        model.setAdaptive(row.adaptive);
        EXPECT_EQ(model.exchange(answers, 0).waitMs, 200.0);
        const ElmSim::ExchangeTiming second = model.exchange(answers, 0);
        EXPECT_EQ(second.received, 2u);
        EXPECT_GE(second.waitMs, 29.5);  // the slowest gap between answers
        EXPECT_LE(second.waitMs, 200.0);
        waits[row.name] = second.waitMs;
        model.setTimeout(0x05);
        EXPECT_LE(model.timeoutMs(), 20.0);
        EXPECT_EQ(model.exchange(answers, 0).received, 1u);   // 30 ms gap: the second answer is lost
    }
    EXPECT_EQ(waits["genuine AT0: AT ST"], 200.0);
    EXPECT_EQ(waits["bt-clone AT2: AT ST"], 200.0);
    EXPECT_LT(waits["genuine AT1"], 200.0);
    EXPECT_LT(waits["genuine AT2"], waits["genuine AT1"]);
    EXPECT_EQ(waits["stn AT1"], waits["genuine AT2"]);
    EXPECT_EQ(waits["wifi AT1"], waits["genuine AT1"]);
}

TEST(ElmSimPersonalities, ReplayAnswersEachCommandWithItsRecordedReplies)
{
    const std::string path = ::testing::TempDir() + "elmsim_replay_" + std::to_string(::getpid()) + ".txt";
    std::remove(path.c_str());
    ElmSim::ServerOptions options = SimLink::quickOptions("can11");
    options.transcriptPath = path;
    options.noise = true;                // non-printable bytes must survive the escaping
    options.seed = 3;
    std::vector<std::string> recorded;
    const std::vector<std::string> session = { "ATE0", "0100", "at h1", "0100", "0902", "0100" };
    {
        ElmSim::ElmSimServer server(options);
        ASSERT_TRUE(server.start()) << server.errorString();
        SimClient client;
        ASSERT_TRUE(client.connectTo(server.port()));
        for (const std::string& command : session)
            recorded.push_back(client.exchange(command));
    }
    ASSERT_TRUE(std::any_of(recorded.begin(), recorded.end(), [](const std::string& r) {
        return r.find_first_of("\x00\xFC\xFE\xFF\x80", 0, 5) != r.npos;
    }));
    ElmSim::ServerOptions replayOptions = SimLink::quickOptions("none");
    replayOptions.replayPath = path;
    ElmSim::ElmSimServer replay(replayOptions);
    ASSERT_TRUE(replay.start()) << replay.errorString();
    SimClient client;
    ASSERT_TRUE(client.connectTo(replay.port()));
    for (size_t i = 0; i < session.size(); ++i)
        EXPECT_EQ(client.exchange(session[i]), recorded[i]) << session[i];
    EXPECT_EQ(client.exchange("ATH1"), recorded[2]) << "matched by command text, recorded once, played again";
    EXPECT_EQ(client.exchange("0101"), "?\r\r>");
    std::remove(path.c_str());
    ElmSim::ElmSimServer missing(replayOptions);   // its file is gone
    EXPECT_FALSE(missing.start());
    EXPECT_NE(missing.errorString().find(path), std::string::npos);
}

} // namespace
