#include "dtclistviewdatamodel.h"
#include "dtcreader.h"
#include "navigationmodel.h"
#include "uiharness.h"
#include "viewmodel/dtcbrowseviewmodel.h"
#include "viewmodel/dtcsearchviewmodel.h"
#include "zarvane.h"

#include <QMetaObject>
#include <QSortFilterProxyModel>

#include <gtest/gtest.h>

#include <functional>

using Harmattan::NavigationModel;

namespace {

using DatabaseViewTest = UiTest;

QStringList listedCodes(const QSortFilterProxyModel* model)
{
    QStringList codes;
    for (int i = 0; i < model->rowCount(); ++i)
        codes << model->index(i, 0).data(Obd::DtcListViewDataModel::CodeRole).toString();
    return codes;
}

// The database's codes that pass test, in the database's order.
QStringList databaseCodes(const std::function<bool(const std::string& code)>& test)
{
    QStringList codes;
    for (const std::string& code : Obd::DtcReader::instance().getAllCodes())
        if (test(code))
            codes << QString::fromStdString(code);
    return codes;
}

int databaseSize()
{
    return static_cast<int>(Obd::DtcReader::instance().size());
}

} // namespace

TEST_F(DatabaseViewTest, SearchListsTheCodesWhoseChosenFieldContainsTheText)
{
    // Fields: 0 code, 1 description, 2 category.
    struct Row { const char* name; int field; const char* text; };
    const Row rows[] = {
        { "code, in lower case", 0, "p0301" },
        { "code text against descriptions", 1, "p0301" },
        { "description", 1, "misfire" },
        { "category", 2, "NETWORK" },
        { "no text", 0, "" },
    };
    const Obd::DtcReader& reader = Obd::DtcReader::instance();
    QObject* page = ui->open(NavigationModel::DtcSearchView);
    QSortFilterProxyModel* proxy = ui->app()->dtcSearchViewModel()->filterModel();
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        ASSERT_TRUE(ui->tap(page, QByteArray("fieldButton").append('0' + row.field).constData()));
        page->findChild<QObject*>("searchField")->setProperty("text", row.text);
        ASSERT_TRUE(ui->settle());
        const QStringList expected = databaseCodes([&](const std::string& code) {
            const std::string value = row.field == 0   ? code
                                      : row.field == 1 ? reader.getDescription(code)
                                                       : reader.getCategory(code);
            return QString::fromStdString(value).contains(row.text, Qt::CaseInsensitive);
        });
        EXPECT_EQ(listedCodes(proxy), expected);
        EXPECT_EQ(page->findChild<QObject*>("codeList")->property("count").toInt(), expected.size());
        EXPECT_EQ(ui->text(page, "countText"),
                  QString("%1 of %2 codes").arg(expected.size()).arg(databaseSize()));
        ui->picture(QString("dtc_search_%1").arg(row.field));
    }

    // Reopened, every code is listed once.
    ui->back();
    ui->open(NavigationModel::DtcSearchView);
    EXPECT_EQ(ui->app()->dtcSearchViewModel()->listModel()->rowCount(), databaseSize());
}

TEST_F(DatabaseViewTest, BrowseListsTheCodesOfTheCategoriesToggledOn)
{
    // A category's codes: its letter and three decimal digits.
    auto ofCategories = [](const QString& letters) {
        return databaseCodes([&](const std::string& code) {
            const QString text = QString::fromStdString(code);
            return text.size() == 5 && letters.contains(text[0]) && text[1].isDigit() && text[2].isDigit()
                   && text[3].isDigit();
        });
    };
    struct Row { const char* name; std::vector<const char*> taps; const char* letters; };
    const Row rows[] = {
        { "all four", {}, "PBCU" },
        { "powertrain only", { "bodyToggle", "chassisToggle", "undefinedToggle" }, "P" },
        { "none", { "powertrainToggle" }, "" },
        { "body only", { "bodyToggle" }, "B" },
    };
    QObject* page = ui->open(NavigationModel::DtcBrowseView);
    QSortFilterProxyModel* proxy = ui->app()->dtcBrowseViewModel()->filterModel();
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        for (const char* toggle : row.taps)
            ASSERT_TRUE(ui->tap(page, toggle));
        ASSERT_TRUE(ui->settle());
        const QStringList expected = ofCategories(row.letters);
        EXPECT_EQ(listedCodes(proxy), expected);
        EXPECT_EQ(ui->text(page, "countText"), QString("%1 codes listed").arg(expected.size()));
        EXPECT_EQ(page->findChild<QObject*>("emptyText")->property("visible").toBool(), expected.isEmpty());
        ui->picture(QString("dtc_browse_") + (row.letters[0] ? row.letters : "none"));
    }

    // The choice survives closing the screen, and the new screen shows it.
    ui->back();
    page = ui->open(NavigationModel::DtcBrowseView);
    EXPECT_TRUE(page->property("bodyChecked").toBool());
    EXPECT_FALSE(page->property("powertrainChecked").toBool());
    EXPECT_EQ(ui->app()->dtcBrowseViewModel()->listModel()->rowCount(), databaseSize());
    EXPECT_EQ(listedCodes(proxy), ofCategories("B"));
}
