#include "settingsmodel.h"
#include "uiharness.h"

#include <QSettings>

#include <gtest/gtest.h>

using Obd::SettingsModel;

namespace {

class SettingsModelTest : public ::testing::Test
{
protected:
    void SetUp() override { clearSettingsStore(); }
};

} // namespace

TEST_F(SettingsModelTest, FreshStoreGivesDefaultsAndIsNotValid)
{
    SettingsModel model;
    EXPECT_EQ(model.connectionMethod(), 0);
    EXPECT_EQ(model.bluetoothDeviceName(), "None");
    EXPECT_EQ(model.bluetoothDeviceAddress(), "00:00:00:00:00:00");
    EXPECT_EQ(model.ipAddress(), "0.0.0.0");
    EXPECT_EQ(model.ipPort(), "0");
    EXPECT_FALSE(model.isValid());
}

TEST_F(SettingsModelTest, ConstructionWritesNothing)
{
    SettingsModel model;
    EXPECT_TRUE(QSettings().allKeys().isEmpty());
}

TEST_F(SettingsModelTest, StoreWithOnlyIpAddressChangesOnlyThatField)
{
    QSettings().setValue("connectivity/defaultIpAddress", "10.1.2.3");
    SettingsModel model;
    EXPECT_EQ(model.ipAddress(), "10.1.2.3");
    EXPECT_EQ(model.connectionMethod(), 0);
    EXPECT_EQ(model.bluetoothDeviceName(), "None");
    EXPECT_EQ(model.bluetoothDeviceAddress(), "00:00:00:00:00:00");
    EXPECT_EQ(model.ipPort(), "0");
}

TEST_F(SettingsModelTest, EveryKeyIsReadBack)
{
    QSettings store;
    store.setValue("connectivity/connectionMethod", 1);
    store.setValue("connectivity/defaultBluetoothDeviceName", "OBDII");
    store.setValue("connectivity/defaultBluetoothDeviceAddress", "AA:BB:CC:DD:EE:FF");
    store.setValue("connectivity/defaultIpAddress", "192.168.0.10");
    store.setValue("connectivity/defaultIpPort", "35000");
    store.sync();
    SettingsModel model;
    EXPECT_EQ(model.connectionMethod(), 1);
    EXPECT_EQ(model.bluetoothDeviceName(), "OBDII");
    EXPECT_EQ(model.bluetoothDeviceAddress(), "AA:BB:CC:DD:EE:FF");
    EXPECT_EQ(model.ipAddress(), "192.168.0.10");
    EXPECT_EQ(model.ipPort(), "35000");
}

TEST_F(SettingsModelTest, SettersWriteAtOnceAndSignalEvenWhenUnchanged)
{
    SettingsModel model;
    int emitted = 0;
    QObject::connect(&model, &SettingsModel::connectionMethodChanged, [&] { ++emitted; });
    QObject::connect(&model, &SettingsModel::bluetoothDeviceNameChanged, [&] { ++emitted; });
    QObject::connect(&model, &SettingsModel::bluetoothDeviceAddressChanged, [&] { ++emitted; });
    QObject::connect(&model, &SettingsModel::ipAddressChanged, [&] { ++emitted; });
    QObject::connect(&model, &SettingsModel::ipPortChanged, [&] { ++emitted; });

    model.setConnectionMethod(1);
    model.setBluetoothDeviceName("OBDII");
    model.setBluetoothDeviceAddress("01:23:45:67:89:AB");
    model.setIpAddress("192.168.0.10");
    model.setIpPort("35000");
    model.setIpPort("35000");
    EXPECT_EQ(emitted, 6);

    QSettings store;
    EXPECT_EQ(store.value("connectivity/connectionMethod").toInt(), 1);
    EXPECT_EQ(store.value("connectivity/defaultBluetoothDeviceName").toString(), "OBDII");
    EXPECT_EQ(store.value("connectivity/defaultBluetoothDeviceAddress").toString(), "01:23:45:67:89:AB");
    EXPECT_EQ(store.value("connectivity/defaultIpAddress").toString(), "192.168.0.10");
    EXPECT_EQ(store.value("connectivity/defaultIpPort").toString(), "35000");
}

TEST_F(SettingsModelTest, ValidityRule)
{
    struct Row
    {
        const char* name;
        int method;
        const char* btName;
        const char* btAddress;
        const char* ip;
        const char* port;
        bool valid;
    };
    const Row rows[] = {
        { "bluetooth, both set", 0, "OBDII", "11:22:33:44:55:66", "0.0.0.0", "0", true },
        { "bluetooth, name never set", 0, "None", "11:22:33:44:55:66", "0.0.0.0", "0", false },
        { "bluetooth, address never set", 0, "OBDII", "00:00:00:00:00:00", "0.0.0.0", "0", false },
        { "wifi, address and port set", 1, "None", "00:00:00:00:00:00", "192.168.0.10", "1234", true },
        { "wifi, port never set", 1, "None", "00:00:00:00:00:00", "192.168.0.10", "0", false },
        { "wifi, address never set", 1, "None", "00:00:00:00:00:00", "0.0.0.0", "35000", false },
        { "wifi, extra zero counts as set", 1, "None", "00:00:00:00:00:00", "0.0.0.00", "35000", true },
        { "method 2 is never valid", 2, "OBDII", "11:22:33:44:55:66", "192.168.0.10", "35000", false },
        { "negative method is never valid", -1, "OBDII", "11:22:33:44:55:66", "192.168.0.10", "35000", false },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        SettingsModel model;
        model.setConnectionMethod(row.method);
        model.setBluetoothDeviceName(row.btName);
        model.setBluetoothDeviceAddress(row.btAddress);
        model.setIpAddress(row.ip);
        model.setIpPort(row.port);
        EXPECT_EQ(model.isValid(), row.valid);
    }
}

TEST_F(SettingsModelTest, MethodTwoIsStoredAsTwo)
{
    {
        SettingsModel model;
        model.setConnectionMethod(2);
    }
    SettingsModel reread;
    EXPECT_EQ(reread.connectionMethod(), 2);
    EXPECT_FALSE(reread.isValid());
}
