#include "connectionmanager.h"
#include "navigationmodel.h"
#include "settingsmodel.h"
#include "uiharness.h"
#include "viewmodel/bluetoothsearchviewmodel.h"
#include "zarvane.h"
#include "zrvinfo.h"
#include "zrvquery.h"

#include <QBluetoothAddress>
#include <QBluetoothDeviceInfo>
#include <QMetaObject>

#include <gtest/gtest.h>

using Harmattan::NavigationModel;
using ScreenshotTest = UiTest;

// Pictures of the screens for a person to look at; each must be saved.
TEST_F(ScreenshotTest, MainScreen)
{
    EXPECT_TRUE(ui->screenshot("main"));
    ui->mainView()->setProperty("buttonStatus", false);
    ui->mainView()->setProperty("connectionStatus", 1);
    EXPECT_TRUE(ui->screenshot("main_opening"));
    emit ui->app()->connectionManager()->connected();
    Obd::ZrvInfo info("Connectivity suddenly lost");
    info.show();
    EXPECT_TRUE(ui->screenshot("main_connected_banner"));
}

TEST_F(ScreenshotTest, SettingsScreen)
{
    ui->app()->settingsModel()->setConnectionMethod(1);
    ui->app()->navigationModel()->activateView(NavigationModel::SettingsView);
    QObject* page = ui->currentPage();
    page->findChild<QObject*>("ipAddressField")->setProperty("text", "192.168.0.300");
    QMetaObject::invokeMethod(page, "ipAddressEdited", Q_ARG(QString, "192.168.0.300"));
    QMetaObject::invokeMethod(page, "ipPortEdited", Q_ARG(QString, "35000"));
    EXPECT_TRUE(ui->screenshot("settings_wifi"));
    QMetaObject::invokeMethod(page, "connectionMethodChanged", Q_ARG(QString, "bluetooth"));
    EXPECT_TRUE(ui->screenshot("settings_bluetooth"));
}

TEST_F(ScreenshotTest, AboutScreen)
{
    ui->app()->navigationModel()->activateView(NavigationModel::AboutView);
    EXPECT_TRUE(ui->screenshot("about"));
}

TEST_F(ScreenshotTest, BluetoothSearchScreen)
{
    ui->app()->navigationModel()->activateView(NavigationModel::BluetoothSearchView);
    EXPECT_TRUE(ui->screenshot("bluetooth_search"));
    ui->app()->bluetoothSearchViewModel()->setDevices({
        QBluetoothDeviceInfo(QBluetoothAddress("00:1D:A5:00:11:22"), "OBDII", 0x1f00),
        QBluetoothDeviceInfo(QBluetoothAddress("00:1D:A5:33:44:55"), "Vgate iCar", 0x1f00),
    });
    EXPECT_TRUE(ui->screenshot("bluetooth_search_devices"));
}

TEST_F(ScreenshotTest, QueryDialog)
{
    Obd::ZrvQuery query;
    query.setTitle("Clear trouble codes");
    query.setText("The malfunction indicator lamp turns off and the readiness monitors reset.");
    query.setButtonTexts("Clear", "Cancel");
    query.show();
    EXPECT_TRUE(ui->screenshot("query_dialog"));
}

TEST_F(ScreenshotTest, PlaceholderScreen)
{
    ui->app()->navigationModel()->activateView(NavigationModel::DashboardView);
    EXPECT_TRUE(ui->screenshot("placeholder_dashboard"));
}
