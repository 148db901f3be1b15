#include "eventually.h"
#include "fakeproxy.h"
#include "fakescantool.h"
#include "ipolllistener.h"
#include "logcapture.h"
#include "messagepoller.h"
#include "powertrain/enginerpm.h"
#include "sensorfactory.h"
#include "trlog.h"

#include <gtest/gtest.h>

#include <atomic>

namespace {

struct CountingListener : Obd::IPollListener
{
    void onPolled(int code, Obd::ObdParameter* parameter) override
    {
        if (code == CODE_UPDATED && dynamic_cast<Obd::EngineRpm*>(parameter))
            ++updates;
        else
            ++others;
    }
    std::atomic<int> updates{0};
    std::atomic<int> others{0};
};

// A poller over a scripted CAN engine answering engine speed and speed;
// listeners are declared before it so that it stops before they go.
struct PollerRig
{
    FakeScantool scantool;
    FakeProxy proxy{&scantool};
    Obd::SensorFactory factory;
    Obd::MessagePoller poller{&proxy};

    PollerRig()
    {
        LogCapture::instance().clear();
        scantool.setReply("010c", "7E8 04 41 0C 1A F8 \r\r>");
        scantool.setReply("010d", "7E8 03 41 0D 32 \r\r>");
    }
    ~PollerRig()
    {
        poller.stop();
        poller.wait(5000);
    }
};

} // namespace

TEST(MessagePoller, PeriodsFollowTheSubscriptions)
{
    PollerRig rig;
    CountingListener a, b, stranger;
    rig.poller.addPid(0x0C, rig.factory, 500, &a);
    rig.poller.addPid(0x0C, rig.factory, 2000, &b);
    EXPECT_EQ(500, rig.poller.getPeriod(0x0C)) << "the shortest subscriber's";
    rig.poller.changePeriod(0x0C, &a, 3000);
    EXPECT_EQ(2000, rig.poller.getPeriod(0x0C)) << "the smallest remaining";
    EXPECT_TRUE(LogCapture::instance().contains("changing period for PID 12 to 3000"));

    rig.poller.addPid(0x0D, rig.factory, 300, &a);
    rig.poller.addPid(0x0D, rig.factory, 700, &b);
    rig.poller.removePid(0x0D, &stranger);
    EXPECT_EQ(300, rig.poller.getPeriod(0x0D));
    rig.poller.removePid(0x0D, &a);
    EXPECT_EQ(300, rig.poller.getPeriod(0x0D)) << "kept until re-subscribed";
    rig.poller.removePid(0x0D, &b);
    EXPECT_EQ(-1, rig.poller.getPeriod(0x0D));

    rig.poller.addPid(0x77, rig.factory, 500, &a);
    EXPECT_EQ(-1, rig.poller.getPeriod(0x77));
    EXPECT_TRUE(LogCapture::instance().contains("Unsupported PID: 119", Obd::LOG_ERROR));
}

TEST(MessagePoller, EachListenerIsToldAtItsOwnPeriod)
{
    CountingListener eager, patient;
    PollerRig rig;
    rig.poller.addPid(0x0C, rig.factory, 0, &eager);
    rig.poller.addPid(0x0C, rig.factory, 3600 * 1000, &patient);
    EXPECT_EQ(0, rig.poller.getPeriod(0x0C));
    rig.poller.start();
    ASSERT_TRUE(eventually([&] { return eager.updates >= 3; }));
    rig.poller.stop();
    ASSERT_TRUE(rig.poller.wait(5000));
    EXPECT_EQ(0, eager.others.load());
    EXPECT_EQ(0, patient.updates + patient.others) << "not within the hour";
    EXPECT_GE(rig.scantool.commandCount("010c"), 3u);
    EXPECT_EQ(0u, rig.scantool.commandCount("010d"));
    EXPECT_TRUE(LogCapture::instance().contains("Message poller started"));
    EXPECT_TRUE(LogCapture::instance().contains("Exiting message poller"));
}

TEST(MessagePoller, OnlyGoodExchangesAreToldAndTimed)
{
    const struct { const char* name; const char* reply; unsigned int delayMs; bool good; } rows[] = {
        {"failed exchanges", "NO DATA\r\r>", 0, false}, {"slow exchanges", "7E8 04 41 0C 1A F8 \r\r>", 60, true}};
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        CountingListener listener;
        PollerRig rig;
        rig.scantool.setReply("010c", row.reply);
        rig.scantool.setReplyDelayMs(row.delayMs);
        rig.poller.addPid(0x0C, rig.factory, 0, &listener);
        rig.poller.start();
        // Sequential: once the fourth request is out, three exchanges are over.
        ASSERT_TRUE(eventually([&] { return rig.scantool.commandCount("010c") >= 4; }));
        EXPECT_EQ(row.good, listener.updates > 0);
        EXPECT_EQ(row.good, rig.poller.getExchangeCount() >= 3);
        EXPECT_GE(rig.poller.getAverageResponseTime(), row.good ? 50 : 0);
        EXPECT_EQ(row.good, rig.poller.getAverageResponseTime() > 0);
    }
}
