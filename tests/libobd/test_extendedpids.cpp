// Service 01 PIDs from 0x40 on: expected values worked out by hand from the
// SAE J1979 scalings, never read back from the catalogue.
#include "ecu.h"
#include "measurableparameter.h"
#include "powertrain/fueltype.h"
#include "powertrain/parameterfactory.h"
#include "sensorinfo.h"
#include "unittable.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <memory>
#include <string>
#include <vector>

using namespace Obd;

namespace {

struct Row
{
    const char* name;
    unsigned char pid;
    std::vector<unsigned char> data;
    unsigned int index; // which value of the PID
    float metric;
    float imperial;
    const char* metricUnit;
};

const Row ROWS[] = {
    { "module voltage: 0x3602 / 1000 = 13.826 V", 0x42, { 0x36, 0x02 }, 0, 13.826f, 13.826f, "V" },
    { "absolute load: 0x0100 * 100 / 255 = 100.39 %", 0x43, { 0x01, 0x00 }, 0, 100.392f, 100.392f, "%" },
    { "commanded ratio: 0x8000 / 32768 = 1", 0x44, { 0x80, 0x00 }, 0, 1.0f, 1.0f, "" },
    { "ambient: 0x3A - 40 = 18 C = 64.4 F", 0x46, { 0x3A }, 0, 18.0f, 64.4f, "\u00b0C" },
    { "pedal D: 0xFF * 100 / 255 = 100 %", 0x49, { 0xFF }, 0, 100.0f, 100.0f, "%" },
    { "time since clear: 0x0334 = 820 min", 0x4E, { 0x03, 0x34 }, 0, 820.0f, 820.0f, "min" },
    { "maximum air flow: 0x19 * 10 = 250 g/s", 0x50, { 0x19, 0, 0, 0 }, 0, 250.0f, 33.069f, "g/s" },
    { "absolute evap: 0x4E20 / 200 = 100 kPa = 14.50 psi", 0x53, { 0x4E, 0x20 }, 0, 100.0f, 14.5038f, "kPa" },
    { "evap signed: 0xFF38 = -200 Pa", 0x54, { 0xFF, 0x38 }, 0, -200.0f, -0.80293f, "Pa" },
    { "secondary trim bank 3: (0x90 - 128) * 100 / 128 = 12.5 %", 0x55, { 0x80, 0x90 }, 1, 12.5f, 12.5f, "%" },
    { "oil: 0x00 - 40 = -40 C = -40 F", 0x5C, { 0x00 }, 0, -40.0f, -40.0f, "\u00b0C" },
    { "injection timing: (0x7000 - 26880) / 128 = 14 deg", 0x5D, { 0x70, 0x00 }, 0, 14.0f, 14.0f, "\u00b0" },
    { "injection timing floor: (0 - 26880) / 128 = -210 deg", 0x5D, { 0x00, 0x00 }, 0, -210.0f, -210.0f, "\u00b0" },
    { "fuel rate: 0x00FA / 20 = 12.5 L/h = 3.302 gal/h", 0x5E, { 0x00, 0xFA }, 0, 12.5f, 3.30215f, "L/h" },
    { "actual torque: 0x00 - 125 = -125 %", 0x62, { 0x00 }, 0, -125.0f, -125.0f, "%" },
    { "reference torque: 0x0190 = 400 Nm = 295.02 lb-ft", 0x63, { 0x01, 0x90 }, 0, 400.0f, 295.025f, "Nm" },
    { "coolant sensor 2: 0x64 - 40 = 60 C", 0x67, { 0x03, 0x50, 0x64 }, 1, 60.0f, 140.0f, "\u00b0C" },
    { "particulate filter: 0x0FA0 / 10 - 40 = 360 C", 0x7C, { 0x0F, 0xA0 }, 0, 360.0f, 680.0f, "\u00b0C" },
    { "vehicle fuel mass rate: 0x0064 / 50 = 2 g/s", 0x9D, { 0x00, 0x32, 0x00, 0x64 }, 1, 2.0f, 0.264555f, "g/s" },
    { "exhaust flow: 0x03E8 / 5 = 200 kg/h = 440.9 lb/h", 0x9E, { 0x03, 0xE8 }, 0, 200.0f, 440.925f, "kg/h" },
    { "cylinder fuel: 0x0040 / 32 = 2 mg/stroke", 0xA2, { 0x00, 0x40 }, 0, 2.0f, 2.0f, "mg/stroke" },
    { "odometer: 0x0001E240 / 10 = 12345.6 km = 7671.2 mi", 0xA6, { 0x00, 0x01, 0xE2, 0x40 }, 0, 12345.6f, 7671.19f, "km" },
};

} // namespace

TEST(ExtendedPids, DecodeByTheStandardsScalingInBothUnitSystems)
{
    const Ecu ecu(0x7E8, 3, "ISO 15765-4 (CAN 11/500)");
    for (const Row& row : ROWS) {
        SCOPED_TRACE(row.name);
        std::unique_ptr<PowertrainParameter> pid(ParameterFactory::create(row.pid));
        auto* measurable = dynamic_cast<MeasurableParameter*>(pid.get());
        ASSERT_NE(nullptr, measurable);
        ASSERT_TRUE(pid->decode(ecu.getId(), row.data));
        std::vector<float> metric, imperial;
        measurable->getValues(ecu, US_METRIC, metric);
        measurable->getValues(ecu, US_IMPERIAL, imperial);
        ASSERT_GT(metric.size(), row.index);
        EXPECT_NEAR(row.metric, metric[row.index], 0.002 * std::max(1.0f, std::abs(row.metric)));
        EXPECT_NEAR(row.imperial, imperial[row.index], 0.002 * std::max(1.0f, std::abs(row.imperial)));
        std::vector<SensorInfo*> infos;
        pid->getSensorInfos(infos);
        ASSERT_GT(infos.size(), row.index);
        EXPECT_EQ(std::string(row.metricUnit), unitText(infos[row.index]->getUnit(US_METRIC)));
    }
}

TEST(ExtendedPids, WrongLengthsAreRefusedAndFreezeFramesUseTheSameRows)
{
    std::unique_ptr<PowertrainParameter> voltage(ParameterFactory::create(0x42));
    EXPECT_FALSE(voltage->decode(0x7E8, { 0x36 }));
    std::unique_ptr<PowertrainParameter> odometer(ParameterFactory::create(0xA6));
    EXPECT_FALSE(odometer->decode(0x7E8, { 0x00, 0x01, 0xE2 }));

    std::unique_ptr<PowertrainParameter> frozen(ParameterFactory::create(0x5E, 2));
    ASSERT_NE(nullptr, frozen);
    std::vector<unsigned char> request;
    frozen->buildRequest(request);
    ASSERT_GE(request.size(), 2u);
    EXPECT_EQ(0x02, request[0]);
    EXPECT_EQ(0x5E, request[1]);

    EXPECT_EQ(0xA6, ParameterFactory::pidByName("odometer"));
    EXPECT_EQ(0x42, ParameterFactory::pidByName("0x42"));
    EXPECT_EQ(nullptr, ParameterFactory::create(0x5F)); // bit-encoded, not in the catalogue
}

TEST(ExtendedPids, FuelTypeNamesTheFuelAndSaysWhenACodeIsReserved)
{
    const Ecu ecu(0x7E8, 3, "ISO 15765-4 (CAN 11/500)");
    FuelType fuel;
    ASSERT_TRUE(fuel.decode(ecu.getId(), { 0x04 }));
    std::vector<std::string> texts;
    fuel.getFormattedValues(ecu, US_METRIC, texts);
    EXPECT_EQ(std::vector<std::string>{ "Diesel" }, texts);
    EXPECT_EQ("ISO/SAE reserved (48)", FuelType::typeText(0x30));
}
