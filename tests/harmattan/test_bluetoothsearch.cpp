#include "navigationmodel.h"
#include "settingsmodel.h"
#include "uiharness.h"
#include "viewmodel/bluetoothsearchviewmodel.h"
#include "zarvane.h"

#include <QBluetoothAddress>
#include <QBluetoothDeviceInfo>
#include <QBluetoothLocalDevice>
#include <QMetaObject>

#include <gtest/gtest.h>

using Harmattan::BluetoothSearchViewModel;
using Harmattan::NavigationModel;
using BluetoothSearchTest = UiTest;

TEST_F(BluetoothSearchTest, SaysPlainlyWhenThereIsNoBluetooth)
{
    if (QBluetoothLocalDevice().isValid())
        GTEST_SKIP() << "this machine has a working Bluetooth adapter";
    ui->app()->navigationModel()->activateView(NavigationModel::BluetoothSearchView);
    ASSERT_TRUE(ui->settle());
    QObject* page = ui->currentPage();
    EXPECT_EQ(page->property("statusText").toString(), BluetoothSearchViewModel::NO_ADAPTER);
    EXPECT_FALSE(page->property("adapterAvailable").toBool());
    EXPECT_FALSE(page->property("searching").toBool());
}

TEST_F(BluetoothSearchTest, ChoosingADeviceStoresNameAndAddress)
{
    ui->app()->navigationModel()->activateView(NavigationModel::SettingsView);
    ui->app()->navigationModel()->activateView(NavigationModel::BluetoothSearchView);
    ASSERT_TRUE(ui->settle());
    QObject* page = ui->currentPage();
    BluetoothSearchViewModel* viewModel = ui->app()->bluetoothSearchViewModel();
    viewModel->setDevices({
        QBluetoothDeviceInfo(QBluetoothAddress("00:1D:A5:00:11:22"), "OBDII", 0x1f00),
        QBluetoothDeviceInfo(QBluetoothAddress("00:1D:A5:33:44:55"), "Vgate", 0x1f00),
    });
    EXPECT_EQ(page->property("devices").toList().size(), 2);
    QObject* list = page->findChild<QObject*>("deviceList");
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list->property("count").toInt(), 2);

    QMetaObject::invokeMethod(page, "deviceSelected", Q_ARG(int, 1));
    Obd::SettingsModel* settings = ui->app()->settingsModel();
    EXPECT_EQ(settings->bluetoothDeviceName(), "Vgate");
    EXPECT_EQ(settings->bluetoothDeviceAddress(), "00:1D:A5:33:44:55");

    // The settings screen below shows the choice when the user goes back.
    ui->back();
    EXPECT_EQ(ui->currentPage()->property("bluetoothDevice").toString(), "Vgate");
    EXPECT_EQ(ui->currentPage()->property("bluetoothAddress").toString(), "00:1D:A5:33:44:55");
}

TEST_F(BluetoothSearchTest, SelectionOutsideTheListChangesNothing)
{
    ui->app()->navigationModel()->activateView(NavigationModel::BluetoothSearchView);
    ASSERT_TRUE(ui->settle());
    QMetaObject::invokeMethod(ui->currentPage(), "deviceSelected", Q_ARG(int, 3));
    EXPECT_EQ(ui->app()->settingsModel()->bluetoothDeviceName(), "None");
}
