#include "consumption.h"
#include "consumptiongauge.h"
#include "fakeproxy.h"
#include "fakescantool.h"
#include "sensortesthelpers.h"
#include "workerthread.h"

#include <gtest/gtest.h>

#include <QGuiApplication>
#include <QImage>
#include <QPainter>

#include <cmath>

using namespace Obd;

namespace {

const QTime T0(12, 0, 0, 0);

void expectFiniteReadings(const Consumption& c)
{
    for (UnitSystem us : {US_METRIC, US_IMPERIAL}) {
        EXPECT_TRUE(std::isfinite(c.consumption(us)));
        EXPECT_TRUE(std::isfinite(c.averageConsumption(us)));
        EXPECT_TRUE(std::isfinite(c.peakConsumption(us)));
    }
}

} // namespace

TEST(ConsumptionEstimate, SeedSamplesBeforeTheFirstReadings)
{
    Consumption c;
    EXPECT_FLOAT_EQ(1.0f, c.getPreviousAirFlow().value);
    EXPECT_FLOAT_EQ(5.0f, c.getCurrentAirFlow().value);
    EXPECT_FLOAT_EQ(2.0f, c.getPreviousSpeed().value);
    EXPECT_FLOAT_EQ(3.0f, c.getCurrentSpeed().value);
    EXPECT_EQ(500, c.getPreviousAirFlow().time.msecsTo(c.getCurrentAirFlow().time));
    EXPECT_EQ(c.getPreviousSpeed().time, c.getCurrentSpeed().time);
    EXPECT_EQ(c.getCurrentAirFlow().time, c.getCurrentSpeed().time);
    EXPECT_EQ(0.0, c.consumption(US_METRIC));
    EXPECT_EQ(0.0, c.consumption(US_IMPERIAL));
}

TEST(ConsumptionEstimate, SpeedExtrapolatedToTheAirFlowReading)
{
    // Speed 50 then 60 one second later; air flow 500 ms after that.
    Consumption c;
    c.addSpeedSample(T0, 50.0f);
    c.addSpeedSample(T0.addMSecs(1000), 60.0f);
    c.addAirFlowSample(T0.addMSecs(1500), 10.0f);
    EXPECT_FLOAT_EQ(65.0f, c.getEstimatedSpeed());
    EXPECT_FLOAT_EQ(10.0f, c.getAirFlow());
    EXPECT_FLOAT_EQ(5.0f, c.getPreviousAirFlow().value);

    // The stored figure as it has always been: mpg x 235.
    const float mpg = static_cast<float>(65.0 * 710.7 / 10.0);
    EXPECT_FLOAT_EQ(mpg * 235.0f, c.getStoredConsumption());
    // The readings: true MPG and l/100 km.
    EXPECT_NEAR(46.1955, c.consumption(US_IMPERIAL), 1e-3);
    EXPECT_NEAR(235.215 / 46.1955, c.consumption(US_METRIC), 1e-4);
}

TEST(ConsumptionEstimate, ReadingsForTypicalDriving)
{
    struct Row
    {
        const char* name;
        float speed;
        float airFlow;
        double mpg;
    } rows[] = {
        {"motorway: 100 km/h at 25 g/s", 100.0f, 25.0f, 28.428},
        {"town: 50 km/h at 10 g/s", 50.0f, 10.0f, 35.535},
        {"hard acceleration: 60 km/h at 80 g/s", 60.0f, 80.0f, 5.33025},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        Consumption c;
        c.addSpeedSample(T0, row.speed);
        c.addSpeedSample(T0.addMSecs(1000), row.speed);
        c.addAirFlowSample(T0.addMSecs(1200), row.airFlow);
        EXPECT_NEAR(row.mpg, c.consumption(US_IMPERIAL), 1e-3);
        EXPECT_NEAR(235.215 / row.mpg, c.consumption(US_METRIC), 1e-3);
    }
}

TEST(ConsumptionEstimate, UndefinedEstimatesGiveFiniteZeroReadings)
{
    struct Row
    {
        const char* name;
        float speed1;
        int speedGapMs;
        float speed2;
        float airFlow;
    } rows[] = {
        {"zero air flow", 50.0f, 1000, 60.0f, 0.0f},
        {"negative air flow", 50.0f, 1000, 60.0f, -3.0f},
        {"standing still", 0.0f, 1000, 0.0f, 3.0f},
        {"braking hard: extrapolated below zero", 60.0f, 100, 10.0f, 3.0f},
        {"speeds in the same millisecond", 50.0f, 0, 60.0f, 10.0f},
        {"same millisecond, same speed", 50.0f, 0, 50.0f, 10.0f},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        Consumption c;
        c.addSpeedSample(T0, row.speed1);
        c.addSpeedSample(T0.addMSecs(row.speedGapMs), row.speed2);
        c.addAirFlowSample(T0.addMSecs(row.speedGapMs + 500), row.airFlow);
        EXPECT_EQ(0.0, c.consumption(US_METRIC));
        EXPECT_EQ(0.0, c.consumption(US_IMPERIAL));
        EXPECT_EQ(0.0, c.averageConsumption(US_METRIC));
        EXPECT_EQ(0.0, c.peakConsumption(US_IMPERIAL));
        expectFiniteReadings(c);
    }
}

TEST(ConsumptionEstimate, StoredFieldKeepsTheUnguardedArithmetic)
{
    Consumption zeroAir;
    zeroAir.addSpeedSample(T0, 50.0f);
    zeroAir.addSpeedSample(T0.addMSecs(1000), 60.0f);
    zeroAir.addAirFlowSample(T0.addMSecs(1500), 0.0f);
    EXPECT_TRUE(std::isinf(zeroAir.getStoredConsumption()));

    Consumption sameMs;
    sameMs.addSpeedSample(T0, 50.0f);
    sameMs.addSpeedSample(T0, 60.0f);
    sameMs.addAirFlowSample(T0.addMSecs(500), 10.0f);
    EXPECT_FALSE(std::isfinite(sameMs.getEstimatedSpeed()));
    EXPECT_EQ(0.0, sameMs.consumption(US_IMPERIAL));
}

TEST(ConsumptionEstimate, AverageAndPeakPerUnitSystemOverDefinedReadings)
{
    Consumption c;
    c.addSpeedSample(T0, 100.0f);
    c.addSpeedSample(T0.addMSecs(1000), 100.0f);
    // MPG 71.07, then undefined (no air flow), then 35.535.
    c.addAirFlowSample(T0.addMSecs(1100), 10.0f);
    c.addAirFlowSample(T0.addMSecs(1200), 0.0f);
    c.addAirFlowSample(T0.addMSecs(1300), 20.0f);
    EXPECT_NEAR(35.535, c.consumption(US_IMPERIAL), 1e-3);
    EXPECT_NEAR((71.07 + 35.535) / 2, c.averageConsumption(US_IMPERIAL), 1e-3);
    EXPECT_NEAR(71.07, c.peakConsumption(US_IMPERIAL), 1e-3);
    const double l1 = 235.215 / 71.07;
    const double l2 = 235.215 / 35.535;
    EXPECT_NEAR(l2, c.consumption(US_METRIC), 1e-4);
    EXPECT_NEAR((l1 + l2) / 2, c.averageConsumption(US_METRIC), 1e-4);
    EXPECT_NEAR(l2, c.peakConsumption(US_METRIC), 1e-4);
    EXPECT_EQ(0.0, c.consumption(static_cast<UnitSystem>(5)));
}

TEST(ConsumptionEstimate, TimesAcrossMidnight)
{
    EXPECT_EQ(1000, Consumption::msecsBetween(QTime(23, 59, 59, 500), QTime(0, 0, 0, 500)));
    EXPECT_EQ(-250, Consumption::msecsBetween(QTime(10, 0, 0, 250), QTime(10, 0, 0, 0)));
    Consumption c;
    c.addSpeedSample(QTime(23, 59, 59, 0), 50.0f);
    c.addSpeedSample(QTime(0, 0, 0, 0), 60.0f);
    c.addAirFlowSample(QTime(0, 0, 0, 500), 10.0f);
    EXPECT_FLOAT_EQ(65.0f, c.getEstimatedSpeed());
}

TEST(ConsumptionRefresh, StartPollsSpeedAndAirFlowThroughTheProxy)
{
    FakeScantool tool(PROTOCOL_CAN_11BIT, false);
    tool.setReply("010d", "41 0D 64\r\r>");    // 100 km/h
    tool.setReply("0110", "41 10 09 C4\r\r>"); // 2500 / 100 = 25 g/s
    FakeProxy proxy(&tool);
    Consumption c;
    c.setProxy(&proxy);
    c.setUpdateInterval(50);
    int changes = 0;
    QObject::connect(&c, &Consumption::changed, [&changes] { ++changes; });
    c.start();
    EXPECT_TRUE(c.isRunning());
    ASSERT_TRUE(waitFor([&] { return changes >= 3; }));
    c.stop();
    EXPECT_FALSE(c.isRunning());
    // Speed is asked first at every tick.
    std::vector<std::string> commands = tool.commands();
    ASSERT_GE(commands.size(), 2u);
    EXPECT_EQ("010d", commands[0]);
    EXPECT_EQ("0110", commands[1]);
    EXPECT_FLOAT_EQ(25.0f, c.getAirFlow());
    EXPECT_FLOAT_EQ(100.0f, c.getCurrentSpeed().value);
    expectFiniteReadings(c);
}

TEST(ConsumptionRefresh, ReadsTheProxysFirstEcuUntilOneIsSet)
{
    FakeScantool tool(PROTOCOL_CAN_11BIT, true);
    tool.setReply("010d", "7E8 03 41 0D 64\r\r>");
    tool.setReply("0110", "7E8 04 41 10 09 C4\r\r>");
    FakeProxy proxy(&tool);
    proxy.addEcu(0x7E8);
    Consumption c;
    c.setProxy(&proxy);
    c.setUpdateInterval(50);
    int changes = 0;
    QObject::connect(&c, &Consumption::changed, [&changes] { ++changes; });
    c.start();
    ASSERT_TRUE(waitFor([&] { return changes >= 2; }));
    c.stop();
    EXPECT_FLOAT_EQ(25.0f, c.getAirFlow());
}

TEST(ConsumptionRefresh, DestroyedWhileRunning)
{
    FakeScantool tool(PROTOCOL_CAN_11BIT, false);
    tool.setReply("010d", "41 0D 64\r\r>");
    tool.setReply("0110", "41 10 09 C4\r\r>");
    tool.setReplyDelayMs(100);
    FakeProxy proxy(&tool);
    {
        Consumption c;
        c.setProxy(&proxy);
        c.start();
        ASSERT_TRUE(waitFor([&] { return !tool.commands().empty(); }));
    }
    EXPECT_TRUE(WorkerThread::flush(5000));
    spin(20);
}

TEST(ConsumptionGaugeItem, PropertiesFollowTheUnitSystem)
{
    ConsumptionGauge gauge;
    EXPECT_EQ(QString("Obd::ConsumptionGauge"), QString(gauge.metaObject()->className()));
    EXPECT_EQ(0, gauge.unitSystem());
    EXPECT_EQ(QString("l/100km"), gauge.unit());
    EXPECT_EQ(0.0, gauge.value());
    EXPECT_EQ(QString("0.0"), gauge.text());

    int valueChanges = 0;
    int unitChanges = 0;
    QObject::connect(&gauge, &ConsumptionGauge::valueChanged, [&] { ++valueChanges; });
    QObject::connect(&gauge, &ConsumptionGauge::unitSystemChanged, [&] { ++unitChanges; });

    Consumption* c = gauge.consumption();
    ASSERT_NE(nullptr, c);
    c->addSpeedSample(T0, 50.0f);
    c->addSpeedSample(T0.addMSecs(1000), 50.0f);
    c->addAirFlowSample(T0.addMSecs(1500), 10.0f);
    EXPECT_EQ(1, valueChanges);
    EXPECT_NEAR(235.215 / 35.535, gauge.value(), 1e-3);
    EXPECT_EQ(QString("6.6"), gauge.text());

    gauge.setProperty("unitSystem", 1);
    EXPECT_EQ(1, unitChanges);
    EXPECT_EQ(QString("MPG"), gauge.property("unit").toString());
    EXPECT_NEAR(35.535, gauge.property("value").toDouble(), 1e-3);
    EXPECT_EQ(QString("35.5"), gauge.property("text").toString());

    gauge.setUnitSystem(9);
    EXPECT_EQ(1, gauge.unitSystem());
    EXPECT_EQ(1, unitChanges);
}

TEST(ConsumptionGaugeItem, ShowsZeroForUndefinedEstimates)
{
    ConsumptionGauge gauge;
    Consumption* c = gauge.consumption();
    c->addSpeedSample(T0, 50.0f);
    c->addSpeedSample(T0.addMSecs(1000), 60.0f);
    c->addAirFlowSample(T0.addMSecs(1500), 0.0f);
    for (int us : {0, 1}) {
        gauge.setUnitSystem(us);
        EXPECT_EQ(0.0, gauge.value());
        EXPECT_EQ(QString("0.0"), gauge.text());
        EXPECT_FALSE(gauge.text().contains("inf"));
        EXPECT_FALSE(gauge.text().contains("nan"));
    }
}

TEST(ConsumptionGaugeItem, PaintsIntoAnImage)
{
    if (!qobject_cast<QGuiApplication*>(QCoreApplication::instance()))
        GTEST_SKIP() << "painting text needs a QGuiApplication";
    ConsumptionGauge gauge;
    gauge.setSize(QSizeF(200, 100));
    gauge.consumption()->addSpeedSample(T0, 50.0f);
    gauge.consumption()->addSpeedSample(T0.addMSecs(1000), 50.0f);
    gauge.consumption()->addAirFlowSample(T0.addMSecs(1500), 10.0f);
    QImage image(200, 100, QImage::Format_ARGB32);
    image.fill(Qt::transparent);
    QPainter painter(&image);
    gauge.paint(&painter);
    painter.end();
    EXPECT_NE(0u, image.pixel(100, 50) >> 24);
}
