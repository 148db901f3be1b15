#include "connectionmanager.h"
#include "metergauge.h"
#include "navigationmodel.h"
#include "uiharness.h"
#include "viewmodel/dashboardviewmodel.h"
#include "zarvane.h"

#include <QImage>
#include <QtMath>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

using Harmattan::MeterGauge;
using Harmattan::NavigationModel;

namespace {

using DashboardTest = SimUiTest;

// The share of amber (needle) pixels along the ray from a meter's pivot at
// its needle's angle for value: what a person reads the meter by.
double needleAt(const QImage& window, const MeterGauge* gauge, double value)
{
    const QPointF pivot = gauge->mapToScene(QPointF(gauge->width() / 2, gauge->height() / 2));
    const double side = std::min(gauge->width(), gauge->height());
    const double angle = qDegreesToRadians(gauge->angleFor(value));
    int amber = 0, samples = 0;
    for (double r = 0.12 * side; r <= 0.34 * side; r += 1.0, ++samples) {
        const QPointF at(pivot.x() + r * std::sin(angle), pivot.y() - r * std::cos(angle));
        const QColor c = window.pixelColor((at * window.devicePixelRatio()).toPoint());
        amber += c.red() > 180 && c.blue() < 140 && c.red() - c.blue() > 90;
    }
    return double(amber) / samples;
}

} // namespace

TEST_F(DashboardTest, ClosedLinkSweepsTheNeedlesAndPollsNothing)
{
    // The page as soon as its gauges exist, before the screen settles: the
    // needles are watched through every value from the start of the sweep.
    ui->app()->navigationModel()->activateView(NavigationModel::DashboardView);
    QObject* page = nullptr;
    MeterGauge* rpm = nullptr;
    MeterGauge* speed = nullptr;
    ASSERT_TRUE(waitUntil([&] { page = ui->currentPage();
                                rpm = page->findChild<MeterGauge*>("rpmGauge");
                                speed = page->findChild<MeterGauge*>("speedGauge");
                                return rpm && speed; }, 5000));
    double rpmTop = rpm->value();
    double speedTop = speed->value();
    QObject::connect(rpm, &MeterGauge::valueChanged, [&] { rpmTop = std::max(rpmTop, rpm->value()); });
    QObject::connect(speed, &MeterGauge::valueChanged, [&] { speedTop = std::max(speedTop, speed->value()); });
    ASSERT_TRUE(waitUntil([&] { return rpmTop >= 8000 - 0.5 && speedTop >= 240 - 0.5; }, 5000))
        << "the sweep reaches the maximum: " << rpmTop << ", " << speedTop;
    ASSERT_TRUE(waitUntil([&] { return rpm->value() == 0.0 && speed->value() == 0.0
                                       && !rpm->isAnimating(); }, 5000))
        << "and returns to 0";
    // The sweep outlasts the delay before polling would start.
    EXPECT_EQ(ui->app()->dashboardViewModel()->requestCount(), 0);
    EXPECT_FALSE(ui->app()->dashboardViewModel()->isRefreshing());
    EXPECT_EQ(page->property("connectionStatus").toInt(), 0);
    EXPECT_EQ(ui->text(page, "statusText"), "Not connected");
}

TEST_F(DashboardTest, NeedlesAndReadoutsShowTheVehicleWhileTheScreenIsOpen)
{
    ASSERT_TRUE(connectToSim());
    const double engineRpm = sim->profile().physicalValue(0x7E8, 0x0C, 0.0);
    const double vehicleSpeed = sim->profile().physicalValue(0x7E8, 0x0D, 0.0);
    ASSERT_GT(engineRpm, 300.0);

    QObject* page = ui->open(NavigationModel::DashboardView);
    MeterGauge* rpm = page->findChild<MeterGauge*>("rpmGauge");
    MeterGauge* speed = page->findChild<MeterGauge*>("speedGauge");
    ASSERT_TRUE(rpm && speed);
    EXPECT_EQ(ui->text(page, "statusText"), "Estimated from air flow");

    // The needles settle on the readings (rpm in quarter steps, km/h whole).
    ASSERT_TRUE(waitUntil([&] { return std::fabs(rpm->value() - engineRpm) <= 0.5
                                       && std::fabs(speed->value() - vehicleSpeed) <= 1.0
                                       && !rpm->isAnimating() && !speed->isAnimating(); }, 10000))
        << "rpm " << rpm->value() << ", km/h " << speed->value();
    EXPECT_EQ(ui->text(page, "rpmText"), QString::number(std::lround(engineRpm)));
    EXPECT_EQ(ui->text(page, "speedText"), QString::number(std::lround(vehicleSpeed)));

    // On screen, each needle points at its reading and nowhere else.
    const QImage window = ui->view().grabWindow();
    for (MeterGauge* gauge : { rpm, speed }) {
        SCOPED_TRACE(gauge->objectName().toStdString());
        const double shown = gauge->value();
        EXPECT_GT(needleAt(window, gauge, shown), 0.8);
        EXPECT_LT(needleAt(window, gauge, shown + 0.15 * gauge->maximum()), 0.3);
    }

    // Polling goes on, the consumption estimate asks for the air flow, and
    // both stop with the screen.
    const int before = ui->app()->dashboardViewModel()->requestCount();
    EXPECT_TRUE(waitUntil([&] { return ui->app()->dashboardViewModel()->requestCount() >= before + 4; }, 5000));
    EXPECT_TRUE(waitUntil([&] { const std::vector<std::string> log = sim->requestLog();
                                return std::find(log.begin(), log.end(), "0110") != log.end(); }, READ_WAIT_MS))
        << "no air-flow request";
    ui->picture("dashboard");
    ui->back();
    EXPECT_TRUE(waitUntil([&] { return !ui->app()->dashboardViewModel()->isRefreshing(); }, 5000));

    // For the picture only: the simulator's car idles for 30 s, then drives
    // off, and the consumption estimate shows.
    if (UiHarness::picturesWanted()) {
        ui->app()->connectionManager()->closeConnection();
        ElmSim::ServerOptions live = options();
        live.frozen = false;
        ASSERT_TRUE(connectToSim(live));
        page = ui->open(NavigationModel::DashboardView);
        QObject* consumption = page->findChild<QObject*>("consumptionGauge");
        ASSERT_TRUE(waitUntil([&] { return page->findChild<MeterGauge*>("speedGauge")->value() > 35.0
                                           && consumption->property("value").toDouble() > 0.0; }, 90000));
        ui->picture("dashboard_driving");
    }
}

TEST_F(DashboardTest, ANewReadingStartsFromWhereTheNeedleIs)
{
    MeterGauge gauge;
    gauge.setMaximum(8000);
    bool calibrated = false;
    QObject::connect(&gauge, &MeterGauge::calibrationFinished, [&] { calibrated = true; });
    ASSERT_TRUE(waitUntil([&] { return calibrated && !gauge.isAnimating(); }, 5000));
    EXPECT_EQ(gauge.value(), 0.0);

    // The second reading arrives while the needle is on its way to the first.
    bool second = false;
    double midway = -1.0;
    std::vector<double> seen;
    QObject::connect(&gauge, &MeterGauge::valueChanged, [&] {
        if (midway >= 0.0)
            seen.push_back(gauge.value());
        if (second || gauge.value() < 1500.0)
            return;
        second = true;
        QMetaObject::invokeMethod(&gauge, [&] { midway = gauge.value(); gauge.setValueAnimated(1000); },
                                  Qt::QueuedConnection);
    });
    gauge.setValueAnimated(4000);
    ASSERT_TRUE(waitUntil([&] { return midway > 0.0 && !gauge.isAnimating(); }, 2000));
    EXPECT_LT(midway, 4000.0);
    EXPECT_DOUBLE_EQ(gauge.value(), 1000.0);
    // From where it was straight to the new reading: no jump back to 0 or on to 4000.
    for (double value : seen)
        EXPECT_TRUE(value >= std::min(midway, 1000.0) - 0.5 && value <= std::max(midway, 1000.0) + 0.5)
            << value << " outside " << midway << " .. 1000";
}
