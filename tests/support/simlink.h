#ifndef TEST_SIMLINK_H
#define TEST_SIMLINK_H

#include "elmsimserver.h"
#include "idisconnectlistener.h"
#include "linkopener.h"
#include "obdproxy.h"
#include "obdtransporter.h"
#include "serveroptions.h"
#include "vehiclelink.h"

#include <atomic>
#include <memory>
#include <string>

namespace Obd {
class IConnection;
class IScantool;
}

// A discovered vehicle behind the simulator: elmsim on a free port and the
// library's vehicle link to it, opened the way the application does.
class SimLink : public Obd::IDisconnectListener
{
public:
    // Options for quick tests: no boot or search delay, frozen values.
    static ElmSim::ServerOptions quickOptions(const std::string& profile);
    // A link to the profile opened once for the whole test program, for
    // tests that only read the vehicle; null when it does not open.
    static SimLink* opened(const std::string& profile);

    explicit SimLink(const ElmSim::ServerOptions& options);
    explicit SimLink(const std::string& profile);
    // Another client of a simulator that runs already.
    explicit SimLink(ElmSim::ElmSimServer& running);
    ~SimLink() override;

    // Starts the simulator if it is its own and opens the link.
    Obd::LinkOpener::Result open();
    void close();
    Obd::ExchangeResult execute(Obd::ObdParameter& parameter);

    ElmSim::ElmSimServer& server() { return *m_server; }
    Obd::ObdProxy& proxy() { return m_proxy; }
    Obd::IScantool* scantool() { return m_link.scantool(); }
    Obd::IConnection* connection() { return m_link.connection(); }
    int disconnects() const { return m_disconnects; }

    void onDisconnected() override { ++m_disconnects; }

private:
    std::unique_ptr<ElmSim::ElmSimServer> m_owned;
    ElmSim::ElmSimServer* m_server;
    bool m_started = false;
    Obd::ObdProxy m_proxy;
    std::atomic<int> m_disconnects{0};
    Obd::VehicleLink m_link{&m_proxy, this};
};

#endif
