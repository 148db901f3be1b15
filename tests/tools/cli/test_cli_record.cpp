// zarvane-cli record and report end to end against the simulator.

#include "cliapplication.h"
#include "dtcreader.h"
#include "htmlreport.h"
#include "simlink.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <csignal>
#include <fstream>
#include <regex>
#include <sstream>
#include <thread>

#include <sys/wait.h>
#include <unistd.h>

namespace {

struct Outcome
{
    int code;
    std::string err;
};

Outcome runCli(const ElmSim::ElmSimServer& server, std::vector<std::string> args)
{
    args.insert(args.begin(), {"--port", std::to_string(server.port())});
    std::ostringstream out, err;
    std::istringstream in;
    Cli::CliApplication cli(out, err, in);
    const int code = cli.run(args);
    return Outcome{code, err.str()};
}

std::vector<std::vector<std::string>> readCsv(const std::string& path, bool& wholeLines)
{
    std::ifstream file(path);
    std::stringstream all;
    all << file.rdbuf();
    const std::string text = all.str();
    wholeLines = text.empty() || text.back() == '\n';
    std::vector<std::vector<std::string>> rows;
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        rows.emplace_back();
        std::istringstream cells(line + ",");
        for (std::string cell; std::getline(cells, cell, ',');)
            rows.back().push_back(cell);
    }
    return rows;
}

std::string tempPath(const std::string& name)
{
    return ::testing::TempDir() + "zarvane-" + std::to_string(getpid()) + "-" + name;
}

std::string html(std::string text)
{
    for (size_t at = 0; (at = text.find_first_of("&\"", at)) != std::string::npos; at += 2)
        text.replace(at, 1, text[at] == '&' ? "&amp;" : "&quot;");
    return text;
}

} // namespace

TEST(CliRecord, ColumnsPerPidAndEcuHoldTheFrozenValues)
{
    struct Column
    {
        unsigned char pid;
        unsigned int ecu;
        const char* header;
    };
    struct Row
    {
        const char* name;
        const char* profile;
        std::vector<std::string> pids;
        std::vector<Column> columns;
    } rows[] = {
        {"can11: rpm from the engine, speed from engine and gearbox", "can11", {"rpm", "0D"},
         {{0x0C, 0x7E8, "Engine RPM [RPM] (ECU 7E8)"}, {0x0D, 0x7E8, "(ECU 7E8)"}, {0x0D, 0x7E9, "[km/h] (ECU 7E9)"}}},
        {"a PID no ECU has keeps an empty column", "can11", {"coolant", "5C"},
         {{0x05, 0x7E8, "Engine Coolant Temperature [\u00b0C] (ECU 7E8)"}, {0x5C, 0x7E8, "(ECU 7E8)"}}},
        {"K-line: the ECUs by their source addresses", "kwp", {"0C,0D"},
         {{0x0C, 0x11, "(ECU 011)"}, {0x0D, 0x11, "(ECU 011)"}, {0x0D, 0x18, "(ECU 018)"}}},
    };
    const std::regex iso(R"(\d{4}-\d\d-\d\dT\d\d:\d\d:\d\d\.\d{3}[+-]\d\d:\d\d)");
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        ElmSim::ElmSimServer server(SimLink::quickOptions(row.profile));
        ASSERT_TRUE(server.start());
        const std::string path = tempPath("record.csv");
        std::vector<std::string> args = {"--period", "50", "--count", "3", "--out", path, "record"};
        args.insert(args.end(), row.pids.begin(), row.pids.end());
        const Outcome run = runCli(server, args);
        EXPECT_EQ(0, run.code) << run.err;
        bool whole = false;
        const auto csv = readCsv(path, whole);
        ASSERT_EQ(4u, csv.size());
        ASSERT_EQ(row.columns.size() + 1, csv[0].size());
        for (size_t c = 0; c < row.columns.size(); ++c) {
            const std::string& header = csv[0][c + 1];
            EXPECT_EQ(header.size() - std::string(row.columns[c].header).size(), header.rfind(row.columns[c].header))
                << header;
        }
        for (size_t r = 1; r < csv.size(); ++r) {
            ASSERT_EQ(csv[0].size(), csv[r].size());
            EXPECT_TRUE(std::regex_match(csv[r][0], iso)) << csv[r][0];
            EXPECT_TRUE(r == 1 || csv[r - 1][0] <= csv[r][0]);
            for (size_t c = 0; c < row.columns.size(); ++c) {
                const double truth = server.profile().physicalValue(row.columns[c].ecu, row.columns[c].pid, 0);
                const std::string& cell = csv[r][c + 1];
                if (std::isnan(truth)) {
                    EXPECT_EQ("", cell);
                } else {
                    ASSERT_FALSE(cell.empty()) << csv[0][c + 1];
                    EXPECT_NEAR(truth, std::stod(cell), 0.5) << csv[0][c + 1];
                }
            }
        }
        std::remove(path.c_str());
    }
}

TEST(CliRecord, AKilledRecordingKeepsWholeRows)
{
    ElmSim::ElmSimServer server(SimLink::quickOptions("can11"));
    ASSERT_TRUE(server.start());
    const std::string path = tempPath("killed.csv");
    // The real executable in a process of its own: a forked copy of this
    // multi-threaded test could inherit a lock held by the simulator's thread.
    const std::string cli = ZARVANE_BINARY_DIR "/tools/cli/zarvane-cli";
    const std::string port = std::to_string(server.port());
    const pid_t child = fork();
    ASSERT_GE(child, 0);
    if (child == 0) {
        execl(cli.c_str(), cli.c_str(), "--port", port.c_str(), "--period", "20", "--out", path.c_str(),
              "record", "rpm", "speed", static_cast<char*>(nullptr));
        _exit(127);
    }
    // Several flushes written, then killed without a chance to close the file.
    bool whole = false;
    const auto deadline = std::chrono::steady_clock::now() + std::chrono::seconds(30);
    while (readCsv(path, whole).size() < 40 && std::chrono::steady_clock::now() < deadline)
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    kill(child, SIGKILL);
    int status = 0;
    waitpid(child, &status, 0);
    const auto csv = readCsv(path, whole);
    EXPECT_TRUE(whole);
    ASSERT_GE(csv.size(), 40u);
    for (const auto& row : csv) {
        ASSERT_EQ(csv[0].size(), row.size());
    }
    EXPECT_EQ("780", csv.back()[1]);
    std::remove(path.c_str());
}

TEST(CliReport, ThePageHoldsTheVinEveryCodeAndTheVerdict)
{
    for (const char* profile : {"can11", "can29", "kwp", "diesel"}) {
        SCOPED_TRACE(profile);
        ElmSim::ElmSimServer server(SimLink::quickOptions(profile));
        ASSERT_TRUE(server.start());
        const std::string path = tempPath("report.html");
        const Outcome run = runCli(server, {"--out", path, "report"});
        EXPECT_EQ(0, run.code) << run.err;
        std::ifstream file(path);
        std::stringstream all;
        all << file.rdbuf();
        const std::string page = all.str();
        bool ready = true;
        for (const ElmSim::EcuProfile& ecu : server.profile().ecus) {
            if (ecu.supportsInfoType(0x02) && !ecu.vin.empty()) {
                EXPECT_NE(std::string::npos, page.find(ecu.vin));
            }
            for (const auto* list : {&ecu.storedDtcs, &ecu.pendingDtcs}) {
                for (const std::string& code : *list) {
                    const std::string description = Obd::DtcReader::instance().getDescription(code);
                    EXPECT_NE(std::string::npos, page.find("<code>" + code + "</code></td><td>" + html(description)))
                        << code;
                }
            }
            const ElmSim::Readiness& r = ecu.readiness;
            if (ecu.supportsPid(1, 0x01) &&
                (ecu.milOn() || (r.continuousSupported & r.continuousIncomplete) ||
                 (r.nonContinuousSupported & r.nonContinuousIncomplete)))
                ready = false;
        }
        EXPECT_EQ(ready, page.find("Ready for an emissions inspection") != std::string::npos);
        EXPECT_EQ(!ready, page.find("Not ready for an emissions inspection") != std::string::npos);
        for (const char* network : {"<script", "http:", "https:", "<link", "src="}) {
            EXPECT_EQ(std::string::npos, page.find(network)) << network;
        }
        std::remove(path.c_str());
    }
}

TEST(CliReport, TextFromTheCarIsEscapedAndAnUnreadItemSaidSo)
{
    Obd::HtmlReport::Data data;
    data.adapter = "ELM327 <b>v9</b>";
    Obd::HtmlReport::Ecu ecu;
    ecu.id = "7E8";
    ecu.vin = "<script>alert('x')</script>";
    ecu.calibrationIds = {"CAL&\"\x1b[2J"};
    ecu.hasStatus = true;
    ecu.codesWhy = "adapter error: <CAN ERROR>";
    data.ecus.push_back(ecu);
    const std::string page = Obd::HtmlReport::render(data);
    for (const char* raw : {"<script>", "<b>", "CAL&\"", "\x1b"}) {
        EXPECT_EQ(std::string::npos, page.find(raw)) << raw;
    }
    for (const char* shown : {"&lt;script&gt;alert(&#39;x&#39;)", "&lt;b&gt;v9", "CAL&amp;&quot;&#27;[2J",
                              "could not read (adapter error: &lt;CAN ERROR&gt;)"}) {
        EXPECT_NE(std::string::npos, page.find(shown)) << shown;
    }
    // Codes and readiness not read: said so, never shown as none or as ready.
    EXPECT_EQ(std::string::npos, page.find(">none<"));
    EXPECT_EQ(std::string::npos, page.find("Ready for"));
    EXPECT_NE(std::string::npos, page.find("ECU 7E8: readiness could not read"));
    // Read, MIL off, every supported monitor complete: ready; one incomplete: named.
    data.ecus[0].statusRead = true;
    data.ecus[0].monitors = {{"Catalyst", Obd::HtmlReport::MONITOR_COMPLETE},
                             {"EGR", Obd::HtmlReport::MONITOR_NOT_SUPPORTED}};
    EXPECT_NE(std::string::npos, Obd::HtmlReport::render(data).find("Ready for an emissions inspection"));
    data.ecus[0].monitors[0].state = Obd::HtmlReport::MONITOR_INCOMPLETE;
    EXPECT_NE(std::string::npos, Obd::HtmlReport::render(data).find("<li>ECU 7E8: Catalyst not ready</li>"));
}
