#include "navigationmodel.h"
#include "settingsmodel.h"
#include "uiharness.h"
#include "viewmodel/settingsviewmodel.h"
#include "zarvane.h"

#include <QMetaObject>
#include <QSettings>

#include <gtest/gtest.h>

using Harmattan::NavigationModel;
using Harmattan::SettingsViewModel;

namespace {

class SettingsViewTest : public UiTest
{
protected:
    QObject* openSettings()
    {
        ui->app()->navigationModel()->activateView(NavigationModel::SettingsView);
        EXPECT_TRUE(ui->settle());
        return ui->currentPage();
    }
};

} // namespace

TEST(SettingsInputCheck, IpAddresses)
{
    struct Row
    {
        const char* name;
        const char* text;
        bool accepted;
    };
    const Row rows[] = {
        { "usual adapter address", "192.168.0.10", true },
        { "loopback", "127.0.0.1", true },
        { "surrounding blanks", " 10.0.0.5 ", true },
        { "host name", "obd-adapter.local", true },
        { "single-label host name", "localhost", true },
        { "the never-set marker", "0.0.0.0", false },
        { "octet above 255", "192.168.0.300", false },
        { "three octets", "192.168.0", false },
        { "five octets", "1.2.3.4.5", false },
        { "empty", "", false },
        { "blank inside", "192.168 .0.1", false },
        { "label starting with a hyphen", "-adapter.local", false },
        { "underscore", "obd_adapter", false },
        { "port glued on", "192.168.0.10:35000", false },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(SettingsViewModel::ipAddressProblem(row.text).isEmpty(), row.accepted);
    }
    EXPECT_EQ(SettingsViewModel::ipAddressProblem("1.2.3"), SettingsViewModel::IP_ADDRESS_PROBLEM);
}

TEST(SettingsInputCheck, Ports)
{
    struct Row
    {
        const char* name;
        const char* text;
        bool accepted;
    };
    const Row rows[] = {
        { "usual adapter port", "35000", true },
        { "lowest", "1", true },
        { "highest", "65535", true },
        { "zero", "0", false },
        { "above range", "65536", false },
        { "letters", "abc", false },
        { "negative", "-5", false },
        { "empty", "", false },
        { "six digits", "350000", false },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(SettingsViewModel::ipPortProblem(row.text).isEmpty(), row.accepted);
    }
}

TEST_F(SettingsViewTest, ScreenShowsTheModel)
{
    Obd::SettingsModel* settings = ui->app()->settingsModel();
    settings->setConnectionMethod(1);
    settings->setIpAddress("192.168.0.10");
    settings->setIpPort("35000");
    QObject* page = openSettings();
    ASSERT_NE(page, nullptr);
    EXPECT_EQ(page->property("connectionMethodText").toString(), "wifi");
    EXPECT_EQ(page->property("ipAddress").toString(), "192.168.0.10");
    EXPECT_EQ(page->property("ipPort").toString(), "35000");
    EXPECT_EQ(page->property("bluetoothDevice").toString(), "None");
    EXPECT_EQ(page->property("bluetoothAddress").toString(), "00:00:00:00:00:00");
}

TEST_F(SettingsViewTest, MethodTextsMapBothWays)
{
    Obd::SettingsModel* settings = ui->app()->settingsModel();
    QObject* page = openSettings();
    QMetaObject::invokeMethod(page, "connectionMethodChanged", Q_ARG(QString, "wifi"));
    EXPECT_EQ(settings->connectionMethod(), 1);
    EXPECT_EQ(page->property("connectionMethodText").toString(), "wifi");
    QMetaObject::invokeMethod(page, "connectionMethodChanged", Q_ARG(QString, "carrier pigeon"));
    EXPECT_EQ(settings->connectionMethod(), 1);
    EXPECT_EQ(page->property("connectionMethodText").toString(), "wifi");
    QMetaObject::invokeMethod(page, "connectionMethodChanged", Q_ARG(QString, "bluetooth"));
    EXPECT_EQ(settings->connectionMethod(), 0);
    EXPECT_EQ(page->property("connectionMethodText").toString(), "bluetooth");
}

TEST_F(SettingsViewTest, WrongInputIsExplainedAndNotStored)
{
    Obd::SettingsModel* settings = ui->app()->settingsModel();
    QObject* page = openSettings();

    QMetaObject::invokeMethod(page, "ipAddressEdited", Q_ARG(QString, "192.168.1.256"));
    EXPECT_EQ(settings->ipAddress(), "0.0.0.0");
    EXPECT_EQ(page->property("ipAddressError").toString(), SettingsViewModel::IP_ADDRESS_PROBLEM);

    QMetaObject::invokeMethod(page, "ipPortEdited", Q_ARG(QString, "70000"));
    EXPECT_EQ(settings->ipPort(), "0");
    EXPECT_EQ(page->property("ipPortError").toString(), SettingsViewModel::IP_PORT_PROBLEM);

    QMetaObject::invokeMethod(page, "ipAddressEdited", Q_ARG(QString, "192.168.1.25"));
    QMetaObject::invokeMethod(page, "ipPortEdited", Q_ARG(QString, "35000"));
    EXPECT_EQ(settings->ipAddress(), "192.168.1.25");
    EXPECT_EQ(settings->ipPort(), "35000");
    EXPECT_EQ(page->property("ipAddress").toString(), "192.168.1.25");
    EXPECT_EQ(page->property("ipPort").toString(), "35000");
    EXPECT_EQ(page->property("ipAddressError").toString(), "");
    EXPECT_EQ(page->property("ipPortError").toString(), "");
}

TEST_F(SettingsViewTest, SettingsSurviveARestart)
{
    QObject* page = openSettings();
    QMetaObject::invokeMethod(page, "connectionMethodChanged", Q_ARG(QString, "wifi"));
    QMetaObject::invokeMethod(page, "ipAddressEdited", Q_ARG(QString, "10.20.30.40"));
    QMetaObject::invokeMethod(page, "ipPortEdited", Q_ARG(QString, "35001"));

    ui.reset();
    {
        QSettings store;
        EXPECT_EQ(store.value("connectivity/connectionMethod").toInt(), 1);
        EXPECT_EQ(store.value("connectivity/defaultIpAddress").toString(), "10.20.30.40");
        EXPECT_EQ(store.value("connectivity/defaultIpPort").toString(), "35001");
    }
    ui.reset(new UiHarness());
    ASSERT_TRUE(ui->loaded());
    Obd::SettingsModel* settings = ui->app()->settingsModel();
    EXPECT_EQ(settings->connectionMethod(), 1);
    EXPECT_EQ(settings->ipAddress(), "10.20.30.40");
    EXPECT_EQ(settings->ipPort(), "35001");
    EXPECT_TRUE(settings->isValid());
    page = openSettings();
    EXPECT_EQ(page->property("ipAddress").toString(), "10.20.30.40");
}

TEST_F(SettingsViewTest, SearchButtonOpensTheBluetoothSearch)
{
    QObject* page = openSettings();
    QMetaObject::invokeMethod(page, "searchBluetoothDevices");
    ASSERT_TRUE(ui->settle());
    EXPECT_EQ(ui->depth(), 3);
    EXPECT_EQ(ui->currentPage()->property("title").toString(), "Bluetooth devices");
}
