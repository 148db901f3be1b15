#include "simlink.h"
#include "iconnection.h"
#include "iscantool.h"
#include "tcpbus.h"

ElmSim::ServerOptions SimLink::quickOptions(const std::string& profile)
{
    ElmSim::ServerOptions options;
    options.port = 0;
    options.profile = profile;
    options.resetDelayMs = 0;
    options.searchDelayMs = 0;
    options.frozen = true;
    return options;
}

SimLink::SimLink(const ElmSim::ServerOptions& options)
    : m_server(new ElmSim::ElmSimServer(options))
{
}

SimLink::SimLink(const std::string& profile)
    : SimLink(quickOptions(profile))
{
}

SimLink::~SimLink()
{
    close();
    m_server->stop();
}

Obd::LinkOpener::Result SimLink::open()
{
    if (!m_server->start())
        return Obd::LinkOpener::LO_CONNECT_FAILED;
    Obd::TcpBus* bus = new Obd::TcpBus;
    bus->init("127.0.0.1", m_server->port());
    return Obd::LinkOpener().open(bus, this, &m_proxy, m_connection, m_scantool);
}

void SimLink::close()
{
    m_proxy.reset();
    delete m_scantool;
    m_scantool = nullptr;
    delete m_connection;
    m_connection = nullptr;
}
