#ifndef OBD_LINKOPENER_H
#define OBD_LINKOPENER_H

#include <functional>
#include <string>

namespace Obd {

class IConnection;
class IDisconnectListener;
class IMessageBus;
class IObdProxy;
class IScantool;

// Opens a link the one way the application and the command-line tool both
// use: connection, reset, identification, description, initialisation with
// automatic protocol search, then discovery by the proxy.
class LinkOpener
{
public:
    enum Result {
        LO_OK = 0,
        LO_CONNECT_FAILED,
        LO_IDENTIFY_FAILED,
        LO_INITIALIZE_FAILED,
        LO_DISCOVERY_FAILED,
        LO_CANCELLED
    };

    typedef std::function<void(const std::string& step)> Progress;
    typedef std::function<bool()> Cancelled;

    LinkOpener();
    virtual ~LinkOpener();

    void setProgress(const Progress& progress);
    // Skip ATZ and open with a warm start: for adapters that drop the link on a reset.
    void setNoReset(bool noReset) { m_noReset = noReset; }
    // After open(): the adapter dropped the link on ATZ and was reopened without it.
    bool resetDroppedLink() const { return m_resetDropped; }
    // Asked between the steps; a step under way is ended by the bus instead.
    void setCancelled(const Cancelled& cancelled);

    // Takes the bus (also on failure). On success connection and scan tool
    // are the caller's; on failure both are deleted and left null.
    Result open(IMessageBus* bus, IDisconnectListener* listener, IObdProxy* proxy,
                IConnection*& connection, IScantool*& scantool);

    // Why the connect step failed, kept after the bus is gone.
    int connectStatus() const { return m_connectStatus; }
    std::string connectError() const { return m_connectError; }

private:
    void report(const std::string& step);
    bool cancelled() const;

    bool resetAdapter(IConnection* connection, IScantool* scantool, IDisconnectListener* listener);

    Progress m_progress;
    bool m_noReset = false;
    bool m_resetDropped = false;
    Cancelled m_cancelled;
    int m_connectStatus;
    std::string m_connectError;
};

} // namespace Obd

#endif
