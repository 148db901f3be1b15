// The application through a power cycle: the adapter goes and comes back
// while the dashboard polls, the user gives up the reconnect, the car falls
// quiet behind an adapter that still answers.

#include "connectionmanager.h"
#include "metergauge.h"
#include "navigationmodel.h"
#include "uiharness.h"
#include "vehiclelink.h"
#include "viewmodel/dashboardviewmodel.h"
#include "zarvane.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>

using Harmattan::ConnectionManager;

TEST(ReconnectSchedule, DoublesFromOneSecondThenEveryFifteen)
{
    struct Row { const char* name; int attempt; int ms; };
    const Row rows[] = { { "first", 0, 1000 }, { "second", 1, 2000 }, { "fourth", 3, 8000 },
                         { "fifth", 4, 15000 }, { "much later", 40, 15000 } };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(Obd::VehicleLink::reconnectDelayMs(row.attempt), row.ms);
    }
}

namespace {

class Reconnect : public SimUiTest
{
protected:
    ConnectionManager* manager() const { return ui->app()->connectionManager(); }
    QString status() const { return ui->text(ui->mainView(), "statusText"); }
    bool reconnecting() const { return ui->mainProperty("reconnecting").toBool(); }

    // On the dashboard, the engine-speed needle follows fresh readings.
    bool dashboardPolls()
    {
        QObject* page = ui->open(Harmattan::NavigationModel::DashboardView);
        auto* rpm = page ? page->findChild<Harmattan::MeterGauge*>("rpmGauge") : nullptr;
        if (!rpm)
            return false;
        rpm->setValue(0.0);
        const double engineRpm = sim->profile().physicalValue(0x7E8, 0x0C, 0.0);
        return waitUntil([&] { return std::fabs(rpm->value() - engineRpm) <= 0.5; }, READ_WAIT_MS);
    }
};

} // namespace

// Each row loses the adapter under a polling dashboard, then does what a
// person would while "Reconnecting..." shows.
TEST_F(Reconnect, LostAdapterIsReopenedUnlessTheUserGivesUp)
{
    struct Row
    {
        const char* name;
        std::function<void()> whileReconnecting;
        bool reopens;
        const char* statusAfter;
    };
    const Row rows[] = {
        { "adapter back on the same port", [] {}, true, "Connected" },
        { "Close connection during the waits", [&] { manager()->closeConnection(); }, false, "Not connected" },
        { "Cancel tapped on the main view", [&] { ASSERT_TRUE(ui->tap(ui->mainView(), "cancelButton")); },
          false, "Not connected" },
    };
    ASSERT_TRUE(connectToSim());
    manager()->setBackoff([](int) { return 50; });
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        if (!manager()->isConnected()) {
            ASSERT_TRUE(manager()->openConnection());
            ASSERT_TRUE(waitUntil([&] { return mainStatus() == 2; }, CONNECT_WAIT_MS));
        }
        ASSERT_TRUE(dashboardPolls());
        const unsigned short port = sim->port();
        sim->stop();
        ui->open(Harmattan::NavigationModel::MainView);
        // Refused attempts follow one another while the adapter is away.
        ASSERT_TRUE(waitUntil([&] { return reconnecting() && status() == "Reconnecting..."; }, READ_WAIT_MS));
        EXPECT_EQ(ui->banner()->property("text").toString(), "Connectivity suddenly lost");
        EXPECT_TRUE(ui->mainView()->findChild<QObject*>("cancelButton")->property("visible").toBool());
        if (row.reopens)
            ui->picture("reconnecting");
        row.whileReconnecting();
        ASSERT_FALSE(HasFatalFailure());
        if (!row.reopens) {
            EXPECT_TRUE(waitUntil([&] { return !reconnecting() && !manager()->isReconnecting(); }, READ_WAIT_MS));
            EXPECT_FALSE(manager()->isRetryPending()) << "a reconnect would undo the user's choice";
        }
        ElmSim::ServerOptions samePort = options();
        samePort.port = port;
        startSim(samePort);   // the same adapter back where it was
        ASSERT_FALSE(HasFatalFailure());
        if (row.reopens) {
            ASSERT_TRUE(waitUntil([&] { return mainStatus() == 2 && !reconnecting(); }, CONNECT_WAIT_MS));
            EXPECT_TRUE(dashboardPolls()) << "polling did not resume";
            ui->open(Harmattan::NavigationModel::MainView);
        }
        EXPECT_EQ(status(), row.statusAfter);
        EXPECT_EQ(manager()->isConnected(), row.reopens);
    }
}

// The car stops answering (ignition off) but the adapter does not: the link
// stays, the main view says so, and values come back with the car.
TEST_F(Reconnect, QuietVehicleIsShownAndFollowedWithoutDroppingTheLink)
{
    ASSERT_TRUE(connectToSim());
    manager()->setSilenceLimitMs(300);
    int disconnects = 0;
    QObject::connect(manager(), &ConnectionManager::disconnected, [&] { ++disconnects; });
    struct Row { const char* name; const char* word; };
    const Row rows[] = { { "NO DATA to every request", "NO DATA" },
                         { "UNABLE TO CONNECT to every request", "UNABLE TO CONNECT" } };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        ASSERT_TRUE(dashboardPolls());
        sim->injectError(row.word, 1000000);
        EXPECT_TRUE(waitUntil([&] { return status() == "Vehicle not responding"; }, READ_WAIT_MS));
        ui->open(Harmattan::NavigationModel::MainView);
        ui->picture("vehicle-not-responding");
        sim->injectError(row.word, 0);
        EXPECT_TRUE(dashboardPolls()) << "values did not come back";
        EXPECT_TRUE(waitUntil([&] { return status() == "Connected"; }, READ_WAIT_MS));
        EXPECT_TRUE(manager()->isConnected());
    }
    EXPECT_EQ(disconnects, 0);
}
