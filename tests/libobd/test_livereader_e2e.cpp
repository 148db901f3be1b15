// Live readings against elmsim's genuine-adapter timing model (waits not
// taken): shared CAN requests split per PID and ECU, and the fallbacks.
#include "eventually.h"
#include "ipolllistener.h"
#include "livereader.h"
#include "measurableparameter.h"
#include "messagepoller.h"
#include "sensorfactory.h"
#include "simlink.h"
#include "powertrain/parameterfactory.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cctype>
#include <memory>

using namespace Obd;

namespace {

typedef std::vector<std::string> Lines;

std::unique_ptr<SimLink> genuineLink()
{
    ElmSim::ServerOptions options = SimLink::quickOptions("can11");
    options.timing = "genuine";
    options.timeScale = 0;
    std::unique_ptr<SimLink> link(new SimLink(options));
    return link->open() == LinkOpener::LO_OK ? std::move(link) : nullptr;
}

// The OBD requests the simulator received from line `from` on.
Lines requestsSince(SimLink& link, size_t from)
{
    const Lines log = link.server().requestLog();
    Lines obd;
    for (size_t i = from; i < log.size(); ++i) {
        if (std::toupper(static_cast<unsigned char>(log[i][0])) != 'A')
            obd.push_back(log[i]);
    }
    return obd;
}

// Every PID holds each supporting ECU's true value and nothing from the others.
void expectTrueValues(SimLink& link, const std::vector<std::unique_ptr<PowertrainParameter>>& parameters)
{
    for (const ElmSim::EcuProfile& ecu : link.server().profile().ecus) {
        for (const auto& parameter : parameters) {
            SCOPED_TRACE(testing::Message() << "ECU " << std::hex << ecu.id << " PID " << int(parameter->getPid()));
            std::vector<float> values;
            dynamic_cast<MeasurableParameter&>(*parameter).getValues(*link.proxy().getEcu(ecu.id), US_METRIC, values);
            const bool supports = std::count(ecu.pids01.begin(), ecu.pids01.end(), parameter->getPid()) > 0;
            ASSERT_EQ(supports ? 1u : 0u, values.size());
            if (supports) {
                EXPECT_NEAR(link.server().profile().physicalValue(ecu.id, parameter->getPid(), 0.0), values[0], 0.6);
            }
        }
    }
}

// One reading: what the adapter says to the next requests instead of the
// vehicle, and the OBD requests it then receives.
struct Reading
{
    const char* injected;
    int count;
    Lines requests;
};

struct Row
{
    const char* name;
    std::vector<unsigned char> pids;
    std::vector<Reading> readings;
    bool engineSingleOnly;
    bool expectsCount;
};

} // namespace

TEST(LiveReaderE2e, SharedRequestsAndTheirFallbacks)
{
    const Lines singles = {"010c1", "01051"};
    const Row rows[] = {
        {"one ECU, three PIDs in one request", {0x0C, 0x05, 0x04}, {{"", 0, {"010c05041"}}, {"", 0, {"010c05041"}}}, false, true},
        {"both ECUs answer, the count says two", {0x0C, 0x0D, 0x05}, {{"", 0, {"010c0d052"}}}, false, true},
        {"seven PIDs: six, then one", {0x04, 0x05, 0x0C, 0x0D, 0x0F, 0x10, 0x11},
         {{"", 0, {"0104050c0d0f102", "01111"}}}, false, true},
        {"negative answer: one PID per request from then on", {0x0C, 0x05},
         {{"7E8 03 7F 01 12", 1, {"010c051", "010c1", "01051"}}, {"", 0, singles}}, true, true},
        {"partial answer: the missing PID asked alone", {0x0C, 0x05},
         {{"7E8 04 41 0C 1A F8", 1, {"010c051", "01051"}}, {"", 0, singles}}, true, true},
        {"no data: adaptive timing blamed first, then the shared request", {0x0C, 0x05},
         {{"NO DATA", 2, {"010c051", "010c05", "010c1", "01051"}},
          {"NO DATA", 2, {"010c051", "010c05", "010c1", "01051"}}, {"", 0, singles}}, true, true},
        {"count refused with '?': asked again and dropped", {0x0C}, {{"?", 1, {"010c1", "010c"}}, {"", 0, {"010c"}}}, false, false},
        {"count answered NO DATA once timing is off: dropped", {0x0C},
         {{"NO DATA", 1, {"010c1", "010c"}}, {"NO DATA", 1, {"010c1", "010c"}}, {"", 0, {"010c"}}}, false, false},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        std::unique_ptr<SimLink> link = genuineLink();
        ASSERT_TRUE(link);
        std::vector<std::unique_ptr<PowertrainParameter>> parameters;
        std::vector<LiveReader::Item> items;
        for (unsigned char pid : row.pids) {
            parameters.emplace_back(ParameterFactory::create(pid));
            items.emplace_back(pid, parameters.back().get());
        }
        LiveReader reader(&link->proxy());
        reader.read({}); // adaptive timing on, every ECU timed
        for (const Reading& reading : row.readings) {
            link->server().injectError(reading.injected, reading.count);
            const size_t before = link->server().requestLog().size();
            EXPECT_EQ(std::vector<bool>(items.size(), true), reader.read(items));
            EXPECT_EQ(reading.requests, requestsSince(*link, before));
        }
        expectTrueValues(*link, parameters);
        EXPECT_EQ(row.engineSingleOnly, reader.singleOnly(0x7E8));
        EXPECT_EQ(row.expectsCount, reader.expectsCount());
    }
}

TEST(LiveReaderE2e, PollerAsksForItsDuePidsTogetherAndTunesTheAdapter)
{
    struct Counter : IPollListener
    {
        void onPolled(int, ObdParameter*) override { ++count; }
        std::atomic<int> count{0};
    } listener;
    std::unique_ptr<SimLink> link = genuineLink();
    ASSERT_TRUE(link);
    SensorFactory factory;
    MessagePoller poller(&link->proxy());
    for (unsigned char pid : {0x0C, 0x0D, 0x05})
        poller.addPid(pid, factory, 0, &listener);
    poller.start();
    ASSERT_TRUE(eventually([&] { return listener.count >= 30; }));
    poller.stop();
    ASSERT_TRUE(poller.wait(5000));
    const Lines log = link->server().requestLog();
    EXPECT_GE(std::count(log.begin(), log.end(), "01050c0d2"), 5);
    EXPECT_EQ(1, std::count(log.begin(), log.end(), "ATAT1"));
    EXPECT_EQ(1, std::count(log.begin(), log.end(), "01002")) << "both ECUs timed once";
    EXPECT_EQ(1, std::count_if(log.begin(), log.end(), [](const std::string& l) { return l.rfind("ATST", 0) == 0; }));
}
