#include "dtclistviewdatamodel.h"
#include "infolistviewdatamodel.h"
#include "navigationmodel.h"
#include "simuitest.h"
#include "viewmodel/dashboardviewmodel.h"
#include "viewmodel/dtcsearchviewmodel.h"
#include "viewmodel/iviewmodel.h"
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

    struct Pages {
        std::unique_ptr<QObject> old;
        std::unique_ptr<QObject> current;
    };

    // Binds a page, then a second one while the first still exists.
    Pages bindOneOverAnother(Harmattan::IViewModel* viewModel, NavigationModel::View view)
    {
        Pages pages { createPage(view), createPage(view) };
        if (pages.old && pages.current) {
            viewModel->setView(pages.old.get());
            viewModel->setView(pages.current.get());
        }
        return pages;
    }

    // The same, then the first page goes; returns the second (null on failure).
    std::unique_ptr<QObject> replacePage(Harmattan::IViewModel* viewModel, NavigationModel::View view)
    {
        Pages pages = bindOneOverAnother(viewModel, view);
        if (!pages.old)
            return nullptr;
        pages.old.reset();
        spin(50);
        return std::move(pages.current);
    }
};

} // namespace

TEST_F(PageReplacementTest, ListsKeepTheirRowsWhenTheOldPageGoes)
{
    ASSERT_TRUE(connectToSim());

    Harmattan::ScantoolInformationViewModel* scantool = ui->app()->scantoolInformationViewModel();
    std::unique_ptr<QObject> newInfo = replacePage(scantool, NavigationModel::ScantoolInformationView);
    ASSERT_TRUE(newInfo);
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
    std::unique_ptr<QObject> newCodes = replacePage(stored, NavigationModel::StoredDtcView);
    ASSERT_TRUE(newCodes);
    EXPECT_EQ(stored->listModel()->rowCount(), codes);
    EXPECT_EQ(newCodes->property("listModelCount").toInt(), codes);

    Harmattan::DtcSearchViewModel* search = ui->app()->dtcSearchViewModel();
    std::unique_ptr<QObject> newSearch = replacePage(search, NavigationModel::DtcSearchView);
    ASSERT_TRUE(newSearch);
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
    Pages pages = bindOneOverAnother(dashboard, NavigationModel::DashboardView);
    ASSERT_TRUE(pages.old && pages.current);
    ASSERT_TRUE(waitUntil([&] { return dashboard->requestCount() > 0; }, READ_WAIT_MS));

    pages.old.reset();
    const int before = dashboard->requestCount();
    EXPECT_TRUE(waitUntil([&] { return dashboard->requestCount() >= before + 4; }, READ_WAIT_MS))
        << "polling stopped with the old page: " << dashboard->requestCount() - before
        << " requests since";
}
