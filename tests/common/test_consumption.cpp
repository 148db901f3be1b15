#include "consumption.h"
#include "consumptiongauge.h"
#include "fakeproxy.h"
#include "fakescantool.h"
#include "logcapture.h"
#include "sensortesthelpers.h"
#include "simlink.h"
#include "workerthread.h"

#include <gtest/gtest.h>

#include <QImage>
#include <QPainter>

#include <cmath>

using namespace Obd;

namespace {

const QTime T0(12, 0, 0, 0);

// Two speed readings, then an air-flow reading that triggers the estimate.
void feed(Consumption& c, const QTime& start, float kmh1, int gapMs, float kmh2, int airAfterMs, float gps)
{
    c.addSpeedSample(start, kmh1);
    c.addSpeedSample(start.addMSecs(gapMs), kmh2);
    c.addAirFlowSample(start.addMSecs(gapMs + airAfterMs), gps);
}

} // namespace

// True MPG = 7.107 x km/h / (g/s) (petrol at 14.7:1, US gallons);
// l/100 km = 235.215 / MPG.
TEST(ConsumptionEstimate, ReadingsComputedByHand)
{
    struct Row
    {
        const char* name;
        QTime start;
        float kmh1;
        float kmh2;
        int airAfterMs;
        float gps;
        double kmh;
        double mpg;
    } rows[] = {
        {"speed extrapolated: 60 + 0.5 s x 10 km/h per s = 65; 7.107 x 65 / 10 = 46.1955", T0, 50, 60, 500, 10,
         65, 46.1955},
        {"motorway: 7.107 x 100 / 25 = 28.428", T0, 100, 100, 200, 25, 100, 28.428},
        {"hard acceleration: 7.107 x 60 / 80 = 5.33025", T0, 60, 60, 200, 80, 60, 5.33025},
        {"across midnight: 23:59:59 to 00:00:00 is one second", QTime(23, 59, 59), 50, 60, 500, 10, 65, 46.1955},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        Consumption c;
        feed(c, row.start, row.kmh1, 1000, row.kmh2, row.airAfterMs, row.gps);
        EXPECT_FLOAT_EQ(row.kmh, c.getEstimatedSpeed());
        EXPECT_FLOAT_EQ(row.gps, c.getAirFlow());
        EXPECT_NEAR(row.mpg, c.consumption(US_IMPERIAL), 1e-3);
        EXPECT_NEAR(235.215 / row.mpg, c.consumption(US_METRIC), 1e-4);
    }
}

TEST(ConsumptionEstimate, UndefinedEstimatesGiveFiniteZeroReadings)
{
    struct Row { const char* name; float kmh1; int gapMs; float kmh2; float gps; } rows[] = {
        {"zero air flow", 50, 1000, 60, 0},
        {"negative air flow", 50, 1000, 60, -3},
        {"standing still", 0, 1000, 0, 3},
        {"braking hard: extrapolated below zero", 60, 100, 10, 3},
        {"speeds in the same millisecond", 50, 0, 60, 10},
        {"same millisecond, same speed", 50, 0, 50, 10},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        Consumption c;
        feed(c, T0, row.kmh1, row.gapMs, row.kmh2, 500, row.gps);
        for (UnitSystem us : {US_METRIC, US_IMPERIAL}) {
            EXPECT_EQ(0.0, c.consumption(us));
            EXPECT_EQ(0.0, c.averageConsumption(us));
            EXPECT_EQ(0.0, c.peakConsumption(us));
        }
    }
}

TEST(ConsumptionEstimate, AverageAndPeakPerUnitSystemOverDefinedReadingsOnly)
{
    Consumption c;
    // 100 km/h: 7.107 x 100 / 10 = 71.07 MPG, then undefined (no air), then
    // 7.107 x 100 / 20 = 35.535 MPG.
    feed(c, T0, 100, 1000, 100, 100, 10);
    c.addAirFlowSample(T0.addMSecs(1200), 0.0f);
    c.addAirFlowSample(T0.addMSecs(1300), 20.0f);
    EXPECT_NEAR(35.535, c.consumption(US_IMPERIAL), 1e-3);
    EXPECT_NEAR((71.07 + 35.535) / 2, c.averageConsumption(US_IMPERIAL), 1e-3);
    EXPECT_NEAR(71.07, c.peakConsumption(US_IMPERIAL), 1e-3);
    const double l1 = 235.215 / 71.07;
    const double l2 = 235.215 / 35.535;
    EXPECT_NEAR((l1 + l2) / 2, c.averageConsumption(US_METRIC), 1e-4);
    EXPECT_NEAR(l2, c.peakConsumption(US_METRIC), 1e-4);
    EXPECT_EQ(0.0, c.consumption(static_cast<UnitSystem>(5)));
}

TEST(ConsumptionRefresh, PollsSpeedThenAirFlowThroughTheProxy)
{
    FakeScantool tool(PROTOCOL_CAN_11BIT, false);
    tool.setReply("010d", "41 0D 64\r\r>");    // 0x64 = 100 km/h
    tool.setReply("0110", "41 10 09 C4\r\r>"); // 0x09C4 / 100 = 25 g/s
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
    const std::vector<std::string> commands = tool.commands();
    ASSERT_GE(commands.size(), 2u);
    EXPECT_EQ("010d", commands[0]);
    EXPECT_EQ("0110", commands[1]);
    // Steady 100 km/h: 7.107 x 100 / 25 = 28.428 MPG.
    EXPECT_NEAR(28.428, c.consumption(US_IMPERIAL), 1e-3);
}

TEST(ConsumptionRefresh, ReadsTheFirstEcuOfARealLinkAndSurvivesItsDestruction)
{
    SimLink link("can11"); // frozen: standing at idle
    ASSERT_EQ(LinkOpener::LO_OK, link.open()) << LogCapture::instance().dump();
    {
        Consumption c;
        c.setProxy(&link.proxy());
        c.setUpdateInterval(50);
        int changes = 0;
        QObject::connect(&c, &Consumption::changed, [&changes] { ++changes; });
        c.start();
        ASSERT_TRUE(waitFor([&] { return changes >= 2; }));
        // Idle air flow 0x010F / 100 = 2.71 g/s; standing still, so no estimate.
        EXPECT_FLOAT_EQ(2.71f, c.getAirFlow());
        EXPECT_EQ(0.0, c.consumption(US_METRIC));
    } // destroyed while its timer runs and requests may be queued
    EXPECT_TRUE(WorkerThread::flush(10000));
}

TEST(ConsumptionGaugeItem, TextValueAndBarFollowTheUnitSystem)
{
    ConsumptionGauge gauge;
    gauge.setSize(QSizeF(200, 100));
    EXPECT_EQ(QString("0.0"), gauge.text());
    int valueChanges = 0;
    int unitChanges = 0;
    QObject::connect(&gauge, &ConsumptionGauge::valueChanged, [&] { ++valueChanges; });
    QObject::connect(&gauge, &ConsumptionGauge::unitSystemChanged, [&] { ++unitChanges; });
    // 50 km/h at 10 g/s: 7.107 x 50 / 10 = 35.535 MPG = 235.215 / 35.535 = 6.62 l/100 km.
    feed(*gauge.consumption(), T0, 50, 1000, 50, 500, 10);
    EXPECT_EQ(1, valueChanges);

    // The green share of the bar along the bottom: the reading over the
    // scale's end (30 l/100 km, 60 MPG).
    auto barShare = [&gauge] {
        QImage image(200, 100, QImage::Format_ARGB32);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        gauge.paint(&painter);
        painter.end();
        int green = 0, track = 0;
        for (int x = 0; x < image.width(); ++x) {
            const QColor c = image.pixelColor(x, 87);
            green += c == QColor(0x4c, 0xaf, 0x50);
            track += c == QColor(0x3a, 0x40, 0x48);
        }
        return green + track ? double(green) / (green + track) : -1.0;
    };
    EXPECT_EQ(QString("l/100km"), gauge.unit());
    EXPECT_EQ(QString("6.6"), gauge.text());
    EXPECT_NEAR(6.619 / 30, barShare(), 0.03);

    gauge.setProperty("unitSystem", 1);
    EXPECT_EQ(1, unitChanges);
    EXPECT_EQ(QString("MPG"), gauge.property("unit").toString());
    EXPECT_EQ(QString("35.5"), gauge.property("text").toString());
    EXPECT_NEAR(35.535 / 60, barShare(), 0.03);
    gauge.setUnitSystem(9);
    EXPECT_EQ(1, gauge.unitSystem());
    EXPECT_EQ(1, unitChanges);

    // An undefined estimate shows zero and an empty bar, never inf or nan.
    gauge.consumption()->addAirFlowSample(T0.addMSecs(1600), 0.0f);
    EXPECT_EQ(QString("0.0"), gauge.text());
    EXPECT_DOUBLE_EQ(0.0, barShare());
}
