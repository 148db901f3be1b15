#ifndef CLI_SESSION_H
#define CLI_SESSION_H

#include "iconnection.h"
#include "idisconnectlistener.h"
#include "obdproxy.h"
#include "vehiclelink.h"

#include <atomic>
#include <functional>
#include <string>

namespace Obd {
class IScantool;
}

namespace Cli {

class Options;

// One opened link to the adapter and the discovered vehicle.
class Session : public Obd::IDisconnectListener
{
public:
    enum Status {
        SS_OK = 0,
        SS_CANCELLED = 1,
        SS_CANNOT_CONNECT = 3,
        SS_NOT_IDENTIFIED = 4,
        SS_NOT_REACHED = 5
    };

    Session();
    ~Session() override;

    // Opens the link the way the application does; the text says why not.
    Status open(const Options& options, const std::function<void(const std::string&)>& progress,
                std::string& why);
    // Resets the adapter and closes the link.
    void close();
    // Gives up the opening under way, if any; async-signal-safe.
    static void cancelOpening();
    // After a lost link: closes what is left of it and opens it again, with
    // Obd::VehicleLink::reconnectDelayMs() between attempts, until it opens (true) or stop is set.
    bool reopen(const Options& options, const std::atomic<bool>& stop)
    {
        return reopen(options, [&stop]() { return stop.load(); });
    }
    bool reopen(const Options& options, const std::function<bool()>& stop);

    Obd::IObdProxy* proxy() { return &m_proxy; }
    Obd::IScantool* scantool() { return m_link.scantool(); }
    // Also true as soon as the link knows it is down: an exchange that failed
    // because the peer went away returns before the loss is reported to us.
    bool isLost() const
    {
        return m_lost || (m_open && m_link.connection() && !m_link.connection()->isConnected());
    }

    void onDisconnected() override;

private:
    Obd::ObdProxy m_proxy;
    Obd::VehicleLink m_link;
    std::atomic<bool> m_open;
    std::atomic<bool> m_lost;
    std::atomic<bool> m_lostWhileOpening;
};

} // namespace Cli

#endif
