#include "connectionmanager.h"
#include "navigationmodel.h"
#include "settingsmodel.h"
#include "uiharness.h"
#include "viewmodel/bluetoothsearchviewmodel.h"
#include "viewmodel/settingsviewmodel.h"
#include "zarvane.h"

#include <QBluetoothAddress>
#include <QBluetoothDeviceInfo>
#include <QBluetoothLocalDevice>
#include <QMetaObject>
#include <QSettings>

#include <gtest/gtest.h>

using Harmattan::BluetoothSearchViewModel;
using Harmattan::NavigationModel;
using Harmattan::SettingsViewModel;
using Obd::SettingsModel;

namespace {

using SettingsViewTest = UiTest;
using SettingsSimTest = SimUiTest;

class SettingsModelTest : public ::testing::Test
{
protected:
    void SetUp() override { clearSettingsStore(); }

    // Each setting, its key in the store (kept from earlier versions) and a
    // value other than its default.
    struct Setting { const char* property; void (SettingsModel::*changed)(); const char* key; QString value; };
    const std::vector<Setting> settings = {
        { "connectionMethod", &SettingsModel::connectionMethodChanged, "connectivity/connectionMethod", "1" },
        { "bluetoothDeviceName", &SettingsModel::bluetoothDeviceNameChanged,
          "connectivity/defaultBluetoothDeviceName", "OBDII" },
        { "bluetoothDeviceAddress", &SettingsModel::bluetoothDeviceAddressChanged,
          "connectivity/defaultBluetoothDeviceAddress", "AA:BB:CC:DD:EE:FF" },
        { "ipAddress", &SettingsModel::ipAddressChanged, "connectivity/defaultIpAddress", "192.168.0.10" },
        { "ipPort", &SettingsModel::ipPortChanged, "connectivity/defaultIpPort", "35000" },
        { "noReset", &SettingsModel::noResetChanged, "connectivity/noReset", "true" },
        { "firstGaugePid", &SettingsModel::gaugePidsChanged, "display/firstGaugePid", "66" },
        { "secondGaugePid", &SettingsModel::gaugePidsChanged, "display/secondGaugePid", "5" },
    };
};

// Types text into a field of the screen and leaves it, as a person does.
void enter(QObject* page, const char* field, const QString& text)
{
    QObject* item = page->findChild<QObject*>(field);
    ASSERT_NE(item, nullptr) << field;
    item->setProperty("text", text);
    QMetaObject::invokeMethod(item, "editingFinished");
}

} // namespace

TEST_F(SettingsModelTest, EachSettingIsWrittenToItsKeyAtOnceSignalledAndReadBackAlone)
{
    const SettingsModel fresh;
    EXPECT_TRUE(QSettings().allKeys().isEmpty()) << "construction writes nothing";
    EXPECT_FALSE(fresh.isValid());
    for (const Setting& setting : settings) {
        SCOPED_TRACE(setting.property);
        clearSettingsStore();
        {
            SettingsModel model;
            int signalled = 0;
            QObject::connect(&model, setting.changed, [&] { ++signalled; });
            model.setProperty(setting.property, setting.value);
            model.setProperty(setting.property, setting.value);
            EXPECT_EQ(signalled, 2) << "signalled even when unchanged";
            EXPECT_EQ(QSettings().value(setting.key).toString(), setting.value);
        }
        // A new model reads this setting from the store, and only this one.
        const SettingsModel model;
        for (const Setting& other : settings)
            EXPECT_EQ(model.property(other.property).toString(),
                      &other == &setting ? setting.value : fresh.property(other.property).toString())
                << other.property;
    }
}

TEST_F(SettingsModelTest, ValidityRule)
{
    struct Row { const char* name; int method; const char *btName, *btAddress, *ip, *port; bool valid; };
    const Row rows[] = {
        { "bluetooth, both set", 0, "OBDII", "11:22:33:44:55:66", "0.0.0.0", "0", true },
        { "bluetooth, name never set", 0, "None", "11:22:33:44:55:66", "0.0.0.0", "0", false },
        { "bluetooth, address never set", 0, "OBDII", "00:00:00:00:00:00", "0.0.0.0", "0", false },
        { "wifi, address and port set", 1, "None", "00:00:00:00:00:00", "192.168.0.10", "1234", true },
        { "wifi, port never set", 1, "None", "00:00:00:00:00:00", "192.168.0.10", "0", false },
        { "wifi, address never set", 1, "None", "00:00:00:00:00:00", "0.0.0.0", "35000", false },
        { "wifi, extra zero counts as set", 1, "None", "00:00:00:00:00:00", "0.0.0.00", "35000", true },
        { "unknown method", 7, "OBDII", "11:22:33:44:55:66", "192.168.0.10", "35000", false },
        { "negative method", -1, "OBDII", "11:22:33:44:55:66", "192.168.0.10", "35000", false },
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

TEST(SettingsInputCheck, AddressesAndPorts)
{
    struct Row { const char* name; QString (*problem)(const QString&); const char* text; bool accepted; };
    const auto address = &SettingsViewModel::ipAddressProblem;
    const auto port = &SettingsViewModel::ipPortProblem;
    const Row rows[] = {
        { "usual adapter address", address, "192.168.0.10", true },
        { "surrounding blanks", address, " 10.0.0.5 ", true },
        { "host name", address, "obd-adapter.local", true },
        { "single-label host name", address, "localhost", true },
        { "the never-set marker", address, "0.0.0.0", false },
        { "octet above 255", address, "192.168.0.300", false },
        { "three octets", address, "192.168.0", false },
        { "empty address", address, "", false },
        { "blank inside", address, "192.168 .0.1", false },
        { "label starting with a hyphen", address, "-adapter.local", false },
        { "underscore", address, "obd_adapter", false },
        { "port glued on", address, "192.168.0.10:35000", false },
        { "usual adapter port", port, "35000", true },
        { "lowest port", port, "1", true },
        { "highest port", port, "65535", true },
        { "port zero", port, "0", false },
        { "port above range", port, "65536", false },
        { "port letters", port, "abc", false },
        { "empty port", port, "", false },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(row.problem(row.text).isEmpty(), row.accepted);
    }
}

TEST_F(SettingsViewTest, ScreenShowsTheModelAndItsButtonsChooseTheMethod)
{
    Obd::SettingsModel* settings = ui->app()->settingsModel();
    settings->setConnectionMethod(1);
    settings->setIpAddress("192.168.0.10");
    settings->setIpPort("35000");
    QObject* page = ui->open(NavigationModel::SettingsView);
    EXPECT_EQ(ui->text(page, "ipAddressField"), "192.168.0.10");
    EXPECT_EQ(ui->text(page, "ipPortField"), "35000");
    EXPECT_TRUE(page->findChild<QObject*>("wifiButton")->property("selected").toBool());
    // A change of the model while the screen is open shows at once.
    settings->setIpPort("35001");
    EXPECT_EQ(ui->text(page, "ipPortField"), "35001");

    ASSERT_TRUE(ui->tap(page, "bluetoothButton"));
    EXPECT_EQ(settings->connectionMethod(), 0);
    EXPECT_TRUE(page->findChild<QObject*>("bluetoothButton")->property("selected").toBool());
    EXPECT_EQ(ui->text(page, "bluetoothDeviceText"), "No device chosen");
    settings->setBluetoothDeviceName("OBDII");
    EXPECT_EQ(ui->text(page, "bluetoothDeviceText"), "OBDII");
    ui->picture("settings_bluetooth");

    ASSERT_TRUE(ui->tap(page, "wifiButton"));
    EXPECT_EQ(settings->connectionMethod(), 1);
    QMetaObject::invokeMethod(page, "connectionMethodChanged", Q_ARG(QString, "carrier pigeon"));
    EXPECT_EQ(settings->connectionMethod(), 1) << "an unknown method changes nothing";
    EXPECT_EQ(page->property("connectionMethodText").toString(), "wifi");
}

TEST_F(SettingsViewTest, WrongInputIsExplainedAndNotStoredRightInputIsStoredAndKept)
{
    // The setting names its field (<setting>Field), the text under it
    // (<setting>ErrorText) and the model's property.
    struct Row { const char *name, *setting, *text, *problem, *stored; };
    const Row rows[] = {
        { "address octet above 255", "ipAddress", "192.168.1.256", SettingsViewModel::IP_ADDRESS_PROBLEM,
          "0.0.0.0" },
        { "port above range", "ipPort", "70000", SettingsViewModel::IP_PORT_PROBLEM, "0" },
        { "right address", "ipAddress", "10.20.30.40", "", "10.20.30.40" },
        { "right port with blanks", "ipPort", " 35001", "", "35001" },
    };
    ui->app()->settingsModel()->setConnectionMethod(1);
    QObject* page = ui->open(NavigationModel::SettingsView);
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const QByteArray error = QByteArray(row.setting) + "ErrorText";
        enter(page, (QByteArray(row.setting) + "Field").constData(), row.text);
        EXPECT_EQ(ui->text(page, error.constData()), row.problem);
        EXPECT_EQ(page->findChild<QObject*>(error.constData())->property("visible").toBool(),
                  *row.problem != 0);
        EXPECT_EQ(ui->app()->settingsModel()->property(row.setting).toString(), row.stored);
        ui->picture(QString("settings_") + row.setting + (*row.problem ? "_wrong" : ""));
    }

    // A restart reads the same settings, and the screen shows them.
    ui.reset();
    ui.reset(new UiHarness());
    ASSERT_TRUE(ui->loaded());
    page = ui->open(NavigationModel::SettingsView);
    EXPECT_EQ(ui->text(page, "ipAddressField"), "10.20.30.40");
    EXPECT_EQ(ui->text(page, "ipPortField"), "35001");
}

TEST_F(SettingsViewTest, BluetoothSearchSaysPlainlyWhenThereIsNoBluetooth)
{
    if (QBluetoothLocalDevice().isValid())
        GTEST_SKIP() << "this machine has a working Bluetooth adapter";
    QObject* page = ui->open(NavigationModel::BluetoothSearchView);
    EXPECT_EQ(ui->text(page, "statusText"), BluetoothSearchViewModel::NO_ADAPTER);
    EXPECT_FALSE(page->findChild<QObject*>("searchButton")->property("enabled").toBool());
    EXPECT_FALSE(page->findChild<QObject*>("busyIndicator")->property("running").toBool());
}

TEST_F(SettingsViewTest, TappingAFoundDeviceStoresItAndTheSettingsScreenShowsIt)
{
    ui->open(NavigationModel::SettingsView);
    QObject* page = ui->open(NavigationModel::BluetoothSearchView);
    ui->app()->bluetoothSearchViewModel()->setDevices({
        QBluetoothDeviceInfo(QBluetoothAddress("00:1D:A5:00:11:22"), "OBDII", 0x1f00),
        QBluetoothDeviceInfo(QBluetoothAddress("00:1D:A5:33:44:55"), "Vgate", 0x1f00),
    });
    ui->picture("bluetooth_search_devices");
    QMetaObject::invokeMethod(page, "deviceSelected", Q_ARG(int, 3));
    EXPECT_EQ(ui->app()->settingsModel()->bluetoothDeviceName(), "None") << "no such row";

    ASSERT_TRUE(ui->tap(ui->row(page, "deviceList", 1)));
    Obd::SettingsModel* settings = ui->app()->settingsModel();
    EXPECT_EQ(settings->bluetoothDeviceName(), "Vgate");
    EXPECT_EQ(settings->bluetoothDeviceAddress(), "00:1D:A5:33:44:55");
    ASSERT_TRUE(ui->settle());
    ASSERT_EQ(ui->currentPage()->property("title").toString(), "Settings");
    EXPECT_EQ(ui->text(ui->currentPage(), "bluetoothDeviceText"), "Vgate");
}

// The gauge lists offer every live PID with a number; a choice and the
// reset switch reach the model, and the switch reaches the adapter.
TEST_F(SettingsSimTest, GaugeChoiceAndResetSwitch)
{
    startSim();
    QObject* page = ui->open(NavigationModel::SettingsView);
    QObject* upper = page->findChild<QObject*>("firstGaugeChoice");
    ASSERT_TRUE(upper);
    EXPECT_EQ(upper->property("currentText").toString(), "0C Engine RPM");
    const QVariantList choices = page->property("gaugeChoices").toList();
    int voltage = -1;
    for (int i = 0; i < choices.size(); ++i) {
        const int pid = choices[i].toMap()["pid"].toInt();
        EXPECT_TRUE(pid % 0x20 != 0 && pid != 0x01 && pid != 0x1C) << pid << ": no number to show";
        voltage = pid == 0x42 ? i : voltage;
    }
    ASSERT_GE(voltage, 0);
    upper->setProperty("currentIndex", voltage);
    QMetaObject::invokeMethod(upper, "activated", Q_ARG(int, voltage));
    EXPECT_EQ(ui->app()->settingsModel()->gaugePid(0), 0x42);

    const struct { const char* name; bool tap; bool reset; } rows[] = {
        { "reset by default", false, true }, { "switched on: warm start", true, false } };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        if (row.tap) {
            QObject* form = page->findChild<QObject*>("settingsForm");
            form->setProperty("contentY", form->property("contentHeight").toReal() - form->property("height").toReal());
            ASSERT_TRUE(ui->settle());
            ASSERT_TRUE(ui->tap(page, "noResetSwitch"));
        }
        EXPECT_EQ(ui->app()->settingsModel()->noReset(), !row.reset);
        const size_t before = sim->requestLog().size();
        ASSERT_TRUE(ui->app()->connectionManager()->openConnection());
        ASSERT_TRUE(waitUntil([&] { return ui->app()->connectionManager()->isConnected(); }, CONNECT_WAIT_MS));
        const std::vector<std::string> log = sim->requestLog();
        EXPECT_EQ(std::count(log.begin() + before, log.end(), "ATZ") > 0, row.reset);
        ui->app()->connectionManager()->closeConnection();
    }
    ASSERT_TRUE(ui->settle());
    ui->picture("19d-settings");
}
