#include "fakeproxy.h"
#include "fakescantool.h"
#include "ipolllistener.h"
#include "logcapture.h"
#include "trlog.h"
#include "messagepoller.h"
#include "obdparameter.h"
#include "powertrain/enginerpm.h"
#include "sensorfactory.h"

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <mutex>
#include <thread>
#include <vector>

using namespace std::chrono;

namespace {

class CountingListener : public Obd::IPollListener
{
public:
    void onPolled(int code, Obd::ObdParameter* parameter) override
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_codes.push_back(code);
        m_times.push_back(steady_clock::now());
        m_last = parameter;
    }
    size_t count()
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_times.size();
    }
    std::vector<steady_clock::time_point> times()
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_times;
    }
    std::vector<int> codes()
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_codes;
    }
    Obd::ObdParameter* last()
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_last;
    }

private:
    std::mutex m_mutex;
    std::vector<int> m_codes;
    std::vector<steady_clock::time_point> m_times;
    Obd::ObdParameter* m_last = nullptr;
};

// A poller over a scripted CAN engine answering engine speed and speed.
struct PollerRig
{
    FakeScantool scantool;
    FakeProxy proxy{&scantool};
    Obd::SensorFactory factory;
    Obd::MessagePoller poller{&proxy};

    PollerRig()
    {
        scantool.setReply("010c", "7E8 04 41 0C 1A F8 \r\r>");
        scantool.setReply("010d", "7E8 03 41 0D 32 \r\r>");
    }
    ~PollerRig()
    {
        poller.stop();
        poller.wait(5000);
    }
};

bool waitFor(const std::function<bool()>& condition, int ms)
{
    auto end = steady_clock::now() + milliseconds(ms);
    while (steady_clock::now() < end) {
        if (condition())
            return true;
        std::this_thread::sleep_for(milliseconds(5));
    }
    return condition();
}

} // namespace

TEST(MessagePollerSubscriptions, TwoListenersOnePidPolledAtTheShortestPeriod)
{
    // Listeners first: the rig stops the poller before they go.
    CountingListener fast;
    CountingListener slow;
    PollerRig rig;
    rig.poller.addPid(0x0C, rig.factory, 500, &fast);
    rig.poller.addPid(0x0C, rig.factory, 2000, &slow);
    EXPECT_EQ(500, rig.poller.getPeriod(0x0C));
    rig.poller.start();
    ASSERT_TRUE(waitFor([&] { return fast.count() >= 5; }, 15000));
    size_t polls = rig.scantool.commandCount("010c");
    size_t slowCount = slow.count();
    // The slow listener is told about a quarter as often as the fast one.
    EXPECT_GE(polls, 5u);
    EXPECT_LE(slowCount, fast.count() / 2 + 1);
    std::vector<steady_clock::time_point> times = slow.times();
    for (size_t i = 1; i < times.size(); ++i)
        EXPECT_GE(times[i] - times[i - 1], milliseconds(1900));
    for (int code : fast.codes())
        EXPECT_EQ(Obd::IPollListener::CODE_UPDATED, code);
    Obd::EngineRpm* rpm = dynamic_cast<Obd::EngineRpm*>(fast.last());
    ASSERT_NE(nullptr, rpm);
}

TEST(MessagePollerSubscriptions, ChangePeriodTakesTheSmallestRemaining)
{
    PollerRig rig;
    CountingListener fast;
    CountingListener slow;
    rig.poller.addPid(0x0C, rig.factory, 500, &fast);
    rig.poller.addPid(0x0C, rig.factory, 2000, &slow);
    LogCapture::instance().clear();
    rig.poller.changePeriod(0x0C, &fast, 3000);
    EXPECT_EQ(2000, rig.poller.getPeriod(0x0C));
    EXPECT_TRUE(LogCapture::instance().contains("changing period for PID 12 to 3000"));
    EXPECT_TRUE(LogCapture::instance().contains("sensor period: 2000"));
}

TEST(MessagePollerSubscriptions, UnknownPidIsRefused)
{
    PollerRig rig;
    CountingListener listener;
    LogCapture::instance().clear();
    rig.poller.addPid(0x77, rig.factory, 500, &listener);
    EXPECT_EQ(-1, rig.poller.getPeriod(0x77));
    EXPECT_TRUE(LogCapture::instance().contains("Unsupported PID: 119", Obd::LOG_ERROR));
}

TEST(MessagePollerSubscriptions, RemovingTheLastListenerRemovesTheEntry)
{
    PollerRig rig;
    CountingListener a;
    CountingListener b;
    CountingListener stranger;
    rig.poller.addPid(0x0D, rig.factory, 300, &a);
    rig.poller.addPid(0x0D, rig.factory, 700, &b);
    rig.poller.removePid(0x0D, &stranger);
    EXPECT_EQ(300, rig.poller.getPeriod(0x0D));
    rig.poller.removePid(0x0D, &a);
    EXPECT_EQ(300, rig.poller.getPeriod(0x0D)); // the entry keeps its period until re-subscribed
    rig.poller.removePid(0x0D, &b);
    EXPECT_EQ(-1, rig.poller.getPeriod(0x0D));
}

TEST(MessagePollerThread, EmptyTableSendsNothingAndStops)
{
    PollerRig rig;
    LogCapture::instance().clear();
    rig.poller.start();
    std::this_thread::sleep_for(milliseconds(350));
    rig.poller.stop();
    ASSERT_TRUE(rig.poller.wait(5000));
    EXPECT_TRUE(rig.scantool.commands().empty());
    EXPECT_TRUE(LogCapture::instance().contains("Message poller started"));
    EXPECT_TRUE(LogCapture::instance().contains("Exiting message poller"));
}

TEST(MessagePollerThread, FailedExchangesNotifyNobodyAndLeaveTheAverage)
{
    CountingListener listener;
    PollerRig rig;
    rig.scantool.setReply("010c", "NO DATA\r\r>", false);
    rig.poller.addPid(0x0C, rig.factory, 100, &listener);
    rig.poller.start();
    ASSERT_TRUE(waitFor([&] { return rig.scantool.commandCount("010c") >= 3; }, 10000));
    EXPECT_EQ(0u, listener.count());
    EXPECT_EQ(0u, rig.poller.getExchangeCount());
    EXPECT_EQ(0, rig.poller.getAverageResponseTime());
}

TEST(MessagePollerThread, AverageResponseTimeFollowsSlowExchanges)
{
    CountingListener listener;
    PollerRig rig;
    rig.scantool.setReplyDelayMs(60);
    rig.poller.addPid(0x0D, rig.factory, 50, &listener);
    rig.poller.start();
    ASSERT_TRUE(waitFor([&] { return rig.poller.getExchangeCount() >= 3; }, 10000));
    EXPECT_GE(rig.poller.getAverageResponseTime(), 50);
    EXPECT_LT(rig.poller.getAverageResponseTime(), 2000);
}
