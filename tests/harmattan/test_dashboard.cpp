#include "connectionmanager.h"
#include "metergauge.h"
#include "navigationmodel.h"
#include "settingsmodel.h"
#include "uiharness.h"
#include "viewmodel/dashboardviewmodel.h"
#include "zarvane.h"

#include <QImage>
#include <QQuickItem>
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

// The PIDs of each service 01 request the simulator received, a trailing
// responses-expected digit dropped.
std::vector<std::vector<int>> liveRequests(const std::vector<std::string>& log)
{
    std::vector<std::vector<int>> requests;
    for (std::string line : log) {
        line.erase(std::remove(line.begin(), line.end(), ' '), line.end());
        if (line.size() < 4 || line.compare(0, 2, "01") != 0)
            continue;
        line.resize(line.size() & ~size_t(1));
        std::vector<int> pids;
        for (size_t at = 2; at + 1 < line.size(); at += 2)
            pids.push_back(std::stoi(line.substr(at, 2), nullptr, 16));
        requests.push_back(pids);
    }
    return requests;
}

bool asked(const std::vector<std::string>& log, int pid)
{
    for (const std::vector<int>& pids : liveRequests(log))
        if (std::find(pids.begin(), pids.end(), pid) != pids.end())
            return true;
    return false;
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
    EXPECT_TRUE(waitUntil([&] { return asked(sim->requestLog(), 0x10); }, READ_WAIT_MS)) << "no air-flow request";
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

// Engine and vehicle speed go in one request where the bus carries several
// PIDs (CAN); elsewhere one PID a request, as before.
TEST_F(DashboardTest, BothGaugesShareARequestOnCanOnly)
{
    const struct { const char* profile; bool shared; } rows[] = { { "can11", true }, { "kwp", false }, { "diesel", true } };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.profile);
        TearDown();
        ui.reset(new UiHarness());
        ASSERT_TRUE(connectToSim(options(row.profile)));
        ui->open(NavigationModel::DashboardView);
        const int before = ui->app()->dashboardViewModel()->valueCount();
        ASSERT_TRUE(waitUntil([&] { return ui->app()->dashboardViewModel()->valueCount() >= before + 6; }, READ_WAIT_MS));
        bool together = false;
        size_t widest = 0;
        for (const std::vector<int>& pids : liveRequests(sim->requestLog())) {
            widest = std::max(widest, pids.size());
            together = together || (std::count(pids.begin(), pids.end(), 0x0C) && std::count(pids.begin(), pids.end(), 0x0D));
        }
        EXPECT_EQ(together, row.shared);
        EXPECT_EQ(widest > 1, row.shared) << widest << " PIDs in one request";
    }
}

// A gauge set to another PID shows its value, unit and share of the PID's
// range; a gauge whose readings stop is greyed, in colour again when they
// come back, and the screen says when the link is gone.
TEST_F(DashboardTest, ChosenPidAndStaleValuesGreyed)
{
    ASSERT_TRUE(connectToSim());
    ASSERT_TRUE(sim->profile().ecu(0x7E8)->supportsPid(1, 0x42));
    ui->app()->settingsModel()->setGaugePid(1, 0x42);
    QObject* page = ui->open(NavigationModel::DashboardView);
    QObject* lower = page->findChild<QObject*>("secondGauge");
    MeterGauge* rpm = page->findChild<MeterGauge*>("rpmGauge");
    // Control module voltage: 0.001 V a count, 0 to 65.535 V.
    const double volts = sim->profile().physicalValue(0x7E8, 0x42, 0.0);
    ASSERT_GT(volts, 10.0);
    ASSERT_TRUE(waitUntil([&] { return ui->text(page, "speedText") == QString::number(volts, 'f', 2); }, READ_WAIT_MS))
        << ui->text(page, "speedText").toStdString();
    EXPECT_EQ(lower->property("title").toString(), "Control module voltage");
    EXPECT_EQ(lower->property("unit").toString(), "V");
    EXPECT_NEAR(lower->property("share").toDouble(), volts / 65.535, 1e-3);
    EXPECT_FALSE(page->findChild<QQuickItem*>("speedGauge")->isVisible()) << "no speed dial for a voltage";
    ASSERT_TRUE(waitUntil([&] { return !rpm->property("greyed").toBool() && !rpm->isAnimating(); }, READ_WAIT_MS));
    const double shown = rpm->value();
    EXPECT_GT(needleAt(ui->view().grabWindow(), rpm, shown), 0.8) << "amber needle";
    ui->picture("19d-dashboard-voltage");

    sim->setSilent(true);
    EXPECT_TRUE(waitUntil([&] { return rpm->property("greyed").toBool() && lower->property("greyed").toBool(); },
                          READ_WAIT_MS));
    EXPECT_EQ(needleAt(ui->view().grabWindow(), rpm, shown), 0.0) << "no colour left";
    sim->setSilent(false);
    EXPECT_TRUE(waitUntil([&] { return !rpm->property("greyed").toBool() && !lower->property("greyed").toBool(); },
                          READ_WAIT_MS));

    sim->stop();
    ASSERT_TRUE(waitUntil([&] { return page->findChild<QQuickItem*>("staleText")->isVisible(); }, READ_WAIT_MS));
    EXPECT_EQ(ui->text(page, "staleText"), "Not connected");
    EXPECT_TRUE(rpm->property("greyed").toBool());
    EXPECT_TRUE(lower->property("greyed").toBool());
    EXPECT_LT(page->findChild<QQuickItem*>("consumptionGauge")->opacity(), 1.0) << "the estimate greyed too";
    ASSERT_TRUE(ui->settle());
    ui->picture("19d-dashboard-lost");
}
