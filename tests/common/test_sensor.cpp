#include "fakeproxy.h"
#include "fakescantool.h"
#include "numericsensor.h"
#include "numericsensorvalue.h"
#include "sensortesthelpers.h"
#include "sensorvalue.h"
#include "workerthread.h"

#include <gtest/gtest.h>

#include <functional>
#include <memory>
#include <stdexcept>

using namespace Obd;

namespace {

// A scripted adapter without headers (ECU id 0) behind a proxy.
struct Adapter
{
    FakeScantool tool{PROTOCOL_CAN_11BIT, false};
    FakeProxy proxy{&tool};
};

} // namespace

TEST(SensorConstruction, TitleJoinsTheNameAndTheValueDescriptions)
{
    struct Row { const char* name; unsigned char pid; const char* pidText; } rows[] = {
        {"one value: the name alone", 0x0D, "0x0D"},
        {"two values: name, colon, descriptions", 0x14, "0x14"},
        {"upper-case hex digits", 0x1F, "0x1F"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        Sensor sensor(Ecu(), new CountedPid(row.pid));
        const QList<SensorValue*> values = sensor.getValues();
        QString title = sensor.getName();
        for (int i = 0; values.size() > 1 && i < values.size(); ++i)
            title += (i == 0 ? ": " : ", ") + values[i]->getDescription();
        EXPECT_EQ(QString::fromStdString(CountedPid(row.pid).getName(Ecu())), sensor.getName());
        EXPECT_EQ(title, sensor.getTitle());
        EXPECT_EQ(row.pid, sensor.getPid());
        for (SensorValue* value : values)
            EXPECT_EQ(QString(row.pidText), value->getPid());
    }
}

TEST(SensorConstruction, ValuesCarryEcuNameUnitsRangesAndDefaults)
{
    Ecu ecu(0x7E8, PROTOCOL_CAN_11BIT, "ISO 15765-4 (CAN 11/500)");
    ecu.setNames("ECU#1", "Engine Control Unit 0x7E8");
    NumericSensor sensor(ecu, new CountedPid(0x0D));
    EXPECT_EQ(0x7E8u, sensor.getEcuId());
    EXPECT_EQ(1000, sensor.getUpdateInterval());
    EXPECT_FALSE(sensor.isActive() || sensor.isQueued());
    SensorValue* value = sensor.getValues().front();
    NumericSensorValue* numeric = sensor.getNumericValues().front();
    EXPECT_EQ(QString("ECU#1"), value->getEcuName());
    EXPECT_EQ(QString("km/h"), value->getUnit());
    EXPECT_FLOAT_EQ(255.0f, numeric->getRangeMaximum());
    sensor.setUnitSystem(US_IMPERIAL);
    EXPECT_EQ(QString("mph"), value->getUnit());
    EXPECT_EQ(QString("mph"), numeric->getUnit());
    EXPECT_NEAR(255 * 0.62137, numeric->getRangeMaximum(), 0.01);
    sensor.setUnitSystem(static_cast<UnitSystem>(7)); // ignored
    EXPECT_EQ(US_IMPERIAL, value->getUnitSystem());
    EXPECT_EQ(US_IMPERIAL, numeric->getUnitSystem());
}

TEST(SensorConstruction, TooFewFormattersAbortConstructionWithoutLeaks)
{
    ASSERT_TRUE(WorkerThread::flush(5000)); // parameters of earlier tests on their way out
    const int before = CountedPid::liveCount();
    EXPECT_THROW(NumericSensor(Ecu(), new CountedPid(0x14, false)), std::out_of_range);
    EXPECT_TRUE(WorkerThread::flush(5000));
    EXPECT_EQ(before, CountedPid::liveCount());
}

TEST(NumericSensorValue, PeaksMeanAndCountPerUnitSystem)
{
    struct Row { const char* name; std::vector<float> samples; float minimum, maximum, mean; } rows[] = {
        {"10, 20, 30: mean 60 / 3 = 20", {10, 20, 30}, 10, 30, 20},
        {"a negative first sample sets both peaks: mean (-12 - 20) / 2 = -16", {-12, -20}, -20, -12, -16},
        {"one sample", {7}, 7, 7, 7},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        NumericSensorValue value("ECU#1", "0x05", "Coolant", "C", "F", -40, 215, -40, 419, nullptr);
        for (float x : row.samples)
            value.addSample(x, US_METRIC);
        value.addSample(1.0f, static_cast<UnitSystem>(2)); // ignored
        EXPECT_FLOAT_EQ(row.minimum, value.getPeakMinimum());
        EXPECT_FLOAT_EQ(row.maximum, value.getPeakMaximum());
        EXPECT_FLOAT_EQ(row.mean, value.getAverage());
        EXPECT_FLOAT_EQ(row.samples.back(), value.getNumericValue());
        EXPECT_EQ(row.samples.size(), value.getSampleCount());
        value.setUnitSystem(US_IMPERIAL); // the imperial record was not fed
        EXPECT_EQ(0u, value.getSampleCount());
    }
}

TEST(SensorRefresh, RefreshFillsBothUnitSystemsAndSwitchingNeedsNoRequest)
{
    Adapter adapter;
    for (unsigned char kmh : {10, 20, 30})
        adapter.tool.addReply("010d", replyFor(0x0D, kmh));
    NumericSensor sensor(Ecu(), new CountedPid(0x0D));
    sensor.setProxy(&adapter.proxy);
    int changes = 0, unitChanges = 0;
    QObject::connect(&sensor, qOverload<>(&Sensor::changed), [&changes] { ++changes; });
    QObject::connect(&sensor, &Sensor::unitChanged, [&unitChanges] { ++unitChanges; });
    for (int i = 1; i <= 3; ++i) {
        sensor.updateNow();
        ASSERT_TRUE(waitFor([&] { return changes == i; }));
    }
    SensorValue* text = sensor.getValues().front();
    NumericSensorValue* numeric = sensor.getNumericValues().front();
    EXPECT_EQ(QString("30"), text->getValue());
    EXPECT_EQ(QString("30"), numeric->getValue());
    EXPECT_FLOAT_EQ(10.0f, numeric->getPeakMinimum());
    EXPECT_FLOAT_EQ(20.0f, numeric->getAverage());

    sensor.setUnitSystem(US_IMPERIAL);
    // 30 km/h x 0.62137 = 18.64 mph, shown as a whole number: 18.
    EXPECT_EQ(QString("18"), text->getValue());
    EXPECT_EQ(QString("18"), numeric->getValue());
    EXPECT_NEAR(10 * 0.62137, numeric->getPeakMinimum(), 1e-3);
    EXPECT_NEAR(30 * 0.62137, numeric->getPeakMaximum(), 1e-3);
    EXPECT_NEAR(20 * 0.62137, numeric->getAverage(), 1e-3);
    EXPECT_EQ(3u, numeric->getSampleCount());
    EXPECT_EQ(1, unitChanges);
    EXPECT_EQ(3, changes);
    EXPECT_TRUE(WorkerThread::flush(5000));
    EXPECT_EQ(3u, adapter.tool.commands().size());
}

TEST(SensorLifetime, DestroyedAtAnyStageOfItsRefreshNeitherCrashesNorLeaks)
{
    typedef std::unique_ptr<NumericSensor> Busy;
    struct Row { const char* name; std::function<void(Adapter&, NumericSensor*, Busy&)> stage; } rows[] = {
        {"while its exchange runs", [](Adapter& a, NumericSensor* s, Busy&) {
             s->start();
             ASSERT_TRUE(waitFor([&] { return !a.tool.commands().empty(); }));
         }},
        {"with its updateDone waiting in this thread's queue", [](Adapter& a, NumericSensor* s, Busy&) {
             a.tool.setReplyDelayMs(0);
             s->start(); // queues the request without running this thread's loop
             ASSERT_TRUE(WorkerThread::flush(5000));
         }},
        {"with its request queued behind another sensor's", [](Adapter& a, NumericSensor* s, Busy& busy) {
             busy.reset(new NumericSensor(Ecu(), new CountedPid(0x05)));
             busy->setProxy(&a.proxy);
             busy->start();
             ASSERT_TRUE(waitFor([&] { return !a.tool.commands().empty(); }));
             s->start();
         }},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        Adapter adapter;
        adapter.tool.setReply("0105", replyFor(0x05, 1));
        adapter.tool.setReply("010d", replyFor(0x0D, 2));
        adapter.tool.setReplyDelayMs(300);
        ASSERT_TRUE(WorkerThread::flush(5000));
        const int before = CountedPid::liveCount();
        Busy busy;
        NumericSensor* sensor = new NumericSensor(Ecu(), new CountedPid(0x0D));
        sensor->setProxy(&adapter.proxy);
        row.stage(adapter, sensor, busy);
        delete sensor;
        busy.reset();
        QCoreApplication::processEvents();
        EXPECT_TRUE(WorkerThread::flush(5000));
        EXPECT_EQ(before, CountedPid::liveCount());
        EXPECT_EQ(1u, adapter.tool.commands().size()) << "a destroyed sensor's request was sent";
    }
}
