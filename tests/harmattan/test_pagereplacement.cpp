#include "dtclistviewdatamodel.h"
#include "infolistviewdatamodel.h"
#include "navigationmodel.h"
#include "simuitest.h"
#include "viewmodel/dashboardviewmodel.h"
#include "viewmodel/dtcsearchviewmodel.h"
#include "viewmodel/scantoolinformationviewmodel.h"
#include "viewmodel/storeddtcviewmodel.h"
#include "zarvane.h"

#include <QQmlComponent>
#include <QQmlContext>
#include <QQmlEngine>
#include <QUrl>

#include <gtest/gtest.h>

#include <memory>

using Harmattan::NavigationModel;

namespace {

// A page the user closes is deleted later, so the page that replaces it can
// be bound first. The old page's going must leave the new page's data, and
// the view model's work for it, alone.
class PageReplacementTest : public SimUiTest
{
protected:
    // A real page of the screen's document, kept out of the page stack so
    // the test decides when it goes.
    std::unique_ptr<QObject> createPage(NavigationModel::View view)
    {
        QQmlComponent component(ui->view().engine(),
                                QUrl("qrc:/qml/" + NavigationModel::document(view)));
        std::unique_ptr<QObject> page(component.create(ui->view().rootContext()));
        EXPECT_TRUE(page) << component.errorString().toStdString();
        return page;
    }
};

} // namespace

TEST_F(PageReplacementTest, ListsKeepTheirRowsWhenTheOldPageGoes)
{
    ASSERT_TRUE(connectToSim());

    Harmattan::ScantoolInformationViewModel* scantool = ui->app()->scantoolInformationViewModel();
    std::unique_ptr<QObject> oldInfo = createPage(NavigationModel::ScantoolInformationView);
    std::unique_ptr<QObject> newInfo = createPage(NavigationModel::ScantoolInformationView);
    ASSERT_TRUE(oldInfo && newInfo);
    scantool->setView(oldInfo.get());
    scantool->setView(newInfo.get());
    oldInfo.reset();
    spin(50);
    EXPECT_EQ(scantool->listModel()->rowCount(), 3);
    EXPECT_EQ(newInfo->property("listModelCount").toInt(), 3);

    int codes = 0;
    for (const ElmSim::EcuProfile& ecu : sim->profile().ecus)
        codes += int(ecu.storedDtcs.size());
    ASSERT_GT(codes, 0) << "the can11 profile has no stored codes";
    QObject* dtcPage = open(NavigationModel::DtcView);
    ASSERT_TRUE(waitUntil([&] { return !dtcPage->property("busy").toBool()
                                       && dtcPage->property("storedDtcCount").toInt() == codes; },
                          READ_WAIT_MS));
    Harmattan::StoredDtcViewModel* stored = ui->app()->storedDtcViewModel();
    std::unique_ptr<QObject> oldCodes = createPage(NavigationModel::StoredDtcView);
    std::unique_ptr<QObject> newCodes = createPage(NavigationModel::StoredDtcView);
    ASSERT_TRUE(oldCodes && newCodes);
    stored->setView(oldCodes.get());
    stored->setView(newCodes.get());
    oldCodes.reset();
    spin(50);
    EXPECT_EQ(stored->listModel()->rowCount(), codes);
    EXPECT_EQ(newCodes->property("listModelCount").toInt(), codes);

    Harmattan::DtcSearchViewModel* search = ui->app()->dtcSearchViewModel();
    std::unique_ptr<QObject> oldSearch = createPage(NavigationModel::DtcSearchView);
    std::unique_ptr<QObject> newSearch = createPage(NavigationModel::DtcSearchView);
    ASSERT_TRUE(oldSearch && newSearch);
    search->setView(oldSearch.get());
    search->setView(newSearch.get());
    oldSearch.reset();
    spin(50);
    EXPECT_EQ(search->listModel()->rowCount(), 4277);

    // The new pages still follow the link.
    sim->dropNow();
    EXPECT_TRUE(waitUntil([&] { return newInfo->property("connectionStatus").toInt() == 0; },
                          READ_WAIT_MS));
    EXPECT_EQ(newInfo->property("listModelCount").toInt(), 0);
    EXPECT_EQ(newCodes->property("connectionStatus").toInt(), 0);
}

TEST_F(PageReplacementTest, DashboardKeepsPollingWhenTheOldPageGoes)
{
    ASSERT_TRUE(connectToSim());
    Harmattan::DashboardViewModel* dashboard = ui->app()->dashboardViewModel();
    std::unique_ptr<QObject> oldPage = createPage(NavigationModel::DashboardView);
    std::unique_ptr<QObject> newPage = createPage(NavigationModel::DashboardView);
    ASSERT_TRUE(oldPage && newPage);
    dashboard->setView(oldPage.get());
    dashboard->setView(newPage.get());
    ASSERT_TRUE(waitUntil([&] { return dashboard->requestCount() > 0; }, READ_WAIT_MS));

    oldPage.reset();
    const int before = dashboard->requestCount();
    EXPECT_TRUE(waitUntil([&] { return dashboard->requestCount() >= before + 4; }, READ_WAIT_MS))
        << "polling stopped with the old page: " << dashboard->requestCount() - before
        << " requests since";
}
