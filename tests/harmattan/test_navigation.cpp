#include "logcapture.h"
#include "navigationmodel.h"
#include "uiharness.h"
#include "viewmodel/mainviewmodel.h"
#include "zarvane.h"

#include <QMetaObject>
#include <QUrl>

#include <gtest/gtest.h>

using Harmattan::NavigationModel;
using NavigationTest = UiTest;


TEST_F(NavigationTest, EveryScreenOfTheTableOpensAndGoesBack)
{
    NavigationModel* navigation = ui->app()->navigationModel();
    for (int view = 1; view <= NavigationModel::DtcBrowseView; ++view) {
        SCOPED_TRACE(NavigationModel::document(static_cast<NavigationModel::View>(view)).toStdString());
        navigation->activateView(static_cast<NavigationModel::View>(view));
        ASSERT_TRUE(ui->settle());
        EXPECT_EQ(ui->depth(), 2);
        QObject* page = ui->currentPage();
        ASSERT_NE(page, nullptr);
        EXPECT_NE(page, ui->mainView());
        ui->back();
        EXPECT_EQ(ui->depth(), 1);
        EXPECT_EQ(ui->currentPage(), ui->mainView());
    }
    EXPECT_FALSE(LogCapture::instance().contains("Failed to create a view"));
}

TEST_F(NavigationTest, MainViewActivationReturnsToTheOneMainView)
{
    NavigationModel* navigation = ui->app()->navigationModel();
    navigation->activateView(NavigationModel::AboutView);
    navigation->activateView(NavigationModel::SettingsView);
    ASSERT_TRUE(ui->settle());
    EXPECT_EQ(ui->depth(), 3);
    navigation->activateView(NavigationModel::MainView);
    ASSERT_TRUE(ui->settle());
    EXPECT_EQ(ui->depth(), 1);
    EXPECT_EQ(ui->currentPage(), ui->mainView());
    EXPECT_EQ(ui->mainProperty("buttonText").toString(), "Open connection")
        << "activating view 0 must not rebind or reset the main view";
}

TEST_F(NavigationTest, AboutViewOpensWithoutViewModel)
{
    ui->app()->navigationModel()->activateView(NavigationModel::AboutView);
    ASSERT_TRUE(ui->settle());
    ASSERT_NE(ui->currentPage(), nullptr);
    EXPECT_EQ(ui->currentPage()->objectName(), "aboutView");
}

TEST_F(NavigationTest, UnknownViewIsLoggedByNumber)
{
    ui->app()->navigationModel()->activateView(static_cast<NavigationModel::View>(42));
    const LogCapture::Record record = LogCapture::instance().find("Failed to create a view: ");
    ASSERT_NE(record.line, -1);
    EXPECT_EQ(record.message, "Failed to create a view: 42");
    EXPECT_EQ(record.level, 3);
    EXPECT_NE(record.file.find("harmattan/navigationmodel.cpp"), std::string::npos) << record.file;
    EXPECT_EQ(ui->depth(), 1);
}

TEST_F(NavigationTest, MainRowsOpenTheirScreens)
{
    const char* const titles[] = { "Trouble Codes", "DTC Database", "Dashboard", "Information" };
    for (int row = 0; row < 4; ++row) {
        SCOPED_TRACE(titles[row]);
        QMetaObject::invokeMethod(ui->mainView(), "clicked", Q_ARG(int, row));
        ASSERT_TRUE(ui->settle());
        ASSERT_EQ(ui->depth(), 2);
        EXPECT_EQ(ui->currentPage()->property("title").toString(), titles[row]);
        ui->back();
    }
}

TEST_F(NavigationTest, HeaderButtonsOpenSettingsAndAbout)
{
    QMetaObject::invokeMethod(ui->mainView(), "settingsButtonClicked");
    ASSERT_TRUE(ui->settle());
    EXPECT_EQ(ui->currentPage()->property("title").toString(), "Settings");
    ui->back();
    QMetaObject::invokeMethod(ui->mainView(), "aboutButtonClicked");
    ASSERT_TRUE(ui->settle());
    EXPECT_EQ(ui->currentPage()->property("title").toString(), "About");
}

TEST_F(NavigationTest, BackButtonOfAPageGoesBack)
{
    ui->app()->navigationModel()->activateView(NavigationModel::DashboardView);
    ASSERT_TRUE(ui->settle());
    QObject* backButton = ui->currentPage()->findChild<QObject*>("backButton");
    ASSERT_NE(backButton, nullptr);
    QMetaObject::invokeMethod(backButton, "clicked");
    ASSERT_TRUE(ui->settle());
    EXPECT_EQ(ui->depth(), 1);
}

TEST_F(NavigationTest, TappingSettingsAndBackButtons)
{
    ASSERT_TRUE(ui->click(ui->mainView(), "settingsButton"));
    ASSERT_TRUE(ui->settle());
    EXPECT_EQ(ui->currentPage()->property("title").toString(), "Settings");
    ASSERT_TRUE(ui->click(ui->currentPage(), "backButton"));
    ASSERT_TRUE(ui->settle());
    EXPECT_EQ(ui->depth(), 1);
}
