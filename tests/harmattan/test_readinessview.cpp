#include "connectionmanager.h"
#include "dtclistviewdatamodel.h"
#include "iobdproxy.h"
#include "navigationmodel.h"
#include "readinesslistmodel.h"
#include "uiharness.h"
#include "viewmodel/pendingdtcviewmodel.h"
#include "viewmodel/readinessviewmodel.h"
#include "zarvane.h"

#include <gtest/gtest.h>

using Harmattan::ReadinessListModel;

namespace {

struct Vehicle
{
    const char* name;
    const char* profile;
    unsigned int engine;
    const char* verdict;       // worked out from the profile's readiness bytes
};

class ReadinessViewTest : public SimUiTest, public ::testing::WithParamInterface<Vehicle>
{
protected:
    ReadinessListModel* model() const { return ui->app()->readinessViewModel()->listModel(); }
    // The value of a row of the ECU with that address; empty when missing.
    QString value(unsigned int ecu, const QString& title) const
    {
        const QString address = QStringLiteral("(0x%1)").arg(QString::number(ecu, 16).toUpper());
        for (const ReadinessListModel::Row& row : model()->rows())
            if (row.ecu.endsWith(address) && row.title == title)
                return row.value;
        return QString();
    }
};

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
    EXPECT_EQ(value(vehicle.engine, "Heated Catalyst"), "Not supported");
    for (const ElmSim::EcuProfile& ecu : sim->profile().ecus) {
        SCOPED_TRACE(ecu.name);
        // Three continuous and seven spark-ignition monitors.
        int monitors = 0;
        for (const ReadinessListModel::Row& row : model()->rows())
            monitors += row.ecu.endsWith(QStringLiteral("(0x%1)").arg(QString::number(ecu.id, 16).toUpper())) && row.state != ReadinessListModel::Reading;
        EXPECT_EQ(monitors, ecu.supportsPid(1, 0x01) ? 10 + (ecu.milOn() ? 1 : 0) : 0);
    }
    ASSERT_TRUE(waitUntil([&] { return !value(vehicle.engine, "Distance traveled since DTCs cleared").isEmpty(); },
                          READ_WAIT_MS));
    EXPECT_EQ(value(vehicle.engine, "Distance traveled since DTCs cleared"),
              QStringLiteral("%1 km").arg(engine.distanceSinceClearKm));
    ui->picture(QString("readiness_%1").arg(vehicle.profile));

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
                         ::testing::Values(Vehicle{ "can11", "can11", 0x7E8, "Not ready yet: Evaporative System (ECM)" },
                                           Vehicle{ "kwp", "kwp", 0x11, "Not ready yet: Catalyst (ECM)" }),
                         [](const ::testing::TestParamInfo<Vehicle>& info) { return std::string(info.param.name); });
