#include "connectionmanager.h"
#include "infolistviewdatamodel.h"
#include "iobdproxy.h"
#include "navigationmodel.h"
#include "simuitest.h"
#include "viewmodel/ecuinformationviewmodel.h"
#include "viewmodel/scantoolinformationviewmodel.h"
#include "zarvane.h"

#include <gtest/gtest.h>

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

TEST_F(InformationViewTest, ScantoolScreenShowsWhatTheAdapterSaid)
{
    ASSERT_TRUE(connectToSim());
    QObject* chooser = open(NavigationModel::InformationView);
    ASSERT_EQ(chooser->objectName(), "informationView");
    EXPECT_EQ(chooser->property("image").toString(), "qrc:///information.png");
    EXPECT_EQ(chooser->property("connectionStatus").toInt(), 2);
    EXPECT_TRUE(ui->screenshot("information"));

    ASSERT_TRUE(ui->click(chooser, "scantoolRow"));
    ui->settle();
    QObject* page = ui->currentPage();
    ASSERT_EQ(page->objectName(), "scantoolInformationView");
    const Rows expected = {{"Scantool", "ELM327"},
                           {"Manufacturer", "OBDII to RS232 Interpreter"},
                           {"Version", "v1.5"}};
    Obd::InfoListViewDataModel* list = ui->app()->scantoolInformationViewModel()->listModel();
    EXPECT_EQ(rowsOf(list), expected);
    EXPECT_EQ(page->property("listModelCount").toInt(), 3);
    EXPECT_TRUE(ui->screenshot("information_scantool"));

    // Reopened, each row once.
    ui->back();
    open(NavigationModel::ScantoolInformationView);
    EXPECT_EQ(rowsOf(list), expected);
}

TEST_F(InformationViewTest, EcuScreenShowsTheFirstEcu)
{
    ASSERT_TRUE(connectToSim());
    Obd::EcuPtr first = ui->app()->connectionManager()->proxy()->getFirstEcu();
    ASSERT_TRUE(first);
    EXPECT_EQ(first->getId(), sim->profile().ecus.front().id);
    EXPECT_EQ(first->getId(), 0x7E8u);

    QObject* chooser = open(NavigationModel::InformationView);
    ASSERT_TRUE(ui->click(chooser, "ecuRow"));
    ui->settle();
    QObject* page = ui->currentPage();
    ASSERT_EQ(page->objectName(), "ecuInformationView");
    const Rows expected = {{"OBD Standard", QString::fromStdString(first->getObdStandardText())},
                           {"Protocol", QString::fromStdString(first->getProtocolName())},
                           {"Name", QString::fromStdString(first->getShortName())},
                           {"Description", QString::fromStdString(first->getLongName())}};
    Obd::InfoListViewDataModel* list = ui->app()->ecuInformationViewModel()->listModel();
    EXPECT_EQ(rowsOf(list), expected);
    EXPECT_FALSE(expected[1].second.isEmpty());
    EXPECT_EQ(page->property("listModelCount").toInt(), 4);
    EXPECT_TRUE(ui->screenshot("information_ecu"));

    sim->dropNow();
    ASSERT_TRUE(waitUntil([&] { return page->property("connectionStatus").toInt() == 0; }, READ_WAIT_MS));
    EXPECT_EQ(list->rowCount(), 0);
    EXPECT_EQ(page->property("listModelCount").toInt(), 0);
}

TEST_F(InformationViewTest, WithoutConnectionTheListsAreEmpty)
{
    QObject* chooser = open(NavigationModel::InformationView);
    EXPECT_EQ(chooser->property("connectionStatus").toInt(), 0);
    open(NavigationModel::ScantoolInformationView);
    EXPECT_EQ(ui->app()->scantoolInformationViewModel()->listModel()->rowCount(), 0);
    EXPECT_EQ(ui->currentPage()->property("listModelCount").toInt(), 0);
    ui->back();
    open(NavigationModel::EcuInformationView);
    EXPECT_EQ(ui->app()->ecuInformationViewModel()->listModel()->rowCount(), 0);
    EXPECT_TRUE(ui->screenshot("information_ecu_closed"));
}
