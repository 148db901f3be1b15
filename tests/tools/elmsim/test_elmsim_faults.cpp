// Injected faults: delays, dropped links, silence, error words, garbage
// before the prompt; and the request counter.

#include "simclient.h"

#include <gtest/gtest.h>

#include <functional>
#include <string>
#include <unistd.h>
#include <vector>

namespace {

const char* const SPEED_REPLY = "41 0D 00 \r41 0D 00 \r\r>";

// Polls pred() until it holds or a generous deadline passed.
bool eventually(const std::function<bool()>& pred)
{
    for (int i = 0; i < 10000 && !pred(); ++i)
        ::usleep(1000);
    return pred();
}

TEST(ElmSimFaults, DelaysHoldBackTheAnswerUntilTheyAreOver)
{
    // No prompt can arrive in the first 100 ms of a 300 ms delay, however
    // loaded the machine; then the rest of the answer comes.
    struct Row {
        const char* name;
        std::function<void(ElmSim::ServerOptions&)> adjust;
        std::vector<std::string> setup;
        const char* send;
        const char* atOnce;              // what is printed before the wait
        const char* reply;               // the whole reply
    } rows[] = {
        { "per OBD request", [](ElmSim::ServerOptions& o) { o.delayMs = 300; }, { "ATSP6" }, "010D", "",
          SPEED_REPLY },
        { "reset boot time", [](ElmSim::ServerOptions& o) { o.resetDelayMs = 300; }, {}, "ATZ", "",
          "\r\rELM327 v1.5\r\r>" },
        { "protocol search after the search word", [](ElmSim::ServerOptions& o) { o.searchDelayMs = 300; }, {},
          "010D", "SEARCHING...\r", "SEARCHING...\r41 0D 00 \r41 0D 00 \r\r>" },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        ElmSim::ServerOptions options = SimLink::quickOptions("can11");
        row.adjust(options);
        SimRig rig(options);
        ASSERT_TRUE(rig.open(row.setup));
        ASSERT_TRUE(rig.client.sendRaw(std::string(row.send) + "\r"));
        const std::string atOnce = *row.atOnce ? rig.client.readUntil(row.atOnce) : "";
        EXPECT_EQ(atOnce, row.atOnce);
        const std::string early = rig.client.readUntil(">", 100);
        EXPECT_EQ(early.find('>'), std::string::npos) << early;
        EXPECT_EQ(atOnce + early + rig.client.readUntil(">"), row.reply);
    }
}

TEST(ElmSimFaults, InjectedFaultsAndBackToNormal)
{
    SimRig rig("can11");
    ASSERT_TRUE(rig.open({ "ATSP6" }));
    ElmSim::ElmSimServer& server = rig.server;
    SimClient& client = rig.client;

    // Error words replace the next OBD answers only; AT replies are untouched.
    for (const std::string word : { "BUS ERROR", "CAN ERROR", "BUFFER FULL", "<DATA ERROR", "STOPPED", "ERR94",
                                    "UNABLE TO CONNECT" }) {
        SCOPED_TRACE(word);
        server.injectError(word, 2);
        EXPECT_EQ(client.exchange("010D"), word + "\r\r>");
        EXPECT_EQ(client.exchange("ATI"), "ELM327 v1.5\r\r>");
        EXPECT_EQ(client.exchange("010D"), word + "\r\r>");
        EXPECT_EQ(client.exchange("010D"), SPEED_REPLY);
    }

    // Garbage arrives before the prompt and never contains it.
    server.setGarbage(12);
    for (int i = 0; i < 20; ++i) {
        const std::string reply = client.exchange("010D");
        ASSERT_EQ(reply.size(), std::string(SPEED_REPLY).size() + 12);
        EXPECT_EQ(reply.compare(0, 20, SPEED_REPLY, 20), 0); // data and both CRs first
        EXPECT_EQ(reply.find('>'), reply.size() - 1);
    }
    server.setGarbage(0);

    // A silent adapter reads but never answers.
    server.setSilent(true);
    ASSERT_TRUE(client.sendRaw("010D\rATI\r"));
    ASSERT_TRUE(eventually([&] { return server.requestLog().back() == "ATI"; }));
    server.setSilent(false);
    EXPECT_EQ(client.exchange("ATI"), "ELM327 v1.5\r\r>"); // the first answer after silence

    // Dropped after N more OBD requests, AT commands not counted; then the
    // next client is served.
    server.setDropAfter(1);
    const int requests = server.requestCount();
    EXPECT_EQ(client.exchange("ATRV"), "13.9V\r\r>");
    EXPECT_EQ(client.exchange("010D"), SPEED_REPLY);
    EXPECT_EQ(server.requestCount(), requests + 1);
    ASSERT_TRUE(client.sendRaw("010D\r"));
    EXPECT_TRUE(client.waitClosed(5000));
    server.setDropAfter(-1);
    ASSERT_TRUE(client.connectTo(server.port()));
    EXPECT_EQ(client.exchange("ATI"), "ATI\rELM327 v1.5\r\r>");
    server.dropNow();
    EXPECT_TRUE(client.waitClosed(5000));
}

TEST(ElmSimFaults, OptionsApplyFromTheStart)
{
    ElmSim::ServerOptions options = SimLink::quickOptions("can11");
    options.errorWord = "BUS BUSY";
    options.errorCount = 1;
    options.dropAfter = 1;
    SimRig rig(options);
    ASSERT_TRUE(rig.open({}, false));
    EXPECT_EQ(rig.client.exchange("0100"), "0100\rBUS BUSY\r\r>");
    ASSERT_TRUE(rig.client.sendRaw("0100\r"));
    EXPECT_TRUE(rig.client.waitClosed(5000));
}

TEST(ElmSimFaults, StopInterruptsALongDelay)
{
    // A stop that waited out the hour would outlast any test time-out.
    ElmSim::ServerOptions options = SimLink::quickOptions("can11");
    options.delayMs = 3600 * 1000;
    SimRig rig(options);
    ASSERT_TRUE(rig.open({}, false));
    ASSERT_TRUE(rig.client.sendRaw("010D\r"));
    ASSERT_TRUE(eventually([&] { return rig.server.requestLog().size() == 1; }));
    rig.server.stop();
    EXPECT_TRUE(rig.client.waitClosed(5000));
}

} // namespace
