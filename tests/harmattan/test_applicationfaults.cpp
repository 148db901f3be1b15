// The whole application against a faulty adapter: the link drops while a
// screen reads, clears or polls, the adapter falls silent, or answers like a
// slow clone. Each case ends in a clear state (closed link, banner, empty
// screens, buttons back) and the next connection works.

#include "connectionmanager.h"
#include "metergauge.h"
#include "navigationmodel.h"
#include "uiharness.h"
#include "viewmodel/dashboardviewmodel.h"
#include "zarvane.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>

using Harmattan::MeterGauge;
using Harmattan::NavigationModel;

namespace {

class ApplicationFaults : public SimUiTest
{
protected:
    // Pages come and go as they do for a person.
    bool withTransitions() const override { return true; }
    Harmattan::ConnectionManager* manager() const { return ui->app()->connectionManager(); }
    Harmattan::DashboardViewModel* dashboard() const { return ui->app()->dashboardViewModel(); }

    // The state a lost link must leave behind, whatever was running.
    void expectClosedAfterLoss(const int& disconnects)
    {
        ASSERT_TRUE(waitUntil([&] { return !manager()->isConnected() && mainStatus() == 0; }, READ_WAIT_MS))
            << "the loss was not noticed";
        EXPECT_EQ(disconnects, 1);
        EXPECT_EQ(ui->banner()->property("text").toString(), "Connectivity suddenly lost");
        EXPECT_EQ(ui->banner()->property("timeout").toInt(), 4000);
        EXPECT_EQ(ui->mainProperty("buttonText").toString(), "Open connection");
        EXPECT_TRUE(ui->mainProperty("buttonStatus").toBool());
    }

    void expectEmptyTroubleCodeScreen(QObject* page)
    {
        EXPECT_TRUE(codesShown(page, 0, 0)) << "busy " << page->property("busy").toBool();
        EXPECT_EQ(page->property("connectionStatus").toInt(), 0);
        EXPECT_EQ(page->property("engineImage").toString(), "qrc:///mil_off.png");
    }

    // The dashboard open, its engine-speed needle on the vehicle's value.
    MeterGauge* openPollingDashboard()
    {
        MeterGauge* rpm = ui->open(NavigationModel::DashboardView)->findChild<MeterGauge*>("rpmGauge");
        EXPECT_TRUE(rpm && needleOnEngineSpeed(rpm));
        return rpm;
    }
    bool needleOnEngineSpeed(MeterGauge* rpm)
    {
        const double engineRpm = sim->profile().physicalValue(0x7E8, 0x0C, 0.0);
        return waitUntil([&] { return std::fabs(rpm->value() - engineRpm) <= 0.5; }, READ_WAIT_MS);
    }
    // Clears the needle, then waits for fresh readings to put it back.
    void expectPollingResumes(MeterGauge* rpm)
    {
        rpm->setValue(0.0);
        const int before = dashboard()->requestCount();
        EXPECT_TRUE(waitUntil([&] { return dashboard()->requestCount() >= before + 4; }, READ_WAIT_MS))
            << "polling did not resume";
        EXPECT_TRUE(dashboard()->isRefreshing());
        EXPECT_TRUE(needleOnEngineSpeed(rpm)) << "rpm " << rpm->value();
    }
};

} // namespace

// Each row brings a screen to work and drops the link under it, then checks
// what the screen shows, and what it shows once connected again.
TEST_F(ApplicationFaults, LinkDroppedWhileAScreenWorksLeavesItEmptyAndTheNextConnectionFillsIt)
{
    QObject* page = nullptr;
    MeterGauge* rpm = nullptr;
    struct Row
    {
        const char* name;
        std::function<void()> workThenDrop, afterLoss, afterReconnect;
    };
    const Row rows[] = {
        { "trouble-code read in flight",
          [&] { sim->setDelay(400);   // slow answers keep the read in flight while the link goes
                const int before = sim->requestCount();
                page = ui->open(NavigationModel::DtcView);
                ASSERT_TRUE(waitUntil([&] { return sim->requestCount() > before; }, READ_WAIT_MS));
                EXPECT_TRUE(page->property("busy").toBool());
                sim->dropNow(); },
          [&] { expectEmptyTroubleCodeScreen(page); },
          [&] { EXPECT_TRUE(codesShown(page)) << "stored " << page->property("storedDtcCount").toInt();
                EXPECT_EQ(page->property("connectionStatus").toInt(), 2); } },
        { "clear request",
          [&] { page = ui->open(NavigationModel::DtcView);
                ASSERT_TRUE(codesShown(page));
                ASSERT_TRUE(ui->tap(page, "clearButton"));
                sim->setDropAfter(0);   // the link goes as the request arrives: the vehicle never hears it
                ASSERT_TRUE(ui->tap(ui->dialog(), "acceptButton")); },
          [&] { expectEmptyTroubleCodeScreen(page); },
          [&] { EXPECT_TRUE(codesShown(page)) << "the vehicle never cleared anything"; } },
        { "dashboard polling",
          [&] { rpm = openPollingDashboard();
                ASSERT_NE(rpm, nullptr);
                page = ui->currentPage();
                sim->dropNow(); },
          [&] { EXPECT_EQ(page->property("connectionStatus").toInt(), 0);
                EXPECT_TRUE(waitUntil([&] { return !dashboard()->isRefreshing(); }, 5000)); },
          [&] { EXPECT_EQ(page->property("connectionStatus").toInt(), 2);
                expectPollingResumes(rpm); } },
    };
    ASSERT_TRUE(connectToSim());
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        ui->open(NavigationModel::MainView);
        int disconnects = 0;
        const QMetaObject::Connection counting = QObject::connect(
            manager(), &Harmattan::ConnectionManager::disconnected, [&] { ++disconnects; });
        row.workThenDrop();
        ASSERT_FALSE(HasFatalFailure());
        expectClosedAfterLoss(disconnects);
        QObject::disconnect(counting);
        row.afterLoss();
        // Again against the same adapter, now behaving.
        sim->setDropAfter(-1);
        sim->setDelay(0);
        ASSERT_TRUE(manager()->openConnection());
        ASSERT_TRUE(waitUntil([&] { return mainStatus() == 2; }, CONNECT_WAIT_MS));
        row.afterReconnect();
    }
}

// The adapter answers late or not at all while the dashboard polls: the
// link stays open and the needles follow once answers come.
TEST_F(ApplicationFaults, SlowOrSilentAdapterKeepsTheLinkAndTheDashboardFollowsIt)
{
    struct Row { const char* name; unsigned int delayMs; std::function<void()> fault; };
    const Row rows[] = {
        { "silent for a while, then answering again", 0,
          [&] { sim->setSilent(true);
                // Two more rounds: a request sent into the silence has ended.
                const int before = dashboard()->requestCount();
                EXPECT_TRUE(waitUntil([&] { return dashboard()->requestCount() >= before + 4; }, READ_WAIT_MS))
                    << "the silence was never tested";
                EXPECT_EQ(ui->currentPage()->property("connectionStatus").toInt(), 2);
                sim->setSilent(false); } },
        { "slow clone, 200 ms an answer from the start", 200, [] {} },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        ui->open(NavigationModel::MainView);
        if (manager()->isConnected())
            manager()->closeConnection();
        ElmSim::ServerOptions adapter = options();
        adapter.delayMs = row.delayMs;
        ASSERT_TRUE(connectToSim(adapter));
        MeterGauge* rpm = openPollingDashboard();
        ASSERT_NE(rpm, nullptr);
        row.fault();
        expectPollingResumes(rpm);
        EXPECT_TRUE(manager()->isConnected());
    }
}
