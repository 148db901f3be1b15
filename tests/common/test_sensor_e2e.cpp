// Catalogue sensors on the simulated adapter over TCP.

#include "logcapture.h"
#include "numericsensor.h"
#include "numericsensorvalue.h"
#include "sensorcreator.h"
#include "sensortesthelpers.h"
#include "sensorvalue.h"
#include "simlink.h"
#include "trlog.h"
#include "workerthread.h"

#include <gtest/gtest.h>

#include <memory>

using namespace Obd;

namespace {

class SensorOverSimulator : public ::testing::Test
{
protected:
    // A can11 car frozen at idle behind the link; the sensor of pid on it.
    std::unique_ptr<NumericSensor> create(unsigned char pid)
    {
        if (!link) {
            link.reset(new SimLink("can11"));
            EXPECT_EQ(LinkOpener::LO_OK, link->open()) << LogCapture::instance().dump();
        }
        EcuPtr ecu = link->proxy().getFirstEcu();
        EXPECT_TRUE(ecu);
        std::unique_ptr<NumericSensor> sensor(ecu ? SensorCreator::createNumericSensor(*ecu, pid) : nullptr);
        if (sensor)
            sensor->setProxy(&link->proxy());
        return sensor;
    }

    void TearDown() override
    {
        // No exchange may outlive the link it runs on.
        EXPECT_TRUE(WorkerThread::flush(20000));
        link.reset();
    }

    std::unique_ptr<SimLink> link;
};

} // namespace

TEST(SensorCreator, MakesSensorsForCataloguePidsOnly)
{
    struct Row { const char* name; unsigned char pid; bool sensor; bool numeric; } rows[] = {
        {"engine speed: numeric", 0x0C, true, true},
        {"fuel system status: text only", 0x03, true, false},
        {"PID outside the catalogue", 0x7F, false, false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        std::unique_ptr<Sensor> sensor(SensorCreator::createSensor(Ecu(), row.pid));
        EXPECT_EQ(row.sensor, sensor != nullptr);
        std::unique_ptr<NumericSensor> numeric(SensorCreator::createNumericSensor(Ecu(), row.pid));
        EXPECT_EQ(row.numeric, numeric != nullptr);
        if (numeric) {
            EXPECT_EQ(row.pid, numeric->getPid());
            EXPECT_EQ(numeric->getValues().size(), numeric->getNumericValues().size());
        }
    }
    EXPECT_TRUE(WorkerThread::flush(5000));
}

TEST_F(SensorOverSimulator, FrozenCarReadsInBothUnitSystemsWithOneRequest)
{
    struct Row
    {
        const char* name;
        unsigned char pid;
        float metric;
        const char* metricText;
        float imperial;
        const char* imperialText;
    } rows[] = {
        {"idle: 0x0C30 / 4 = 780 rpm", 0x0C, 780, "780", 780, "780"},
        {"coolant: 0x3A - 40 = 18 C = 18 x 1.8 + 32 = 64.4 F", 0x05, 18, "18", 64.4f, "64"},
        {"standing: 0 km/h = 0 mph", 0x0D, 0, "0", 0, "0"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        std::unique_ptr<NumericSensor> sensor = create(row.pid);
        ASSERT_TRUE(sensor);
        int changes = 0;
        QObject::connect(sensor.get(), qOverload<>(&Sensor::changed), [&changes] { ++changes; });
        const int requests = link->server().requestCount();
        sensor->updateNow();
        ASSERT_TRUE(waitFor([&] { return changes == 1; }));
        NumericSensorValue* value = sensor->getNumericValues().front();
        EXPECT_NEAR(row.metric, value->getNumericValue(), 0.01);
        EXPECT_EQ(QString(row.metricText), sensor->getValues().front()->getValue());
        sensor->setUnitSystem(US_IMPERIAL);
        EXPECT_NEAR(row.imperial, value->getNumericValue(), 0.01);
        EXPECT_EQ(QString(row.imperialText), sensor->getValues().front()->getValue());
        EXPECT_EQ(1u, value->getSampleCount());
        EXPECT_EQ(requests + 1, link->server().requestCount());
    }
}

TEST_F(SensorOverSimulator, ChangedSignalsInOrderAlsoOnAnErrorWordWhichKeepsValues)
{
    std::unique_ptr<NumericSensor> sensor = create(0x0C);
    ASSERT_TRUE(sensor);
    sensor->setIndex(4);
    std::vector<std::string> events;
    QObject::connect(sensor.get(), qOverload<>(&Sensor::changed), [&] { events.push_back("changed()"); });
    QObject::connect(sensor.get(), qOverload<int>(&Sensor::changed),
                     [&](int i) { events.push_back("changed(" + std::to_string(i) + ")"); });
    QObject::connect(sensor.get(), qOverload<int, int>(&Sensor::changed), [&](int ecu, int pid) {
        events.push_back("changed(" + std::to_string(ecu) + "," + std::to_string(pid) + ")");
    });
    sensor->updateNow();
    ASSERT_TRUE(waitFor([&] { return events.size() == 3; }));
    EXPECT_EQ((std::vector<std::string>{"changed()", "changed(4)", "changed(2024,12)"}), events); // 0x7E8, 0x0C
    link->server().injectError("NO DATA", 1);
    sensor->updateNow();
    ASSERT_TRUE(waitFor([&] { return events.size() == 6; }));
    EXPECT_EQ(QString("780"), sensor->getValues().front()->getValue());
    EXPECT_EQ(1u, sensor->getNumericValues().front()->getSampleCount());
}

TEST_F(SensorOverSimulator, SlowAdapterSkipsTicksAndStopLetsTheLastOneFinish)
{
    std::unique_ptr<NumericSensor> sensor = create(0x0C);
    ASSERT_TRUE(sensor);
    link->server().setDelay(300);
    int changes = 0;
    QObject::connect(sensor.get(), qOverload<>(&Sensor::changed), [&changes] { ++changes; });
    sensor->setUpdateInterval(50);
    sensor->setIndex(5);
    LogCapture::instance().clear();
    const int requestsBefore = link->server().requestCount();
    NumericSensorValue* rpm = sensor->getNumericValues().front();
    sensor->start();
    ASSERT_TRUE(waitFor([&] { return LogCapture::instance().count("already queued 5", LOG_DEBUG) >= 2; }, 30000));
    sensor->stop();
    ASSERT_TRUE(waitFor([&] { return !sensor->isQueued(); }, 20000));
    EXPECT_EQ(QString("780"), sensor->getValues().front()->getValue());
    // One request per delivered refresh: skipped ticks sent nothing.
    EXPECT_EQ(changes, link->server().requestCount() - requestsBefore);
    EXPECT_EQ(unsigned(changes), rpm->getSampleCount());
}
