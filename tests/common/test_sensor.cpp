#include "fakeproxy.h"
#include "fakescantool.h"
#include "logcapture.h"
#include "trlog.h"
#include "numericsensor.h"
#include "numericsensorvalue.h"
#include "sensor.h"
#include "sensortesthelpers.h"
#include "sensorvalue.h"
#include "unittable.h"
#include "valueformater.h"
#include "workerthread.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <stdexcept>
#include <vector>

using namespace Obd;

namespace {

FakeMeasurable::Row speedRow(Obd::ValueFormaterPtr formatter = nullptr)
{
    return {"Vehicle Speed", UNIT_KMH, UNIT_MPH, 0, 255, 0, 158, formatter};
}

FakeMeasurable* speedParameter(unsigned char pid = 0x0D, Obd::ValueFormaterPtr formatter = nullptr)
{
    return new FakeMeasurable(pid, "Vehicle Speed Sensor", {speedRow(formatter)});
}

Obd::ValueFormaterPtr integerFormatter()
{
    return std::make_shared<ValueFormater>(ValueFormater::VT_UNSIGNED, 0, 0);
}

// A scripted adapter without headers (ECU id 0) behind a proxy.
struct Adapter
{
    FakeScantool tool{PROTOCOL_CAN_11BIT, false};
    FakeProxy proxy{&tool};
};

struct ChangeRecorder
{
    std::vector<std::string> events;

    void attach(Sensor* sensor)
    {
        QObject::connect(sensor, qOverload<>(&Sensor::changed),
                         [this] { events.push_back("changed()"); });
        QObject::connect(sensor, qOverload<int>(&Sensor::changed),
                         [this](int index) { events.push_back("changed(" + std::to_string(index) + ")"); });
        QObject::connect(sensor, qOverload<int, int>(&Sensor::changed), [this](int ecu, int pid) {
            events.push_back("changed(" + std::to_string(ecu) + "," + std::to_string(pid) + ")");
        });
        QObject::connect(sensor, &Sensor::unitChanged, [this] { events.push_back("unitChanged()"); });
    }

    size_t count(const std::string& event) const
    {
        size_t n = 0;
        for (const std::string& e : events)
            if (e == event)
                ++n;
        return n;
    }
};

} // namespace

TEST(SensorConstruction, TitleFromNameAndValueDescriptions)
{
    struct Row
    {
        const char* name;
        std::vector<FakeMeasurable::Row> infos;
        const char* title;
    } rows[] = {
        {"one value: the name alone", {speedRow()}, "Vehicle Speed Sensor"},
        {"two values: name, colon, descriptions",
         {{"A", UNIT_KPA, UNIT_PSI, 0, 1, 0, 1, nullptr}, {"B", UNIT_KPA, UNIT_PSI, 0, 1, 0, 1, nullptr}},
         "Boost: A, B"},
        {"three values",
         {{"Voltage", UNIT_VOLT, UNIT_VOLT, 0, 1, 0, 1, nullptr},
          {"Trim", UNIT_PERCENT, UNIT_PERCENT, 0, 1, 0, 1, nullptr},
          {"Current", UNIT_MILLIAMPERE, UNIT_MILLIAMPERE, 0, 1, 0, 1, nullptr}},
         "Boost: Voltage, Trim, Current"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        std::string name = row.infos.size() == 1 ? "Vehicle Speed Sensor" : "Boost";
        Sensor sensor(Ecu(), new FakeMeasurable(0x0D, name, row.infos));
        EXPECT_EQ(QString::fromStdString(name), sensor.getName());
        EXPECT_EQ(QString(row.title), sensor.getTitle());
        ASSERT_EQ(int(row.infos.size()), sensor.getValues().size());
        for (size_t i = 0; i < row.infos.size(); ++i)
            EXPECT_EQ(QString::fromStdString(row.infos[i].name), sensor.getValues()[int(i)]->getDescription());
    }
}

TEST(SensorConstruction, PidTextIsUpperCaseHexWithTwoDigits)
{
    struct Row
    {
        const char* name;
        unsigned int pid;
        const char* text;
    } rows[] = {
        {"PID 5", 0x05, "0x05"}, {"PID 31", 0x1F, "0x1F"}, {"PID 12", 0x0C, "0x0C"},
        {"PID 0", 0x00, "0x00"}, {"PID 255", 0xFF, "0xFF"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(QString(row.text), SensorValue::pidText(row.pid));
        Sensor sensor(Ecu(), speedParameter(static_cast<unsigned char>(row.pid)));
        EXPECT_EQ(QString(row.text), sensor.getValues().front()->getPid());
        EXPECT_EQ(row.pid, sensor.getPid());
    }
}

TEST(SensorConstruction, ValuesCarryEcuNameAndTranslatedUnitTexts)
{
    Ecu ecu(0x7E8, PROTOCOL_CAN_11BIT, "ISO 15765-4 (CAN 11/500)");
    ecu.setNames("ECU#1", "Engine Control Unit 0x7E8");
    NumericSensor sensor(ecu, speedParameter());
    EXPECT_EQ(0x7E8u, sensor.getEcuId());
    SensorValue* value = sensor.getValues().front();
    EXPECT_EQ(QString("ECU#1"), value->getEcuName());
    EXPECT_EQ(QString("km/h"), value->getUnit());
    EXPECT_EQ(US_METRIC, value->getUnitSystem());
    NumericSensorValue* numeric = sensor.getNumericValues().front();
    EXPECT_EQ(QString("km/h"), numeric->getUnit());
    EXPECT_FLOAT_EQ(0.0f, numeric->getRangeMinimum());
    EXPECT_FLOAT_EQ(255.0f, numeric->getRangeMaximum());
    sensor.setUnitSystem(US_IMPERIAL);
    EXPECT_EQ(QString("mph"), value->getUnit());
    EXPECT_FLOAT_EQ(158.0f, numeric->getRangeMaximum());
}

TEST(SensorConstruction, DefaultsAndTimerInterval)
{
    Sensor sensor(Ecu(), speedParameter());
    EXPECT_EQ(0, sensor.getIndex());
    EXPECT_EQ(1000, sensor.getUpdateInterval());
    EXPECT_FALSE(sensor.isActive());
    EXPECT_FALSE(sensor.isQueued());
    sensor.setUpdateInterval(250);
    EXPECT_EQ(250, sensor.getUpdateInterval());
    EXPECT_TRUE(WorkerThread::exists());
}

TEST(SensorConstruction, TooFewFormattersAbortConstructionWithoutLeaks)
{
    // Parameters of earlier tests may still be on their way out.
    ASSERT_TRUE(WorkerThread::flush(5000));
    int before = FakeMeasurable::liveCount();
    FakeMeasurable* parameter = new FakeMeasurable(
        0x0B, "Boost",
        {{"A", UNIT_KPA, UNIT_PSI, 0, 1, 0, 1, integerFormatter()},
         {"B", UNIT_KPA, UNIT_PSI, 0, 1, 0, 1, integerFormatter()}});
    parameter->dropFormatters(1);
    EXPECT_THROW(NumericSensor(Ecu(), parameter), std::out_of_range);
    EXPECT_TRUE(WorkerThread::flush(5000));
    EXPECT_EQ(before, FakeMeasurable::liveCount());
}

TEST(NumericSensorValueTexts, WithoutFormatterSixSignificantDigits)
{
    struct Row
    {
        const char* name;
        float value;
        const char* text;
    } rows[] = {
        {"fraction kept", 1234.5f, "1234.5"},
        {"large number in exponent form", 1234567.0f, "1.23457e+06"},
        {"whole number without point", 42.0f, "42"},
        {"negative", -40.0f, "-40"},
        {"small", 0.000123f, "0.000123"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        NumericSensorValue value("ECU#1", "0x0D", "Speed", "km/h", "mph", 0, 255, 0, 158, nullptr);
        value.addSample(row.value, US_METRIC);
        EXPECT_EQ(QString(row.text), value.getValue());
    }
}

TEST(NumericSensorValueTexts, WithFormatterUsesTheCurrentUnitSystem)
{
    auto formatter = std::make_shared<ValueFormater>(ValueFormater::VT_REAL, 1, 2);
    NumericSensorValue value("ECU#1", "0x0D", "Speed", "km/h", "mph", 0, 255, 0, 158, formatter);
    value.addSample(12.25f, US_METRIC);
    value.addSample(7.61f, US_IMPERIAL);
    EXPECT_EQ(QString("12.3"), value.getValue());
    value.setUnitSystem(US_IMPERIAL);
    EXPECT_EQ(QString("7.61"), value.getValue());
    EXPECT_EQ(QString("mph"), value.getUnit());
}

TEST(NumericSensorValueStatistics, PeaksMeanAndCountOverKnownSamples)
{
    NumericSensorValue value("ECU#1", "0x0D", "Speed", "km/h", "mph", 0, 255, 0, 158, nullptr);
    for (float x : {10.0f, 20.0f, 30.0f})
        value.addSample(x, US_METRIC);
    EXPECT_FLOAT_EQ(10.0f, value.getPeakMinimum());
    EXPECT_FLOAT_EQ(30.0f, value.getPeakMaximum());
    EXPECT_FLOAT_EQ(20.0f, value.getAverage());
    EXPECT_EQ(3u, value.getSampleCount());
    EXPECT_FLOAT_EQ(30.0f, value.getNumericValue());
    // The imperial record was not fed.
    value.setUnitSystem(US_IMPERIAL);
    EXPECT_EQ(0u, value.getSampleCount());
    EXPECT_FLOAT_EQ(0.0f, value.getAverage());
}

TEST(NumericSensorValueStatistics, FirstSampleSetsBothPeaksEvenWhenNegative)
{
    NumericSensorValue value("ECU#1", "0x05", "Coolant", "C", "F", -40, 215, -40, 419, nullptr);
    value.addSample(-12.0f, US_METRIC);
    EXPECT_FLOAT_EQ(-12.0f, value.getPeakMinimum());
    EXPECT_FLOAT_EQ(-12.0f, value.getPeakMaximum());
    value.addSample(-20.0f, US_METRIC);
    EXPECT_FLOAT_EQ(-20.0f, value.getPeakMinimum());
    EXPECT_FLOAT_EQ(-12.0f, value.getPeakMaximum());
    EXPECT_FLOAT_EQ(-16.0f, value.getAverage());
}

TEST(SensorValueUnitSystem, InvalidUnitSystemsAreIgnored)
{
    SensorValue value("ECU#1", "0x0D", "Speed", "km/h", "mph");
    value.setValue("50", US_METRIC);
    value.setValue("31", US_IMPERIAL);
    value.setValue("??", static_cast<UnitSystem>(7));
    value.setUnitSystem(static_cast<UnitSystem>(7));
    EXPECT_EQ(US_METRIC, value.getUnitSystem());
    EXPECT_EQ(QString("50"), value.getValue());
    value.setUnitSystem(US_IMPERIAL);
    EXPECT_EQ(QString("31"), value.getValue());
    EXPECT_EQ(QString("mph"), value.getUnit());

    NumericSensorValue numeric("ECU#1", "0x0D", "Speed", "km/h", "mph", 0, 255, 0, 158, nullptr);
    numeric.addSample(5.0f, static_cast<UnitSystem>(2));
    numeric.setUnitSystem(static_cast<UnitSystem>(2));
    EXPECT_EQ(0u, numeric.getSampleCount());
    EXPECT_EQ(US_METRIC, numeric.getUnitSystem());
}

TEST(SensorRefresh, RefreshFillsBothUnitSystemsAndSwitchingNeedsNoRequest)
{
    Adapter adapter;
    adapter.tool.addReply("010d", replyFor(0x0D, 10));
    adapter.tool.addReply("010d", replyFor(0x0D, 20));
    adapter.tool.addReply("010d", replyFor(0x0D, 30));
    NumericSensor sensor(Ecu(), speedParameter(0x0D, integerFormatter()));
    sensor.setProxy(&adapter.proxy);
    ChangeRecorder recorder;
    recorder.attach(&sensor);
    for (int i = 1; i <= 3; ++i) {
        sensor.updateNow();
        ASSERT_TRUE(waitFor([&] { return recorder.count("changed()") == size_t(i); }));
    }
    SensorValue* text = sensor.getValues().front();
    NumericSensorValue* numeric = sensor.getNumericValues().front();
    EXPECT_EQ(QString("30"), text->getValue());
    EXPECT_EQ(QString("30"), numeric->getValue());
    EXPECT_FLOAT_EQ(10.0f, numeric->getPeakMinimum());
    EXPECT_FLOAT_EQ(30.0f, numeric->getPeakMaximum());
    EXPECT_FLOAT_EQ(20.0f, numeric->getAverage());
    EXPECT_EQ(3u, numeric->getSampleCount());

    size_t requests = adapter.tool.commands().size();
    recorder.events.clear();
    sensor.setUnitSystem(US_IMPERIAL);
    EXPECT_EQ(QString("60"), text->getValue());
    EXPECT_EQ(QString("mph"), text->getUnit());
    EXPECT_EQ(QString("60"), numeric->getValue());
    EXPECT_FLOAT_EQ(20.0f, numeric->getPeakMinimum());
    EXPECT_FLOAT_EQ(60.0f, numeric->getPeakMaximum());
    EXPECT_FLOAT_EQ(40.0f, numeric->getAverage());
    EXPECT_EQ(3u, numeric->getSampleCount());
    EXPECT_EQ(std::vector<std::string>{"unitChanged()"}, recorder.events);
    spin(50);
    EXPECT_EQ(requests, adapter.tool.commands().size());
}

TEST(SensorRefresh, ChangedSignalsInOrderAlsoOnFailureWhichKeepsValues)
{
    Adapter adapter;
    adapter.tool.addReply("010d", replyFor(0x0D, 42));
    adapter.tool.addReply("010d", "NO DATA\r\r>");
    Ecu ecu;
    NumericSensor sensor(ecu, speedParameter(0x0D, integerFormatter()));
    sensor.setIndex(4);
    sensor.setProxy(&adapter.proxy);
    ChangeRecorder recorder;
    recorder.attach(&sensor);

    sensor.updateNow();
    ASSERT_TRUE(waitFor([&] { return recorder.events.size() == 3; }));
    EXPECT_EQ((std::vector<std::string>{"changed()", "changed(4)", "changed(0,13)"}), recorder.events);

    sensor.updateNow();
    ASSERT_TRUE(waitFor([&] { return recorder.events.size() == 6; }));
    EXPECT_EQ(QString("42"), sensor.getValues().front()->getValue());
    EXPECT_EQ(1u, sensor.getNumericValues().front()->getSampleCount());
    EXPECT_FALSE(sensor.isQueued());
}

TEST(SensorRefresh, WithoutProxyEveryTickStillTellsListeners)
{
    Sensor sensor(Ecu(), speedParameter());
    ChangeRecorder recorder;
    recorder.attach(&sensor);
    sensor.setUpdateInterval(20);
    sensor.start();
    EXPECT_TRUE(sensor.isActive());
    ASSERT_TRUE(waitFor([&] { return recorder.count("changed()") >= 3; }));
    sensor.stop();
    EXPECT_FALSE(sensor.isActive());
    EXPECT_TRUE(sensor.getValues().front()->getValue().isEmpty());
}

TEST(SensorRefresh, TicksOutpacingASlowExchangeAreSkipped)
{
    Adapter adapter;
    adapter.tool.setReply("010d", replyFor(0x0D, 50));
    adapter.tool.setReplyDelayMs(400);
    NumericSensor sensor(Ecu(), speedParameter());
    sensor.setIndex(7);
    sensor.setProxy(&adapter.proxy);
    ChangeRecorder recorder;
    recorder.attach(&sensor);
    LogCapture::instance().clear();

    sensor.setUpdateInterval(50);
    sensor.start();
    ASSERT_TRUE(waitFor([&] { return recorder.count("changed()") >= 2; }));
    sensor.stop();
    ASSERT_TRUE(waitFor([&] { return !sensor.isQueued(); }));

    LogCapture::Record record = LogCapture::instance().find("already queued ");
    ASSERT_NE(-1, record.line);
    EXPECT_EQ("already queued 7", record.message);
    EXPECT_EQ(LOG_DEBUG, record.level);
    EXPECT_NE(std::string::npos, record.file.find("common/sensor.cpp"));
    // Never more than one request in flight: every request was answered.
    EXPECT_EQ(recorder.count("changed()"), adapter.tool.commands().size());
    EXPECT_GE(LogCapture::instance().count("already queued 7"), 2u);
}

TEST(SensorRefresh, StopLetsTheQueuedRequestComplete)
{
    Adapter adapter;
    adapter.tool.setReply("010d", replyFor(0x0D, 77));
    adapter.tool.setReplyDelayMs(100);
    NumericSensor sensor(Ecu(), speedParameter(0x0D, integerFormatter()));
    sensor.setProxy(&adapter.proxy);
    ChangeRecorder recorder;
    recorder.attach(&sensor);
    sensor.start();
    sensor.stop();
    EXPECT_TRUE(sensor.isQueued());
    ASSERT_TRUE(waitFor([&] { return recorder.count("changed()") == 1; }));
    EXPECT_EQ(QString("77"), sensor.getValues().front()->getValue());
}

TEST(SensorLifetime, DestroyedWhileItsRefreshRunsNeitherCrashesNorLeaks)
{
    Adapter adapter;
    adapter.tool.setReply("010d", replyFor(0x0D, 50));
    adapter.tool.setReplyDelayMs(200);
    // Parameters of earlier tests may still be on their way out.
    ASSERT_TRUE(WorkerThread::flush(5000));
    int before = FakeMeasurable::liveCount();
    for (int round = 0; round < 3; ++round) {
        SCOPED_TRACE(round);
        NumericSensor* sensor = new NumericSensor(Ecu(), speedParameter());
        sensor->setProxy(&adapter.proxy);
        size_t sent = adapter.tool.commands().size();
        sensor->start();
        ASSERT_TRUE(waitFor([&] { return adapter.tool.commands().size() > sent; }));
        delete sensor;
        spin(20);
    }
    EXPECT_TRUE(WorkerThread::flush(5000));
    spin(20);
    EXPECT_EQ(before, FakeMeasurable::liveCount());
}

TEST(SensorLifetime, UpdateDoneQueuedForADestroyedSensorIsDropped)
{
    Adapter adapter;
    adapter.tool.setReply("010d", replyFor(0x0D, 50));
    // Parameters of earlier tests may still be on their way out.
    ASSERT_TRUE(WorkerThread::flush(5000));
    int before = FakeMeasurable::liveCount();
    NumericSensor* sensor = new NumericSensor(Ecu(), speedParameter());
    sensor->setProxy(&adapter.proxy);
    sensor->updateNow();
    spin(5);
    // Without running this thread's loop: the exchange ends and its
    // updateDone waits in this thread's queue.
    ASSERT_TRUE(WorkerThread::flush(5000));
    EXPECT_EQ(1u, adapter.tool.commands().size());
    delete sensor;
    spin(50);
    EXPECT_TRUE(WorkerThread::flush(5000));
    EXPECT_EQ(before, FakeMeasurable::liveCount());
}

TEST(SensorLifetime, DestroyedWithRequestStillQueuedBehindOthers)
{
    // A slow exchange of another sensor keeps the worker busy; the queued
    // request of the destroyed sensor is never sent.
    Adapter adapter;
    adapter.tool.setReply("010c", replyFor(0x0C, 1));
    adapter.tool.setReply("010d", replyFor(0x0D, 2));
    adapter.tool.setReplyDelayMs(150);
    // Parameters of earlier tests may still be on their way out.
    ASSERT_TRUE(WorkerThread::flush(5000));
    int before = FakeMeasurable::liveCount();
    NumericSensor busy(Ecu(), speedParameter(0x0C));
    busy.setProxy(&adapter.proxy);
    NumericSensor* doomed = new NumericSensor(Ecu(), speedParameter(0x0D));
    doomed->setProxy(&adapter.proxy);
    busy.updateNow();
    spin(5);
    ASSERT_TRUE(waitFor([&] { return adapter.tool.commands().size() == 1; }));
    doomed->updateNow();
    spin(5);
    delete doomed;
    ASSERT_TRUE(waitFor([&] { return !busy.isQueued(); }));
    EXPECT_TRUE(WorkerThread::flush(5000));
    EXPECT_EQ(std::vector<std::string>{"010c"}, adapter.tool.commands());
    EXPECT_EQ(before + 1, FakeMeasurable::liveCount());
}

TEST(SensorLifetime, ManySensorsCreatedAndDestroyedWhileRefreshing)
{
    Adapter adapter;
    for (unsigned char pid : {0x05, 0x0C, 0x0D})
        adapter.tool.setReply(commandFor(pid), replyFor(pid, 9));
    adapter.tool.setReplyDelayMs(2);
    ASSERT_TRUE(WorkerThread::flush(5000));
    int before = FakeMeasurable::liveCount();
    for (int round = 0; round < 30; ++round) {
        std::vector<std::unique_ptr<NumericSensor>> sensors;
        for (unsigned char pid : {0x05, 0x0C, 0x0D}) {
            sensors.emplace_back(new NumericSensor(Ecu(), speedParameter(pid)));
            sensors.back()->setProxy(&adapter.proxy);
            sensors.back()->setUpdateInterval(3);
            sensors.back()->start();
        }
        spin(round % 7);
        // Destroyed in a different order each round.
        std::rotate(sensors.begin(), sensors.begin() + round % 3, sensors.end());
        sensors.clear();
    }
    EXPECT_TRUE(WorkerThread::flush(10000));
    EXPECT_EQ(before, FakeMeasurable::liveCount());
}
