#include "options.h"

#include <cstdlib>

namespace Cli {

namespace {

const char* const COMMANDS[] = { "info", "dtc", "clear", "live", "vehicle", "tests",
                                 "lookup", "search", "bench",
                                 "record", "report" };

bool isCommand(const std::string& word)
{
    for (const char* command : COMMANDS) {
        if (word == command)
            return true;
    }
    return false;
}

} // namespace

Options::Options()
    : host("127.0.0.1")
    , port(35000)
    , baud(Obd::AdapterAddress::DEFAULT_BAUD)
    , json(false)
    , imperial(false)
    , yes(false)
    , help(false)
    , verbose(false)
    , noReset(false)
    , reconnect(false)
    , periodMs(1000)
    , count(-1)
    , durationS(0)
{
}

std::string Options::usage()
{
    return "Usage: zarvane-cli [options] COMMAND [ARGUMENTS]\n"
           "\n"
           "Talks to an ELM327-type OBD-II adapter over Wi-Fi (TCP), Bluetooth or a serial\n"
           "device (USB, or Bluetooth bound to /dev/rfcommN), with the same library and the\n"
           "same opening dialogue as the Zarvane application.\n"
           "\n"
           "Commands:\n"
           "  info              adapter name, description, version and protocol; each ECU's\n"
           "                    id, OBD standard, names and supported PIDs, MIDs, info types\n"
           "  dtc               stored and pending trouble codes per ECU, MIL and readiness\n"
           "  clear             clear the trouble codes (asks on a terminal; --yes otherwise)\n"
           "  live PID...       live values, one line per sample (PIDs in hex, e.g. 0C, or\n"
           "                    names such as rpm, speed, coolant, maf, load, throttle)\n"
           "  vehicle           VIN, calibration IDs, CVNs, performance tracking counters\n"
           "  tests             on-board monitor results (service 06; 05 on non-CAN cars)\n"
           "  lookup CODE...    describe trouble codes from the offline database\n"
           "  search TEXT       find trouble codes whose code or description contains TEXT\n"
           "  bench [PID...]    adapter speed test: back-to-back exchanges of one PID (0C),\n"
           "                    or of several PIDs asked together where the bus allows\n"
           "  record PID...     live values to the CSV file --out, one column per PID and\n"
           "                    ECU, every --period ms until --count, --duration or Ctrl-C\n"
           "  report            codes, freeze frames, readiness and test results as one\n"
           "                    HTML page written to --out\n"
           "\n"
           "Options:\n"
           "  --host HOST         adapter address for Wi-Fi (default 127.0.0.1)\n"
           "  --port PORT         adapter TCP port (default 35000)\n"
           "  --bluetooth ADDR    use the Bluetooth adapter at ADDR (00:11:22:33:44:55)\n"
           "  --serial DEVICE     use the serial adapter at DEVICE (/dev/ttyUSB0, /dev/rfcomm0)\n"
           "  --baud N|auto       serial: baud rate (default 38400); auto tries 38400, 9600,\n"
           "                      115200, 230400 and 500000\n"
           "  --no-reset          open without ATZ (for adapters that drop the link on it)\n"
           "  --reconnect         live, record: when the link is lost, open it again (after\n"
           "                      1, 2, 4, 8, then every 15 s) and go on\n"
           "  --json              machine-readable output\n"
           "  --imperial          imperial units for live values\n"
           "  --period MS         live: sample period (default 1000)\n"
           "  --count N           live: number of samples (default: until interrupted);\n"
           "                      bench: number of exchanges (default 200)\n"
           "  --out FILE          record: the CSV file; report: the HTML file\n"
           "  --duration S        record: stop after S seconds\n"
           "  --yes               clear without asking\n"
           "  -v, --verbose       the library's log lines on standard error\n"
           "  -h, --help          this text\n"
           "\n"
           "Exit codes: 0 done, 1 the command failed, 2 bad argument, 3 cannot connect,\n"
           "4 adapter not identified or not initialised, 5 vehicle not reached.\n";
}

Obd::AdapterAddress Options::address() const
{
    if (!serialDevice.empty())
        return Obd::AdapterAddress::serial(serialDevice, baud);
    if (!bluetoothAddress.empty())
        return Obd::AdapterAddress::bluetooth(bluetoothAddress);
    return Obd::AdapterAddress::tcp(host, port);
}

bool Options::number(const std::string& option, const std::string& text, long minimum,
                     long maximum, long& value)
{
    char* end = nullptr;
    long parsed = std::strtol(text.c_str(), &end, 10);
    if (text.empty() || !end || *end != '\0' || parsed < minimum || parsed > maximum) {
        m_error = option + " needs a number from " + std::to_string(minimum) + " to " +
                  std::to_string(maximum) + ", not \"" + text + "\"";
        return false;
    }
    value = parsed;
    return true;
}

bool Options::parse(const std::vector<std::string>& args)
{
    bool baudGiven = false;
    for (size_t i = 0; i < args.size(); ++i) {
        const std::string& arg = args[i];
        auto valueOf = [&](std::string& out) {
            if (i + 1 >= args.size()) {
                m_error = arg + " needs a value";
                return false;
            }
            out = args[++i];
            return true;
        };
        std::string value;
        long n = 0;
        if (arg == "-h" || arg == "--help") {
            help = true;
        } else if (arg == "--json") {
            json = true;
        } else if (arg == "--verbose" || arg == "-v") {
            verbose = true;
        } else if (arg == "--no-reset") {
            noReset = true;
        } else if (arg == "--reconnect") {
            reconnect = true;
        } else if (arg == "--imperial") {
            imperial = true;
        } else if (arg == "--yes" || arg == "-y") {
            yes = true;
        } else if (arg == "--host") {
            if (!valueOf(host))
                return false;
            if (host.empty()) {
                m_error = "--host needs an address";
                return false;
            }
        } else if (arg == "--port") {
            if (!valueOf(value) || !number(arg, value, 1, 65535, n))
                return false;
            port = static_cast<unsigned int>(n);
        } else if (arg == "--bluetooth") {
            if (!valueOf(bluetoothAddress))
                return false;
        } else if (arg == "--serial") {
            if (!valueOf(serialDevice))
                return false;
            if (serialDevice.empty()) {
                m_error = "--serial needs a device path";
                return false;
            }
        } else if (arg == "--baud") {
            if (!valueOf(value))
                return false;
            if (!Obd::AdapterAddress::parseBaud(value, baud)) {
                m_error = "--baud needs a baud rate such as 38400, or auto, not \"" + value + "\"";
                return false;
            }
            baudGiven = true;
        } else if (arg == "--period") {
            if (!valueOf(value) || !number(arg, value, 10, 3600000, n))
                return false;
            periodMs = static_cast<int>(n);
        } else if (arg == "--count") {
            if (!valueOf(value) || !number(arg, value, 1, 100000000, n))
                return false;
            count = static_cast<int>(n);
        } else if (arg == "--out") {
            if (!valueOf(outFile))
                return false;
        } else if (arg == "--duration") {
            if (!valueOf(value) || !number(arg, value, 1, 100000000, n))
                return false;
            durationS = static_cast<int>(n);
        } else if (arg.size() > 1 && arg[0] == '-' && command != "lookup" && command != "search") {
            m_error = "unknown option " + arg;
            return false;
        } else if (command.empty()) {
            if (!isCommand(arg)) {
                m_error = "unknown command \"" + arg + "\"";
                return false;
            }
            command = arg;
        } else {
            arguments.push_back(arg);
        }
    }
    if (help)
        return true;
    if (!serialDevice.empty() && !bluetoothAddress.empty()) {
        m_error = "--serial and --bluetooth exclude each other";
        return false;
    }
    if (baudGiven && serialDevice.empty()) {
        m_error = "--baud goes with --serial";
        return false;
    }
    if (command.empty()) {
        m_error = "no command given";
        return false;
    }
    if ((command == "record" || command == "report") && outFile.empty()) {
        m_error = command + " needs --out FILE";
        return false;
    }
    if ((command == "lookup" || command == "search" || command == "live" || command == "record") &&
        arguments.empty()) {
        m_error = command + " needs at least one argument";
        return false;
    }
    if ((command == "info" || command == "dtc" || command == "clear" || command == "vehicle" ||
         command == "tests" || command == "report") && !arguments.empty()) {
        m_error = command + " takes no arguments";
        return false;
    }
    return true;
}

} // namespace Cli
