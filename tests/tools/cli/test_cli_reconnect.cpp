// zarvane-cli live and record through a power cycle of the adapter: elmsim
// stops and starts again on the same port while the command samples.

#include "cliapplication.h"
#include "eventually.h"
#include "simlink.h"

#include <gtest/gtest.h>

#include <atomic>
#include <cstdio>
#include <fstream>
#include <memory>
#include <mutex>
#include <sstream>
#include <thread>

namespace {

// Output the test reads while the command still writes it.
class SharedBuffer : public std::streambuf
{
public:
    std::string text()
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        return m_text;
    }

protected:
    int overflow(int c) override
    {
        if (c != EOF)
            xsputn(reinterpret_cast<const char*>(&c), 1);
        return c;
    }
    std::streamsize xsputn(const char* s, std::streamsize n) override
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_text.append(s, n);
        return n;
    }

private:
    std::mutex m_mutex;
    std::string m_text;
};

// The simulator again on the port it had.
std::unique_ptr<ElmSim::ElmSimServer> restarted(unsigned short port)
{
    ElmSim::ServerOptions again = SimLink::quickOptions("can11");
    again.port = port;
    std::unique_ptr<ElmSim::ElmSimServer> sim(new ElmSim::ElmSimServer(again));
    return sim->start() ? std::move(sim) : nullptr;
}

// The command on its own thread, its output readable while it runs.
struct Running
{
    explicit Running(const std::vector<std::string>& args)
        : thread([this, args] { code = Cli::CliApplication(out, err, in).run(args); })
    {
    }
    // A command stuck in its waits is let go rather than left hanging.
    void finish()
    {
        if (!eventually([&] { return code >= 0; }))
            Cli::CliApplication::interrupted() = true;
        thread.join();
        Cli::CliApplication::interrupted() = false;
    }
    bool said(const std::string& text) { return outBuffer.text().find(text) != std::string::npos; }

    SharedBuffer outBuffer, errBuffer;
    std::ostream out{ &outBuffer }, err{ &errBuffer };
    std::istringstream in;
    std::atomic<int> code{ -1 };
    std::thread thread;
};

size_t count(const std::string& text, const std::string& word)
{
    size_t n = 0;
    for (size_t at = text.find(word); at != std::string::npos; at = text.find(word, at + 1))
        ++n;
    return n;
}

} // namespace

TEST(CliReconnect, LiveGoesOnThroughARestartedAdapterOnlyWhenAsked)
{
    // lost: the line that marks the gap; null: the command ends with the link.
    struct Row { const char* name; std::vector<std::string> options; const char* lost; const char* back; };
    const Row rows[] = {
        { "text, --reconnect", { "--reconnect" }, "-- link lost, reconnecting\n", "-- reconnected after " },
        { "JSON, --reconnect", { "--reconnect", "--json" }, "{\"event\":\"link lost, reconnecting\"}",
          "{\"event\":\"reconnected after " },
        { "without --reconnect", {}, nullptr, nullptr },
    };
    const std::string sample = "Engine RPM";
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        std::unique_ptr<ElmSim::ElmSimServer> sim(new ElmSim::ElmSimServer(SimLink::quickOptions("can11")));
        ASSERT_TRUE(sim->start()) << sim->errorString();
        const unsigned short port = sim->port();
        std::vector<std::string> args = row.options;
        args.insert(args.end(), { "--port", std::to_string(port), "live", "0C", "--period", "50", "--count", "40" });
        Running command(args);
        EXPECT_TRUE(eventually([&] { return count(command.outBuffer.text(), sample) >= 3; }))
            << command.errBuffer.text();
        sim->stop();
        if (row.lost) {
            EXPECT_TRUE(eventually([&] { return command.said(row.lost); }));
            sim = restarted(port);
            EXPECT_TRUE(sim);
            EXPECT_TRUE(eventually([&] { return command.said(row.back); }));
        }
        command.finish();
        const std::string text = command.outBuffer.text();
        if (!row.lost) {
            EXPECT_NE(command.code, 0);
            EXPECT_NE(command.errBuffer.text().find("the link to the adapter was lost"), std::string::npos);
            EXPECT_EQ(text.find("-- "), std::string::npos);
            continue;
        }
        EXPECT_EQ(command.code, 0) << command.errBuffer.text();
        const size_t back = text.find(row.back);
        ASSERT_NE(back, std::string::npos) << text;
        EXPECT_GT(text.find(sample, back), back) << "no value after the gap";
        EXPECT_EQ(count(text, sample), 40u) << "samples before and after the gap make the count";
    }
}

TEST(CliReconnect, RecordMarksTheGapWithOneEmptyRowAndGoesOn)
{
    ElmSim::ElmSimServer first(SimLink::quickOptions("can11"));
    ASSERT_TRUE(first.start()) << first.errorString();
    const std::string path = ::testing::TempDir() + "reconnect-record.csv";
    std::remove(path.c_str());
    auto lines = [&] {
        std::ifstream file(path);
        std::vector<std::string> all;
        for (std::string line; std::getline(file, line);)
            all.push_back(line);
        return all;
    };
    Running command({ "--reconnect", "--port", std::to_string(first.port()), "--out", path, "record", "0C", "0D",
                      "--period", "50", "--count", "30" });
    // The file is flushed once a second: a few rows are there before the loss.
    EXPECT_TRUE(eventually([&] { return lines().size() >= 4; })) << command.errBuffer.text();
    first.stop();
    EXPECT_TRUE(eventually([&] { return command.said("-- link lost, reconnecting\n"); }));
    std::unique_ptr<ElmSim::ElmSimServer> second = restarted(first.port());
    EXPECT_TRUE(second);
    command.finish();
    EXPECT_EQ(command.code, 0) << command.errBuffer.text();
    EXPECT_TRUE(command.said("-- reconnected after ")) << command.outBuffer.text();
    EXPECT_TRUE(command.said("30 samples written to " + path + " (1 gap)")) << command.outBuffer.text();
    // Between the header and the last sample one row of a time and empty
    // cells; every other row has every value.
    const std::vector<std::string> rows = lines();
    ASSERT_EQ(rows.size(), 1u + 30u + 1u);
    std::vector<size_t> gaps, partial;
    for (size_t i = 1; i < rows.size(); ++i) {
        const std::string cells = rows[i].substr(rows[i].find(',')) + ',';
        if (cells.find_first_not_of(',') == std::string::npos)
            gaps.push_back(i);
        else if (cells.find(",,") != std::string::npos)
            partial.push_back(i);
    }
    EXPECT_TRUE(partial.empty()) << rows[partial.empty() ? 0 : partial.front()];
    ASSERT_EQ(gaps.size(), 1u);
    EXPECT_GT(gaps.front(), 1u);
    EXPECT_LT(gaps.front(), rows.size() - 1);
}
