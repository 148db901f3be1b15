#include "connectionmanager.h"
#include "iobdproxy.h"
#include "livedatalistmodel.h"
#include "navigationmodel.h"
#include "sensor.h"
#include "uiharness.h"
#include "viewmodel/livedataviewmodel.h"
#include "zarvane.h"

#include <gtest/gtest.h>

#include <QQuickItem>

#include <cmath>

using Harmattan::LiveDataListModel;

namespace {

struct Vehicle
{
    const char* name;
    const char* profile;
    unsigned int engine;
};

class LiveDataViewTest : public SimUiTest, public ::testing::WithParamInterface<Vehicle>
{
protected:
    LiveDataListModel* model() const { return ui->app()->liveDataViewModel()->listModel(); }
    // The row of a PID of an ECU; -1 when the list has none.
    int rowOf(unsigned int ecu, unsigned char pid) const
    {
        for (int row = 0; row < model()->rowCount(); ++row)
            if (model()->sensor(row)->getEcuId() == ecu && model()->sensor(row)->getPid() == pid)
                return row;
        return -1;
    }
    double shown(int row) const
    {
        return model()->index(row).data(LiveDataListModel::ValueRole).toString().toDouble();
    }
    bool shows(int row, double expected) const
    {
        return std::fabs(shown(row) - expected) <= 0.01 * std::fabs(expected) + 0.5;
    }
};

void PrintTo(const Vehicle& vehicle, std::ostream* os)
{
    *os << vehicle.name;
}

} // namespace

TEST_P(LiveDataViewTest, ListsEverySupportedPidAndReadsTheShownRowsInTheChosenUnits)
{
    const Vehicle vehicle = GetParam();
    ASSERT_TRUE(connectToSim(options(vehicle.profile)));
    ASSERT_TRUE(ui->tap(ui->mainView(), "liveDataButton"));
    ASSERT_TRUE(ui->settle());
    QObject* page = ui->currentPage();
    ASSERT_EQ(page->objectName(), "liveDataView");

    int supported = 0;
    for (const ElmSim::EcuProfile& ecu : sim->profile().ecus)
        supported += int(ecu.pids01.size());
    ASSERT_TRUE(waitUntil([&] { return model()->rowCount() == supported; }, READ_WAIT_MS))
        << model()->rowCount() << " rows for " << supported << " PIDs";
    ASSERT_TRUE(ui->settle());
    EXPECT_EQ(page->findChild<QObject*>("liveDataList")->property("count").toInt(), supported);
    // The list is longer than the screen: the rows below it are not read.
    EXPECT_GT(model()->polledCount(), 0);
    EXPECT_LT(model()->polledCount(), supported);
    EXPECT_FALSE(model()->index(supported - 1).data(LiveDataListModel::PolledRole).toBool());

    const int rpm = rowOf(vehicle.engine, 0x0C);
    const int coolant = rowOf(vehicle.engine, 0x05);
    ASSERT_GE(rpm, 0);
    ASSERT_GE(coolant, 0);
    const double rpmValue = sim->profile().physicalValue(vehicle.engine, 0x0C, 0);
    const double celsius = sim->profile().physicalValue(vehicle.engine, 0x05, 0);
    EXPECT_EQ(model()->index(rpm).data(LiveDataListModel::EcuRole).toString(),
              QString::fromStdString(ui->app()->connectionManager()->proxy()->getEcu(vehicle.engine)->getShortName()));
    EXPECT_TRUE(waitUntil([&] { return shows(rpm, rpmValue) && shows(coolant, celsius); }, READ_WAIT_MS))
        << shown(rpm) << " rpm, " << shown(coolant) << " coolant";
    EXPECT_EQ(model()->index(coolant).data(LiveDataListModel::UnitRole).toString(), "°C");
    ui->picture(QString("livedata_%1").arg(vehicle.profile));

    // A tapped row is drawn over time with its lowest, highest and latest value.
    ASSERT_TRUE(ui->tap(ui->row(page, "liveDataList", rpm)));
    QObject* chart = page->findChild<QObject*>("valueChart");
    ASSERT_TRUE(waitUntil([&] { return chart->property("sampleCount").toInt() >= 3; }, READ_WAIT_MS))
        << model()->polledCount() << " rows read";
    EXPECT_EQ(ui->text(page, "chartTitle"), model()->index(rpm).data(LiveDataListModel::NameRole).toString());
    for (const char* figure : { "minimum", "maximum", "current" })
        EXPECT_NEAR(chart->property(figure).toDouble(), rpmValue, 0.01 * rpmValue + 0.5) << figure;
    ui->picture(QString("livedata_%1_chart").arg(vehicle.profile));

    ASSERT_TRUE(ui->tap(page, "unitButton"));
    EXPECT_EQ(model()->index(coolant).data(LiveDataListModel::UnitRole).toString(), "°F");
    EXPECT_TRUE(shows(coolant, celsius * 9 / 5 + 32)) << shown(coolant);

    // The link goes: the rows stay, greyed, nothing is read, and the screen says so.
    sim->dropNow();
    ASSERT_TRUE(waitUntil([&] { return page->property("connectionStatus").toInt() == 0; }, READ_WAIT_MS));
    EXPECT_EQ(ui->text(page, "statusText"), "Not connected");
    EXPECT_EQ(model()->rowCount(), supported);
    EXPECT_EQ(model()->polledCount(), 0);
    EXPECT_TRUE(chart->property("stale").toBool());
    ui->picture(QString("livedata_%1_lost").arg(vehicle.profile));
}

INSTANTIATE_TEST_SUITE_P(Buses, LiveDataViewTest,
                         ::testing::Values(Vehicle{ "can11", "can11", 0x7E8 }, Vehicle{ "kwp", "kwp", 0x11 }),
                         [](const ::testing::TestParamInfo<Vehicle>& info) { return std::string(info.param.name); });
