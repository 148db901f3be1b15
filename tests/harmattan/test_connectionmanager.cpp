#include "connectionmanager.h"
#include "elmsimserver.h"
#include "iobdproxy.h"
#include "logcapture.h"
#include "settingsmodel.h"
#include "uiharness.h"
#include "zarvane.h"

#include <QBluetoothLocalDevice>
#include <QMetaObject>

#include <gtest/gtest.h>

#include <memory>

using Harmattan::ConnectionManager;

namespace {

const int CONNECT_WAIT_MS = 20000;

class ConnectionTest : public UiTest
{
protected:
    void TearDown() override
    {
        ui.reset();
        if (sim)
            sim->stop();
        sim.reset();
    }

    ElmSim::ServerOptions simOptions(const std::string& profile = "can11")
    {
        ElmSim::ServerOptions options;
        options.port = 0;
        options.profile = profile;
        options.resetDelayMs = 50;
        options.searchDelayMs = 100;
        return options;
    }

    void startSim(const ElmSim::ServerOptions& options)
    {
        sim.reset(new ElmSim::ElmSimServer(options));
        ASSERT_TRUE(sim->start()) << sim->errorString();
        useWifi(QString::number(sim->port()));
    }

    void useWifi(const QString& port)
    {
        Obd::SettingsModel* settings = ui->app()->settingsModel();
        settings->setConnectionMethod(1);
        settings->setIpAddress("127.0.0.1");
        settings->setIpPort(port);
    }

    void clickConnectionButton()
    {
        QMetaObject::invokeMethod(ui->mainView(), "connectionButtonClicked");
    }

    int status() const { return ui->mainProperty("connectionStatus").toInt(); }

    // Opens and expects failure with reason; the button must come back.
    void expectFailure(const char* reason)
    {
        QString failure;
        QObject::connect(ui->app()->connectionManager(), &ConnectionManager::failed,
                         [&](const QString& text) { failure = text; });
        clickConnectionButton();
        EXPECT_EQ(status(), 1);
        EXPECT_FALSE(ui->mainProperty("buttonStatus").toBool());
        ASSERT_TRUE(waitUntil([&] { return !failure.isEmpty(); }, CONNECT_WAIT_MS))
            << "no failure reported";
        EXPECT_EQ(failure, reason);
        ASSERT_TRUE(waitUntil([&] { return status() == 0; }, 2000));
        EXPECT_EQ(ui->banner()->property("text").toString(), reason);
        EXPECT_EQ(ui->banner()->property("timeout").toInt(), 5000);
        EXPECT_EQ(ui->mainProperty("buttonText").toString(), "Open connection");
        EXPECT_TRUE(ui->mainProperty("buttonStatus").toBool());
        EXPECT_FALSE(ui->app()->connectionManager()->isConnected());
    }

    std::unique_ptr<ElmSim::ElmSimServer> sim;
};

} // namespace

TEST_F(ConnectionTest, ButtonCycleAgainstTheSimulator)
{
    startSim(simOptions());
    ConnectionManager* manager = ui->app()->connectionManager();

    clickConnectionButton();
    EXPECT_EQ(status(), 1);
    EXPECT_FALSE(ui->mainProperty("buttonStatus").toBool());
    EXPECT_EQ(ui->mainProperty("buttonText").toString(), "Open connection");
    EXPECT_TRUE(ui->mainView()->findChild<QObject*>("busyIndicator")->property("running").toBool());

    ASSERT_TRUE(waitUntil([&] { return status() == 2; }, CONNECT_WAIT_MS))
        << LogCapture::instance().dump();
    EXPECT_EQ(ui->mainProperty("buttonText").toString(), "Close connection");
    EXPECT_TRUE(ui->mainProperty("buttonStatus").toBool());
    EXPECT_TRUE(manager->isConnected());
    EXPECT_TRUE(manager->proxy()->isInitialized());
    EXPECT_NE(manager->proxy()->getFirstEcu(), nullptr) << "discovery found no ECU";
    EXPECT_TRUE(ui->screenshot("main_connected"));
    EXPECT_FALSE(ui->mainView()->findChild<QObject*>("busyIndicator")->property("running").toBool());

    int disconnects = 0;
    QObject::connect(manager, &ConnectionManager::disconnected, [&] { ++disconnects; });
    clickConnectionButton();
    EXPECT_EQ(disconnects, 1);
    EXPECT_EQ(status(), 0);
    EXPECT_EQ(ui->mainProperty("buttonText").toString(), "Open connection");
    EXPECT_TRUE(ui->mainProperty("buttonStatus").toBool());
    EXPECT_FALSE(manager->isConnected());
    EXPECT_FALSE(manager->proxy()->isInitialized());

    // The same proxy serves the next connection.
    clickConnectionButton();
    ASSERT_TRUE(waitUntil([&] { return status() == 2; }, CONNECT_WAIT_MS));
    clickConnectionButton();
    EXPECT_EQ(status(), 0);
}

TEST_F(ConnectionTest, TappingTheButtonConnectsAndDisconnects)
{
    startSim(simOptions());
    ASSERT_TRUE(ui->click(ui->mainView(), "connectionButton"));
    EXPECT_EQ(status(), 1);
    ASSERT_TRUE(waitUntil([&] { return status() == 2; }, CONNECT_WAIT_MS));
    ASSERT_TRUE(ui->click(ui->mainView(), "connectionButton"));
    EXPECT_EQ(status(), 0);
    EXPECT_FALSE(ui->app()->connectionManager()->isConnected());
}

TEST_F(ConnectionTest, ClosingTheApplicationWhileOpening)
{
    ElmSim::ServerOptions options = simOptions();
    options.resetDelayMs = 1500;
    startSim(options);
    clickConnectionButton();
    EXPECT_EQ(status(), 1);
    spin(200);
    ui.reset();
    SUCCEED() << "the opening thread finished before the objects went";
}

TEST_F(ConnectionTest, NothingListeningOnThePort)
{
    sim.reset(new ElmSim::ElmSimServer(simOptions()));
    ASSERT_TRUE(sim->start());
    const unsigned short port = sim->port();
    sim->stop();
    sim.reset();
    useWifi(QString::number(port));
    expectFailure("Failed to connect. Check hardware attachment, and turn the ignition to ON position.");
}

TEST_F(ConnectionTest, PortTextThatIsNotANumber)
{
    startSim(simOptions());
    useWifi("abc");
    expectFailure("Failed to connect. Check hardware attachment, and turn the ignition to ON position.");
}

TEST_F(ConnectionTest, HostThatDoesNotResolve)
{
    startSim(simOptions());
    Obd::SettingsModel* settings = ui->app()->settingsModel();
    settings->setIpAddress("no-such-host.invalid");
    expectFailure("Failed to connect. Check hardware attachment, and turn the ignition to ON position.");
}

TEST_F(ConnectionTest, AdapterThatDoesNotIdentify)
{
    ElmSim::ServerOptions options = simOptions();
    options.identify = false;
    startSim(options);
    expectFailure("Failed to identify interface");
}

TEST_F(ConnectionTest, VehicleThatDoesNotAnswer)
{
    startSim(simOptions("none"));
    expectFailure("Failed to initialize communication");
}

TEST_F(ConnectionTest, LinkLostDuringDiscovery)
{
    // Dropped after the ECUs were found: discovery itself carries on, so
    // only the link's own state tells the opening failed.
    ElmSim::ServerOptions options = simOptions();
    options.dropAfter = 4;
    startSim(options);
    expectFailure("Failed to initialize communication");
    // The next connection works.
    sim->setDropAfter(-1);
    clickConnectionButton();
    ASSERT_TRUE(waitUntil([&] { return status() == 2; }, CONNECT_WAIT_MS));
}

TEST_F(ConnectionTest, LinkLossWhileConnected)
{
    startSim(simOptions());
    ConnectionManager* manager = ui->app()->connectionManager();
    clickConnectionButton();
    ASSERT_TRUE(waitUntil([&] { return status() == 2; }, CONNECT_WAIT_MS));

    int disconnects = 0;
    QObject::connect(manager, &ConnectionManager::disconnected, [&] { ++disconnects; });
    sim->dropNow();
    ASSERT_TRUE(waitUntil([&] { return status() == 0; }, 10000)) << "the loss was not noticed";
    EXPECT_EQ(disconnects, 1);
    EXPECT_FALSE(manager->isConnected());
    EXPECT_EQ(ui->mainProperty("buttonText").toString(), "Open connection");
    EXPECT_TRUE(ui->mainProperty("buttonStatus").toBool());
    EXPECT_EQ(ui->banner()->property("text").toString(), "Connectivity suddenly lost");
    EXPECT_EQ(ui->banner()->property("timeout").toInt(), 4000);
    EXPECT_TRUE(ui->banner()->property("shown").toBool());
}

TEST_F(ConnectionTest, ClosingWhenNothingIsOpenDoesNothing)
{
    ConnectionManager* manager = ui->app()->connectionManager();
    int disconnects = 0;
    QObject::connect(manager, &ConnectionManager::disconnected, [&] { ++disconnects; });
    manager->closeConnection();
    spin(50);
    EXPECT_EQ(disconnects, 0);
    EXPECT_FALSE(manager->isConnected());
}

TEST_F(ConnectionTest, LossReportWhileClosedIsIgnored)
{
    ConnectionManager* manager = ui->app()->connectionManager();
    int disconnects = 0;
    QObject::connect(manager, &ConnectionManager::disconnected, [&] { ++disconnects; });
    manager->onDisconnected();
    spin(100);
    EXPECT_EQ(disconnects, 0);
    EXPECT_FALSE(ui->banner()->property("shown").toBool());
}

TEST_F(ConnectionTest, InvalidSettingsAreNotOpened)
{
    useWifi("0");
    EXPECT_FALSE(ui->app()->connectionManager()->openConnection());
    ui->app()->settingsModel()->setConnectionMethod(2);
    EXPECT_FALSE(ui->app()->connectionManager()->openConnection());
}

TEST_F(ConnectionTest, BluetoothWithoutAnyAdapterFailsToConnect)
{
    if (QBluetoothLocalDevice().isValid())
        GTEST_SKIP() << "this machine has a working Bluetooth adapter";
    Obd::SettingsModel* settings = ui->app()->settingsModel();
    settings->setConnectionMethod(0);
    settings->setBluetoothDeviceName("OBDII");
    settings->setBluetoothDeviceAddress("00:1D:A5:00:11:22");
    expectFailure("Failed to connect. Check hardware attachment, and turn the ignition to ON position.");
}
