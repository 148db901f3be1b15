#ifndef TEST_SIMTERMINAL_H
#define TEST_SIMTERMINAL_H

#include "elmsimserver.h"
#include "serveroptions.h"

#include <pty.h>
#include <termios.h>
#include <unistd.h>

#include <memory>
#include <string>

// elmsim behind a pseudo-terminal made here: a serial adapter at path().
// Our copy of the slave side stays open, so that clients may come and go.
class SimTerminal
{
public:
    explicit SimTerminal(const ElmSim::ServerOptions& options)
        : m_server(new ElmSim::ElmSimServer(options))
    {
        char name[256] = "";
        struct termios raw = {};
        ::cfmakeraw(&raw);
        if (::openpty(&m_master, &m_slave, name, &raw, nullptr) == 0 && m_server->startOnTerminal(m_master))
            m_path = name;
    }
    ~SimTerminal()
    {
        m_server->stop();
        ::close(m_master);
        ::close(m_slave);
    }
    // Empty when the terminal could not be made or served.
    const std::string& path() const { return m_path; }
    ElmSim::ElmSimServer& server() { return *m_server; }

private:
    std::unique_ptr<ElmSim::ElmSimServer> m_server;
    int m_master = -1;
    int m_slave = -1;
    std::string m_path;
};

#endif
