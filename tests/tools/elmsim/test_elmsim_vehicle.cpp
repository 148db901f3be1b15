// The vehicle data: bitmaps derived from the PID lists, code bytes, check
// bytes, and live values that decode (with SAE J1979 formulas written out
// here) to the profile's physical values.

#include "dtccode.h"
#include "elmsimserver.h"
#include "fastoptions.h"
#include "frameformatter.h"
#include "profilecatalog.h"
#include "simclient.h"
#include "vehiclemodel.h"

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

namespace {

ElmSim::Profile load(const std::string& name)
{
    ElmSim::Profile profile;
    EXPECT_TRUE(ElmSim::ProfileCatalog::find(name, profile)) << name;
    return profile;
}

TEST(ElmSimVehicle, BitmapsAreDerivedFromThePidLists)
{
    struct Row {
        const char* name;
        const char* profile;
        uint32_t ecu;
        uint8_t service;
        uint8_t range;
        uint32_t expected;
    };
    const Row rows[] = {
        { "can11 engine 01 00, next range bit set", "can11", 0x7E8, 0x01, 0x00, 0xBE3FB813 },
        { "can11 engine 01 20 with the next range", "can11", 0x7E8, 0x01, 0x20, 0x8007A011 },
        { "can11 engine 01 40, last range", "can11", 0x7E8, 0x01, 0x40, 0x44848000 },
        { "can11 gearbox 01 00, no next range", "can11", 0x7E9, 0x01, 0x00, 0x80080010 },
        { "can11 engine 02 00", "can11", 0x7E8, 0x02, 0x00, 0x5E3A8000 },
        { "can11 engine 06 00: MID 01 and more beyond", "can11", 0x7E8, 0x06, 0x00, 0x80000001 },
        { "can11 engine 06 A0: MID A2", "can11", 0x7E8, 0x06, 0xA0, 0x40000000 },
        { "can11 engine 09 00", "can11", 0x7E8, 0x09, 0x00, 0x55400000 },
        { "iso9141 engine 09 00: info types 1-8", "iso9141", 0x10, 0x09, 0x00, 0xFF000000 },
        { "kwp gearbox 01 00", "kwp", 0x18, 0x01, 0x00, 0x80080000 },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        const ElmSim::Profile profile = load(row.profile);
        EXPECT_EQ(profile.supportBitmap(row.ecu, row.service, row.range), row.expected);
    }
}

TEST(ElmSimVehicle, OxygenSensorTidBitmap)
{
    const ElmSim::Profile profile = load("iso9141");
    EXPECT_EQ(profile.oxygenSensorTidBitmap(0x10, 0x01, 0x00), 0xCF000000u);
    EXPECT_EQ(profile.oxygenSensorTidBitmap(0x10, 0x04, 0x00), 0u);   // no sensor there
}

TEST(ElmSimVehicle, TroubleCodeTextToBytes)
{
    struct Row {
        const char* code;
        bool valid;
        uint8_t a;
        uint8_t b;
    };
    const Row rows[] = {
        { "P0133", true, 0x01, 0x33 }, { "C0123", true, 0x41, 0x23 }, { "U0100", true, 0xC1, 0x00 },
        { "B1ABC", true, 0x9A, 0xBC }, { "P3497", true, 0x34, 0x97 }, { "P4000", false, 0, 0 },
        { "X0100", false, 0, 0 },      { "P013", false, 0, 0 },       { "P01G3", false, 0, 0 },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.code);
        uint8_t bytes[2] = { 0, 0 };
        ASSERT_EQ(ElmSim::DtcCode::toBytes(row.code, bytes), row.valid);
        if (row.valid) {
            EXPECT_EQ(bytes[0], row.a);
            EXPECT_EQ(bytes[1], row.b);
        }
    }
}

TEST(ElmSimVehicle, CheckBytes)
{
    const std::string check = "123456789";
    const auto* bytes = reinterpret_cast<const uint8_t*>(check.data());
    EXPECT_EQ(ElmSim::FrameFormatter::j1850Crc(bytes, check.size()), 0x4B);   // CRC-8/SAE-J1850 check value
    const uint8_t kwp[] = { 0x84, 0xF1, 0x10, 0x41, 0x0C, 0x1A, 0xF8 };
    EXPECT_EQ(ElmSim::FrameFormatter::sumChecksum(kwp, sizeof(kwp)), 0xE4);   // 740 mod 256
}

TEST(ElmSimVehicle, EcuNameUsesTheTwentyByteLayout)
{
    const ElmSim::Profile profile = load("can11");
    const std::string name = profile.ecu(0x7E8)->ecuName20();
    EXPECT_EQ(name, std::string("ECM\0-EngineControl\0\0", 20));
}

TEST(ElmSimVehicle, MonitorStatusFollowsTheCodes)
{
    struct Row {
        const char* profile;
        uint32_t ecu;
        double a;                        // MIL bit and code count
        double b;
    };
    const Row rows[] = {
        { "can11", 0x7E8, 0x82, 0x07 },  // two stored codes that light the lamp
        { "can11", 0x7E9, 0x00, 0x04 },  // pending only
        { "can29", 0x18DAF118, 0x01, 0x04 },   // a stored code that does not light it
        { "diesel", 0x7E8, 0x81, 0x0F }, // compression ignition bit
        { "j1850vpw", 0x10, 0x00, 0x07 },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(std::string(row.profile) + " " + std::to_string(row.ecu));
        const ElmSim::Profile profile = load(row.profile);
        EXPECT_EQ(profile.physicalValue(row.ecu, 0x01, 0.0, 0), row.a);
        EXPECT_EQ(profile.physicalValue(row.ecu, 0x01, 0.0, 1), row.b);
    }
}

TEST(ElmSimVehicle, LiveValuesBehaveLikeADrivenCar)
{
    const ElmSim::Profile profile = load("can11");
    const ElmSim::VehicleModel model(profile.vehicle);
    const ElmSim::VehicleState cold = model.stateAt(0.0);
    const ElmSim::VehicleState warm = model.stateAt(600.0);
    EXPECT_DOUBLE_EQ(cold.coolantC, profile.vehicle.ambientC);
    EXPECT_GT(warm.coolantC, 85.0);
    EXPECT_LT(warm.coolantC, 91.0);
    EXPECT_EQ(cold.speedKmh, 0.0);
    EXPECT_LT(warm.fuelLevelPercent, cold.fuelLevelPercent);

    // Over a whole loop: idle rpm when standing, one gear's ratio when moving,
    // more air at higher rpm, distance never going back.
    double lastDistance = -1.0;
    for (double t = 0.0; t < 300.0; t += 2.5) {
        SCOPED_TRACE(t);
        const ElmSim::VehicleState s = model.stateAt(t);
        EXPECT_GE(s.distanceKm, lastDistance);
        lastDistance = s.distanceKm;
        if (s.gear == 0) {
            EXPECT_NEAR(s.rpm, profile.vehicle.idleRpm, 20.0);
            continue;
        }
        const double wheelRpm = s.speedKmh / 3.6 / profile.vehicle.tyreCircumferenceM * 60.0;
        const double ratio = profile.vehicle.gearRatios[s.gear - 1] * profile.vehicle.finalDrive;
        if (wheelRpm * ratio > profile.vehicle.idleRpm + 150.0) {
            EXPECT_NEAR(s.rpm / wheelRpm, ratio, 1e-6);
        }
        EXPECT_GT(s.mafGs, 1.0);
        EXPECT_GE(s.upstreamO2Volts, 0.05);
        EXPECT_LE(s.upstreamO2Volts, 0.9);
    }
    EXPECT_GT(model.stateAt(200.0).mafGs, model.stateAt(10.0).mafGs);
    // About 4 km per loop of the drive cycle.
    EXPECT_NEAR(model.distanceAt(300.0), 4.0, 1.0);
    EXPECT_NEAR(model.distanceAt(900.0), 3 * model.distanceAt(300.0), 1e-9);
}

// Independent J1979 decoders for the values compared below.
struct DecodeRow {
    const char* name;
    uint8_t pid;
    int index;
    std::function<double(const std::vector<int>&)> decode;
    double tolerance;
};

std::vector<int> parseBytes(const std::string& line)
{
    std::vector<int> bytes;
    std::istringstream in(line);
    std::string hex;
    while (in >> hex)
        bytes.push_back(std::stoi(hex, nullptr, 16));
    return bytes;
}

const std::vector<DecodeRow> DECODERS = {
    { "engine load", 0x04, 0, [](const std::vector<int>& d) { return d[0] * 100.0 / 255.0; }, 0.4 },
    { "coolant", 0x05, 0, [](const std::vector<int>& d) { return d[0] - 40.0; }, 0.5 },
    { "short trim", 0x06, 0, [](const std::vector<int>& d) { return (d[0] - 128) * 100.0 / 128.0; }, 0.4 },
    { "long trim", 0x07, 0, [](const std::vector<int>& d) { return (d[0] - 128) * 100.0 / 128.0; }, 0.4 },
    { "MAP", 0x0B, 0, [](const std::vector<int>& d) { return d[0]; }, 0.5 },
    { "rpm", 0x0C, 0, [](const std::vector<int>& d) { return (d[0] * 256 + d[1]) / 4.0; }, 0.125 },
    { "speed", 0x0D, 0, [](const std::vector<int>& d) { return d[0]; }, 0.5 },
    { "timing", 0x0E, 0, [](const std::vector<int>& d) { return d[0] / 2.0 - 64.0; }, 0.25 },
    { "intake air", 0x0F, 0, [](const std::vector<int>& d) { return d[0] - 40.0; }, 0.5 },
    { "MAF", 0x10, 0, [](const std::vector<int>& d) { return (d[0] * 256 + d[1]) / 100.0; }, 0.005 },
    { "throttle", 0x11, 0, [](const std::vector<int>& d) { return d[0] * 100.0 / 255.0; }, 0.2 },
    { "O2 B1S1 volts", 0x14, 0, [](const std::vector<int>& d) { return d[0] * 0.005; }, 0.0025 },
    { "O2 B1S1 trim", 0x14, 1, [](const std::vector<int>& d) { return (d[1] - 128) * 100.0 / 128.0; }, 0.4 },
    { "run time", 0x1F, 0, [](const std::vector<int>& d) { return d[0] * 256 + d[1]; }, 0.5 },
    { "distance with MIL", 0x21, 0, [](const std::vector<int>& d) { return d[0] * 256 + d[1]; }, 0.5 },
    { "fuel level", 0x2F, 0, [](const std::vector<int>& d) { return d[0] * 100.0 / 255.0; }, 0.2 },
    { "warm-ups", 0x30, 0, [](const std::vector<int>& d) { return d[0]; }, 0.0 },
    { "distance since clear", 0x31, 0, [](const std::vector<int>& d) { return d[0] * 256 + d[1]; }, 0.5 },
    { "catalyst", 0x3C, 0, [](const std::vector<int>& d) { return (d[0] * 256 + d[1]) / 10.0 - 40.0; }, 0.05 },
    { "module volts", 0x42, 0, [](const std::vector<int>& d) { return (d[0] * 256 + d[1]) / 1000.0; }, 0.0005 },
    { "ambient", 0x46, 0, [](const std::vector<int>& d) { return d[0] - 40.0; }, 0.5 },
};

TEST(ElmSimVehicle, AnswersDecodeToThePhysicalValues)
{
    ElmSim::ServerOptions options = fastOptions("can11");
    options.frozen = false;              // a moving car: times checked below
    ElmSim::ElmSimServer server(options);
    ASSERT_TRUE(server.start()) << server.errorString();
    SimClient client;
    ASSERT_TRUE(client.connectTo(server.port()));
    ASSERT_EQ(client.exchange("ATE0"), "ATE0\rOK\r\r>");
    ASSERT_EQ(client.exchange("ATSP6"), "OK\r\r>");
    ASSERT_EQ(client.exchange("ATH1"), "OK\r\r>");
    for (const DecodeRow& row : DECODERS) {
        SCOPED_TRACE(row.name);
        char request[8];
        std::snprintf(request, sizeof(request), "01%02X", row.pid);
        const std::string reply = client.exchange(request);
        const size_t start = reply.find("7E8 ");
        ASSERT_NE(start, std::string::npos) << reply;
        const std::vector<int> frame = parseBytes(reply.substr(start + 4, reply.find('\r', start) - start - 4));
        ASSERT_GE(frame.size(), 3u);
        ASSERT_EQ(frame[1], 0x41);
        ASSERT_EQ(frame[2], row.pid);
        const std::vector<int> data(frame.begin() + 3, frame.begin() + 1 + frame[0]);
        // The car moves between request and check: accept values from any
        // instant of a short window around the exchange.
        const double decoded = row.decode(data);
        bool matched = false;
        double nearest = 0.0;
        for (double t = 0.0; t < 10.0 && !matched; t += 0.001) {
            const double truth = server.profile().physicalValue(0x7E8, row.pid, t, row.index);
            if (std::fabs(truth - decoded) <= row.tolerance + 1e-9)
                matched = true;
            if (t == 0.0 || std::fabs(truth - decoded) < std::fabs(nearest - decoded))
                nearest = truth;
        }
        EXPECT_TRUE(matched) << "decoded " << decoded << ", nearest truth " << nearest;
    }
}

TEST(ElmSimVehicle, FrozenAnswersMatchTimeZeroExactly)
{
    ElmSim::ElmSimServer server(fastOptions("kwp"));
    ASSERT_TRUE(server.start()) << server.errorString();
    SimClient client;
    ASSERT_TRUE(client.connectTo(server.port()));
    ASSERT_EQ(client.exchange("ATE0"), "ATE0\rOK\r\r>");
    ASSERT_EQ(client.exchange("ATSP5"), "OK\r\r>");
    for (const DecodeRow& row : DECODERS) {
        if (!server.profile().ecu(0x11)->supportsPid(0x01, row.pid))
            continue;
        SCOPED_TRACE(row.name);
        char request[8];
        std::snprintf(request, sizeof(request), "01%02X", row.pid);
        const std::string reply = client.exchange(request);
        const std::vector<int> line = parseBytes(reply.substr(0, reply.find('\r')));
        ASSERT_GE(line.size(), 3u) << reply;
        const std::vector<int> data(line.begin() + 2, line.end());
        EXPECT_NEAR(row.decode(data), server.profile().physicalValue(0x11, row.pid, 0.0, row.index),
                    row.tolerance + 1e-9);
    }
}

TEST(ElmSimVehicle, FreezeFrameHoldsTheValuesOfItsMoment)
{
    ElmSim::ElmSimServer server(fastOptions("can11"));
    ASSERT_TRUE(server.start()) << server.errorString();
    SimClient client;
    ASSERT_TRUE(client.connectTo(server.port()));
    ASSERT_EQ(client.exchange("ATE0"), "ATE0\rOK\r\r>");
    ASSERT_EQ(client.exchange("ATSP6"), "OK\r\r>");
    const std::string reply = client.exchange("020C00");
    const std::vector<int> line = parseBytes(reply.substr(0, reply.find('\r')));
    ASSERT_EQ(line.size(), 5u) << reply;
    EXPECT_EQ(line[0], 0x42);
    const double rpm = (line[3] * 256 + line[4]) / 4.0;
    EXPECT_NEAR(rpm, server.profile().freezeFrameValue(0x7E8, 0x0C), 0.125);
    EXPECT_GT(rpm, 1000.0);              // stored while driving, not at idle
}

TEST(ElmSimVehicle, EveryProfileListsOnlyPidsItCanEncode)
{
    for (const std::string& name : ElmSim::ProfileCatalog::names()) {
        const ElmSim::Profile profile = load(name);
        for (const ElmSim::EcuProfile& ecu : profile.ecus) {
            for (uint8_t pid : ecu.pids01) {
                SCOPED_TRACE(name + " PID " + std::to_string(pid));
                EXPECT_FALSE(std::isnan(profile.physicalValue(ecu.id, pid, 10.0)));
            }
        }
    }
}

} // namespace
