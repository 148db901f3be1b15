#ifndef ELMSIM_TEST_SIMCLIENT_H
#define ELMSIM_TEST_SIMCLIENT_H

#include "elmsimserver.h"
#include "simlink.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

// A blocking TCP client that talks to the simulator the way a scan tool
// does: write a line, read up to the '>' prompt.
class SimClient
{
public:
    SimClient() = default;
    ~SimClient();
    SimClient(const SimClient&) = delete;
    SimClient& operator=(const SimClient&) = delete;

    bool connectTo(unsigned short port);
    void close();
    bool sendRaw(const std::string& bytes);
    // Reads until the text ends with `terminator` or the time runs out;
    // returns what arrived (possibly without the terminator).
    std::string readUntil(const std::string& terminator, int timeoutMs = 3000);
    // Sends command + CR and returns everything up to and including '>'.
    std::string exchange(const std::string& command, int timeoutMs = 3000);
    // True when the peer closed the connection within the time.
    bool waitClosed(int timeoutMs);

private:
    int m_fd = -1;
    std::string m_pending;
};

// A simulator on a free port (no boot or search time, frozen car unless the
// options say otherwise) and a client connected to it.
struct SimRig
{
    ElmSim::ElmSimServer server;
    SimClient client;

    explicit SimRig(const ElmSim::ServerOptions& options) : server(options) {}
    explicit SimRig(const std::string& profile) : server(SimLink::quickOptions(profile)) {}
    // Starts and connects; then echo off and each setup command, which must answer OK.
    ::testing::AssertionResult open(const std::vector<std::string>& setup = {}, bool echoOff = true);
};

// A test name from a row description: letters and digits, the rest '_'.
std::string testName(const char* description);

#endif
