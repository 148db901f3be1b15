#include "cliapplication.h"
#include "elmsimserver.h"
#include "profile.h"
#include "serveroptions.h"
#include "simlink.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <set>
#include <sstream>

namespace {

struct Result
{
    int code;
    std::string out;
    std::string err;
    QJsonObject json() const { return QJsonDocument::fromJson(QByteArray::fromStdString(out)).object(); }
};

Result runCli(std::vector<std::string> args, const std::string& input = std::string(),
              bool terminal = false)
{
    std::ostringstream out;
    std::ostringstream err;
    std::istringstream in(input);
    Cli::CliApplication cli(out, err, in);
    cli.setInteractive(terminal, false);
    int code = cli.run(args);
    return Result{code, out.str(), err.str()};
}

// A simulator of the given profile; the arguments to reach it.
struct Sim
{
    ElmSim::ElmSimServer server;
    explicit Sim(const std::string& profile, ElmSim::ServerOptions options = ElmSim::ServerOptions())
        : server([&] {
              ElmSim::ServerOptions o = SimLink::quickOptions(profile);
              o.dropAfter = options.dropAfter;
              o.delayMs = options.delayMs;
              return o;
          }())
    {
        server.start();
    }
    std::vector<std::string> args(std::vector<std::string> rest)
    {
        std::vector<std::string> all = { "--port", std::to_string(server.port()) };
        all.insert(all.end(), rest.begin(), rest.end());
        return all;
    }
};

std::set<std::string> codesOf(const QJsonArray& array)
{
    std::set<std::string> codes;
    for (const QJsonValue& v : array)
        codes.insert(v.toObject()["code"].toString().toStdString());
    return codes;
}

const ElmSim::EcuProfile& ecuAt(const ElmSim::Profile& profile, size_t index)
{
    std::vector<const ElmSim::EcuProfile*> sorted;
    for (const ElmSim::EcuProfile& e : profile.ecus)
        sorted.push_back(&e);
    std::sort(sorted.begin(), sorted.end(),
              [](const ElmSim::EcuProfile* a, const ElmSim::EcuProfile* b) { return a->id < b->id; });
    return *sorted.at(index);
}

class CliByProfile : public ::testing::TestWithParam<const char*>
{
};

} // namespace

TEST_P(CliByProfile, InfoDtcVehicleAndTestsMatchTheProfile)
{
    Sim sim(GetParam());
    const ElmSim::Profile& profile = sim.server.profile();

    Result info = runCli(sim.args({ "--json", "info" }));
    ASSERT_EQ(0, info.code) << info.err;
    QJsonArray ecus = info.json()["ecus"].toArray();
    ASSERT_EQ(static_cast<int>(profile.ecus.size()), ecus.size());
    EXPECT_EQ("ELM327", info.json()["adapter"].toObject()["name"].toString().toStdString());
    EXPECT_EQ(profile.protocolDescription(),
              info.json()["adapter"].toObject()["protocol"].toString().toStdString());
    for (int i = 0; i < ecus.size(); ++i) {
        const ElmSim::EcuProfile& truth = ecuAt(profile, i);
        EXPECT_EQ(truth.id & 0x1FFFFFFF, ecus[i].toObject()["id"].toInteger());
    }

    Result dtc = runCli(sim.args({ "--json", "dtc" }));
    ASSERT_EQ(0, dtc.code) << dtc.err;
    QJsonArray dtcEcus = dtc.json()["ecus"].toArray();
    ASSERT_EQ(static_cast<int>(profile.ecus.size()), dtcEcus.size());
    for (int i = 0; i < dtcEcus.size(); ++i) {
        const ElmSim::EcuProfile& truth = ecuAt(profile, i);
        QJsonObject item = dtcEcus[i].toObject();
        EXPECT_EQ(std::set<std::string>(truth.storedDtcs.begin(), truth.storedDtcs.end()),
                  codesOf(item["stored"].toArray()));
        EXPECT_EQ(std::set<std::string>(truth.pendingDtcs.begin(), truth.pendingDtcs.end()),
                  codesOf(item["pending"].toArray()));
        if (truth.supportsPid(1, 0x01)) {
            EXPECT_EQ(truth.milOn(), item["mil"].toBool());
        }
        for (const QJsonValue& code : item["stored"].toArray())
            EXPECT_FALSE(code.toObject()["description"].toString().isEmpty());
    }

    Result vehicle = runCli(sim.args({ "--json", "vehicle" }));
    ASSERT_EQ(0, vehicle.code) << vehicle.err;
    for (const ElmSim::EcuProfile& truth : profile.ecus) {
        if (truth.supportsInfoType(0x02) && !truth.vin.empty()) {
            EXPECT_EQ(truth.vin, vehicle.json()["vin"].toString().toStdString());
        }
    }

    Result tests = runCli(sim.args({ "--json", "tests" }));
    ASSERT_EQ(0, tests.code) << tests.err;
    size_t monitorRecords = 0;
    size_t oxygenRecords = 0;
    for (const ElmSim::EcuProfile& truth : profile.ecus) {
        monitorRecords += profile.isCan() ? truth.monitorTests.size() : truth.legacyMonitorTests.size();
        oxygenRecords += truth.oxygenSensorTests.size();
    }
    EXPECT_EQ(static_cast<int>(monitorRecords), tests.json()["monitorTests"].toArray().size());
    if (!profile.isCan()) {
        EXPECT_EQ(static_cast<int>(oxygenRecords), tests.json()["oxygenSensorTests"].toArray().size());
    }
}

INSTANTIATE_TEST_SUITE_P(EveryProfile, CliByProfile,
                         ::testing::Values("can11", "can29", "kwp", "iso9141", "j1850vpw", "diesel"),
                         [](const ::testing::TestParamInfo<const char*>& info) {
                             return std::string(info.param);
                         });

TEST(CliClear, ClearWithYesEmptiesTheCodes)
{
    Sim sim("can11");
    Result before = runCli(sim.args({ "--json", "dtc" }));
    ASSERT_EQ(0, before.code);
    ASSERT_FALSE(before.json()["ecus"].toArray()[0].toObject()["stored"].toArray().isEmpty());
    Result clear = runCli(sim.args({ "--json", "--yes", "clear" }));
    ASSERT_EQ(0, clear.code) << clear.err;
    EXPECT_TRUE(clear.json()["cleared"].toBool());
    Result after = runCli(sim.args({ "--json", "dtc" }));
    for (const QJsonValue& ecu : after.json()["ecus"].toArray()) {
        EXPECT_TRUE(ecu.toObject()["stored"].toArray().isEmpty());
        EXPECT_TRUE(ecu.toObject()["pending"].toArray().isEmpty());
        EXPECT_FALSE(ecu.toObject()["mil"].toBool());
    }
}

TEST(CliClear, AsksOnATerminalAndNeedsYesOtherwise)
{
    Sim sim("can11");
    Result refused = runCli(sim.args({ "clear" }));
    EXPECT_EQ(Cli::CliApplication::EXIT_BAD_ARGUMENT, refused.code);
    EXPECT_NE(std::string::npos, refused.err.find("--yes"));
    EXPECT_EQ(0, sim.server.requestCount());

    Result declined = runCli(sim.args({ "clear" }), "n\n", true);
    EXPECT_EQ(Cli::CliApplication::EXIT_FAILED, declined.code);
    Result stillThere = runCli(sim.args({ "--json", "dtc" }));
    EXPECT_FALSE(stillThere.json()["ecus"].toArray()[0].toObject()["stored"].toArray().isEmpty());

    Result accepted = runCli(sim.args({ "clear" }), "y\n", true);
    EXPECT_EQ(0, accepted.code) << accepted.err;
    Result gone = runCli(sim.args({ "--json", "dtc" }));
    EXPECT_TRUE(gone.json()["ecus"].toArray()[0].toObject()["stored"].toArray().isEmpty());
}

TEST(CliClear, RefusedClearFails)
{
    Sim sim("diesel");
    Result clear = runCli(sim.args({ "--json", "--yes", "clear" }));
    EXPECT_EQ(Cli::CliApplication::EXIT_FAILED, clear.code);
    EXPECT_FALSE(clear.json()["cleared"].toBool());
    EXPECT_NE(std::string::npos, clear.err.find("refused"));
}

TEST(CliLive, SamplesWithValuesOfTheProfile)
{
    Sim sim("can11");
    Result live = runCli(sim.args({ "--json", "--period", "300", "--count", "4", "live", "0C", "speed" }));
    ASSERT_EQ(0, live.code) << live.err;
    std::istringstream lines(live.out);
    std::string line;
    int samples = 0;
    bool sawRpm = false;
    double rpmTruth = sim.server.profile().physicalValue(0x7E8, 0x0C, 0.0);
    while (std::getline(lines, line)) {
        QJsonObject record = QJsonDocument::fromJson(QByteArray::fromStdString(line)).object();
        ASSERT_TRUE(record.contains("time")) << line;
        ++samples;
        for (const QJsonValue& v : record["values"].toArray()) {
            QJsonObject value = v.toObject();
            if (value["pid"].toString() == "0C") {
                sawRpm = true;
                // Quarter revolutions are dropped by the decoder.
                EXPECT_NEAR(rpmTruth, value["value"].toString().toDouble(), 1.0);
                EXPECT_EQ("RPM", value["unit"].toString().toStdString());
            }
        }
    }
    EXPECT_EQ(4, samples);
    EXPECT_TRUE(sawRpm);
}

TEST(CliLive, ImperialUnits)
{
    Sim sim("can11");
    Result live = runCli(sim.args({ "--imperial", "--period", "300", "--count", "3", "live", "coolant" }));
    ASSERT_EQ(0, live.code) << live.err;
    EXPECT_NE(std::string::npos, live.out.find("\u00b0F"));
}

TEST(CliErrors, DistinctExitCodes)
{
    Sim none("none");
    Result noVehicle = runCli(none.args({ "info" }));
    EXPECT_EQ(Cli::CliApplication::EXIT_NOT_REACHED, noVehicle.code);
    EXPECT_NE(std::string::npos, noVehicle.err.find("vehicle"));

    unsigned short unused = 0;
    {
        Sim gone("can11");
        unused = gone.server.port();
    }
    Result refused = runCli({ "--port", std::to_string(unused), "info" });
    EXPECT_EQ(Cli::CliApplication::EXIT_CANNOT_CONNECT, refused.code);

    Result badHost = runCli({ "--host", "no-such-host.invalid", "info" });
    EXPECT_EQ(Cli::CliApplication::EXIT_CANNOT_CONNECT, badHost.code);

    ElmSim::ServerOptions quiet = SimLink::quickOptions("can11");
    quiet.identify = false;
    ElmSim::ElmSimServer mute(quiet);
    ASSERT_TRUE(mute.start());
    Result unidentified = runCli({ "--port", std::to_string(mute.port()), "info" });
    EXPECT_EQ(Cli::CliApplication::EXIT_NOT_IDENTIFIED, unidentified.code);
}

TEST(CliErrors, BadArguments)
{
    struct Row
    {
        const char* name;
        std::vector<std::string> args;
    } rows[] = {
        { "no command", {} },
        { "unknown command", { "fly" } },
        { "unknown option", { "--fast", "info" } },
        { "port not a number", { "--port", "abc", "info" } },
        { "port out of range", { "--port", "70000", "info" } },
        { "live without PIDs", { "live" } },
        { "unknown PID name", { "live", "warpfactor" } },
        { "PID outside the catalogue", { "live", "77" } },
        { "info with an argument", { "info", "now" } },
        { "period too short", { "--period", "1", "live", "0C" } },
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        Result result = runCli(row.args);
        EXPECT_EQ(Cli::CliApplication::EXIT_BAD_ARGUMENT, result.code);
        EXPECT_FALSE(result.err.empty());
    }
    Result help = runCli({ "--help" });
    EXPECT_EQ(0, help.code);
    EXPECT_NE(std::string::npos, help.out.find("Exit codes"));
}

TEST(CliErrors, LinkDroppedDuringDiscoveryEndsWithVehicleNotReached)
{
    ElmSim::ServerOptions options;
    options.dropAfter = 4;
    Sim sim("can11", options);
    auto start = std::chrono::steady_clock::now();
    Result result = runCli(sim.args({ "info" }));
    EXPECT_EQ(Cli::CliApplication::EXIT_NOT_REACHED, result.code);
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(30));
}

TEST(CliDatabase, LookupAndSearchNeedNoAdapter)
{
    Result lookup = runCli({ "--json", "lookup", "p0300", "U0100", "P1234" });
    ASSERT_EQ(0, lookup.code);
    QJsonArray codes = lookup.json()["codes"].toArray();
    ASSERT_EQ(3, codes.size());
    EXPECT_EQ("Random/Multiple Cylinder Misfire Detected",
              codes[0].toObject()["description"].toString().toStdString());
    EXPECT_EQ("Lost Communication With ECM/PCM \"A\"",
              codes[1].toObject()["description"].toString().toStdString());
    EXPECT_EQ("Network", codes[1].toObject()["category"].toString().toStdString());
    EXPECT_EQ("ISO/SAE Reserved", codes[2].toObject()["description"].toString().toStdString());

    Result search = runCli({ "--json", "search", "misfire" });
    ASSERT_EQ(0, search.code);
    QJsonArray found = search.json()["codes"].toArray();
    EXPECT_GT(found.size(), 10);
    for (const QJsonValue& v : found)
        EXPECT_TRUE(v.toObject()["description"].toString().contains("misfire", Qt::CaseInsensitive));
    EXPECT_TRUE(codesOf(found).count("P0300"));
}

TEST(CliBench, ReportsRatesAndTimes)
{
    Sim sim("can11");
    Result bench = runCli(sim.args({ "--json", "--count", "100", "bench" }));
    ASSERT_EQ(0, bench.code) << bench.err;
    QJsonObject result = bench.json()["bench"].toObject();
    EXPECT_EQ(100, result["exchanges"].toInt());
    EXPECT_EQ(0, result["failures"].toInt());
    EXPECT_GT(result["exchangesPerSecond"].toDouble(), 0.0);
    EXPECT_LE(result["minMs"].toDouble(), result["meanMs"].toDouble());
    EXPECT_LE(result["meanMs"].toDouble(), result["maxMs"].toDouble());
}
