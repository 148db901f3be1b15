#include "connectionmanager.h"
#include "infolistviewdatamodel.h"
#include "iobdproxy.h"
#include "navigationmodel.h"
#include "uiharness.h"
#include "viewmodel/ecuinformationviewmodel.h"
#include "viewmodel/scantoolinformationviewmodel.h"
#include "zarvane.h"

#include <gtest/gtest.h>

#include <functional>
#include <utility>
#include <vector>

using Harmattan::NavigationModel;

namespace {

using InformationViewTest = SimUiTest;
using Rows = std::vector<std::pair<QString, QString>>;

Rows rowsOf(const Obd::InfoListViewDataModel* model)
{
    Rows rows;
    for (int i = 0; i < model->rowCount(); ++i) {
        const QModelIndex index = model->index(i, 0);
        rows.emplace_back(index.data(Obd::InfoListViewDataModel::TitleRole).toString(),
                          index.data(Obd::InfoListViewDataModel::SubTitleRole).toString());
    }
    return rows;
}

} // namespace

TEST_F(InformationViewTest, ScreensShowWhatTheAdapterAndTheFirstEcuSaidWhileConnected)
{
    struct Row
    {
        const char *name, *chooserRow;
        int view;
        Obd::InfoListViewDataModel* list;
        std::function<Rows()> expected;
    };
    const Row rows[] = {
        { "scantool", "scantoolRow", NavigationModel::ScantoolInformationView,
          ui->app()->scantoolInformationViewModel()->listModel(),
          [] { return Rows{ {"Scantool", "ELM327"}, {"Manufacturer", "OBDII to RS232 Interpreter"},
                            {"Version", "v1.5"} }; } },
        { "first ECU", "ecuRow", NavigationModel::EcuInformationView,
          ui->app()->ecuInformationViewModel()->listModel(),
          [&] { Obd::EcuPtr first = ui->app()->connectionManager()->proxy()->getFirstEcu();
                EXPECT_EQ(first->getId(), 0x7E8u);
                return Rows{ {"OBD Standard", QString::fromStdString(first->getObdStandardText())},
                             {"Protocol", QString::fromStdString(first->getProtocolName())},
                             {"Name", QString::fromStdString(first->getShortName())},
                             {"Description", QString::fromStdString(first->getLongName())} }; } },
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
        const Rows expected = row.expected();
        EXPECT_EQ(rowsOf(row.list), expected);
        EXPECT_EQ(page->findChild<QObject*>("infoList")->property("count").toInt(), int(expected.size()));
        EXPECT_FALSE(page->findChild<QObject*>("emptyText")->property("visible").toBool());
        ui->picture(QString("information_") + row.chooserRow);
        // Reopened, each row once.
        ui->back();
        ui->open(row.view);
        EXPECT_EQ(rowsOf(row.list), expected);
        ui->back();
    }

    // The link goes: the open list empties and says so.
    QObject* page = ui->open(NavigationModel::EcuInformationView);
    sim->dropNow();
    ASSERT_TRUE(waitUntil([&] { return page->property("connectionStatus").toInt() == 0; }, READ_WAIT_MS));
    ASSERT_TRUE(ui->settle());
    EXPECT_EQ(rows[1].list->rowCount(), 0);
    EXPECT_EQ(page->findChild<QObject*>("infoList")->property("count").toInt(), 0);
    EXPECT_EQ(ui->text(page, "emptyText"), "Not connected: open the connection first.");
}
