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
#include <set>

using namespace Obd;

namespace {

const unsigned char PID_ENGINE_RPM = 0x0C;

// A numeric engine-speed sensor on the simulated adapter over TCP, with the
// engine running (values not frozen).
class SensorOverSimulator : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ElmSim::ServerOptions options = SimLink::quickOptions("can11");
        options.frozen = false;
        link.reset(new SimLink(options));
        ASSERT_EQ(LinkOpener::LO_OK, link->open()) << LogCapture::instance().dump();
        EcuPtr ecu = link->proxy().getFirstEcu();
        ASSERT_TRUE(ecu);
        sensor.reset(SensorCreator::createNumericSensor(*ecu, PID_ENGINE_RPM));
        ASSERT_TRUE(sensor);
        sensor->setProxy(&link->proxy());
        QObject::connect(sensor.get(), qOverload<>(&Sensor::changed), [this] {
            ++changes;
            texts.insert(sensor->getValues().front()->getValue());
        });
    }

    void TearDown() override
    {
        // No exchange may outlive the link it runs on.
        if (sensor) {
            sensor->stop();
            waitFor([this] { return !sensor->isQueued(); }, 20000);
        }
        sensor.reset();
        EXPECT_TRUE(WorkerThread::flush(20000));
        link.reset();
    }

    std::unique_ptr<SimLink> link;
    std::unique_ptr<NumericSensor> sensor;
    int changes = 0;
    std::set<QString> texts;
};

} // namespace

TEST_F(SensorOverSimulator, EngineSpeedRefreshedEverySecondChanges)
{
    EXPECT_EQ(1000, sensor->getUpdateInterval());
    sensor->start();
    ASSERT_TRUE(waitFor([this] { return changes >= 4; }, 30000));
    NumericSensorValue* rpm = sensor->getNumericValues().front();
    EXPECT_GE(rpm->getSampleCount(), 4u);
    EXPECT_GE(texts.size(), 2u) << "engine speed never changed";
    EXPECT_LT(rpm->getPeakMinimum(), rpm->getPeakMaximum());
    EXPECT_GT(rpm->getAverage(), 0.0f);
    EXPECT_EQ(QString("RPM"), sensor->getValues().front()->getUnit());
    for (const QString& text : texts)
        EXPECT_FALSE(text.isEmpty());
}

TEST_F(SensorOverSimulator, AdapterSlowerThanTheTimeoutMakesTicksSkip)
{
    // 1500 ms per request: longer than the one-second tick and than the
    // parameter's 1200 ms time limit, so refreshes fail, but never pile up.
    link->server().setDelay(1500);
    sensor->setIndex(3);
    LogCapture::instance().clear();
    int requestsBefore = link->server().requestCount();
    sensor->start();
    ASSERT_TRUE(waitFor([this] { return changes >= 3; }, 30000));
    sensor->stop();
    ASSERT_TRUE(waitFor([this] { return !sensor->isQueued(); }, 20000));
    EXPECT_GE(LogCapture::instance().count("already queued 3", LOG_DEBUG), 1u);
    EXPECT_LE(link->server().requestCount() - requestsBefore, changes);
}

TEST_F(SensorOverSimulator, SlowButAnsweringAdapterSkipsTicksAndStillDelivers)
{
    link->server().setDelay(800);
    sensor->setUpdateInterval(500);
    sensor->setIndex(5);
    LogCapture::instance().clear();
    int requestsBefore = link->server().requestCount();
    NumericSensorValue* rpm = sensor->getNumericValues().front();
    sensor->start();
    ASSERT_TRUE(waitFor([rpm] { return rpm->getSampleCount() >= 3; }, 30000));
    sensor->stop();
    ASSERT_TRUE(waitFor([this] { return !sensor->isQueued(); }, 20000));
    EXPECT_GE(LogCapture::instance().count("already queued 5", LOG_DEBUG), 1u);
    // One request per delivered refresh: skipped ticks sent nothing.
    EXPECT_EQ(changes, link->server().requestCount() - requestsBefore);
    EXPECT_EQ(unsigned(changes), rpm->getSampleCount());
}
