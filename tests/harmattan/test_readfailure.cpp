// Trouble codes the adapter would not give: the screens say why, naming the
// adapter's word and the ECUs, and never show a clean car.

#include "navigationmodel.h"
#include "uiharness.h"

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

INSTANTIATE_TEST_SUITE_P(AdapterWords, TroubleCodeReadFailure, ::testing::ValuesIn(ERROR_ROWS),
                         [](const ::testing::TestParamInfo<ErrorRow>& info) { return std::string(info.param.name); });
