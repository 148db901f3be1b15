#include "connectionmanager.h"
#include "dtcdatamodel.h"
#include "dtclistviewdatamodel.h"
#include "dtcreader.h"
#include "navigationmodel.h"
#include "uiharness.h"
#include "viewmodel/pendingdtcviewmodel.h"
#include "viewmodel/storeddtcviewmodel.h"
#include "settingsmodel.h"
#include "zarvane.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

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
    // Taps the code in its list and waits for its detail to finish reading.
    QObject* openDetail(QObject* codes, const char* listRow, bool stored, const QString& code)
    {
        if (!ui->tap(codes, listRow) || !ui->settle())
            return nullptr;
        QQuickItem* row = ui->row(ui->currentPage(), "codeList", simCodes(stored).indexOf(code));
        if (!ui->tap(row) || !ui->settle())
            return nullptr;
        QObject* page = ui->currentPage();
        auto done = [page] {
            const QVariantList frame = page->property("frame").toList();
            return !page->property("frameNote").toString().startsWith("Reading")
                   && std::none_of(frame.begin(), frame.end(),
                                   [](const QVariant& v) { return v.toMap().value("value") == "..."; });
        };
        return page->objectName() == "dtcDetailView" && waitUntil(done, READ_WAIT_MS) ? page : nullptr;
    }
    // The number a freeze-frame row shows for a PID, and whether it carries the unit.
    static double frameValue(QObject* page, int pid, const QString& unit)
    {
        for (const QVariant& row : page->property("frame").toList()) {
            const QString value = row.toMap().value("value").toString();
            if (row.toMap().value("pid").toInt() == pid && value.endsWith(" " + unit))
                return value.section(' ', 0, 0).toDouble();
        }
        return NAN;
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

TEST_F(TroubleCodeViewTest, ClearingAsksFirstAndSaysWhatTheCarDid)
{
    struct Row { const char *name, *profile; uint8_t refusal; const char* banner; };
    const Row rows[] = {
        { "accepted: cleared and read again", "can11", 0, "Codes cleared" },
        { "engine running (NRC 22)", "can11", 0x22, "Codes not cleared: the engine must be off (ECM 0x7E8, TCM 0x7E9)" },
        { "out of range (NRC 31) on kwp", "kwp", 0x31, "Codes not cleared: not supported (ECM 0x11, ECU#2 0x18)" },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        TearDown();
        ui.reset(new UiHarness());
        ElmSim::ServerOptions refusing = options(row.profile);
        refusing.refuseClear = row.refusal;
        ASSERT_TRUE(connectToSim(refusing));
        QObject* page = ui->open(NavigationModel::DtcView);
        ASSERT_TRUE(codesShown(page));
        const int stored = simCodes(true).size(), pending = simCodes(false).size();

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
        // The banner, then both lists read again after the one clear request
        // (a cancelled one would have gone first).
        ASSERT_TRUE(waitUntil([&] { return ui->banner()->property("text").toString() == row.banner; }, READ_WAIT_MS))
            << ui->banner()->property("text").toString().toStdString();
        const bool cleared = row.refusal == 0;
        ASSERT_TRUE(codesShown(page, cleared ? 0 : stored, cleared ? 0 : pending));
        expectScreen(page, cleared ? 0 : stored, cleared ? 0 : pending, cleared ? MIL_OFF : MIL_ON,
                     cleared ? "No malfunction indicated" : "Malfunction indicated");
        ui->picture(cleared ? "dtc_cleared" : "17a-clear-refused");
        const std::vector<std::string> log = sim->requestLog();
        EXPECT_EQ(std::count(log.begin(), log.end(), "04"), 1);
        auto clear = std::find(log.begin(), log.end(), "04");
        EXPECT_NE(std::find(clear, log.end(), "03"), log.end());
        EXPECT_NE(std::find(clear, log.end(), "07"), log.end());
    }
}

TEST_F(TroubleCodeViewTest, TappedCodeShowsItsEcuAndTheFreezeFrameThatEcuStored)
{
    struct Row { const char *name, *profile; bool stored; const char *code, *ecu, *note, *error; unsigned int ecuId; };
    const Row rows[] = {
        { "can11 engine: frame 0 of P0133", "can11", true, "P0420", "ECM 0x7E8", "Frame 0, stored by P0133", nullptr, 0x7E8 },
        { "kwp engine at 0x11: frame 0 of P0420", "kwp", true, "P0420", "ECM 0x11", "Frame 0, stored by P0420", nullptr, 0x11 },
        { "diesel engine: frame 0 of P2002", "diesel", true, "P2002", "ECM 0x7E8", "Frame 0, stored by P2002", nullptr, 0x7E8 },
        { "can11 gearbox keeps no frame", "can11", false, "P0715", "TCM 0x7E9", "No freeze frame stored", nullptr, 0x7E9 },
        { "frame unreadable: the adapter's word", "can11", true, "P0133", "ECM 0x7E8",
          "could not read: NO DATA (ECM 0x7E8)", "NO DATA", 0x7E8 },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        TearDown();
        clearSettingsStore();
        ui.reset(new UiHarness());
        ASSERT_TRUE(connectToSim(options(row.profile)));
        QObject* codes = ui->open(NavigationModel::DtcView);
        ASSERT_TRUE(codesShown(codes));
        if (row.error)
            sim->injectError(row.error, 1000);
        QObject* page = openDetail(codes, row.stored ? "storedRow" : "pendingRow", row.stored, row.code);
        ASSERT_TRUE(page);
        EXPECT_EQ(ui->text(page, "codeText"), row.code);
        EXPECT_EQ(ui->text(page, "categoryText"), "Powertrain");
        EXPECT_EQ(ui->text(page, "descriptionText"),
                  QString::fromStdString(Obd::DtcReader::instance().getDescription(row.code)));
        EXPECT_EQ(ui->text(page, "ecuText"), QString("Reported by ") + row.ecu);
        EXPECT_EQ(ui->text(page, "frameNote"), row.note);
        const ElmSim::EcuProfile* ecu = sim->profile().ecu(row.ecuId);
        const int frozen = row.error || !ecu->hasFreezeFrame ? 0 : static_cast<int>(ecu->freezeFrame.pids.size());
        EXPECT_EQ(page->property("frame").toList().size(), frozen);
        ui->picture(QString("17a-detail-%1-%2").arg(row.profile, row.code));
        if (!frozen)
            continue;
        // By hand from the frame's bytes: coolant A - 40 degrees, engine speed (256 A + B) / 4;
        // whole numbers shown for rpm and degrees Fahrenheit.
        const double coolant = std::lround(sim->profile().freezeFrameValue(row.ecuId, 0x05) + 40) - 40;
        EXPECT_NEAR(frameValue(page, 0x05, "°C"), coolant, 0.05);
        EXPECT_NEAR(frameValue(page, 0x0C, "RPM"), std::lround(sim->profile().freezeFrameValue(row.ecuId, 0x0C) * 4) / 4.0, 1);
        ui->app()->settingsModel()->setUnitSystem(1);
        EXPECT_NEAR(frameValue(page, 0x05, "°F"), coolant * 9 / 5 + 32, 1);

        // The link goes: the values stay, greyed, and the screen says so.
        sim->dropNow();
        ASSERT_TRUE(waitUntil([&] { return page->property("connectionStatus").toInt() == 0; }, READ_WAIT_MS));
        EXPECT_EQ(ui->text(page, "statusText"), "Not connected");
        EXPECT_EQ(page->property("frame").toList().size(), frozen);
        ui->picture(QString("17a-detail-%1-lost").arg(row.profile));
    }
}
