// zarvane-cli --serial against elmsim behind a pseudo-terminal.

#include "cliapplication.h"
#include "simlink.h"
#include "simterminal.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <gtest/gtest.h>

#include <set>
#include <sstream>

namespace {

int runCli(const std::vector<std::string>& args, std::string& out)
{
    std::ostringstream output;
    std::ostringstream errors;
    std::istringstream input;
    Cli::CliApplication cli(output, errors, input);
    cli.setInteractive(false, false);
    const int code = cli.run(args);
    out = output.str() + errors.str();
    return code;
}

} // namespace

TEST(CliSerial, ReadsEveryEcusCodesAtADetectedRate)
{
    ElmSim::ServerOptions options = SimLink::quickOptions("can11");
    options.lineSpeed = B115200;
    SimTerminal sim(options);
    ASSERT_FALSE(sim.path().empty());
    std::string out;
    ASSERT_EQ(0, runCli({ "--serial", sim.path(), "--baud", "auto", "--json", "dtc" }, out)) << out;
    const QJsonArray ecus = QJsonDocument::fromJson(QByteArray::fromStdString(out)).object()["ecus"].toArray();
    ASSERT_EQ(static_cast<int>(sim.server().profile().ecus.size()), ecus.size());
    std::set<std::string> read;
    std::set<std::string> truth;
    for (const QJsonValue& ecu : ecus) {
        for (const QJsonValue& code : ecu.toObject()["stored"].toArray())
            read.insert(code.toObject()["code"].toString().toStdString());
    }
    for (const ElmSim::EcuProfile& ecu : sim.server().profile().ecus)
        truth.insert(ecu.storedDtcs.begin(), ecu.storedDtcs.end());
    EXPECT_EQ(truth, read);
}

TEST(CliSerial, RefusesWhatIsNoSerialAdapter)
{
    const struct
    {
        const char* name;
        std::vector<std::string> args;
        int code;
    } rows[] = {
        { "rate a terminal cannot take", { "--serial", "/dev/ttyUSB0", "--baud", "12345", "info" },
          Cli::CliApplication::EXIT_BAD_ARGUMENT },
        { "rate without a device", { "--baud", "38400", "info" }, Cli::CliApplication::EXIT_BAD_ARGUMENT },
        { "serial and Bluetooth at once", { "--serial", "/dev/ttyUSB0", "--bluetooth", "00:11:22:33:44:55", "info" },
          Cli::CliApplication::EXIT_BAD_ARGUMENT },
        { "device that does not exist", { "--serial", "/dev/no-such-adapter", "info" },
          Cli::CliApplication::EXIT_CANNOT_CONNECT },
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        std::string out;
        EXPECT_EQ(row.code, runCli(row.args, out));
        EXPECT_FALSE(out.empty());
    }
}
