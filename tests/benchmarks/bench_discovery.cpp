// Discovery time per simulator profile (in-process elmsim, the library's
// vehicle link over the loopback) and the resident memory of this process
// after discovery.
// Usage: bench_discovery [delay ms per OBD request, default 0] [profile...]
// Prints its figures; asserts nothing.

#include "linkopener.h"
#include "profilecatalog.h"
#include "simlink.h"

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

namespace {

long statusKb(const char* field)
{
    std::ifstream status("/proc/self/status");
    std::string line;
    const std::string key = std::string(field) + ":";
    while (std::getline(status, line)) {
        if (line.compare(0, key.size(), key) == 0)
            return std::strtol(line.c_str() + key.size(), nullptr, 10);
    }
    return -1;
}

} // namespace

int main(int argc, char** argv)
{
    const unsigned int delay = argc > 1 ? static_cast<unsigned int>(std::atoi(argv[1])) : 0;
    std::vector<std::string> profiles;
    for (int i = 2; i < argc; ++i)
        profiles.push_back(argv[i]);
    if (profiles.empty()) {
        for (const std::string& name : ElmSim::ProfileCatalog::names()) {
            if (name != "none")
                profiles.push_back(name);
        }
    }

    std::printf("%-10s %8s %6s %9s %12s\n", "profile", "delay", "ECUs", "requests", "discovery");
    for (const std::string& profile : profiles) {
        ElmSim::ServerOptions options = SimLink::quickOptions(profile);
        options.delayMs = delay;
        SimLink link(options);
        const auto start = std::chrono::steady_clock::now();
        const Obd::LinkOpener::Result result = link.open();
        const double ms =
            std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
        std::vector<Obd::EcuPtr> ecus;
        link.proxy().getEcus(ecus);
        if (result != Obd::LinkOpener::LO_OK) {
            std::printf("%-10s %6u ms  opening failed (%d)\n", profile.c_str(), delay, static_cast<int>(result));
            continue;
        }
        std::printf("%-10s %5u ms %6zu %9d %9.1f ms\n", profile.c_str(), delay, ecus.size(),
                    link.server().requestCount(), ms);
    }
    // Everything of the last vehicle is still held here: link, scan tool, ECU lists.
    ElmSim::ServerOptions options = SimLink::quickOptions("can11");
    options.delayMs = delay;
    SimLink held(options);
    const long before = statusKb("VmRSS");
    if (held.open() == Obd::LinkOpener::LO_OK)
        std::printf("resident memory after discovery (can11, link open): VmRSS %ld kB "
                    "(%ld kB before the opening), VmHWM %ld kB\n",
                    statusKb("VmRSS"), before, statusKb("VmHWM"));
    return 0;
}
