// zarvane-cli against a faulty adapter: a dropped link, silence, error words,
// garbage and a slow clone. Each run ends with a clear message and exit code,
// leaves no thread or descriptor behind, and the next run against the same
// adapter works.

#include "cliapplication.h"
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
#include <set>
#include <sstream>
#include <thread>

namespace {

typedef Cli::CliApplication App;

struct Result
{
    int code;
    std::string out;
    std::string err;
};

TEST(CliFaults, EveryFaultEndsWithItsMessageAndExitCode)
{
    const ResourceBaseline baseline;
    std::unique_ptr<ElmSim::ElmSimServer> server(new ElmSim::ElmSimServer(SimLink::quickOptions("can11")));
    ElmSim::ElmSimServer& s = *server;
    ASSERT_TRUE(s.start()) << s.errorString();
    // Runs the command; with a fault, a watcher applies it as soon as the
    // adapter has received `lines` more command lines (AT commands included).
    auto run = [&s](std::vector<std::string> args, const std::function<void()>& fault = nullptr, size_t lines = 0) {
        args.insert(args.begin(), {"--port", std::to_string(s.port())});
        const size_t before = s.requestLog().size();
        std::atomic<bool> done(false);
        std::thread watcher([&] {
            while (fault && !done && s.requestLog().size() < before + lines)
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
            if (fault && !done)
                fault();
        });
        std::ostringstream out, err;
        std::istringstream in;
        App cli(out, err, in);
        const int code = cli.run(args);
        done = true;
        watcher.join();
        return Result{code, out.str(), err.str()};
    };

    // Command lines and OBD requests of a clean opening (the closing ATZ excluded).
    Result opening = run({"info"});
    ASSERT_EQ(App::EXIT_OK, opening.code) << opening.err;
    const size_t lines = s.requestLog().size() - 1;
    const int requests = s.requestCount();

    const std::string lost = "the link to the adapter was lost";
    const std::string unanswered = "did not answer the trouble-code requests";
    const std::set<int> failed = {App::EXIT_FAILED};
    const std::set<int> notReached = {App::EXIT_NOT_REACHED};
    struct Row
    {
        std::string name;
        std::vector<std::string> args;
        std::function<void()> before; // applied before the run
        std::function<void()> after;  // applied by the watcher after `lines` + late lines
        size_t late;
        std::set<int> codes;
        std::string message;
    };
    std::vector<Row> rows = {
        {"dropped at the first request", {"info"}, [&] { s.setDropAfter(0); }, nullptr, 0, notReached, lost},
        {"dropped during discovery", {"info"}, [&] { s.setDropAfter(3); }, nullptr, 0, notReached, lost},
        {"dropped reading codes", {"dtc"}, [&] { s.setDropAfter(requests); }, nullptr, 0, failed, lost},
        {"dropped clearing codes", {"--yes", "clear"}, [&] { s.setDropAfter(requests); }, nullptr, 0, failed, lost},
        {"dropped polling live values", {"live", "0C", "--period", "50", "--count", "1000"},
         [&] { s.setDropAfter(requests + 10); }, nullptr, 0, failed, lost},
        {"silent from the start", {"info"}, [&] { s.setSilent(true); }, nullptr, 0, {App::EXIT_NOT_IDENTIFIED},
         "did not identify"},
        {"error word during discovery", {"info"}, [&] { s.injectError("UNABLE TO CONNECT", 1000); }, nullptr, 0,
         notReached, "the vehicle did not answer"},
        // A small delay holds the adapter inside the request the watcher waits
        // for: the last of discovery, or (error words) the first after it.
        {"silent after discovery", {"dtc"}, [&] { s.setDelay(30); }, [&] { s.setSilent(true); }, 0, failed,
         unanswered},
        {"silent after discovery, live", {"live", "0C", "--period", "50", "--count", "2"}, [&] { s.setDelay(30); },
         [&] { s.setSilent(true); }, 0, failed, "could not read"},
        {"garbage before the prompt: a result or a clear message", {"--json", "info"}, [&] { s.setGarbage(8); },
         nullptr, 0, {App::EXIT_OK, App::EXIT_NOT_REACHED, App::EXIT_NOT_IDENTIFIED}, ""},
        {"a slow clone still delivers live values", {"live", "0C", "--period", "300", "--count", "2"},
         [&] { s.setDelay(100); }, nullptr, 0, {App::EXIT_OK}, ""},
    };
    for (const char* word : {"NO DATA", "UNABLE TO CONNECT", "BUFFER FULL", "BUS BUSY", "BUS ERROR", "CAN ERROR",
                             "DATA ERROR", "<DATA ERROR", "<RX ERROR", "FB ERROR", "LV RESET", "STOPPED", "ERR94"})
        rows.push_back({std::string("error word after discovery: ") + word, {"dtc"}, [&] { s.setDelay(30); },
                        [&s, word] { s.injectError(word, 1000); }, 1, failed, std::string("adapter error: ") + word});

    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        row.before();
        Result result = run(row.args, row.after, lines + row.late);
        EXPECT_EQ(1u, row.codes.count(result.code)) << result.code << " " << result.err;
        EXPECT_NE(std::string::npos, result.err.find(row.message)) << result.err;
        if (result.code != App::EXIT_OK) {
            EXPECT_FALSE(result.err.empty());
        }
        if (row.codes == failed && row.message != lost) { // an error word or silence is not a lost link
            EXPECT_EQ(std::string::npos, result.err.find("lost")) << result.err;
        }
        s.setDropAfter(-1);
        s.setSilent(false);
        s.setDelay(0);
        s.setGarbage(0);
        s.injectError("", 0);
    }
    // The next run works, and the dropped clear request never reached the car.
    Result dtc = run({"--json", "dtc"});
    ASSERT_EQ(App::EXIT_OK, dtc.code) << dtc.err;
    const QJsonArray ecus = QJsonDocument::fromJson(QByteArray::fromStdString(dtc.out)).object()["ecus"].toArray();
    ASSERT_EQ(2, ecus.size());
    EXPECT_FALSE(ecus[0].toObject()["stored"].toArray().isEmpty());
    server.reset();
    baseline.expectNothingLeaked();
}

} // namespace
