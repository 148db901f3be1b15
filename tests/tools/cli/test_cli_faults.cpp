// zarvane-cli against a faulty adapter: a dropped link, silence, error words,
// garbage and a slow clone. Each run ends with a clear message and exit code
// within the time-outs, leaves no thread or descriptor behind, and the next
// run against the same adapter works.

#include "cliapplication.h"
#include "elmsimserver.h"
#include "resourcebaseline.h"
#include "simlink.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <functional>
#include <memory>
#include <sstream>
#include <thread>

namespace {

using Clock = std::chrono::steady_clock;
typedef Cli::CliApplication App;

struct Result
{
    int code;
    std::string out;
    std::string err;
    double seconds;
    QJsonObject json() const { return QJsonDocument::fromJson(QByteArray::fromStdString(out)).object(); }
    bool says(const std::string& text) const { return err.find(text) != std::string::npos; }
};

class CliFaults : public ::testing::Test
{
protected:
    void SetUp() override
    {
        baseline.reset(new ResourceBaseline);
        start(SimLink::quickOptions("can11"));
    }

    void start(const ElmSim::ServerOptions& options)
    {
        if (server)
            server->stop();
        server.reset(new ElmSim::ElmSimServer(options));
        ASSERT_TRUE(server->start()) << server->errorString();
    }

    void TearDown() override
    {
        server->stop();
        server.reset();
        baseline->expectNothingLeaked();
    }

    Result run(std::vector<std::string> args)
    {
        std::vector<std::string> all = { "--port", std::to_string(server->port()) };
        all.insert(all.end(), args.begin(), args.end());
        std::ostringstream out;
        std::ostringstream err;
        std::istringstream in;
        App cli(out, err, in);
        const Clock::time_point begin = Clock::now();
        const int code = cli.run(all);
        const double seconds = std::chrono::duration<double>(Clock::now() - begin).count();
        return Result{ code, out.str(), err.str(), seconds };
    }

    // Runs the command while a watcher calls fault() once the adapter has
    // received `lines` more command lines (AT commands included).
    Result runWithFaultAfter(size_t lines, const std::function<void()>& fault,
                             std::vector<std::string> args)
    {
        const size_t before = server->requestLog().size();
        std::atomic<bool> done(false);
        std::thread watcher([&] {
            while (!done) {
                if (server->requestLog().size() >= before + lines) {
                    fault();
                    return;
                }
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
            }
        });
        Result result = run(args);
        done = true;
        watcher.join();
        return result;
    }

    // Command lines and OBD requests of a clean opening (the closing ATZ excluded).
    void measureOpening(size_t& lines, int& requests)
    {
        const size_t linesBefore = server->requestLog().size();
        const int requestsBefore = server->requestCount();
        Result info = run({ "info" });
        ASSERT_EQ(App::EXIT_OK, info.code) << info.err;
        lines = server->requestLog().size() - linesBefore - 1;
        requests = server->requestCount() - requestsBefore;
    }

    void expectNextRunWorks()
    {
        Result info = run({ "--json", "info" });
        EXPECT_EQ(App::EXIT_OK, info.code) << info.err;
        EXPECT_EQ(2, info.json()["ecus"].toArray().size());
    }

    std::unique_ptr<ElmSim::ElmSimServer> server;

private:
    std::unique_ptr<ResourceBaseline> baseline;
};

TEST_F(CliFaults, LinkDroppedDuringDiscoverySaysTheLinkWasLost)
{
    for (int dropAfter : { 0, 3 }) {
        SCOPED_TRACE(dropAfter);
        server->setDropAfter(dropAfter);
        Result info = run({ "info" });
        EXPECT_EQ(App::EXIT_NOT_REACHED, info.code);
        EXPECT_TRUE(info.says("the link to the adapter was lost")) << info.err;
        EXPECT_LT(info.seconds, 30.0);
        server->setDropAfter(-1);
        expectNextRunWorks();
    }
}

TEST_F(CliFaults, LinkDroppedDuringTroubleCodeReadClearingOrPollingFailsTheCommand)
{
    size_t lines = 0;
    int requests = 0;
    measureOpening(lines, requests);
    struct Row { const char* name; std::vector<std::string> args; int extra; };
    const Row rows[] = {
        { "reading codes", { "dtc" }, 0 },
        { "clearing codes", { "--yes", "clear" }, 0 },
        { "polling live values", { "live", "0C", "--period", "50", "--count", "1000" }, 10 },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        server->setDropAfter(requests + row.extra);
        Result result = run(row.args);
        EXPECT_EQ(App::EXIT_FAILED, result.code);
        EXPECT_TRUE(result.says("the link to the adapter was lost")) << result.err;
        EXPECT_LT(result.seconds, 30.0);
        server->setDropAfter(-1);
    }
    // The dropped clear request never reached the car.
    Result dtc = run({ "--json", "dtc" });
    ASSERT_EQ(App::EXIT_OK, dtc.code) << dtc.err;
    EXPECT_FALSE(dtc.json()["ecus"].toArray()[0].toObject()["stored"].toArray().isEmpty());
}

TEST_F(CliFaults, SilentAdapterFromTheStartIsNotIdentified)
{
    server->setSilent(true);
    Result info = run({ "info" });
    EXPECT_EQ(App::EXIT_NOT_IDENTIFIED, info.code);
    EXPECT_TRUE(info.says("did not identify")) << info.err;
    EXPECT_LT(info.seconds, 30.0);
    server->setSilent(false);
    expectNextRunWorks();
}

TEST_F(CliFaults, AdapterSilentAfterDiscoveryFailsTheTroubleCodeRead)
{
    size_t lines = 0;
    int requests = 0;
    measureOpening(lines, requests);
    // A small delay holds the adapter inside the last discovery request
    // while the watcher switches it silent.
    server->setDelay(30);
    Result dtc = runWithFaultAfter(lines, [&] { server->setSilent(true); }, { "dtc" });
    EXPECT_EQ(App::EXIT_FAILED, dtc.code);
    EXPECT_TRUE(dtc.says("did not answer the trouble-code requests")) << dtc.err;
    EXPECT_LT(dtc.seconds, 30.0);
    server->setSilent(false);
    server->setDelay(0);
    expectNextRunWorks();
}

class CliErrorWords : public CliFaults, public ::testing::WithParamInterface<const char*>
{
};

TEST_P(CliErrorWords, ErrorWordAfterDiscoveryFailsTheTroubleCodeRead)
{
    size_t lines = 0;
    int requests = 0;
    measureOpening(lines, requests);
    server->setDelay(20);
    // The error words start with the first request after discovery.
    Result dtc = runWithFaultAfter(lines + 1, [&] { server->injectError(GetParam(), 1000); }, { "dtc" });
    EXPECT_EQ(App::EXIT_FAILED, dtc.code);
    EXPECT_TRUE(dtc.says("did not answer the trouble-code requests")) << dtc.err;
    EXPECT_LT(dtc.seconds, 30.0);
    EXPECT_FALSE(dtc.says("lost")) << dtc.err; // an error word is an answer, not a lost link
}

INSTANTIATE_TEST_SUITE_P(EveryWord, CliErrorWords,
                         ::testing::Values("NO DATA", "UNABLE TO CONNECT", "BUFFER FULL", "BUS BUSY",
                                           "BUS ERROR", "CAN ERROR", "DATA ERROR", "<DATA ERROR",
                                           "<RX ERROR", "FB ERROR", "LV RESET", "STOPPED", "ERR94"));

TEST_F(CliFaults, ErrorWordDuringDiscoverySaysTheVehicleDidNotAnswer)
{
    server->injectError("UNABLE TO CONNECT", 1000);
    Result opening = run({ "info" });
    EXPECT_EQ(App::EXIT_NOT_REACHED, opening.code);
    EXPECT_TRUE(opening.says("the vehicle did not answer")) << opening.err;
    server->injectError("UNABLE TO CONNECT", 0);
    expectNextRunWorks();
}

TEST_F(CliFaults, GarbageBeforeThePromptEndsInAClearResult)
{
    server->setGarbage(8);
    for (int i = 0; i < 3; ++i) {
        Result info = run({ "--json", "info" });
        EXPECT_TRUE(info.code == App::EXIT_OK || info.code == App::EXIT_NOT_REACHED ||
                    info.code == App::EXIT_NOT_IDENTIFIED)
            << info.code << " " << info.err;
        if (info.code == App::EXIT_OK)
            EXPECT_GE(info.json()["ecus"].toArray().size(), 1);
        else
            EXPECT_FALSE(info.err.empty());
    }
    server->setGarbage(0);
    expectNextRunWorks();
}

TEST_F(CliFaults, SlowCloneAdapterStillDeliversLiveValues)
{
    ElmSim::ServerOptions options = SimLink::quickOptions("can11");
    options.delayMs = 200;
    start(options);
    Result live = run({ "--json", "live", "0C", "--period", "300", "--count", "4" });
    ASSERT_EQ(App::EXIT_OK, live.code) << live.err;
    // One JSON record per line; every record carries the engine speed.
    std::istringstream lines(live.out);
    std::string line;
    int records = 0;
    while (std::getline(lines, line)) {
        QJsonObject record = QJsonDocument::fromJson(QByteArray::fromStdString(line)).object();
        if (!record.contains("values"))
            continue;
        ++records;
        EXPECT_FALSE(record["values"].toArray().isEmpty()) << line;
    }
    EXPECT_EQ(4, records);
}

} // namespace
