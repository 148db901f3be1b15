#include "simlink.h"

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
    switch (m_link.open(Obd::AdapterAddress::tcp("127.0.0.1", m_server->port()))) {
    case Obd::VehicleLink::VL_OK:
        return Obd::LinkOpener::LO_OK;
    case Obd::VehicleLink::VL_NOT_IDENTIFIED:
        return Obd::LinkOpener::LO_IDENTIFY_FAILED;
    case Obd::VehicleLink::VL_NOT_INITIALIZED:
        return Obd::LinkOpener::LO_INITIALIZE_FAILED;
    case Obd::VehicleLink::VL_VEHICLE_NOT_REACHED:
        return Obd::LinkOpener::LO_DISCOVERY_FAILED;
    case Obd::VehicleLink::VL_CANCELLED:
        return Obd::LinkOpener::LO_CANCELLED;
    default:
        return Obd::LinkOpener::LO_CONNECT_FAILED;
    }
}

void SimLink::close()
{
    m_link.close();
}

Obd::ExchangeResult SimLink::execute(Obd::ObdParameter& parameter)
{
    return Obd::ObdTransporter().execute(&m_proxy, &parameter);
}
