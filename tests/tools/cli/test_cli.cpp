// zarvane-cli end to end against the simulator on TCP.

#include "cliapplication.h"
#include "simlink.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <set>
#include <sstream>

namespace {

typedef Cli::CliApplication App;

struct Result
{
    int code;
    std::string out;
    std::string err;
    QJsonObject json() const { return QJsonDocument::fromJson(QByteArray::fromStdString(out)).object(); }
    QJsonArray stored(int ecu = 0) const { return json()["ecus"].toArray()[ecu].toObject()["stored"].toArray(); }
};

Result runCli(std::vector<std::string> args, const std::string& input = std::string(), bool terminal = false)
{
    std::ostringstream out, err;
    std::istringstream in(input);
    App cli(out, err, in);
    cli.setInteractive(terminal, false);
    const int code = cli.run(args);
    return Result{code, out.str(), err.str()};
}

// A simulator of the given profile and the arguments to reach it.
struct Sim
{
    ElmSim::ElmSimServer server;
    explicit Sim(const std::string& profile, bool identify = true)
        : server([&] {
              ElmSim::ServerOptions o = SimLink::quickOptions(profile);
              o.identify = identify;
              return o;
          }())
    {
        EXPECT_TRUE(server.start()) << server.errorString();
    }
    std::vector<std::string> args(std::vector<std::string> rest)
    {
        rest.insert(rest.begin(), {"--port", std::to_string(server.port())});
        return rest;
    }
};

std::set<std::string> codesOf(const QJsonArray& array)
{
    std::set<std::string> codes;
    for (const QJsonValue& v : array)
        codes.insert(v.toObject()["code"].toString().toStdString());
    return codes;
}

class CliByProfile : public ::testing::TestWithParam<const char*> {};

} // namespace

TEST_P(CliByProfile, InfoDtcVehicleAndTestsMatchTheProfile)
{
    Sim sim(GetParam());
    const ElmSim::Profile& profile = sim.server.profile();
    std::vector<const ElmSim::EcuProfile*> ecus; // in ascending id order, as listed
    for (const ElmSim::EcuProfile& e : profile.ecus)
        ecus.push_back(&e);
    std::sort(ecus.begin(), ecus.end(), [](auto a, auto b) { return a->id < b->id; });
    Result info = runCli(sim.args({"--json", "info"}));
    ASSERT_EQ(0, info.code) << info.err;
    const QJsonArray infoEcus = info.json()["ecus"].toArray();
    ASSERT_EQ(int(ecus.size()), infoEcus.size());
    EXPECT_EQ("ELM327", info.json()["adapter"].toObject()["name"].toString().toStdString());
    EXPECT_EQ(profile.protocolDescription(), info.json()["adapter"].toObject()["protocol"].toString().toStdString());
    for (int i = 0; i < infoEcus.size(); ++i)
        EXPECT_EQ(ecus[i]->id & 0x1FFFFFFF, infoEcus[i].toObject()["id"].toInteger());
    Result dtc = runCli(sim.args({"--json", "dtc"}));
    ASSERT_EQ(0, dtc.code) << dtc.err;
    const QJsonArray dtcEcus = dtc.json()["ecus"].toArray();
    ASSERT_EQ(int(ecus.size()), dtcEcus.size());
    for (int i = 0; i < dtcEcus.size(); ++i) {
        const QJsonObject item = dtcEcus[i].toObject();
        EXPECT_EQ(std::set<std::string>(ecus[i]->storedDtcs.begin(), ecus[i]->storedDtcs.end()),
                  codesOf(item["stored"].toArray()));
        EXPECT_EQ(std::set<std::string>(ecus[i]->pendingDtcs.begin(), ecus[i]->pendingDtcs.end()),
                  codesOf(item["pending"].toArray()));
        EXPECT_TRUE(!ecus[i]->supportsPid(1, 0x01) || ecus[i]->milOn() == item["mil"].toBool());
        for (const QJsonValue& code : item["stored"].toArray()) {
            EXPECT_FALSE(code.toObject()["description"].toString().isEmpty());
        }
    }
    Result vehicle = runCli(sim.args({"--json", "vehicle"}));
    ASSERT_EQ(0, vehicle.code) << vehicle.err;
    for (const ElmSim::EcuProfile* truth : ecus) {
        if (truth->supportsInfoType(0x02) && !truth->vin.empty()) {
            EXPECT_EQ(truth->vin, vehicle.json()["vin"].toString().toStdString());
        }
    }
    Result tests = runCli(sim.args({"--json", "tests"}));
    ASSERT_EQ(0, tests.code) << tests.err;
    size_t monitorRecords = 0, oxygenRecords = 0;
    for (const ElmSim::EcuProfile* truth : ecus) {
        monitorRecords += profile.isCan() ? truth->monitorTests.size() : truth->legacyMonitorTests.size();
        oxygenRecords += truth->oxygenSensorTests.size();
    }
    EXPECT_EQ(int(monitorRecords), tests.json()["monitorTests"].toArray().size());
    if (!profile.isCan()) {
        EXPECT_EQ(int(oxygenRecords), tests.json()["oxygenSensorTests"].toArray().size());
    }
}

INSTANTIATE_TEST_SUITE_P(EveryProfile, CliByProfile,
                         ::testing::Values("can11", "can29", "kwp", "iso9141", "j1850vpw", "diesel"),
                         [](const ::testing::TestParamInfo<const char*>& info) { return std::string(info.param); });

TEST(CliCommands, ExitCodesMessagesAndEffects)
{
    unsigned short closedPort = 0;
    {
        Sim gone("can11");
        closedPort = gone.server.port();
    }
    struct Row
    {
        const char* name;
        const char* profile; // nullptr: no simulator
        std::vector<std::string> args;
        int code;
        const char* shown = "";      // in the output or the messages
        int times = 0;               // how often it is shown; 0: at least once
        const char* typed = nullptr; // answer on a terminal; nullptr: not a terminal
        int storedAfter = -1;        // stored codes read afterwards: 0 none, 1 some, -1 not read
        bool identify = true;
    } rows[] = {
        {"clear --yes", "can11", {"--json", "--yes", "clear"}, App::EXIT_OK, "", 0, nullptr, 0},
        {"clear without --yes off a terminal sends nothing", "can11", {"clear"}, App::EXIT_BAD_ARGUMENT, "--yes", 0,
         nullptr, 1},
        {"clear declined on a terminal", "can11", {"clear"}, App::EXIT_FAILED, "", 0, "n\n", 1},
        {"clear accepted on a terminal", "can11", {"clear"}, App::EXIT_OK, "", 0, "y\n", 0},
        {"a diesel refuses to clear with the engine running", "diesel", {"--yes", "clear"}, App::EXIT_FAILED,
         "refused", 0, nullptr, 1},
        {"live JSON, three samples: idle 0x0C30 / 4 = 780 rpm", "can11",
         {"--json", "--period", "300", "--count", "3", "live", "0C", "speed"}, App::EXIT_OK,
         "\"pid\":\"0C\",\"unit\":\"RPM\",\"value\":\"780\"", 3},
        {"live imperial: coolant 0x3A - 40 = 18 C = 64.4 F, shown 64", "can11",
         {"--imperial", "--count", "1", "live", "coolant"}, App::EXIT_OK, "Engine Coolant Temperature  64  \u00b0F  7E8", 1},
        {"live: a PID the engine does not list is not asked for", "can11", {"--count", "1", "live", "0C", "0A"},
         App::EXIT_OK, "Fuel Pressure (gauge)  not supported", 1},
        {"live: the monitor record in words: MIL, two codes, 3 + 5 monitors with EVAP incomplete", "can11",
         {"--count", "1", "live", "01"}, App::EXIT_OK, "Monitor status since DTCs cleared  MIL on, 2 codes, 7/8 ready", 1},
        {"live: a wide-range sensor with no sensor layout, each value named", "diesel",
         {"--count", "1", "live", "24"}, App::EXIT_OK, "PID 24: Voltage", 1},
        {"dtc verdict: MIL on and EVAP incomplete", "can11", {"dtc"}, App::EXIT_OK,
         "Not ready: MIL on, Evaporative System not ready", 1},
        {"dtc verdict: the gearbox has every monitor complete", "can11", {"dtc"}, App::EXIT_OK,
         "Ready for an emissions inspection", 1},
        {"dtc: PID 41 with 6 + 3 monitors, boost (C bit 3) and PM filter (D bit 6) not run this trip", "diesel",
         {"dtc"}, App::EXIT_OK, "This drive cycle: 7/9 ready; not yet: Boost Pressure, PM filter", 1},
        {"vehicle ratio: 350 of 412 = 84.95 %, rounded", "can11", {"vehicle"}, App::EXIT_OK,
         "EGR and/or VVT Monitor: 350 / 412 (85 %)", 1},
        {"vehicle ratio: a diesel monitor never encountered", "diesel", {"vehicle"}, App::EXIT_OK,
         "NOx Adsorber Monitor: 0 / 0 (not encountered yet)", 1},
        {"no vehicle behind the adapter", "none", {"info"}, App::EXIT_NOT_REACHED, "vehicle"},
        {"an adapter that does not identify", "can11", {"info"}, App::EXIT_NOT_IDENTIFIED, "", 0, nullptr, -1, false},
        {"nobody listening", nullptr, {"--port", std::to_string(closedPort), "info"}, App::EXIT_CANNOT_CONNECT},
        {"unknown host", nullptr, {"--host", "no-such-host.invalid", "info"}, App::EXIT_CANNOT_CONNECT},
        {"no command", nullptr, {}, App::EXIT_BAD_ARGUMENT},
        {"unknown command", nullptr, {"fly"}, App::EXIT_BAD_ARGUMENT},
        {"unknown option", nullptr, {"--fast", "info"}, App::EXIT_BAD_ARGUMENT},
        {"port not a number", nullptr, {"--port", "abc", "info"}, App::EXIT_BAD_ARGUMENT},
        {"port out of range", nullptr, {"--port", "70000", "info"}, App::EXIT_BAD_ARGUMENT},
        {"live without PIDs", nullptr, {"live"}, App::EXIT_BAD_ARGUMENT},
        {"unknown PID name", nullptr, {"live", "warpfactor"}, App::EXIT_BAD_ARGUMENT},
        {"PID outside the catalogue", nullptr, {"live", "77"}, App::EXIT_BAD_ARGUMENT},
        {"info with an argument", nullptr, {"info", "now"}, App::EXIT_BAD_ARGUMENT},
        {"period too short", nullptr, {"--period", "1", "live", "0C"}, App::EXIT_BAD_ARGUMENT},
        {"help", nullptr, {"--help"}, App::EXIT_OK, "Exit codes"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        std::unique_ptr<Sim> sim(row.profile ? new Sim(row.profile, row.identify) : nullptr);
        const int requests = sim ? sim->server.requestCount() : 0;
        Result result = runCli(sim ? sim->args(row.args) : row.args, row.typed ? row.typed : "", row.typed);
        EXPECT_EQ(row.code, result.code) << result.err;
        const std::string all = result.out + result.err;
        size_t times = 0;
        for (size_t at = all.find(row.shown); at != std::string::npos; at = all.find(row.shown, at + 1))
            ++times;
        EXPECT_TRUE(row.times ? times == size_t(row.times) : times > 0) << all;
        EXPECT_TRUE(result.code == App::EXIT_OK || !result.err.empty());
        if (sim && row.code == App::EXIT_BAD_ARGUMENT) {
            EXPECT_EQ(requests, sim->server.requestCount());
        }
        if (row.storedAfter >= 0) {
            Result after = runCli(sim->args({"--json", "dtc"}));
            EXPECT_EQ(row.storedAfter == 0, after.stored().isEmpty());
            for (const QJsonValue& ecu : after.json()["ecus"].toArray()) {
                const QJsonObject item = ecu.toObject();
                EXPECT_TRUE(row.storedAfter || (item["pending"].toArray().isEmpty() && !item["mil"].toBool()));
            }
        }
    }
}

TEST(CliDatabase, LookupAndSearchNeedNoAdapter)
{
    const QJsonArray codes = runCli({"--json", "lookup", "p0300", "U0100", "P1234"}).json()["codes"].toArray();
    ASSERT_EQ(3, codes.size());
    EXPECT_TRUE(codes[0].toObject()["description"].toString().contains("Misfire"));
    EXPECT_EQ("Network", codes[1].toObject()["category"].toString().toStdString());
    EXPECT_EQ("manufacturer-specific", codes[2].toObject()["description"].toString().toStdString());
    const QJsonArray found = runCli({"--json", "search", "misfire"}).json()["codes"].toArray();
    EXPECT_GT(found.size(), 10);
    for (const QJsonValue& v : found)
        EXPECT_TRUE(v.toObject()["description"].toString().contains("misfire", Qt::CaseInsensitive));
    EXPECT_TRUE(codesOf(found).count("P0300"));
}
