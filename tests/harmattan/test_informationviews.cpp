#include "connectionmanager.h"
#include "iobdproxy.h"
#include "navigationmodel.h"
#include "uiharness.h"
#include "zarvane.h"

#include <gtest/gtest.h>

#include <functional>

using Harmattan::NavigationModel;

namespace {

using InformationViewTest = SimUiTest;

// Title and value of each row the screen shows.
QStringList shownRows(UiHarness& ui, QObject* page)
{
    QStringList rows;
    for (int i = 0; i < page->findChild<QObject*>("infoList")->property("count").toInt(); ++i)
        rows << ui.rowTexts(page, "infoList", i).join(": ");
    return rows;
}

} // namespace

TEST_F(InformationViewTest, ScreensShowWhatTheAdapterAndTheFirstEcuSaidWhileConnected)
{
    struct Row { const char *name, *chooserRow; int view; std::function<QStringList()> expected; };
    const Row rows[] = {
        { "scantool", "scantoolRow", NavigationModel::ScantoolInformationView,
          [] { return QStringList{ "Scantool: ELM327", "Manufacturer: OBDII to RS232 Interpreter",
                                   "Version: v1.5" }; } },
        { "first ECU", "ecuRow", NavigationModel::EcuInformationView,
          [&] { Obd::EcuPtr first = ui->app()->connectionManager()->proxy()->getFirstEcu();
                EXPECT_EQ(first->getId(), 0x7E8u);
                return QStringList{ "OBD Standard: " + QString::fromStdString(first->getObdStandardText()),
                                    "Protocol: " + QString::fromStdString(first->getProtocolName()),
                                    "Name: " + QString::fromStdString(first->getShortName()),
                                    "Description: " + QString::fromStdString(first->getLongName()) }; } },
    };
    QObject* chooser = ui->open(NavigationModel::InformationView);
    EXPECT_EQ(ui->text(chooser, "statusText"), "Not connected: open the connection to read this information.");
    // Connected while the chooser is open.
    ASSERT_TRUE(connectToSim());
    EXPECT_EQ(ui->text(chooser, "statusText"), "Connected to the adapter and the vehicle");
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        ASSERT_TRUE(ui->tap(chooser, row.chooserRow));
        ASSERT_TRUE(ui->settle());
        QObject* page = ui->currentPage();
        const QStringList expected = row.expected();
        EXPECT_EQ(shownRows(*ui, page), expected);
        EXPECT_FALSE(page->findChild<QObject*>("emptyText")->property("visible").toBool());
        ui->picture(QString("information_") + row.chooserRow);
        // Reopened, each row once.
        ui->back();
        EXPECT_EQ(shownRows(*ui, ui->open(row.view)), expected);
        ui->back();
    }

    // The link goes: the open list empties and says so.
    QObject* page = ui->open(NavigationModel::EcuInformationView);
    sim->dropNow();
    ASSERT_TRUE(waitUntil([&] { return page->property("connectionStatus").toInt() == 0; }, READ_WAIT_MS));
    ASSERT_TRUE(ui->settle());
    EXPECT_EQ(shownRows(*ui, page), QStringList());
    EXPECT_EQ(ui->text(page, "emptyText"), "Not connected: open the connection first.");
}
