#include "connectionmanager.h"
#include "dtcdatamodel.h"
#include "dtclistviewdatamodel.h"
#include "dtcreader.h"
#include "navigationmodel.h"
#include "simuitest.h"
#include "viewmodel/dtcviewmodel.h"
#include "viewmodel/pendingdtcviewmodel.h"
#include "viewmodel/storeddtcviewmodel.h"
#include "zarvane.h"

#include <QMetaObject>
#include <QStringList>

#include <gtest/gtest.h>

#include <algorithm>

using Harmattan::NavigationModel;

namespace {

const char* const MIL_OFF = "qrc:///mil_off.png";
const char* const MIL_ON = "qrc:///mil_on.png";

class TroubleCodeViewTest : public SimUiTest
{
protected:
    // Every ECU's codes, the first ECU's first (the simulator lists the
    // ECUs in ascending id order, as discovery does).
    QStringList expected(bool stored) const
    {
        QStringList codes;
        for (const ElmSim::EcuProfile& ecu : sim->profile().ecus)
            for (const std::string& code : stored ? ecu.storedDtcs : ecu.pendingDtcs)
                codes << QString::fromStdString(code);
        return codes;
    }

    static QStringList codesOf(const Obd::DtcListViewDataModel* model)
    {
        QStringList codes;
        for (int i = 0; i < model->rowCount(); ++i)
            codes << model->get(i).value("code").toString();
        return codes;
    }

    // Opens the trouble-code screen and waits for both reads.
    QObject* openAndRead()
    {
        QObject* page = open(NavigationModel::DtcView);
        EXPECT_EQ(page->objectName(), "dtcView");
        EXPECT_TRUE(waitUntil([&] { return !page->property("busy").toBool()
                                           && page->property("storedDtcCount").toInt()
                                                  == expected(true).size()
                                           && page->property("pendingDtcCount").toInt()
                                                  == expected(false).size(); },
                              READ_WAIT_MS))
            << "stored " << page->property("storedDtcCount").toInt() << " pending "
            << page->property("pendingDtcCount").toInt();
        return page;
    }
};

} // namespace

TEST_F(TroubleCodeViewTest, ClosedLinkShowsLampOffAndZeroCountsAndSendsNothing)
{
    startSim(options());
    QObject* page = open(NavigationModel::DtcView);
    ASSERT_EQ(page->objectName(), "dtcView");
    spin(500);
    EXPECT_EQ(page->property("connectionStatus").toInt(), 0);
    EXPECT_EQ(page->property("engineImage").toString(), MIL_OFF);
    EXPECT_EQ(page->property("storedDtcCount").toInt(), 0);
    EXPECT_EQ(page->property("pendingDtcCount").toInt(), 0);
    EXPECT_FALSE(page->property("busy").toBool());
    EXPECT_EQ(sim->requestCount(), 0);
    EXPECT_TRUE(ui->screenshot("dtc_closed"));
}

TEST_F(TroubleCodeViewTest, ShowsEveryEcusStoredAndPendingCodesWithTheLampOn)
{
    ASSERT_TRUE(connectToSim());
    ASSERT_EQ(expected(true), QStringList({"P0133", "P0420"})) << "the can11 profile changed";
    QObject* page = openAndRead();
    EXPECT_EQ(page->property("connectionStatus").toInt(), 2);
    EXPECT_EQ(page->property("engineImage").toString(), MIL_ON);
    EXPECT_TRUE(ui->screenshot("dtc"));

    Obd::DtcDataModel* data = ui->app()->dtcDataModel();
    ASSERT_EQ(data->pendingCodes().size(), 2u);
    EXPECT_EQ(data->pendingCodes()[0].getCode(), "P0171") << "the first ECU's codes come first";
    EXPECT_EQ(data->pendingCodes()[1].getCode(), "P0715");

    ASSERT_TRUE(ui->click(page, "storedRow"));
    ui->settle();
    QObject* stored = ui->currentPage();
    ASSERT_EQ(stored->objectName(), "storedDtcView");
    Obd::DtcListViewDataModel* storedList = ui->app()->storedDtcViewModel()->listModel();
    EXPECT_EQ(codesOf(storedList), expected(true));
    EXPECT_EQ(stored->property("listModelCount").toInt(), expected(true).size());
    EXPECT_EQ(stored->property("connectionStatus").toInt(), 2);
    const QVariantMap first = storedList->get(0);
    EXPECT_EQ(first.value("description").toString().toStdString(),
              Obd::DtcReader::instance().getDescription("P0133"));
    EXPECT_EQ(first.value("system").toString(), "Powertrain");
    EXPECT_TRUE(ui->screenshot("dtc_stored"));

    ui->back();
    page = ui->currentPage();
    ASSERT_TRUE(ui->click(page, "pendingRow"));
    ui->settle();
    QObject* pending = ui->currentPage();
    ASSERT_EQ(pending->objectName(), "pendingDtcView");
    EXPECT_EQ(codesOf(ui->app()->pendingDtcViewModel()->listModel()), expected(false));
    EXPECT_TRUE(ui->screenshot("dtc_pending"));

    // Reopening the lists shows each code once.
    ui->back();
    open(NavigationModel::StoredDtcView);
    EXPECT_EQ(codesOf(storedList), expected(true));
    ui->back();
    open(NavigationModel::DtcView);
    open(NavigationModel::StoredDtcView);
    EXPECT_EQ(codesOf(storedList), expected(true));
}

TEST_F(TroubleCodeViewTest, ClearingAfterConfirmationEmptiesTheCodesAndReadsThemAgain)
{
    ASSERT_TRUE(connectToSim());
    QObject* page = openAndRead();
    ASSERT_EQ(page->property("engineImage").toString(), MIL_ON);

    ASSERT_TRUE(ui->click(page, "clearButton"));
    QObject* dialog = ui->dialog();
    ASSERT_TRUE(waitUntil([&] { return dialog->property("visible").toBool(); }, 2000));
    EXPECT_EQ(dialog->property("titleText").toString(), "Clear diagnostic info?");
    EXPECT_TRUE(dialog->property("message").toString().startsWith("Clearing the diagnostic info will:\n -reset"));
    EXPECT_EQ(dialog->property("acceptButtonText").toString(), "Clear Codes");
    EXPECT_EQ(dialog->property("rejectButtonText").toString(), "Cancel");
    EXPECT_TRUE(ui->screenshot("dtc_clear_confirmation"));

    const int before = sim->requestCount();
    QMetaObject::invokeMethod(dialog, "accept");
    ASSERT_TRUE(waitUntil([&] { return page->property("storedDtcCount").toInt() == 0
                                       && page->property("pendingDtcCount").toInt() == 0
                                       && !page->property("busy").toBool(); },
                          READ_WAIT_MS));
    EXPECT_EQ(page->property("engineImage").toString(), MIL_OFF);
    EXPECT_TRUE(ui->app()->dtcDataModel()->storedCodes().empty());
    EXPECT_TRUE(ui->app()->dtcDataModel()->pendingCodes().empty());

    // The clear request went out, then both lists were read again.
    std::vector<std::string> log = sim->requestLog();
    auto clear = std::find(log.begin(), log.end(), "04");
    ASSERT_NE(clear, log.end());
    EXPECT_NE(std::find(clear, log.end(), "03"), log.end());
    EXPECT_NE(std::find(clear, log.end(), "07"), log.end());
    EXPECT_GT(sim->requestCount(), before + 2);
    EXPECT_TRUE(ui->screenshot("dtc_cleared"));
}

TEST_F(TroubleCodeViewTest, CancellingTheConfirmationClearsNothing)
{
    ASSERT_TRUE(connectToSim());
    QObject* page = openAndRead();
    ASSERT_TRUE(ui->click(page, "clearButton"));
    QMetaObject::invokeMethod(ui->dialog(), "reject");
    spin(500);
    std::vector<std::string> log = sim->requestLog();
    EXPECT_EQ(std::find(log.begin(), log.end(), "04"), log.end());
    EXPECT_EQ(page->property("storedDtcCount").toInt(), 2);
}

TEST_F(TroubleCodeViewTest, LinkLossEmptiesTheCountsAndTheLists)
{
    ASSERT_TRUE(connectToSim());
    openAndRead();
    open(NavigationModel::StoredDtcView);
    QObject* stored = ui->currentPage();
    Obd::DtcListViewDataModel* storedList = ui->app()->storedDtcViewModel()->listModel();
    ASSERT_EQ(storedList->rowCount(), 2);

    sim->dropNow();
    ASSERT_TRUE(waitUntil([&] { return !ui->app()->connectionManager()->isConnected(); }, READ_WAIT_MS));
    ASSERT_TRUE(waitUntil([&] { return stored->property("connectionStatus").toInt() == 0; }, 5000));
    EXPECT_EQ(storedList->rowCount(), 0);
    EXPECT_EQ(stored->property("listModelCount").toInt(), 0);
    EXPECT_TRUE(ui->app()->dtcDataModel()->storedCodes().empty());
    EXPECT_TRUE(ui->app()->dtcDataModel()->pendingCodes().empty());

    ui->back();
    QObject* page = ui->currentPage();
    ASSERT_EQ(page->objectName(), "dtcView");
    EXPECT_EQ(page->property("connectionStatus").toInt(), 0);
    EXPECT_EQ(page->property("storedDtcCount").toInt(), 0);
    EXPECT_EQ(page->property("pendingDtcCount").toInt(), 0);
    EXPECT_EQ(page->property("engineImage").toString(), MIL_OFF);
}
