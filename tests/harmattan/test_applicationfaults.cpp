// The whole application against a faulty adapter: the link drops while a
// screen reads, clears or polls, the adapter falls silent, or answers like a
// slow clone. Each case ends in a clear state (closed link, banner, empty
// screens, buttons back), the user interface keeps running meanwhile, and
// the next connection works.

#include "connectionmanager.h"
#include "dtcdatamodel.h"
#include "metergauge.h"
#include "navigationmodel.h"
#include "simuitest.h"
#include "viewmodel/dashboardviewmodel.h"
#include "zarvane.h"

#include <QElapsedTimer>
#include <QMetaObject>
#include <QTimer>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <iostream>
#include <vector>

using Harmattan::MeterGauge;
using Harmattan::NavigationModel;

namespace {

const char* const LOST = "Connectivity suddenly lost";

// Samples the user-interface thread's event loop with a short timer: a gap
// between two ticks is how long the loop could not run anything, the way a
// frame would wait for it.
class EventLoopProbe
{
public:
    EventLoopProbe()
    {
        m_timer.setInterval(5);
        QObject::connect(&m_timer, &QTimer::timeout, [this] {
            const qint64 now = m_clock.elapsed();
            m_gaps.push_back(now - m_last);
            m_last = now;
        });
    }

    void start()
    {
        m_gaps.clear();
        m_clock.start();
        m_last = 0;
        m_timer.start();
    }

    void stop() { m_timer.stop(); }

    qint64 longestGap() const { return m_gaps.empty() ? -1 : *std::max_element(m_gaps.begin(), m_gaps.end()); }

    qint64 percentile(double p) const
    {
        if (m_gaps.empty())
            return -1;
        std::vector<qint64> sorted = m_gaps;
        std::sort(sorted.begin(), sorted.end());
        return sorted[std::min(sorted.size() - 1, static_cast<size_t>(p * sorted.size()))];
    }

    size_t ticks() const { return m_gaps.size(); }

private:
    QTimer m_timer;
    QElapsedTimer m_clock;
    qint64 m_last = 0;
    std::vector<qint64> m_gaps;
};

class ApplicationFaults : public SimUiTest
{
protected:
    Harmattan::ConnectionManager* manager() const { return ui->app()->connectionManager(); }
    int mainStatus() const { return ui->mainProperty("connectionStatus").toInt(); }

    int expectedCodes(bool stored) const
    {
        int count = 0;
        for (const ElmSim::EcuProfile& ecu : sim->profile().ecus)
            count += static_cast<int>(stored ? ecu.storedDtcs.size() : ecu.pendingDtcs.size());
        return count;
    }

    // The state a lost link must leave behind, whatever was running.
    void expectClosedAfterLoss()
    {
        ASSERT_TRUE(waitUntil([&] { return !manager()->isConnected() && mainStatus() == 0; }, READ_WAIT_MS))
            << "the loss was not noticed";
        EXPECT_EQ(ui->banner()->property("text").toString(), LOST);
        EXPECT_EQ(ui->mainProperty("buttonText").toString(), "Open connection");
        EXPECT_TRUE(ui->mainProperty("buttonStatus").toBool());
    }

    // Opens again against the same adapter, now behaving.
    void reconnect()
    {
        sim->setDropAfter(-1);
        sim->setDelay(0);
        sim->setSilent(false);
        ASSERT_TRUE(manager()->openConnection());
        ASSERT_TRUE(waitUntil([&] { return manager()->isConnected() && mainStatus() == 2; }, CONNECT_WAIT_MS))
            << "the next connection failed";
    }

    bool readsSettle(QObject* page, int stored, int pending)
    {
        return waitUntil([&] { return !page->property("busy").toBool()
                                      && page->property("storedDtcCount").toInt() == stored
                                      && page->property("pendingDtcCount").toInt() == pending; },
                         READ_WAIT_MS);
    }

    // Connected to a frozen vehicle, the dashboard open and its engine-speed
    // needle on the vehicle's value.
    void openPollingDashboard(QObject*& page, MeterGauge*& rpm, double& engineRpm)
    {
        ASSERT_TRUE(connectToSim(options("can11", true)));
        engineRpm = sim->profile().physicalValue(0x7E8, 0x0C, 0.0);
        page = open(NavigationModel::DashboardView);
        rpm = page->findChild<MeterGauge*>("rpmGauge");
        ASSERT_NE(rpm, nullptr);
        ASSERT_TRUE(waitUntil([&] { return std::fabs(rpm->value() - engineRpm) <= 0.5; }, READ_WAIT_MS));
    }

    void expectEmptyTroubleCodeScreen(QObject* page)
    {
        ASSERT_TRUE(readsSettle(page, 0, 0)) << "busy " << page->property("busy").toBool();
        EXPECT_EQ(page->property("connectionStatus").toInt(), 0);
        EXPECT_EQ(page->property("engineImage").toString(), "qrc:///mil_off.png");
        EXPECT_TRUE(ui->app()->dtcDataModel()->storedCodes().empty());
        EXPECT_TRUE(ui->app()->dtcDataModel()->pendingCodes().empty());
    }
};

} // namespace

TEST_F(ApplicationFaults, LinkDroppedDuringATroubleCodeReadLeavesAnEmptyScreenAndTheNextConnectionReads)
{
    ASSERT_TRUE(connectToSim());
    // Slow answers keep the read in flight while the link goes.
    sim->setDelay(400);
    const int before = sim->requestCount();
    QObject* page = open(NavigationModel::DtcView);
    ASSERT_EQ(page->objectName(), "dtcView");
    ASSERT_TRUE(waitUntil([&] { return sim->requestCount() > before; }, READ_WAIT_MS));
    EXPECT_TRUE(page->property("busy").toBool());
    sim->dropNow();

    expectClosedAfterLoss();
    expectEmptyTroubleCodeScreen(page);

    reconnect();
    ASSERT_TRUE(readsSettle(page, expectedCodes(true), expectedCodes(false)))
        << "stored " << page->property("storedDtcCount").toInt();
    EXPECT_EQ(page->property("connectionStatus").toInt(), 2);
}

TEST_F(ApplicationFaults, LinkDroppedWhileClearingLeavesAnEmptyScreenAndTheNextConnectionReads)
{
    ASSERT_TRUE(connectToSim());
    QObject* page = open(NavigationModel::DtcView);
    ASSERT_TRUE(readsSettle(page, expectedCodes(true), expectedCodes(false)));

    ASSERT_TRUE(ui->click(page, "clearButton"));
    QObject* dialog = ui->dialog();
    ASSERT_TRUE(waitUntil([&] { return dialog->property("visible").toBool(); }, 2000));
    // The link goes as the clear request arrives: the vehicle never hears it.
    sim->setDropAfter(0);
    QMetaObject::invokeMethod(dialog, "accept");

    expectClosedAfterLoss();
    expectEmptyTroubleCodeScreen(page);
    // The vehicle never cleared anything: the next connection reads the same codes.
    reconnect();
    ASSERT_TRUE(readsSettle(page, expectedCodes(true), expectedCodes(false)));
}

TEST_F(ApplicationFaults, LinkDroppedWhileTheDashboardPollsStopsPollingAndTheNextConnectionResumes)
{
    QObject* page = nullptr;
    MeterGauge* rpm = nullptr;
    double engineRpm = 0.0;
    ASSERT_NO_FATAL_FAILURE(openPollingDashboard(page, rpm, engineRpm));
    Harmattan::DashboardViewModel* dashboard = ui->app()->dashboardViewModel();

    sim->dropNow();
    expectClosedAfterLoss();
    EXPECT_EQ(page->property("connectionStatus").toInt(), 0);
    EXPECT_TRUE(waitUntil([&] { return !dashboard->isRefreshing(); }, 5000));
    const int afterLoss = dashboard->requestCount();
    spin(1000);
    EXPECT_EQ(dashboard->requestCount(), afterLoss) << "still polling a closed link";

    rpm->setValue(0.0);
    reconnect();
    EXPECT_EQ(page->property("connectionStatus").toInt(), 2);
    ASSERT_TRUE(waitUntil([&] { return dashboard->requestCount() >= afterLoss + 4; }, READ_WAIT_MS))
        << "polling did not resume";
    EXPECT_TRUE(dashboard->isRefreshing());
    EXPECT_TRUE(waitUntil([&] { return std::fabs(rpm->value() - engineRpm) <= 0.5; }, READ_WAIT_MS));
}

TEST_F(ApplicationFaults, SilentAdapterNeverBlocksTheScreenAndValuesReturnWhenItAnswersAgain)
{
    QObject* page = nullptr;
    MeterGauge* rpm = nullptr;
    double engineRpm = 0.0;
    ASSERT_NO_FATAL_FAILURE(openPollingDashboard(page, rpm, engineRpm));
    Harmattan::DashboardViewModel* dashboard = ui->app()->dashboardViewModel();

    // Every request now waits out its whole time-out on the worker; the
    // screen's event loop must not wait with it.
    sim->setSilent(true);
    const int requestsBefore = dashboard->requestCount();
    EventLoopProbe probe;
    probe.start();
    spin(4000);
    probe.stop();
    EXPECT_GT(dashboard->requestCount(), requestsBefore) << "the silence was never tested";
    EXPECT_GT(probe.ticks(), 100u);
    EXPECT_LT(probe.longestGap(), 750) << "the event loop stalled for " << probe.longestGap() << " ms";
    std::cout << "event loop while the adapter is silent: p95 gap " << probe.percentile(0.95)
              << " ms, longest " << probe.longestGap() << " ms over " << probe.ticks() << " ticks\n";
    EXPECT_EQ(page->property("connectionStatus").toInt(), 2);

    // It answers again: the poller's next requests succeed and values return.
    sim->setSilent(false);
    rpm->setValue(0.0);
    const int answered = dashboard->requestCount();
    ASSERT_TRUE(waitUntil([&] { return dashboard->requestCount() >= answered + 4
                                       && std::fabs(rpm->value() - engineRpm) <= 0.5; },
                          READ_WAIT_MS))
        << "rpm " << rpm->value() << " of " << engineRpm;
    EXPECT_TRUE(manager()->isConnected());
}

TEST_F(ApplicationFaults, SlowCloneAdapterConnectsAndTheDashboardFollowsItsPaceWithoutBlocking)
{
    ElmSim::ServerOptions slow = options("can11", true);
    slow.delayMs = 200;
    ASSERT_TRUE(connectToSim(slow)) << "discovery did not complete against a 200 ms adapter";
    const double engineRpm = sim->profile().physicalValue(0x7E8, 0x0C, 0.0);
    QObject* page = open(NavigationModel::DashboardView);
    MeterGauge* rpm = page->findChild<MeterGauge*>("rpmGauge");
    ASSERT_NE(rpm, nullptr);
    Harmattan::DashboardViewModel* dashboard = ui->app()->dashboardViewModel();

    ASSERT_TRUE(waitUntil([&] { return std::fabs(rpm->value() - engineRpm) <= 0.5; }, READ_WAIT_MS));
    // Two gauges, one exchange at a time, 200 ms each: about 2.5 requests a
    // second; a tick that finds its gauge's request still out is skipped.
    const int startRequests = sim->requestCount();
    EventLoopProbe probe;
    probe.start();
    spin(3000);
    probe.stop();
    const int answered = sim->requestCount() - startRequests;
    EXPECT_GE(answered, 5) << "the dashboard fell behind the adapter";
    EXPECT_LE(answered, 20) << "more requests than a 200 ms adapter can answer";
    EXPECT_TRUE(dashboard->isRefreshing());
    std::cout << "event loop while polling a 200 ms adapter: p95 gap " << probe.percentile(0.95)
              << " ms, longest " << probe.longestGap() << " ms, " << answered << " requests in 3 s\n";

    // Slower still: a blocked event loop would stall for a whole exchange.
    sim->setDelay(1500);
    probe.start();
    spin(4000);
    probe.stop();
    EXPECT_LT(probe.longestGap(), 750) << "the event loop stalled for " << probe.longestGap() << " ms";
}
