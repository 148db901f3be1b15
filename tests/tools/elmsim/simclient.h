#ifndef ELMSIM_TEST_SIMCLIENT_H
#define ELMSIM_TEST_SIMCLIENT_H

#include <string>

// A minimal blocking TCP client for talking to the simulator the way a
// scan tool does: write a line, read up to the '>' prompt.
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

#endif
