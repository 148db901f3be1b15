#include "simlink.h"
#include "iconnection.h"
#include "iscantool.h"
#include "tcpbus.h"

#include <gtest/gtest.h>

#include <map>

namespace {

std::map<std::string, std::unique_ptr<SimLink>>& openedLinks()
{
    static std::map<std::string, std::unique_ptr<SimLink>> links;
    return links;
}

// Closes the shared links while the program is still whole.
class OpenedLinksCloser : public ::testing::Environment
{
    void TearDown() override { openedLinks().clear(); }
};

::testing::Environment* const closer = ::testing::AddGlobalTestEnvironment(new OpenedLinksCloser);

} // namespace

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

SimLink* SimLink::opened(const std::string& profile)
{
    std::unique_ptr<SimLink>& link = openedLinks()[profile];
    if (!link) {
        std::unique_ptr<SimLink> fresh(new SimLink(profile));
        if (fresh->open() == Obd::LinkOpener::LO_OK)
            link = std::move(fresh);
    }
    return link.get();
}

SimLink::SimLink(const ElmSim::ServerOptions& options)
    : m_owned(new ElmSim::ElmSimServer(options))
    , m_server(m_owned.get())
{
}

SimLink::SimLink(const std::string& profile)
    : SimLink(quickOptions(profile))
{
}

SimLink::SimLink(ElmSim::ElmSimServer& running)
    : m_server(&running)
    , m_started(true)
{
}

SimLink::~SimLink()
{
    close();
    if (m_owned)
        m_owned->stop();
}

Obd::LinkOpener::Result SimLink::open()
{
    if (!m_started && !(m_started = m_server->start()))
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

Obd::ExchangeResult SimLink::execute(Obd::ObdParameter& parameter)
{
    return Obd::ObdTransporter().execute(&m_proxy, &parameter);
}
