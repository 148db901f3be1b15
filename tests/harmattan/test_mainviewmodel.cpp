#include "connectionmanager.h"
#include "logcapture.h"
#include "settingsmodel.h"
#include "uiharness.h"
#include "viewmodel/mainviewdatamodel.h"
#include "viewmodel/mainviewmodel.h"
#include "zarvane.h"

#include <QAbstractItemModel>
#include <QMetaObject>
#include <QQmlContext>

#include <gtest/gtest.h>

using MainViewModelTest = UiTest;

TEST_F(MainViewModelTest, MainScreenStartsClosed)
{
    EXPECT_EQ(ui->mainProperty("avatarImage").toString(), "qrc:///avatar.png");
    EXPECT_EQ(ui->mainProperty("buttonText").toString(), "Open connection");
    EXPECT_EQ(ui->mainProperty("buttonIcon").toString(), "qrc:///link.png");
    EXPECT_TRUE(ui->mainProperty("buttonStatus").toBool());
    EXPECT_EQ(ui->mainProperty("connectionStatus").toInt(), 0);
}

TEST_F(MainViewModelTest, FourRowsArePublished)
{
    QObject* object = ui->view().rootContext()->contextProperty("mainViewDataModel").value<QObject*>();
    auto* model = qobject_cast<QAbstractItemModel*>(object);
    ASSERT_NE(model, nullptr);
    ASSERT_EQ(model->rowCount(), 4);
    const QHash<int, QByteArray> roles = model->roleNames();
    const int title = roles.key("title");
    const int subtitle = roles.key("subtitle");
    const int image = roles.key("image");
    struct Row
    {
        const char* title;
        const char* subtitle;
        const char* image;
    };
    const Row rows[] = {
        { "Trouble Codes", "Engine Diagnostic Trouble Codes", "qrc:///mil_off.png" },
        { "DTC Database", "Diagnostic Trouble Code Database", "qrc:///search.png" },
        { "Dashboard", "Visual gauges and counters", "qrc:///monitoring.png" },
        { "Information", "Information about scantool, ECU, etc.", "qrc:///information.png" },
    };
    for (int i = 0; i < 4; ++i) {
        SCOPED_TRACE(rows[i].title);
        EXPECT_EQ(model->data(model->index(i, 0), title).toString(), rows[i].title);
        EXPECT_EQ(model->data(model->index(i, 0), subtitle).toString(), rows[i].subtitle);
        EXPECT_EQ(model->data(model->index(i, 0), image).toString(), rows[i].image);
    }
    QObject* list = ui->mainView()->findChild<QObject*>("mainList");
    ASSERT_NE(list, nullptr);
    EXPECT_EQ(list->property("count").toInt(), 4);
}

TEST_F(MainViewModelTest, ButtonFollowsTheManagersSignals)
{
    Harmattan::ConnectionManager* manager = ui->app()->connectionManager();
    emit manager->connected();
    EXPECT_EQ(ui->mainProperty("connectionStatus").toInt(), 2);
    EXPECT_EQ(ui->mainProperty("buttonText").toString(), "Close connection");
    EXPECT_TRUE(ui->mainProperty("buttonStatus").toBool());
    EXPECT_TRUE(LogCapture::instance().contains("onConnected", 0));

    emit manager->disconnected();
    EXPECT_EQ(ui->mainProperty("connectionStatus").toInt(), 0);
    EXPECT_EQ(ui->mainProperty("buttonText").toString(), "Open connection");
    EXPECT_TRUE(ui->mainProperty("buttonStatus").toBool());
    const LogCapture::Record record = LogCapture::instance().find("onDisconnected");
    EXPECT_EQ(record.level, 0);
    EXPECT_NE(record.file.find("harmattan/viewmodel/mainviewmodel.cpp"), std::string::npos);
}

TEST_F(MainViewModelTest, FailureShowsTheReasonForFiveSeconds)
{
    ui->mainView()->setProperty("buttonStatus", false);
    ui->mainView()->setProperty("connectionStatus", 1);
    emit ui->app()->connectionManager()->failed("Failed to identify interface");
    QObject* banner = ui->banner();
    EXPECT_EQ(banner->property("text").toString(), "Failed to identify interface");
    EXPECT_EQ(banner->property("timeout").toInt(), 5000);
    EXPECT_TRUE(banner->property("shown").toBool());
    EXPECT_EQ(ui->mainProperty("buttonText").toString(), "Open connection");
    EXPECT_TRUE(ui->mainProperty("buttonStatus").toBool());
    EXPECT_EQ(ui->mainProperty("connectionStatus").toInt(), 0);
    EXPECT_TRUE(LogCapture::instance().contains(
        "Connection opening failed: Failed to identify interface", 0));
}

TEST_F(MainViewModelTest, InvalidSettingsLeadToTheSettingsScreen)
{
    Obd::SettingsModel* settings = ui->app()->settingsModel();
    settings->setConnectionMethod(1);
    settings->setIpAddress("0.0.0.0");
    settings->setIpPort("35000");
    QMetaObject::invokeMethod(ui->mainView(), "connectionButtonClicked");
    EXPECT_EQ(ui->banner()->property("text").toString(), "Check connection settings!");
    EXPECT_EQ(ui->banner()->property("timeout").toInt(), 3000);
    ASSERT_TRUE(ui->settle());
    ASSERT_EQ(ui->depth(), 2);
    EXPECT_EQ(ui->currentPage()->property("title").toString(), "Settings");
    EXPECT_EQ(ui->currentPage()->property("ipAddress").toString(), "0.0.0.0");
    EXPECT_EQ(ui->mainProperty("connectionStatus").toInt(), 0);
    EXPECT_TRUE(ui->mainProperty("buttonStatus").toBool());
}
