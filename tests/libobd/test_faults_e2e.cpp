// Faults end to end: the library against elmsim while the link drops, the
// adapter goes silent, prints error words or garbage, answers late or slowly.
// Every case ends in a clear state within the time-outs, leaves no thread or
// descriptor behind, and the next connection to the same adapter works.

#include "elmsimserver.h"
#include "iconnection.h"
#include "idisconnectlistener.h"
#include "ipolllistener.h"
#include "iscantool.h"
#include "linkopener.h"
#include "logcapture.h"
#include "messagepoller.h"
#include "obdproxy.h"
#include "obdtransporter.h"
#include "recordingparameter.h"
#include "resourcebaseline.h"
#include "sensorfactory.h"
#include "simlink.h"
#include "tcpbus.h"
#include "parameters/cleartroublecodes.h"
#include "parameters/storedtroublecodes.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <string>
#include <thread>

namespace {

using Clock = std::chrono::steady_clock;
typedef std::vector<unsigned char> Bytes;

// One link to a running simulator, opened and closed the way the
// command-line tool does it; counts the losses the connection reports.
class Link : public Obd::IDisconnectListener
{
public:
    explicit Link(unsigned short port)
        : m_port(port)
    {
    }
    ~Link() override { close(); }

    Obd::LinkOpener::Result open()
    {
        Obd::TcpBus* bus = new Obd::TcpBus;
        bus->init("127.0.0.1", m_port);
        return Obd::LinkOpener().open(bus, this, &m_proxy, m_connection, m_scantool);
    }

    void close()
    {
        m_proxy.reset();
        if (m_connection && m_connection->isConnected() && m_scantool)
            m_scantool->sendReset();
        if (m_connection)
            m_connection->close();
        delete m_scantool;
        m_scantool = nullptr;
        delete m_connection;
        m_connection = nullptr;
    }

    Obd::ExchangeResult execute(Obd::ObdParameter& parameter)
    {
        return Obd::ObdTransporter().execute(&m_proxy, &parameter);
    }

    void onDisconnected() override { ++m_disconnects; }

    Obd::ObdProxy& proxy() { return m_proxy; }
    Obd::IConnection* connection() { return m_connection; }
    Obd::IScantool* scantool() { return m_scantool; }
    int disconnects() const { return m_disconnects; }

private:
    unsigned short m_port;
    Obd::ObdProxy m_proxy;
    Obd::IConnection* m_connection = nullptr;
    Obd::IScantool* m_scantool = nullptr;
    std::atomic<int> m_disconnects{ 0 };
};

RecordingParameter rpm(unsigned int timeoutMs = 1200)
{
    return RecordingParameter({ 0x01, 0x0C }, { 0x41, 0x0C }, timeoutMs);
}

RecordingParameter speed(unsigned int timeoutMs = 1200)
{
    return RecordingParameter({ 0x01, 0x0D }, { 0x41, 0x0D }, timeoutMs);
}

// The link works again: a fresh connection discovers the vehicle and reads
// engine speed from the first ECU.
void expectNextConnectionWorks(ElmSim::ElmSimServer& server)
{
    Link next(server.port());
    ASSERT_EQ(Obd::LinkOpener::LO_OK, next.open());
    ASSERT_TRUE(next.proxy().getFirstEcu());
    RecordingParameter engineSpeed = rpm();
    EXPECT_EQ(Obd::ER_OK, next.execute(engineSpeed));
    ASSERT_FALSE(engineSpeed.payloads().empty());
    EXPECT_EQ(0x7E8u, engineSpeed.payloads().front().ecuId);
    EXPECT_EQ(4u, engineSpeed.payloads().front().data.size());
}

// Counts the poller's notifications.
class CountingListener : public Obd::IPollListener
{
public:
    void onPolled(int, Obd::ObdParameter*) override { ++count; }
    std::atomic<int> count{ 0 };
};

bool waitFor(const std::function<bool()>& condition, std::chrono::milliseconds limit)
{
    const Clock::time_point deadline = Clock::now() + limit;
    while (!condition()) {
        if (Clock::now() > deadline)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
}

class FaultsE2e : public ::testing::Test
{
protected:
    void SetUp() override
    {
        LogCapture::instance().clear();
        baseline.reset(new ResourceBaseline);
        server.reset(new ElmSim::ElmSimServer(SimLink::quickOptions("can11")));
        ASSERT_TRUE(server->start()) << server->errorString();
    }

    void TearDown() override
    {
        server->stop();
        server.reset();
        baseline->expectNothingLeaked();
    }

    // The number of OBD requests a clean discovery takes on this profile.
    int discoveryRequests()
    {
        const int before = server->requestCount();
        Link probe(server->port());
        EXPECT_EQ(Obd::LinkOpener::LO_OK, probe.open());
        return server->requestCount() - before;
    }

    std::unique_ptr<ResourceBaseline> baseline;
    std::unique_ptr<ElmSim::ElmSimServer> server;
};

TEST_F(FaultsE2e, LinkDroppedDuringDiscoveryFailsTheOpeningAndTheNextOneWorks)
{
    const int requests = discoveryRequests();
    ASSERT_GT(requests, 3);
    struct Row { const char* name; int dropAfter; };
    const Row rows[] = {
        { "at the protocol search", 0 },
        { "at the first supported-PID range", 1 },
        { "in the middle of discovery", requests / 2 },
        { "at the last discovery request", requests - 1 },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        server->setDropAfter(row.dropAfter);
        Link link(server->port());
        const Clock::time_point start = Clock::now();
        EXPECT_EQ(Obd::LinkOpener::LO_DISCOVERY_FAILED, link.open());
        EXPECT_LT(Clock::now() - start, std::chrono::seconds(30));
        EXPECT_FALSE(link.connection());
        EXPECT_FALSE(link.scantool());
        EXPECT_FALSE(link.proxy().getFirstEcu());
        EXPECT_FALSE(link.proxy().isInitialized());
        server->setDropAfter(-1);
        expectNextConnectionWorks(*server);
    }
}

TEST_F(FaultsE2e, LinkDroppedDuringTroubleCodeReadOrClearingLeavesAClosedLink)
{
    struct Row { const char* name; bool clearing; };
    const Row rows[] = { { "reading stored codes", false }, { "clearing codes", true } };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        Link link(server->port());
        ASSERT_EQ(Obd::LinkOpener::LO_OK, link.open());
        std::vector<Obd::EcuPtr> ecus;
        link.proxy().getEcus(ecus);
        ASSERT_FALSE(ecus.empty());
        server->setDropAfter(0);

        Obd::StoredTroubleCodes stored;
        Obd::ClearTroubleCodes clearCodes;
        Obd::ObdParameter& parameter = row.clearing ? static_cast<Obd::ObdParameter&>(clearCodes)
                                                    : static_cast<Obd::ObdParameter&>(stored);
        const Clock::time_point start = Clock::now();
        const Obd::ExchangeResult result = link.execute(parameter);
        EXPECT_NE(Obd::ER_OK, result);
        EXPECT_LT(Clock::now() - start, std::chrono::seconds(5));
        // The loss is known everywhere: connection closed, listener told
        // once (from the read thread, so maybe a moment later), scan tool
        // back to uninitialised, later requests refused at once.
        EXPECT_FALSE(link.connection()->isConnected());
        EXPECT_TRUE(waitFor([&] { return link.disconnects() > 0; }, std::chrono::seconds(5)));
        EXPECT_EQ(1, link.disconnects());
        EXPECT_FALSE(link.scantool()->isInitialized());
        EXPECT_EQ(Obd::ER_ERROR, link.execute(parameter));
        for (const Obd::EcuPtr& ecu : ecus) {
            if (row.clearing) {
                EXPECT_FALSE(clearCodes.isCleared(*ecu));
            } else {
                std::vector<Obd::Dtc> codes;
                EXPECT_FALSE(stored.getDtcs(*ecu, codes));
                EXPECT_TRUE(codes.empty());
            }
        }
        link.close();
        EXPECT_EQ(1, link.disconnects());
        server->setDropAfter(-1);
    }
    // The dropped clear request never reached the car: its codes are still there.
    Link next(server->port());
    ASSERT_EQ(Obd::LinkOpener::LO_OK, next.open());
    Obd::StoredTroubleCodes stored;
    ASSERT_EQ(Obd::ER_OK, next.execute(stored));
    std::vector<Obd::Dtc> codes;
    stored.getDtcs(*next.proxy().getFirstEcu(), codes);
    EXPECT_FALSE(codes.empty());
}

TEST_F(FaultsE2e, LinkDroppedWhilePollingStopsTheUpdatesAndThePollerEndsCleanly)
{
    {
        Link link(server->port());
        ASSERT_EQ(Obd::LinkOpener::LO_OK, link.open());
        CountingListener listener;
        Obd::SensorFactory factory;
        Obd::MessagePoller poller(&link.proxy());
        poller.addPid(0x0C, factory, 0, &listener);
        poller.start();
        ASSERT_TRUE(waitFor([&] { return listener.count >= 3; }, std::chrono::seconds(10)));

        server->dropNow();
        ASSERT_TRUE(waitFor([&] { return link.disconnects() > 0; }, std::chrono::seconds(5)));
        EXPECT_FALSE(link.connection()->isConnected());
        EXPECT_EQ(1, link.disconnects());
        // The poller keeps running on a dead link without notifying anyone.
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        const int afterLoss = listener.count;
        std::this_thread::sleep_for(std::chrono::milliseconds(300));
        EXPECT_EQ(afterLoss, listener.count);
        EXPECT_TRUE(poller.isRunning());

        poller.stop();
        EXPECT_TRUE(poller.wait(5000));
    }
    expectNextConnectionWorks(*server);
}

TEST_F(FaultsE2e, SilentAdapterTimesOutEachRequestAndTheSessionGoesOnWhenItSpeaksAgain)
{
    Link link(server->port());
    ASSERT_EQ(Obd::LinkOpener::LO_OK, link.open());
    server->setSilent(true);
    RecordingParameter silent = rpm(300);
    const Clock::time_point start = Clock::now();
    EXPECT_EQ(Obd::ER_NO_DATA, link.execute(silent));
    EXPECT_LT(Clock::now() - start, std::chrono::seconds(5));
    EXPECT_TRUE(silent.parseCalls().empty());
    EXPECT_TRUE(LogCapture::instance().contains("Connection timeout: 300 ms", 3));
    // Silence is no link loss: the session stays usable.
    EXPECT_TRUE(link.connection()->isConnected());
    EXPECT_EQ(0, link.disconnects());

    server->setSilent(false);
    RecordingParameter again = rpm();
    EXPECT_EQ(Obd::ER_OK, link.execute(again));
    EXPECT_FALSE(again.payloads().empty());
    link.close();
    expectNextConnectionWorks(*server);
}

struct ErrorWordRow
{
    const char* word;
    int code;
};

// Every error word the adapter can print instead of data, with the code the
// scan tool reports for it.
const ErrorWordRow ERROR_WORDS[] = {
    { "NO DATA", 0 },      { "UNABLE TO CONNECT", 12 }, { "BUFFER FULL", 2 },
    { "BUS BUSY", 3 },     { "BUS ERROR", 4 },          { "CAN ERROR", 5 },
    { "DATA ERROR", 6 },   { "<DATA ERROR", 6 },        { "<RX ERROR", 10 },
    { "FB ERROR", 8 },     { "LV RESET", 9 },           { "STOPPED", 11 },
    { "ERR94", 7 },
};

TEST_F(FaultsE2e, EveryErrorWordFailsTheRequestWithItsCodeAndTheNextRequestWorks)
{
    Link link(server->port());
    ASSERT_EQ(Obd::LinkOpener::LO_OK, link.open());
    for (const ErrorWordRow& row : ERROR_WORDS) {
        SCOPED_TRACE(row.word);
        LogCapture::instance().clear();
        server->injectError(row.word, 2);
        RecordingParameter first = rpm();
        EXPECT_EQ(Obd::ER_NO_DATA, link.execute(first));
        EXPECT_TRUE(first.parseCalls().empty());
        Obd::StoredTroubleCodes stored;
        EXPECT_EQ(Obd::ER_NO_DATA, link.execute(stored));
        EXPECT_EQ(2u, LogCapture::instance().count(
                          "Got error from adapter: " + std::to_string(row.code), 3));
        // An error word is an answer, not a lost link.
        EXPECT_TRUE(link.connection()->isConnected());
        RecordingParameter after = rpm();
        EXPECT_EQ(Obd::ER_OK, link.execute(after));
        EXPECT_FALSE(after.payloads().empty());
    }
}

TEST_F(FaultsE2e, ErrorWordsDuringDiscoveryFailTheOpening)
{
    // One word of each kind (every opening costs the adapter's fixed waits,
    // about a second; all words are checked mid-session above).
    const ErrorWordRow rows[] = { { "NO DATA", 0 }, { "UNABLE TO CONNECT", 12 },
                                  { "CAN ERROR", 5 }, { "ERR94", 7 } };
    for (const ErrorWordRow& row : rows) {
        SCOPED_TRACE(row.word);
        server->injectError(row.word, 1000);
        Link link(server->port());
        EXPECT_EQ(Obd::LinkOpener::LO_DISCOVERY_FAILED, link.open());
        EXPECT_FALSE(link.connection());
        server->injectError(row.word, 0);
    }
    expectNextConnectionWorks(*server);
}

TEST_F(FaultsE2e, GarbageBeforeThePromptIsNeverDecodedAsAValue)
{
    Link link(server->port());
    ASSERT_EQ(Obd::LinkOpener::LO_OK, link.open());
    RecordingParameter clean = rpm();
    ASSERT_EQ(Obd::ER_OK, link.execute(clean));
    ASSERT_FALSE(clean.payloads().empty());
    const Bytes expected = clean.payloads().front().data;

    for (unsigned int bytes : { 1u, 3u, 8u, 40u }) {
        SCOPED_TRACE(bytes);
        server->setGarbage(bytes);
        for (int i = 0; i < 10; ++i) {
            RecordingParameter noisy = rpm();
            const Obd::ExchangeResult result = link.execute(noisy);
            EXPECT_TRUE(result == Obd::ER_OK || result == Obd::ER_ERROR || result == Obd::ER_NO_DATA);
            // Whatever got through is the engine speed of a real ECU, unchanged.
            for (const RecordingParameter::Call& call : noisy.payloads()) {
                EXPECT_TRUE(call.ecuId == 0x7E8 || call.ecuId == 0x7E9) << call.ecuId;
                if (call.ecuId == 0x7E8) {
                    EXPECT_EQ(expected, call.data);
                }
            }
        }
    }
    server->setGarbage(0);
    RecordingParameter after = rpm();
    EXPECT_EQ(Obd::ER_OK, link.execute(after));
    EXPECT_TRUE(link.connection()->isConnected());
    link.close();
    expectNextConnectionWorks(*server);
}

TEST_F(FaultsE2e, GarbageBeforeEveryPromptDuringOpeningEndsInAClearResult)
{
    server->setGarbage(8);
    {
        Link link(server->port());
        const Obd::LinkOpener::Result result = link.open();
        // Noise may cost the opening, but it never half-opens.
        if (result == Obd::LinkOpener::LO_OK)
            EXPECT_TRUE(link.proxy().getFirstEcu());
        else
            EXPECT_FALSE(link.connection());
    }
    server->setGarbage(0);
    expectNextConnectionWorks(*server);
}

TEST_F(FaultsE2e, LateReplyToATimedOutRequestIsNotTakenForTheNextPid)
{
    Link link(server->port());
    ASSERT_EQ(Obd::LinkOpener::LO_OK, link.open());
    // The engine-speed reply comes 500 ms after the request, 200 ms after
    // the client gave up and sent the vehicle-speed request.
    server->setDelay(500);
    RecordingParameter timedOut = rpm(300);
    EXPECT_EQ(Obd::ER_NO_DATA, link.execute(timedOut));
    server->setDelay(0);

    RecordingParameter next = speed();
    link.execute(next);
    for (const RecordingParameter::Call& call : next.payloads()) {
        ASSERT_GE(call.data.size(), 2u);
        EXPECT_EQ(0x41, call.data[0]);
        EXPECT_EQ(0x0D, call.data[1]) << "engine-speed reply decoded as vehicle speed";
    }
    // Once the adapter has caught up (its last stale reply is in and is
    // dropped by the next send), the exchanges are back in step: each gets
    // its own reply. Without the pause a loaded machine can deliver that
    // stale reply after the next request, which only the signature catches.
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    for (int i = 0; i < 3; ++i) {
        RecordingParameter engineSpeed = rpm();
        EXPECT_EQ(Obd::ER_OK, link.execute(engineSpeed));
        EXPECT_FALSE(engineSpeed.payloads().empty());
        EXPECT_EQ(engineSpeed.parseCalls().size(), engineSpeed.payloads().size());
        RecordingParameter vehicleSpeed = speed();
        EXPECT_EQ(Obd::ER_OK, link.execute(vehicleSpeed));
        EXPECT_EQ(vehicleSpeed.parseCalls().size(), vehicleSpeed.payloads().size());
        EXPECT_FALSE(vehicleSpeed.payloads().empty());
    }
}

TEST_F(FaultsE2e, SlowCloneAdapterCompletesDiscoveryAndThePollerKeepsPace)
{
    server->setDelay(200);
    Link link(server->port());
    const Clock::time_point start = Clock::now();
    ASSERT_EQ(Obd::LinkOpener::LO_OK, link.open());
    EXPECT_LT(Clock::now() - start, std::chrono::seconds(60));
    std::vector<Obd::EcuPtr> ecus;
    link.proxy().getEcus(ecus);
    EXPECT_EQ(2u, ecus.size());

    CountingListener listener;
    Obd::SensorFactory factory;
    Obd::MessagePoller poller(&link.proxy());
    poller.addPid(0x0C, factory, 0, &listener);
    poller.start();
    // At about 5 exchanges a second the values keep coming.
    EXPECT_TRUE(waitFor([&] { return listener.count >= 5; }, std::chrono::seconds(10)));
    poller.stop();
    EXPECT_TRUE(poller.wait(5000));
    EXPECT_GE(poller.getAverageResponseTime(), 150);
}

} // namespace
