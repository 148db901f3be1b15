// zarvane-cli live through a power cycle of the adapter: elmsim stops and
// starts again on the same port while the command samples.

#include "cliapplication.h"
#include "eventually.h"
#include "simlink.h"

#include <gtest/gtest.h>

#include <atomic>
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
        SharedBuffer outBuffer, errBuffer;
        std::ostream out(&outBuffer), err(&errBuffer);
        std::istringstream in;
        std::atomic<int> code{ -1 };
        std::thread command([&] { code = Cli::CliApplication(out, err, in).run(args); });

        EXPECT_TRUE(eventually([&] { return count(outBuffer.text(), sample) >= 3; })) << errBuffer.text();
        sim->stop();
        if (row.lost) {
            EXPECT_TRUE(eventually([&] { return outBuffer.text().find(row.lost) != std::string::npos; }));
            ElmSim::ServerOptions again = SimLink::quickOptions("can11");
            again.port = port;
            sim.reset(new ElmSim::ElmSimServer(again));
            EXPECT_TRUE(sim->start()) << sim->errorString();
            EXPECT_TRUE(eventually([&] { return outBuffer.text().find(row.back) != std::string::npos; }));
        }
        // A command stuck in its waits is let go rather than left hanging.
        if (!eventually([&] { return code >= 0; }))
            Cli::CliApplication::interrupted() = true;
        command.join();
        Cli::CliApplication::interrupted() = false;
        const std::string text = outBuffer.text();
        if (!row.lost) {
            EXPECT_NE(code, 0);
            EXPECT_NE(errBuffer.text().find("the link to the adapter was lost"), std::string::npos);
            EXPECT_EQ(text.find("-- "), std::string::npos);
            continue;
        }
        EXPECT_EQ(code, 0) << errBuffer.text();
        const size_t back = text.find(row.back);
        ASSERT_NE(back, std::string::npos) << text;
        EXPECT_GT(text.find(sample, back), back) << "no value after the gap";
        EXPECT_EQ(count(text, sample), 40u) << "samples before and after the gap make the count";
    }
}
