#include "connectionmanager.h"
#include "dtclistviewdatamodel.h"
#include "iobdproxy.h"
#include "navigationmodel.h"
#include "resultlistmodel.h"
#include "uiharness.h"
#include "viewmodel/pendingdtcviewmodel.h"
#include "viewmodel/readinessviewmodel.h"
#include "zarvane.h"

#include <gtest/gtest.h>

using Harmattan::ResultListModel;

namespace {

struct Vehicle
{
    const char* name;
    const char* profile;
    unsigned int engine;
    const char* verdict;       // worked out from the profile's readiness bytes
    const char* cycleNotYet;   // the same for PID 41
};

const QString CYCLE = QString::fromUtf8(" \u00b7 this drive cycle");

class ReadinessRows : public SimUiTest
{
protected:
    ResultListModel* model() const { return ui->app()->readinessViewModel()->listModel(); }
    // The rows of a section of the ECU with that address.
    QVector<ResultListModel::Row> rows(unsigned int ecu, const QString& section = QString()) const
    {
        const QString end = QStringLiteral("(0x%1)").arg(QString::number(ecu, 16).toUpper()) + section;
        QVector<ResultListModel::Row> found;
        for (const ResultListModel::Row& row : model()->rows())
            if (row.section.endsWith(end))
                found << row;
        return found;
    }
    // The value of a row; empty when missing.
    QString value(unsigned int ecu, const QString& title, const QString& section = QString()) const
    {
        for (const ResultListModel::Row& row : rows(ecu, section))
            if (row.title == title)
                return row.value;
        return QString();
    }
};

class ReadinessViewTest : public ReadinessRows, public ::testing::WithParamInterface<Vehicle> {};

void PrintTo(const Vehicle& vehicle, std::ostream* os)
{
    *os << vehicle.name;
}

} // namespace

TEST_P(ReadinessViewTest, ShowsEachEcusMonitorsCountersAndTheVerdict)
{
    const Vehicle vehicle = GetParam();
    ASSERT_TRUE(connectToSim(options(vehicle.profile)));
    ASSERT_TRUE(ui->tap(ui->mainView(), "readinessButton"));
    ASSERT_TRUE(ui->settle());
    QObject* page = ui->currentPage();
    ASSERT_EQ(page->objectName(), "readinessView");
    ASSERT_TRUE(waitUntil([&] { return ui->text(page, "verdictText") == vehicle.verdict; }, READ_WAIT_MS))
        << ui->text(page, "verdictText").toStdString();

    const ElmSim::EcuProfile& engine = *sim->profile().ecu(vehicle.engine);
    EXPECT_EQ(value(vehicle.engine, "Malfunction indicator lamp"), engine.milOn() ? "On" : "Off");
    EXPECT_EQ(value(vehicle.engine, "Confirmed trouble codes"), QString::number(engine.storedDtcs.size()));
    EXPECT_EQ(value(vehicle.engine, "Misfire"), "Complete");
    EXPECT_EQ(value(vehicle.engine, "Heated Catalyst"), engine.compressionIgnition ? "" : "Not supported");
    for (const ElmSim::EcuProfile& ecu : sim->profile().ecus) {
        SCOPED_TRACE(ecu.name);
        // Three continuous monitors and seven spark- or six compression-ignition ones.
        int monitors = 0;
        for (const ResultListModel::Row& row : rows(ecu.id))
            monitors += row.state != ResultListModel::Reading;
        EXPECT_EQ(monitors, ecu.supportsPid(1, 0x01) ? (ecu.compressionIgnition ? 9 : 10) + (ecu.milOn() ? 1 : 0) : 0);
        // Below them, with PID 41, every monitor enabled this drive cycle.
        const int enabled = ecu.supportsPid(1, 0x41) ? __builtin_popcount(ecu.readiness.continuousSupported)
                                                         + __builtin_popcount(ecu.readiness.nonContinuousSupported) : 0;
        EXPECT_TRUE(waitUntil([&] { return rows(ecu.id, CYCLE).size() == enabled; }, READ_WAIT_MS));
    }
    QStringList notYet;
    for (const ResultListModel::Row& row : rows(vehicle.engine, CYCLE))
        if (row.state == ResultListModel::Failed)
            notYet << row.title;
    EXPECT_EQ(notYet.join(", "), QString(vehicle.cycleNotYet));
    ASSERT_TRUE(waitUntil([&] { return !value(vehicle.engine, "Distance traveled since DTCs cleared").isEmpty(); },
                          READ_WAIT_MS));
    EXPECT_EQ(value(vehicle.engine, "Distance traveled since DTCs cleared"),
              QStringLiteral("%1 km").arg(engine.distanceSinceClearKm));
    ui->picture(QString("readiness_%1").arg(vehicle.profile));
    QMetaObject::invokeMethod(page->findChild<QObject*>("readinessList"), "positionViewAtEnd");
    ui->picture(QString("readiness_%1_end").arg(vehicle.profile));

    sim->dropNow();
    ASSERT_TRUE(waitUntil([&] { return page->property("connectionStatus").toInt() == 0; }, READ_WAIT_MS));
    EXPECT_EQ(ui->text(page, "verdictText"), "Not connected");
    EXPECT_GT(model()->rowCount(), 0);
    ui->picture(QString("readiness_%1_lost").arg(vehicle.profile));
}

TEST_P(ReadinessViewTest, EachPendingCodeNamesTheEcuThatReportedIt)
{
    ASSERT_TRUE(connectToSim(options(GetParam().profile)));
    QObject* page = ui->open(Harmattan::NavigationModel::DtcView);
    ASSERT_TRUE(codesShown(page));
    ASSERT_TRUE(ui->tap(page, "pendingRow"));
    ASSERT_TRUE(ui->settle());
    QStringList expected;
    for (const ElmSim::EcuProfile& ecu : sim->profile().ecus)
        for (const std::string& code : ecu.pendingDtcs)
            expected << QStringLiteral("%1 %2 (0x%3)").arg(QString::fromStdString(code),
                QString::fromStdString(ui->app()->connectionManager()->proxy()->getEcu(ecu.id)->getShortName()),
                QString::number(ecu.id, 16).toUpper());
    QStringList shown;
    const Obd::DtcListViewDataModel* list = ui->app()->pendingDtcViewModel()->listModel();
    for (int i = 0; i < list->rowCount(); ++i) {
        const QVariantMap row = list->get(i);
        shown << QStringLiteral("%1 %2 (%3)").arg(row["code"].toString(), row["ecu"].toString(), row["ecuAddress"].toString());
    }
    EXPECT_EQ(shown, expected);
}

INSTANTIATE_TEST_SUITE_P(Buses, ReadinessViewTest,
                         ::testing::Values(Vehicle{ "can11", "can11", 0x7E8, "Not ready yet: Evaporative System (ECM)", "" },
                                           Vehicle{ "kwp", "kwp", 0x11, "Not ready yet: Catalyst (ECM)", "" },
                                           Vehicle{ "diesel", "diesel", 0x7E8, "Not ready yet: PM filter (ECM)",
                                                    "Boost Pressure, PM filter" }),
                         [](const ::testing::TestParamInfo<Vehicle>& info) { return std::string(info.param.name); });
