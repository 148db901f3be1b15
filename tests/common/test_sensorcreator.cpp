#include "fakeproxy.h"
#include "fakescantool.h"
#include "numericsensor.h"
#include "numericsensorvalue.h"
#include "sensorcreator.h"
#include "sensortesthelpers.h"
#include "sensorvalue.h"
#include "workerthread.h"

#include <gtest/gtest.h>

#include <memory>

using namespace Obd;

TEST(SensorCreator, MakesSensorsForCataloguePids)
{
    struct Row
    {
        const char* name;
        unsigned char pid;
        bool sensor;
        bool numeric;
    } rows[] = {
        {"engine speed: numeric", 0x0C, true, true},
        {"vehicle speed: numeric", 0x0D, true, true},
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

TEST(SensorCreator, CatalogueNamesAndUnits)
{
    std::unique_ptr<NumericSensor> speed(SensorCreator::createNumericSensor(Ecu(), 0x0D));
    ASSERT_TRUE(speed);
    EXPECT_EQ(QString("Vehicle Speed Sensor"), speed->getTitle());
    SensorValue* value = speed->getValues().front();
    EXPECT_EQ(QString("0x0D"), value->getPid());
    EXPECT_EQ(QString("km/h"), value->getUnit());
    speed->setUnitSystem(US_IMPERIAL);
    EXPECT_EQ(QString("mph"), value->getUnit());
    // 255 km/h is about 158.45 mph.
    EXPECT_NEAR(158.45, speed->getNumericValues().front()->getRangeMaximum(), 0.5);

    std::unique_ptr<Sensor> fuel(SensorCreator::createSensor(Ecu(), 0x03));
    ASSERT_TRUE(fuel);
    ASSERT_EQ(2, fuel->getValues().size());
    EXPECT_EQ(fuel->getName() + ": " + fuel->getValues()[0]->getDescription() + ", "
                  + fuel->getValues()[1]->getDescription(),
              fuel->getTitle());
}

TEST(SensorCreator, CatalogueSensorRefreshesInBothUnitSystems)
{
    FakeScantool tool(PROTOCOL_CAN_11BIT, false);
    tool.setReply("010d", "41 0D 64\r\r>"); // 100 km/h
    FakeProxy proxy(&tool);
    std::unique_ptr<NumericSensor> speed(SensorCreator::createNumericSensor(Ecu(), 0x0D));
    ASSERT_TRUE(speed);
    speed->setProxy(&proxy);
    int changes = 0;
    QObject::connect(speed.get(), qOverload<>(&Sensor::changed), [&changes] { ++changes; });
    speed->updateNow();
    ASSERT_TRUE(waitFor([&] { return changes == 1; }));
    NumericSensorValue* numeric = speed->getNumericValues().front();
    EXPECT_EQ(QString("100"), speed->getValues().front()->getValue());
    EXPECT_FLOAT_EQ(100.0f, numeric->getNumericValue());
    speed->setUnitSystem(US_IMPERIAL);
    EXPECT_NEAR(62.1, numeric->getNumericValue(), 0.1);
    EXPECT_EQ(QString("62"), speed->getValues().front()->getValue());
    EXPECT_EQ(1u, tool.commands().size());
}
