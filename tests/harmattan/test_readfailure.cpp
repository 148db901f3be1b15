// Trouble codes the adapter would not give: the screens say why, naming the
// adapter's word and the ECUs, and never show a clean car.

#include "navigationmodel.h"
#include "resultlistmodel.h"
#include "uiharness.h"
#include "viewmodel/readinessviewmodel.h"
#include "zarvane.h"

#include <gtest/gtest.h>

using Harmattan::NavigationModel;

namespace {

struct ErrorRow { const char* name; const char* word; };
void PrintTo(const ErrorRow& row, std::ostream* os) { *os << row.word; }

class TroubleCodeReadFailure : public SimUiTest, public ::testing::WithParamInterface<ErrorRow> {};

const ErrorRow ERROR_ROWS[] = {
    { "NoDataReportedAsItComes", "NO DATA" },
    { "CanErrorReportedAsItComes", "CAN ERROR" },
    { "BufferFullStillThereAfterTheRetry", "BUFFER FULL" },
};

} // namespace

TEST_P(TroubleCodeReadFailure, ErrorWordInsteadOfCodesIsShownAsCouldNotReadNeverAsNoCodes)
{
    ASSERT_TRUE(connectToSim());
    sim->injectError(GetParam().word, 1000);
    QObject* page = ui->open(NavigationModel::DtcView);
    ASSERT_TRUE(page);
    const QString cause = QString("%1 (ECM 0x7E8, TCM 0x7E9)").arg(GetParam().word);
    ASSERT_TRUE(waitUntil([&] { return !page->property("busy").toBool() && page->property("storedReadError") == cause
                                       && page->property("pendingReadError") == cause; }, READ_WAIT_MS))
        << page->property("storedReadError").toString().toStdString();
    EXPECT_EQ(ui->banner()->property("text").toString(), "Could not read the trouble codes: " + cause);
    EXPECT_EQ(ui->text(page, "lampText"), "Malfunction indicator unknown");
    EXPECT_EQ(page->findChild<QObject*>("storedRow")->property("subtitle").toString(), "could not read: " + cause);
    EXPECT_EQ(page->findChild<QObject*>("pendingRow")->property("badge").toString(), "?");

    QObject* list = ui->open(NavigationModel::StoredDtcView);
    ASSERT_TRUE(list && ui->settle());
    EXPECT_EQ(ui->text(list, "emptyText"), "could not read: " + cause);
    EXPECT_EQ(list->property("listModelCount").toInt(), 0);
}

// The readiness screen says the same, per ECU, instead of a lamp and monitors.
TEST_P(TroubleCodeReadFailure, ReadinessSaysWhyItCouldNotRead)
{
    ASSERT_TRUE(connectToSim());
    sim->injectError(GetParam().word, 1000);
    QObject* page = ui->open(NavigationModel::ReadinessView);
    const QString cause = QString("%1 (ECM 0x7E8, TCM 0x7E9)").arg(GetParam().word);
    ASSERT_TRUE(waitUntil([&] { return ui->text(page, "verdictText") == "Could not read the monitors: " + cause; },
                          READ_WAIT_MS)) << ui->text(page, "verdictText").toStdString();
    QStringList shown;
    for (const Harmattan::ResultListModel::Row& row : ui->app()->readinessViewModel()->listModel()->rows())
        shown << row.section + " " + row.title + ": " + row.value;
    EXPECT_TRUE(shown.contains(QString("ECM (0x7E8) Monitors: could not read: %1 (ECM 0x7E8)").arg(GetParam().word)))
        << shown.join(" | ").toStdString();
    EXPECT_FALSE(shown.join(" ").contains("Malfunction indicator lamp")) << "no lamp state guessed";
    ui->picture(QString("19d-readiness-%1").arg(GetParam().name));
}

INSTANTIATE_TEST_SUITE_P(AdapterWords, TroubleCodeReadFailure, ::testing::ValuesIn(ERROR_ROWS),
                         [](const ::testing::TestParamInfo<ErrorRow>& info) { return std::string(info.param.name); });
