#include "dtclistviewdatamodel.h"
#include "dtcreader.h"
#include "infolistviewdatamodel.h"
#include "navigationmodel.h"
#include "uiharness.h"
#include "viewmodel/dashboardviewmodel.h"
#include "viewmodel/dtcsearchviewmodel.h"
#include "viewmodel/iviewmodel.h"
#include "viewmodel/scantoolinformationviewmodel.h"
#include "viewmodel/storeddtcviewmodel.h"
#include "zarvane.h"

#include <QAbstractItemModel>
#include <QQmlComponent>
#include <QQmlContext>
#include <QQmlEngine>
#include <QUrl>

#include <gtest/gtest.h>

#include <functional>
#include <memory>

using Harmattan::NavigationModel;

namespace {

// A page the user closes is deleted later, so the page that replaces it can
// be bound first. The old page's going must leave the new page's data, and
// the view model's work for it, alone.
class PageReplacementTest : public SimUiTest
{
protected:
    // Binds a real page of the screen's document, kept out of the page stack
    // so the test decides when it goes, then a second one while the first
    // still exists, then the first goes; returns the second (null on failure).
    std::unique_ptr<QObject> replacePage(Harmattan::IViewModel* viewModel, NavigationModel::View view)
    {
        QQmlComponent component(ui->view().engine(), QUrl("qrc:/qml/" + NavigationModel::document(view)));
        std::unique_ptr<QObject> old(component.create(ui->view().rootContext()));
        std::unique_ptr<QObject> current(component.create(ui->view().rootContext()));
        if (!old || !current)
            return nullptr;
        viewModel->setView(old.get());
        viewModel->setView(current.get());
        old.reset();
        deliverPosted();
        return current;
    }
};

} // namespace

TEST_F(PageReplacementTest, TheNewPageKeepsItsDataAndWorkAndFollowsTheLink)
{
    ASSERT_TRUE(connectToSim());
    ASSERT_TRUE(codesShown(ui->open(NavigationModel::DtcView)));
    Harmattan::Zarvane* app = ui->app();
    auto listed = [](QAbstractItemModel* list, int n) {
        return [=](QObject* page) { return list->rowCount() == n && page->property("listModelCount") == n; };
    };
    struct Row
    {
        const char* name;
        Harmattan::IViewModel* viewModel;
        NavigationModel::View view;
        std::function<bool(QObject* page)> kept;
        bool followsTheLink;
    };
    const Row rows[] = {
        { "scantool information", app->scantoolInformationViewModel(), NavigationModel::ScantoolInformationView,
          listed(app->scantoolInformationViewModel()->listModel(), 3), true },
        { "confirmed codes", app->storedDtcViewModel(), NavigationModel::StoredDtcView,
          listed(app->storedDtcViewModel()->listModel(), simCodes(true).size()), true },
        { "database search", app->dtcSearchViewModel(), NavigationModel::DtcSearchView,
          listed(app->dtcSearchViewModel()->listModel(), Obd::DtcReader::instance().size()), false },
        { "dashboard polling", app->dashboardViewModel(), NavigationModel::DashboardView,
          [&](QObject*) { return waitUntil([&] { return app->dashboardViewModel()->requestCount() >= 4; },
                                           READ_WAIT_MS); }, true },
    };
    std::vector<std::unique_ptr<QObject>> pages;
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        pages.push_back(replacePage(row.viewModel, row.view));
        ASSERT_TRUE(pages.back());
        EXPECT_TRUE(row.kept(pages.back().get()));
    }
    sim->dropNow();
    for (size_t i = 0; i < pages.size(); ++i) {
        SCOPED_TRACE(rows[i].name);
        EXPECT_TRUE(!rows[i].followsTheLink
                    || waitUntil([&] { return pages[i]->property("connectionStatus") == 0; }, READ_WAIT_MS));
    }
}
