#include "navigationmodel.h"
#include "uiharness.h"
#include "zarvane.h"

#include <QQuickItem>

#include <gtest/gtest.h>

using Harmattan::NavigationModel;
using NavigationTest = UiTest;

// The ways a person reaches a screen: a tap on a row or a button of the
// screen before it.
TEST_F(NavigationTest, TappingARowOrButtonOpensItsScreen)
{
    // From a screen, a tap on its item (or on the main list's row) opens the
    // screen of that title, and the page stack is that deep.
    struct Row { const char* name; int from; const char* target; int mainRow; const char* title; int depth; };
    const Row rows[] = {
        { "main list, trouble codes", NavigationModel::MainView, nullptr, 0, "Trouble Codes", 2 },
        { "main list, database", NavigationModel::MainView, nullptr, 1, "DTC Database", 2 },
        { "main list, dashboard", NavigationModel::MainView, nullptr, 2, "Dashboard", 2 },
        { "main list, information", NavigationModel::MainView, nullptr, 3, "Information", 2 },
        { "main header, settings", NavigationModel::MainView, "settingsButton", -1, "Settings", 2 },
        { "main header, about", NavigationModel::MainView, "aboutButton", -1, "About", 2 },
        { "trouble codes, confirmed", NavigationModel::DtcView, "storedRow", -1, "Confirmed DTCs", 3 },
        { "trouble codes, pending", NavigationModel::DtcView, "pendingRow", -1, "Pending DTCs", 3 },
        { "database, search", NavigationModel::DtcDatabaseView, "searchRow", -1, "Search Codes", 3 },
        { "database, browse", NavigationModel::DtcDatabaseView, "browseRow", -1, "Browse Codes", 3 },
        { "information, scantool", NavigationModel::InformationView, "scantoolRow", -1, "Scantool", 3 },
        { "information, ECU", NavigationModel::InformationView, "ecuRow", -1, "ECU", 3 },
        { "settings, search", NavigationModel::SettingsView, "searchButton", -1, "Bluetooth devices", 3 },
        { "a page's back button", NavigationModel::AboutView, "backButton", -1, "Zarvane", 1 },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        QObject* from = ui->open(row.from);
        EXPECT_TRUE(row.target || ui->rowTexts(from, "mainList", row.mainRow).contains(row.title));
        ASSERT_TRUE(row.target ? ui->tap(from, row.target) : ui->tap(ui->row(from, "mainList", row.mainRow)));
        ASSERT_TRUE(ui->settle());
        EXPECT_EQ(ui->currentPage()->property("title").toString(), row.title);
        EXPECT_EQ(ui->depth(), row.depth);
        ui->picture(QString(row.title).toLower().replace(' ', '_'));
        // Asking for the main view goes back to the one main view.
        ui->open(NavigationModel::MainView);
        EXPECT_EQ(ui->depth(), 1);
        EXPECT_EQ(ui->currentPage(), ui->mainView());
    }
}
