#include "connectionmanager.h"
#include "dtcdatamodel.h"
#include "dtclistviewdatamodel.h"
#include "dtcreader.h"
#include "navigationmodel.h"
#include "uiharness.h"
#include "viewmodel/pendingdtcviewmodel.h"
#include "viewmodel/storeddtcviewmodel.h"
#include "zarvane.h"

#include <gtest/gtest.h>

#include <algorithm>

using Harmattan::NavigationModel;

namespace {

const char* const MIL_OFF = "qrc:///mil_off.png";
const char* const MIL_ON = "qrc:///mil_on.png";

class TroubleCodeViewTest : public SimUiTest
{
protected:
    static QStringList codesOf(const Obd::DtcListViewDataModel* model)
    {
        QStringList codes;
        for (int i = 0; i < model->rowCount(); ++i)
            codes << model->get(i).value("code").toString();
        return codes;
    }

    // The lamp and the counts on the rows, as shown.
    void expectScreen(QObject* page, int stored, int pending, const char* lamp, const char* lampText)
    {
        EXPECT_EQ(page->property("engineImage").toString(), lamp);
        EXPECT_EQ(ui->text(page, "lampText"), lampText);
        EXPECT_EQ(badge(page, "storedRow"), QString::number(stored));
        EXPECT_EQ(badge(page, "pendingRow"), QString::number(pending));
    }
    static QString badge(QObject* page, const char* row)
    {
        return page->findChild<QObject*>(row)->property("badge").toString();
    }
};

} // namespace

TEST_F(TroubleCodeViewTest, ScreenReadsEveryEcusCodesOnConnectingAndListsThem)
{
    startSim();
    QObject* page = ui->open(NavigationModel::DtcView);
    expectScreen(page, 0, 0, MIL_OFF, "Not connected");
    EXPECT_FALSE(page->findChild<QObject*>("clearButton")->property("enabled").toBool());
    ui->picture("dtc_closed");

    // Connected while the screen is open: it reads both lists.
    ASSERT_TRUE(ui->app()->connectionManager()->openConnection());
    ASSERT_TRUE(codesShown(page)) << "stored " << page->property("storedDtcCount").toInt();
    expectScreen(page, simCodes(true).size(), simCodes(false).size(), MIL_ON, "Malfunction indicated");
    ui->picture("dtc");

    struct Row { const char *name, *row; Obd::DtcListViewDataModel* list; bool stored; };
    const Row rows[] = {
        { "confirmed codes", "storedRow", ui->app()->storedDtcViewModel()->listModel(), true },
        { "pending codes", "pendingRow", ui->app()->pendingDtcViewModel()->listModel(), false },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const QStringList codes = simCodes(row.stored);
        ASSERT_TRUE(ui->tap(page, row.row));
        ASSERT_TRUE(ui->settle());
        QObject* list = ui->currentPage();
        // The first ECU's codes first, each with its description, system and ECU.
        EXPECT_EQ(codesOf(row.list), codes);
        EXPECT_EQ(list->findChild<QObject*>("codeList")->property("count").toInt(), codes.size());
        const QString description
            = QString::fromStdString(Obd::DtcReader::instance().getDescription(codes[0].toStdString()));
        EXPECT_EQ(ui->rowTexts(list, "codeList", 0),
                  QStringList({codes[0], "Powertrain", description, "ECM 0x7E8"}));
        ui->picture(row.row);
        ui->back();
        // Reopened, each code once.
        ui->open(row.stored ? NavigationModel::StoredDtcView : NavigationModel::PendingDtcView);
        EXPECT_EQ(codesOf(row.list), codes);
        ui->back();
    }

    // The link goes under an open list: it empties and says so, and so does the screen below.
    QObject* stored = ui->open(NavigationModel::StoredDtcView);
    sim->dropNow();
    ASSERT_TRUE(waitUntil([&] { return stored->property("connectionStatus").toInt() == 0; }, READ_WAIT_MS));
    ASSERT_TRUE(ui->settle());
    EXPECT_EQ(rows[0].list->rowCount(), 0);
    EXPECT_EQ(ui->text(stored, "emptyText"), "Not connected");
    EXPECT_TRUE(stored->findChild<QObject*>("emptyText")->property("visible").toBool());
    ui->back();
    expectScreen(page, 0, 0, MIL_OFF, "Not connected");
}

TEST_F(TroubleCodeViewTest, ClearingAsksFirstAndOnlyAnAcceptedClearReachesTheVehicle)
{
    ASSERT_TRUE(connectToSim());
    QObject* page = ui->open(NavigationModel::DtcView);
    ASSERT_TRUE(codesShown(page));

    QObject* dialog = ui->dialog();
    for (const char* answer : { "rejectButton", "acceptButton" }) {
        SCOPED_TRACE(answer);
        ASSERT_TRUE(ui->tap(page, "clearButton"));
        ASSERT_TRUE(dialog->property("visible").toBool());
        EXPECT_EQ(dialog->property("titleText").toString(), "Clear diagnostic info?");
        EXPECT_TRUE(dialog->property("message").toString().startsWith("Clearing the diagnostic info will:"));
        EXPECT_EQ(ui->text(dialog, "acceptButton"), "Clear Codes");
        EXPECT_EQ(ui->text(dialog, "rejectButton"), "Cancel");
        ui->picture("dtc_clear_confirmation");
        ASSERT_TRUE(ui->tap(dialog, answer));
        EXPECT_FALSE(dialog->property("visible").toBool());
    }
    ASSERT_TRUE(codesShown(page, 0, 0));
    expectScreen(page, 0, 0, MIL_OFF, "No malfunction indicated");
    ui->picture("dtc_cleared");

    // One clear request (a cancelled one would have gone first), then both lists read again.
    const std::vector<std::string> log = sim->requestLog();
    EXPECT_EQ(std::count(log.begin(), log.end(), "04"), 1);
    auto clear = std::find(log.begin(), log.end(), "04");
    EXPECT_NE(std::find(clear, log.end(), "03"), log.end());
    EXPECT_NE(std::find(clear, log.end(), "07"), log.end());
}
