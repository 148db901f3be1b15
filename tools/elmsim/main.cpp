// elmsim: command-line front end of the ELM327 simulator.
#include "elmsimserver.h"
#include "personality.h"
#include "profilecatalog.h"
#include "serveroptions.h"
#include "timingmodel.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>
#include <pthread.h>
#include <pty.h>
#include <termios.h>
#include <signal.h>

namespace {

const char* const HELP =
    "Usage: elmsim [options]\n"
    "\n"
    "An ELM327 v1.5 compatible OBD-II adapter on TCP, with a simulated car behind it.\n"
    "Serves one client at a time; each new client meets a freshly powered adapter.\n"
    "\n"
    "Connection:\n"
    "  --host HOST          address to listen on (default 127.0.0.1)\n"
    "  --port PORT          TCP port (default 35000; 0 picks a free one)\n"
    "  --pty                serve a pseudo-terminal instead and print its path\n"
    "                       (a serial adapter: zarvane-cli --serial PATH)\n"
    "\n"
    "Vehicle:\n"
    "  --profile NAME       vehicle profile (default can11), see --list-profiles\n"
    "  --list-profiles      print the profiles and exit\n"
    "  --frozen             live values stay at their t=0 values\n"
    "  --refuse-clear NRC   every ECU refuses service 04 with 7F 04 NRC (hexadecimal,\n"
    "                       e.g. 22: conditions not correct, the engine runs)\n"
    "\n"
    "Adapter:\n"
    "  --banner TEXT        identity printed by ATZ and ATI (default \"ELM327 v1.5\")\n"
    "  --no-identify        ATZ and ATI answer \"?\" (an adapter that does not identify)\n"
    "  --reset-delay MS     ATZ / ATWS boot time (default 500)\n"
    "  --search-delay MS    protocol search time after SEARCHING... (default 1000)\n"
    "  --adapter NAME       personality: genuine (default), clone-v15, clone-v21,\n"
    "                       slow-bt, stn, noisy\n"
    "  --timing MODEL       none (default: answer at once), genuine, bt-clone, wifi, stn\n"
    "  --seed N             seed of the random source (noise, jitter, timing), so that\n"
    "                       runs repeat; default: a fresh seed per client\n"
    "  --replay FILE        answer with the replies of a --transcript recording\n"
    "\n"
    "Faults:\n"
    "  --delay MS           extra delay before every OBD answer (default 0)\n"
    "  --jitter MS          plus a random 0..MS on top of --delay\n"
    "  --drop-after N       close the connection when OBD request N+1 arrives\n"
    "  --silent             read everything, answer nothing\n"
    "  --error WORD         print WORD instead of the next --error-count OBD answers\n"
    "                       (BUS ERROR, CAN ERROR, BUFFER FULL, BUS BUSY, DATA ERROR,\n"
    "                       <DATA ERROR, <RX ERROR, FB ERROR, LV RESET, STOPPED, ERR94,\n"
    "                       NO DATA, UNABLE TO CONNECT, ...)\n"
    "  --error-count N      how many answers --error replaces (default 1)\n"
    "  --garbage N          N random bytes (never '>') before every prompt\n"
    "  --noise              NUL, 0xFC/0xFE, other non-printable bytes and \"+CONNECTED\"\n"
    "                       status lines around replies, now and then\n"
    "  --transcript FILE    append time-stamped requests and replies to FILE\n"
    "\n"
    "  -h, --help           show this text\n"
    "\n"
    "Example: elmsim --profile kwp --port 35001 &  printf 'ATZ\\r0100\\r' | nc -q1 127.0.0.1 35001\n";

bool parseNumber(const char* text, long minimum, long maximum, long& value)
{
    char* end = nullptr;
    errno = 0;
    value = std::strtol(text, &end, 10);
    return errno == 0 && end && *end == '\0' && end != text && value >= minimum && value <= maximum;
}

int usageError(const std::string& message)
{
    std::fprintf(stderr, "elmsim: %s\nTry 'elmsim --help'.\n", message.c_str());
    return 2;
}

} // namespace

int main(int argc, char** argv)
{
    ElmSim::ServerOptions options;
    bool errorCountGiven = false;
    bool pty = false;
    for (int i = 1; i < argc; ++i) {
        const std::string arg = argv[i];
        const bool hasValue = i + 1 < argc;
        auto number = [&](long minimum, long maximum, long& value) {
            return hasValue && parseNumber(argv[++i], minimum, maximum, value);
        };
        long value = 0;
        if (arg == "-h" || arg == "--help") {
            std::fputs(HELP, stdout);
            return 0;
        } else if (arg == "--list-profiles") {
            for (const std::string& name : ElmSim::ProfileCatalog::names()) {
                ElmSim::Profile profile;
                ElmSim::ProfileCatalog::find(name, profile);
                std::printf("%-10s %s\n", name.c_str(), profile.summary.c_str());
            }
            return 0;
        } else if (arg == "--pty") {
            pty = true;
        } else if (arg == "--host" && hasValue) {
            options.host = argv[++i];
        } else if (arg == "--port") {
            if (!number(0, 65535, value))
                return usageError("--port needs a number 0..65535");
            options.port = static_cast<unsigned short>(value);
        } else if (arg == "--profile" && hasValue) {
            options.profile = argv[++i];
        } else if (arg == "--delay" || arg == "--jitter" || arg == "--reset-delay" || arg == "--search-delay"
                   || arg == "--garbage") {
            if (!number(0, 600000, value))
                return usageError(arg + " needs a number 0..600000");
            const unsigned int ms = static_cast<unsigned int>(value);
            if (arg == "--delay")
                options.delayMs = ms;
            else if (arg == "--jitter")
                options.delayJitterMs = ms;
            else if (arg == "--reset-delay")
                options.resetDelayMs = ms;
            else if (arg == "--search-delay")
                options.searchDelayMs = ms;
            else
                options.garbageBytes = ms;
        } else if (arg == "--drop-after" || arg == "--error-count") {
            if (!number(-1, 1000000000, value))
                return usageError(arg + " needs a number");
            if (arg == "--drop-after") {
                options.dropAfter = static_cast<int>(value);
            } else {
                options.errorCount = static_cast<int>(value);
                errorCountGiven = true;
            }
        } else if (arg == "--silent") {
            options.silent = true;
        } else if (arg == "--error" && hasValue) {
            options.errorWord = argv[++i];
        } else if (arg == "--transcript" && hasValue) {
            options.transcriptPath = argv[++i];
        } else if (arg == "--frozen") {
            options.frozen = true;
        } else if (arg == "--refuse-clear") {
            char* end = nullptr;
            const long nrc = hasValue ? std::strtol(argv[++i], &end, 16) : 0;
            if (!end || *end != '\0' || nrc < 1 || nrc > 0xFF)
                return usageError("--refuse-clear needs a response code 01..FF (hexadecimal)");
            options.refuseClear = static_cast<uint8_t>(nrc);
        } else if (arg == "--banner" && hasValue) {
            options.banner = argv[++i];
        } else if (arg == "--no-identify") {
            options.identify = false;
        } else if (arg == "--adapter" && hasValue) {
            options.adapter = argv[++i];
        } else if (arg == "--timing" && hasValue) {
            options.timing = argv[++i];
        } else if (arg == "--replay" && hasValue) {
            options.replayPath = argv[++i];
        } else if (arg == "--noise") {
            options.noise = true;
        } else if (arg == "--seed") {
            if (!number(0, 2147483647, value))
                return usageError("--seed needs a number 0..2147483647");
            options.seed = value;
        } else {
            return usageError("unknown or incomplete option " + arg);
        }
    }
    if (!options.errorWord.empty() && !errorCountGiven)
        options.errorCount = 1;

    ElmSim::Profile unused;
    if (!ElmSim::ProfileCatalog::find(options.profile, unused))
        return usageError("unknown profile " + options.profile + " (see --list-profiles)");
    ElmSim::Personality personality;
    if (!ElmSim::Personality::find(options.adapter, personality))
        return usageError("unknown adapter " + options.adapter + " (see --help)");
    ElmSim::TimingModel::Kind kind;
    if (!ElmSim::TimingModel::find(options.timing, kind))
        return usageError("unknown timing model " + options.timing + " (see --help)");

    // Block the stop signals before the serving thread exists, so that
    // only sigwait below ever sees them.
    sigset_t stopSignals;
    sigemptyset(&stopSignals);
    sigaddset(&stopSignals, SIGINT);
    sigaddset(&stopSignals, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &stopSignals, nullptr);
    std::signal(SIGPIPE, SIG_IGN);

    ElmSim::ElmSimServer server(options);
    // The terminal's slave side stays open here, so that clients may come and go.
    int master = -1;
    int slave = -1;
    char terminal[256] = "";
    termios raw{};
    ::cfmakeraw(&raw);
    if (pty && ::openpty(&master, &slave, terminal, &raw, nullptr) != 0) {
        std::fprintf(stderr, "elmsim: cannot create a pseudo-terminal: %s\n", std::strerror(errno));
        return 1;
    }
    if (!(pty ? server.startOnTerminal(master) : server.start())) {
        std::fprintf(stderr, "elmsim: %s\n", server.errorString().c_str());
        return 1;
    }
    if (pty)
        std::printf("elmsim: profile %s on terminal %s\n", options.profile.c_str(), terminal);
    else
        std::printf("elmsim: profile %s listening on %s:%u\n", options.profile.c_str(),
                    options.host.c_str(), static_cast<unsigned int>(server.port()));
    std::fflush(stdout);
    int received = 0;
    sigwait(&stopSignals, &received);
    server.stop();
    return 0;
}
