#include "connectionmanager.h"
#include "metergauge.h"
#include "navigationmodel.h"
#include "simuitest.h"
#include "viewmodel/dashboardviewmodel.h"
#include "zarvane.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>

using Harmattan::MeterGauge;
using Harmattan::NavigationModel;

namespace {

using DashboardTest = SimUiTest;

MeterGauge* meter(QObject* page, const char* name)
{
    return page ? page->findChild<MeterGauge*>(name) : nullptr;
}

// Pushes the dashboard and returns its page as soon as the gauges exist,
// before the screen settles: a loaded machine can run most of the start-up
// sweep by then, so tests watch the needles from here.
QObject* pushDashboard(UiHarness& ui)
{
    ui.app()->navigationModel()->activateView(NavigationModel::DashboardView);
    QObject* page = nullptr;
    waitUntil([&] { page = ui.currentPage();
                    return meter(page, "rpmGauge") && meter(page, "speedGauge"); }, 5000);
    return page;
}

} // namespace

TEST_F(DashboardTest, ClosedLinkSweepsTheNeedlesAndPollsNothing)
{
    startSim(options());
    // Every value the needles pass through, so a loaded machine cannot miss
    // the frame the sweep spends at the top.
    QObject* pushed = pushDashboard(*ui);
    MeterGauge* rpm = meter(pushed, "rpmGauge");
    MeterGauge* speed = meter(pushed, "speedGauge");
    ASSERT_TRUE(rpm && speed);
    double rpmTop = rpm->value();
    double speedTop = speed->value();
    QObject::connect(rpm, &MeterGauge::valueChanged, [&] { rpmTop = std::max(rpmTop, rpm->value()); });
    QObject::connect(speed, &MeterGauge::valueChanged, [&] { speedTop = std::max(speedTop, speed->value()); });
    ui->settle();
    QObject* page = ui->currentPage();
    ASSERT_EQ(page->objectName(), "dashboardView");
    EXPECT_EQ(rpm->maximum(), 8000);
    EXPECT_EQ(speed->maximum(), 240);
    ASSERT_TRUE(waitUntil([&] { return rpmTop >= 8000 - 0.5 && speedTop >= 239.5; }, 5000))
        << "the sweep reaches the maximum: " << rpmTop << ", " << speedTop;
    ASSERT_TRUE(waitUntil([&] { return rpm->value() == 0.0 && speed->value() == 0.0
                                       && !rpm->isAnimating(); }, 5000))
        << "and returns to 0";
    spin(1500);
    EXPECT_EQ(ui->app()->dashboardViewModel()->requestCount(), 0);
    EXPECT_FALSE(ui->app()->dashboardViewModel()->isRefreshing());
    EXPECT_EQ(sim->requestCount(), 0);
    EXPECT_EQ(page->property("connectionStatus").toInt(), 0);
}

TEST_F(DashboardTest, NeedlesReachTheSimulatorsEngineAndVehicleSpeed)
{
    ASSERT_TRUE(connectToSim(options("can11", true)));
    const double engineRpm = sim->profile().physicalValue(0x7E8, 0x0C, 0.0);
    const double vehicleSpeed = sim->profile().physicalValue(0x7E8, 0x0D, 0.0);
    ASSERT_GT(engineRpm, 300.0);

    QObject* page = open(NavigationModel::DashboardView);
    MeterGauge* rpm = meter(page, "rpmGauge");
    MeterGauge* speed = meter(page, "speedGauge");
    ASSERT_NE(rpm, nullptr);
    ASSERT_NE(speed, nullptr);
    EXPECT_EQ(page->property("connectionStatus").toInt(), 2);

    // The needles settle on the readings (rpm in quarter steps, km/h whole).
    ASSERT_TRUE(waitUntil([&] { return std::fabs(rpm->value() - engineRpm) <= 0.5
                                       && std::fabs(speed->value() - vehicleSpeed) <= 1.0
                                       && !rpm->isAnimating(); }, 10000))
        << "rpm " << rpm->value() << " of " << engineRpm << ", speed " << speed->value() << " of "
        << vehicleSpeed;
    EXPECT_TRUE(ui->app()->dashboardViewModel()->isRefreshing());
    QObject* readout = page->findChild<QObject*>("rpmReadout");
    ASSERT_NE(readout, nullptr);
    EXPECT_NEAR(readout->property("value").toDouble(), engineRpm, 0.5);
    EXPECT_EQ(page->findChild<QObject*>("rpmText")->property("text").toString(),
              QString::number(std::lround(engineRpm)));

    // Polling goes on four times a second and stops with the screen.
    const int before = ui->app()->dashboardViewModel()->requestCount();
    spin(1200);
    EXPECT_GE(ui->app()->dashboardViewModel()->requestCount(), before + 4);
    EXPECT_TRUE(ui->screenshot("dashboard"));
    ui->back();
    EXPECT_TRUE(waitUntil([&] { return !ui->app()->dashboardViewModel()->isRefreshing(); }, 5000));
}

TEST_F(DashboardTest, RasterisesOnlyWhenTheSizeChanges)
{
    MeterGauge* rpm = meter(pushDashboard(*ui), "rpmGauge");
    ASSERT_NE(rpm, nullptr);
    double top = rpm->value();
    int rasters = -1;
    int movesAfterRaster = 0;
    QObject::connect(rpm, &MeterGauge::valueChanged, [&] {
        top = std::max(top, rpm->value());
        if (rpm->rasterCount() > 0 && rasters < 0)
            rasters = rpm->rasterCount();
        if (rasters > 0)
            ++movesAfterRaster;
    });
    ui->settle();
    ASSERT_TRUE(waitUntil([&] { return top > 1000 && rpm->value() == 0.0 && !rpm->isAnimating(); },
                          5000)) << "the sweep goes up and back: top " << top;
    ASSERT_GT(rasters, 0) << "the dial was drawn while the needle moved";
    EXPECT_GE(movesAfterRaster, 2);
    EXPECT_EQ(rpm->rasterCount(), rasters) << "the needle moves without rasterising the dial again";
    ui->view().resize(600, 1000);
    ASSERT_TRUE(waitUntil([&] { return rpm->rasterCount() > rasters; }, 3000));
    ui->view().resize(480, 854);
}

TEST_F(DashboardTest, ANewReadingStartsFromWhereTheNeedleIs)
{
    MeterGauge gauge;
    gauge.setMaximum(8000);
    int calibrated = 0;
    QObject::connect(&gauge, &MeterGauge::calibrationFinished, [&] { ++calibrated; });
    ASSERT_TRUE(waitUntil([&] { return calibrated > 0; }, 5000));
    ASSERT_TRUE(waitUntil([&] { return !gauge.isAnimating(); }, 2000));
    EXPECT_EQ(gauge.value(), 0.0);
    gauge.setValueAnimated(4000);
    spin(100);
    const qreal midway = gauge.value();
    EXPECT_GT(midway, 0.0);
    EXPECT_LT(midway, 4000.0);
    gauge.setValueAnimated(1000);
    EXPECT_TRUE(gauge.isAnimating());
    spin(30);
    EXPECT_LE(std::fabs(gauge.value() - midway), 1000.0) << "no jump back to 0 or to 4000";
    ASSERT_TRUE(waitUntil([&] { return !gauge.isAnimating(); }, 2000));
    EXPECT_DOUBLE_EQ(gauge.value(), 1000.0);
}

// The car of the simulator idles for 30 s, then drives off: a picture of the
// meters and the consumption estimate while driving.
TEST_F(DashboardTest, WhileDrivingTheConsumptionEstimateShows)
{
    ASSERT_TRUE(connectToSim(options("can11", false)));
    QObject* page = open(NavigationModel::DashboardView);
    MeterGauge* speed = meter(page, "speedGauge");
    ASSERT_NE(speed, nullptr);
    QObject* consumption = page->findChild<QObject*>("consumptionGauge");
    ASSERT_NE(consumption, nullptr);
    ASSERT_TRUE(waitUntil([&] { return speed->value() > 35.0
                                       && consumption->property("value").toDouble() > 0.0; }, 90000))
        << "speed " << speed->value() << ", consumption " << consumption->property("value").toDouble();
    EXPECT_TRUE(ui->screenshot("dashboard_driving"));
}
