// The vehicle data on the wire: check bytes, and live values
// that decode (with SAE J1979 formulas written out here) to the profile's
// physical values.

#include "frameformatter.h"
#include "simclient.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <sstream>

namespace {

TEST(ElmSimVehicle, CheckBytes)
{
    const std::string check = "123456789";
    const auto* bytes = reinterpret_cast<const uint8_t*>(check.data());
    EXPECT_EQ(ElmSim::FrameFormatter::j1850Crc(bytes, check.size()), 0x4B); // CRC-8/SAE-J1850 check value
    const uint8_t kwp[] = { 0x84, 0xF1, 0x10, 0x41, 0x0C, 0x1A, 0xF8 };
    EXPECT_EQ(ElmSim::FrameFormatter::sumChecksum(kwp, sizeof(kwp)), 0xE4); // 740 mod 256
}

std::vector<int> parseBytes(const std::string& line)
{
    std::vector<int> bytes;
    std::istringstream in(line);
    for (std::string hex; in >> hex;)
        bytes.push_back(std::stoi(hex, nullptr, 16));
    return bytes;
}

typedef double (*Decode)(const std::vector<int>& d);
const struct DecodeRow {
    const char* name;
    uint8_t pid;
    int index;
    Decode decode;
    double tolerance;
} DECODERS[] = { // one row per encoding family
    { "engine load", 0x04, 0, [](const std::vector<int>& d) { return d[0] * 100.0 / 255.0; }, 0.4 },
    { "coolant", 0x05, 0, [](const std::vector<int>& d) { return d[0] - 40.0; }, 0.5 },
    { "short trim", 0x06, 0, [](const std::vector<int>& d) { return (d[0] - 128) * 100.0 / 128.0; }, 0.4 },
    { "rpm", 0x0C, 0, [](const std::vector<int>& d) { return (d[0] * 256 + d[1]) / 4.0; }, 0.125 },
    { "speed", 0x0D, 0, [](const std::vector<int>& d) { return 1.0 * d[0]; }, 0.5 },
    { "timing", 0x0E, 0, [](const std::vector<int>& d) { return d[0] / 2.0 - 64.0; }, 0.25 },
    { "MAF", 0x10, 0, [](const std::vector<int>& d) { return (d[0] * 256 + d[1]) / 100.0; }, 0.005 },
    { "O2 B1S1 volts", 0x14, 0, [](const std::vector<int>& d) { return d[0] * 0.005; }, 0.0025 },
    { "O2 B1S1 trim", 0x14, 1, [](const std::vector<int>& d) { return (d[1] - 128) * 100.0 / 128.0; }, 0.4 },
    { "run time", 0x1F, 0, [](const std::vector<int>& d) { return d[0] * 256.0 + d[1]; }, 0.5 },
    { "catalyst", 0x3C, 0, [](const std::vector<int>& d) { return (d[0] * 256 + d[1]) / 10.0 - 40.0; }, 0.05 },
    { "module volts", 0x42, 0, [](const std::vector<int>& d) { return (d[0] * 256 + d[1]) / 1000.0; }, 0.0005 },
};

TEST(ElmSimVehicle, AnswersDecodeToThePhysicalValues)
{
    // A moving can11 car with headers, and a frozen KWP car without.
    const struct {
        const char* name;
        const char* profile;
        bool frozen;
        uint32_t ecu;
        std::vector<std::string> setup;
        size_t skip;                     // bytes before the data: PCI or none, service, PID
    } cars[] = {
        { "can11 moving, headers on", "can11", false, 0x7E8, { "ATSP6", "ATH1" }, 3 },
        { "kwp frozen, headers off", "kwp", true, 0x11, { "ATSP5" }, 2 },
    };
    for (const auto& car : cars) {
        ElmSim::ServerOptions options = SimLink::quickOptions(car.profile);
        options.frozen = car.frozen;
        SimRig rig(options);
        ASSERT_TRUE(rig.open(car.setup));
        const ElmSim::Profile& profile = rig.server.profile();
        for (const DecodeRow& row : DECODERS) {
            if (!profile.ecu(car.ecu)->supportsPid(0x01, row.pid))
                continue;
            SCOPED_TRACE(std::string(car.name) + ": " + row.name);
            char request[8];
            std::snprintf(request, sizeof(request), "01%02X", row.pid);
            std::string reply = rig.client.exchange(request);
            if (car.skip == 3) // the engine's line, without its header
                reply = reply.substr(std::min(reply.size(), reply.find("7E8 ") + 4));
            const std::vector<int> line = parseBytes(reply.substr(0, reply.find('\r')));
            ASSERT_GT(line.size(), car.skip) << reply;
            ASSERT_EQ(line[car.skip - 1], row.pid);
            const size_t end = car.skip == 3 ? 1 + line[0] : line.size(); // CAN: the PCI gives the length
            const double decoded = row.decode(std::vector<int>(line.begin() + car.skip, line.begin() + end));
            // A moving car changes between request and check: accept the
            // value of any instant of a short window around the exchange.
            bool matched = false;
            for (double t = 0.0; t < (car.frozen ? 0.001 : 10.0) && !matched; t += 0.001)
                matched = std::fabs(profile.physicalValue(car.ecu, row.pid, t, row.index) - decoded)
                          <= row.tolerance + 1e-9;
            EXPECT_TRUE(matched) << "decoded " << decoded << ", at t=0 "
                                 << profile.physicalValue(car.ecu, row.pid, 0.0, row.index);
        }
    }
}

} // namespace
