#include "connectionmanager.h"
#include "iobdproxy.h"
#include "logcapture.h"
#include "settingsmodel.h"
#include "uiharness.h"
#include "zarvane.h"

#include <QBluetoothLocalDevice>

#include <gtest/gtest.h>

#include <functional>

using Harmattan::ConnectionManager;

namespace {

const char* const FAILED_TO_CONNECT
    = "Failed to connect. Check hardware attachment, and turn the ignition to ON position.";

class ConnectionTest : public SimUiTest
{
protected:
    ConnectionManager* manager() const { return ui->app()->connectionManager(); }
    bool tapConnectionButton() { return ui->tap(ui->mainView(), "connectionButton"); }
    QString statusText() const { return ui->text(ui->mainView(), "statusText"); }

    // The button is back and nothing is open.
    void expectClosed()
    {
        EXPECT_EQ(mainStatus(), 0);
        EXPECT_EQ(statusText(), "Not connected");
        EXPECT_EQ(ui->mainProperty("buttonText").toString(), "Open connection");
        EXPECT_TRUE(ui->mainProperty("buttonStatus").toBool());
        EXPECT_FALSE(manager()->isConnected());
    }
};

} // namespace

TEST_F(ConnectionTest, TheButtonOpensAndClosesTheConnectionAgainAndAgain)
{
    startSim();
    int disconnects = 0;
    QObject::connect(manager(), &ConnectionManager::disconnected, [&] { ++disconnects; });
    // Reports while nothing is open change nothing.
    manager()->closeConnection();
    manager()->onDisconnected();
    deliverPosted();
    EXPECT_FALSE(ui->banner()->property("shown").toBool());
    for (int round = 1; round <= 2; ++round) {
        SCOPED_TRACE(round == 1 ? "first connection" : "the same proxy serving the next one");
        ASSERT_TRUE(tapConnectionButton());
        EXPECT_EQ(statusText(), "Connecting to the adapter...");
        EXPECT_FALSE(ui->mainProperty("buttonStatus").toBool());
        ASSERT_TRUE(waitUntil([&] { return mainStatus() == 2; }, CONNECT_WAIT_MS))
            << LogCapture::instance().dump();
        EXPECT_EQ(statusText(), "Connected");
        EXPECT_EQ(ui->mainProperty("buttonText").toString(), "Close connection");
        EXPECT_TRUE(ui->mainProperty("buttonStatus").toBool());
        EXPECT_NE(manager()->proxy()->getFirstEcu(), nullptr) << "discovery found no ECU";
        ui->picture("main_connected");

        ASSERT_TRUE(tapConnectionButton());
        EXPECT_EQ(disconnects, round);
        expectClosed();
    }
}

// Each failure names its reason on the banner and gives the button back;
// the rows run one after another, so each also shows the previous one left
// nothing behind.
TEST_F(ConnectionTest, FailedOpeningShowsTheReasonAndGivesTheButtonBack)
{
    struct Row { const char* name; std::function<void()> setUp; const char* reason; };
    std::vector<Row> rows = {
        { "nothing listening on the port", [&] { startSim(); sim->stop(); }, FAILED_TO_CONNECT },
        { "port text that is not a number",
          [&] { startSim(); ui->app()->settingsModel()->setIpPort("abc"); }, FAILED_TO_CONNECT },
        { "host that does not resolve",
          [&] { startSim(); ui->app()->settingsModel()->setIpAddress("no-such-host.invalid"); },
          FAILED_TO_CONNECT },
        { "adapter that does not identify",
          [&] { ElmSim::ServerOptions quiet = options(); quiet.identify = false; startSim(quiet); },
          "Failed to identify interface" },
        { "vehicle that does not answer", [&] { startSim(options("none")); },
          "Failed to initialize communication" },
        // Dropped after the ECUs were found: discovery itself carries on, so
        // only the link's own state tells the opening failed.
        { "link lost during discovery",
          [&] { ElmSim::ServerOptions dropping = options(); dropping.dropAfter = 4; startSim(dropping); },
          "Failed to initialize communication" },
    };
    // A machine with Bluetooth would look for the device, or wait for it to be switched on.
    if (!QBluetoothLocalDevice().isValid())
        rows.push_back({ "Bluetooth where the machine has none",
                         [&] { Obd::SettingsModel* settings = ui->app()->settingsModel();
                               settings->setConnectionMethod(0);
                               settings->setBluetoothDeviceName("OBDII");
                               settings->setBluetoothDeviceAddress("00:1D:A5:00:11:22"); },
                         FAILED_TO_CONNECT });
    QString failure;
    QObject::connect(manager(), &ConnectionManager::failed, [&](const QString& text) { failure = text; });
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        failure.clear();
        row.setUp();
        ASSERT_TRUE(tapConnectionButton());
        ASSERT_TRUE(waitUntil([&] { return !failure.isEmpty(); }, CONNECT_WAIT_MS)) << "no failure reported";
        EXPECT_EQ(failure, row.reason);
        ASSERT_TRUE(waitUntil([&] { return mainStatus() == 0; }, 2000));
        EXPECT_EQ(ui->banner()->property("text").toString(), row.reason);
        EXPECT_EQ(ui->banner()->property("timeout").toInt(), 5000);
        expectClosed();
    }
    // Back on Wi-Fi to the adapter, now behaving: the next connection works.
    sim->setDropAfter(-1);
    ui->app()->settingsModel()->setConnectionMethod(1);
    ASSERT_TRUE(tapConnectionButton());
    EXPECT_TRUE(waitUntil([&] { return mainStatus() == 2; }, CONNECT_WAIT_MS));
}

TEST_F(ConnectionTest, InvalidSettingsAreNotOpenedAndTheSettingsScreenOpens)
{
    struct Row { const char* name; int method; const char* address; const char* port; };
    const Row rows[] = {
        { "Wi-Fi address never set", 1, "0.0.0.0", "35000" },
        { "unknown method", 7, "192.168.0.10", "35000" },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        ui->app()->settingsModel()->setConnectionMethod(row.method);
        ui->app()->settingsModel()->setIpAddress(row.address);
        ui->app()->settingsModel()->setIpPort(row.port);
        ASSERT_TRUE(tapConnectionButton());
        EXPECT_EQ(ui->banner()->property("text").toString(), "Check connection settings!");
        ASSERT_TRUE(ui->settle());
        EXPECT_EQ(ui->currentPage()->property("title").toString(), "Settings");
        ui->back();
        expectClosed();
        EXPECT_FALSE(manager()->openConnection());
    }
}

TEST_F(ConnectionTest, ClosingTheApplicationWhileOpeningReleasesTheAdapter)
{
    ElmSim::ServerOptions slowBoot = options();
    slowBoot.resetDelayMs = 500;
    startSim(slowBoot);
    // In flight: the adapter has the reset and takes its time.
    ASSERT_TRUE(tapConnectionButton());
    ASSERT_TRUE(waitUntil([&] { return !sim->requestLog().empty(); }, CONNECT_WAIT_MS));
    ui.reset();

    // The adapter serves one client at a time: a restart only connects
    // once the first link is gone.
    ui.reset(new UiHarness());
    ASSERT_TRUE(ui->loaded());
    ASSERT_TRUE(tapConnectionButton());
    EXPECT_TRUE(waitUntil([&] { return mainStatus() == 2; }, CONNECT_WAIT_MS));
}
