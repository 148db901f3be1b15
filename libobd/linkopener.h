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
        LO_DISCOVERY_FAILED
    };

    typedef std::function<void(const std::string& step)> Progress;

    LinkOpener();
    virtual ~LinkOpener();

    void setProgress(const Progress& progress);

    // Takes the bus (also on failure). On success connection and scan tool
    // are the caller's; on failure both are deleted and left null.
    Result open(IMessageBus* bus, IDisconnectListener* listener, IObdProxy* proxy,
                IConnection*& connection, IScantool*& scantool);

private:
    void report(const std::string& step);

    Progress m_progress;
};

} // namespace Obd

#endif
