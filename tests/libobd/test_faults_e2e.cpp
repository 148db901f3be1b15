// Faults end to end: the library against elmsim while the link drops, the
// adapter goes silent, prints error words or garbage, or answers late.
// Every case ends in a clear state, leaves no thread or descriptor behind,
// and the next connection to the same adapter works.

#include "eventually.h"
#include "fakeproxy.h"
#include "iconnection.h"
#include "ipolllistener.h"
#include "iscantool.h"
#include "logcapture.h"
#include "messagepoller.h"
#include "recordingparameter.h"
#include "resourcebaseline.h"
#include "sensorfactory.h"
#include "simlink.h"
#include "trlog.h"
#include "parameters/cleartroublecodes.h"
#include "parameters/storedtroublecodes.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <memory>

using namespace Obd;

namespace {

typedef ElmSim::ElmSimServer Sim;

RecordingParameter rpm(unsigned int timeoutMs = 1200)
{
    return RecordingParameter({0x01, 0x0C}, {0x41, 0x0C}, timeoutMs);
}

RecordingParameter speed()
{
    return RecordingParameter({0x01, 0x0D}, {0x41, 0x0D});
}

struct CountingListener : IPollListener
{
    void onPolled(int, ObdParameter*) override { ++count; }
    std::atomic<int> count{0};
};

class FaultsE2e : public ::testing::Test
{
protected:
    void SetUp() override
    {
        LogCapture::instance().clear();
        baseline.reset(new ResourceBaseline);
        sim.reset(new Sim(SimLink::quickOptions("can11")));
        ASSERT_TRUE(sim->start()) << sim->errorString();
    }

    void TearDown() override
    {
        // The faults are over: a fresh link discovers the vehicle and reads engine speed.
        {
            SimLink next(*sim);
            EXPECT_EQ(LinkOpener::LO_OK, next.open());
            RecordingParameter engineSpeed = rpm();
            EXPECT_EQ(ER_OK, next.execute(engineSpeed));
            EXPECT_FALSE(engineSpeed.payloads().empty());
            for (const RecordingParameter::Call& call : engineSpeed.payloads())
                EXPECT_EQ(4u, call.data.size());
        }
        sim.reset();
        baseline->expectNothingLeaked();
    }

    std::unique_ptr<ResourceBaseline> baseline;
    std::unique_ptr<Sim> sim;
};

} // namespace

TEST_F(FaultsE2e, AFaultDuringTheOpeningFailsItWithoutHalfOpening)
{
    int requests = 0;
    {
        SimLink probe(*sim);
        ASSERT_EQ(LinkOpener::LO_OK, probe.open());
        requests = sim->requestCount();
    }
    ASSERT_GT(requests, 3);
    const struct { const char* name; std::function<void(Sim&)> fault; bool mayOpen; } rows[] = {
        {"link dropped at the protocol search", [](Sim& s) { s.setDropAfter(0); }, false},
        {"link dropped at the first supported-PID range", [](Sim& s) { s.setDropAfter(1); }, false},
        {"link dropped in the middle of discovery", [=](Sim& s) { s.setDropAfter(requests / 2); }, false},
        {"link dropped at the last discovery request", [=](Sim& s) { s.setDropAfter(requests - 1); }, false},
        {"no vehicle answers", [](Sim& s) { s.injectError("UNABLE TO CONNECT", 1000); }, false},
        // Noise may cost the opening, but it never half-opens.
        {"garbage before every prompt", [](Sim& s) { s.setGarbage(8); }, true},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        row.fault(*sim);
        SimLink link(*sim);
        const LinkOpener::Result result = link.open();
        if (result == LinkOpener::LO_OK && row.mayOpen) {
            EXPECT_TRUE(link.proxy().getFirstEcu());
        } else {
            if (!row.mayOpen) {
                EXPECT_EQ(LinkOpener::LO_DISCOVERY_FAILED, result);
            }
            EXPECT_FALSE(link.connection() || link.scantool() || link.proxy().getFirstEcu()
                         || link.proxy().isInitialized());
        }
        sim->setDropAfter(-1);
        sim->injectError("", 0);
        sim->setGarbage(0);
    }
}

TEST_F(FaultsE2e, AFaultDuringARequestEndsItWithoutData)
{
    struct Row {
        std::string name; std::function<void(Sim&)> fault; std::string log; bool linkLost, clearing; int tries;
    };
    // Every error word the adapter prints instead of data, and how often the scan
    // tool asks: passing bus states and lost settings are worth a second try.
    const std::pair<const char*, int> words[] = {
        {"NO DATA", 1}, {"UNABLE TO CONNECT", 1}, {"BUFFER FULL", 2}, {"BUS BUSY", 2},
        {"BUS ERROR", 1}, {"CAN ERROR", 1}, {"DATA ERROR", 2}, {"<DATA ERROR", 2}, {"<RX ERROR", 2},
        {"FB ERROR", 1}, {"LV RESET", 2}, {"STOPPED", 2}, {"ERR94", 2}, {"ACT ALERT", 1},
    };
    std::vector<Row> rows;
    for (const auto& word : words)
        rows.push_back({std::string("error word ") + word.first,
                        [word](Sim& s) { s.injectError(word.first, word.second); },
                        std::string("Got error from adapter: ") + word.first, false, false, word.second});
    rows.push_back({"silent adapter", [](Sim& s) { s.setSilent(true); }, "Connection timeout: 300 ms", false, false, 1});
    rows.push_back({"link dropped while reading codes", [](Sim& s) { s.setDropAfter(0); }, "", true, false, 1});
    rows.push_back({"link dropped while clearing codes", [](Sim& s) { s.setDropAfter(0); }, "", true, true, 1});

    std::unique_ptr<SimLink> link;
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        if (!link || !link->connection()->isConnected()) {
            link.reset(new SimLink(*sim));
            ASSERT_EQ(LinkOpener::LO_OK, link->open());
        }
        LogCapture::instance().clear();
        std::vector<EcuPtr> ecus;
        link->proxy().getEcus(ecus);
        RecordingParameter engineSpeed = rpm(row.log.find("timeout") != std::string::npos ? 300 : 1200);
        StoredTroubleCodes stored;
        ClearTroubleCodes clearing;
        ObdParameter& request = !row.linkLost ? static_cast<ObdParameter&>(engineSpeed)
                                : row.clearing ? static_cast<ObdParameter&>(clearing)
                                               : static_cast<ObdParameter&>(stored);
        row.fault(*sim);
        const int requestsBefore = sim->requestCount();
        EXPECT_EQ(ER_NO_DATA, link->execute(request));
        sim->setSilent(false);
        sim->setDropAfter(-1);
        EXPECT_TRUE(engineSpeed.parseCalls().empty());
        for (const EcuPtr& ecu : ecus) {
            std::vector<Dtc> codes;
            EXPECT_FALSE(stored.getDtcs(*ecu, codes));
            EXPECT_FALSE(clearing.isCleared(*ecu));
        }
        if (!row.log.empty()) {
            EXPECT_EQ(static_cast<size_t>(row.tries), LogCapture::instance().count(row.log, LOG_ERROR));
            if (row.name.compare(0, 10, "error word") == 0) {
                EXPECT_EQ(row.tries, sim->requestCount() - requestsBefore);
            }
        }
        if (row.linkLost) {
            // Known everywhere: connection closed, listener told once (from the read
            // task, so maybe a moment later), scan tool uninitialised, requests refused.
            EXPECT_FALSE(link->connection()->isConnected());
            EXPECT_TRUE(eventually([&] { return link->disconnects() > 0; }));
            EXPECT_EQ(1, link->disconnects());
            EXPECT_FALSE(link->scantool()->isInitialized());
            EXPECT_EQ(ER_ERROR, link->execute(request));
        } else {
            // An answer, however bad, is no lost link: the next request works.
            EXPECT_TRUE(link->connection()->isConnected());
            EXPECT_EQ(0, link->disconnects());
            RecordingParameter after = rpm();
            EXPECT_EQ(ER_OK, link->execute(after));
            EXPECT_FALSE(after.payloads().empty());
        }
    }
    // The dropped clear request never reached the car: its codes are still there.
    link.reset(new SimLink(*sim));
    ASSERT_EQ(LinkOpener::LO_OK, link->open());
    StoredTroubleCodes stored;
    ASSERT_EQ(ER_OK, link->execute(stored));
    std::vector<Dtc> codes;
    stored.getDtcs(*link->proxy().getFirstEcu(), codes);
    EXPECT_FALSE(codes.empty());
}

TEST_F(FaultsE2e, GarbageBeforeThePromptIsNeverDecodedAsAValue)
{
    SimLink link(*sim);
    ASSERT_EQ(LinkOpener::LO_OK, link.open());
    RecordingParameter clean = rpm();
    ASSERT_EQ(ER_OK, link.execute(clean));
    ASSERT_FALSE(clean.payloads().empty());
    for (unsigned int bytes : {1u, 3u, 8u, 40u}) {
        SCOPED_TRACE(bytes);
        sim->setGarbage(bytes);
        for (int i = 0; i < 10; ++i) {
            RecordingParameter noisy = rpm();
            link.execute(noisy);
            // Whatever got through is the engine speed of a real ECU, unchanged.
            for (const RecordingParameter::Call& call : noisy.payloads()) {
                EXPECT_TRUE(call.ecuId == 0x7E8 || call.ecuId == 0x7E9) << call.ecuId;
                if (call.ecuId == 0x7E8) {
                    EXPECT_EQ(clean.payloads().front().data, call.data);
                }
            }
        }
    }
    sim->setGarbage(0);
    EXPECT_TRUE(link.connection()->isConnected());
}

TEST_F(FaultsE2e, ALateReplyIsNeverTakenForAnotherPidAndTheExchangesGetBackInStep)
{
    SimLink link(*sim);
    ASSERT_EQ(LinkOpener::LO_OK, link.open());
    // The engine-speed reply comes 500 ms after the request, after the client gave up.
    sim->setDelay(500);
    RecordingParameter timedOut = rpm(300);
    EXPECT_EQ(ER_NO_DATA, link.execute(timedOut));
    sim->setDelay(0);
    // Until the stale replies are drained a reply may meet the wrong request, which
    // only the signature catches; then every exchange gets its own reply.
    int inStep = 0;
    for (int i = 0; i < 40 && inStep < 6; ++i) {
        RecordingParameter request = i % 2 ? rpm() : speed();
        const ExchangeResult result = link.execute(request);
        for (const RecordingParameter::Call& call : request.payloads())
            ASSERT_EQ(i % 2 ? 0x0C : 0x0D, call.data.at(1)) << "decoded as the other PID";
        const bool own = result == ER_OK && !request.payloads().empty()
                         && request.parseCalls().size() == request.payloads().size();
        inStep = own ? inStep + 1 : 0;
    }
    EXPECT_EQ(6, inStep);
}

TEST_F(FaultsE2e, LinkDroppedWhilePollingStopsTheUpdatesAndThePollerEndsCleanly)
{
    SimLink link(*sim);
    ASSERT_EQ(LinkOpener::LO_OK, link.open());
    CountingListener listener;
    SensorFactory factory;
    FakeProxy lender(link.scantool());
    MessagePoller poller(&lender);
    poller.addPid(0x0C, factory, 0, &listener);
    poller.start();
    ASSERT_TRUE(eventually([&] { return listener.count >= 3; }));

    sim->dropNow();
    ASSERT_TRUE(eventually([&] { return link.disconnects() > 0; }));
    EXPECT_FALSE(link.connection()->isConnected());
    // Once an exchange has begun after the loss, the one before it has told its listener.
    const int asked = lender.getScantoolCalls();
    ASSERT_TRUE(eventually([&] { return lender.getScantoolCalls() >= asked + 2; }));
    const int afterLoss = listener.count;
    // The poller goes on asking on the dead link, telling nobody.
    ASSERT_TRUE(eventually([&] { return lender.getScantoolCalls() >= asked + 10; }));
    EXPECT_EQ(afterLoss, listener.count);
    EXPECT_TRUE(poller.isRunning());
    poller.stop();
    EXPECT_TRUE(poller.wait(5000));
    EXPECT_EQ(1, link.disconnects());
}
