#include "linkopener.h"
#include "connection.h"
#include "elmscantool.h"
#include "iobdproxy.h"

namespace Obd {

LinkOpener::LinkOpener()
{
}

LinkOpener::~LinkOpener()
{
}

void LinkOpener::setProgress(const Progress& progress)
{
    m_progress = progress;
}

void LinkOpener::report(const std::string& step)
{
    if (m_progress)
        m_progress(step);
}

LinkOpener::Result LinkOpener::open(IMessageBus* bus, IDisconnectListener* listener,
                                    IObdProxy* proxy, IConnection*& connection,
                                    IScantool*& scantool)
{
    connection = nullptr;
    scantool = nullptr;
    if (!bus)
        return LO_CONNECT_FAILED;
    report("Connecting");
    Connection* link = new Connection(bus);
    if (link->open(listener) != IMessageBus::OS_OK) {
        delete link;
        return LO_CONNECT_FAILED;
    }
    connection = link;
    Result result = LO_OK;
    scantool = ElmScantool::create(connection);
    report("Identifying adapter");
    scantool->reset();
    if (!scantool->identify()) {
        result = LO_IDENTIFY_FAILED;
    } else {
        scantool->readDescription();
        report("Initialising adapter");
        if (!scantool->initialize(0)) {
            result = LO_INITIALIZE_FAILED;
        } else {
            report("Discovering vehicle");
            // A link lost halfway leaves a proxy that believes in a vehicle.
            if (!proxy || !proxy->initialize(scantool) || !connection->isConnected())
                result = LO_DISCOVERY_FAILED;
        }
    }
    if (result != LO_OK) {
        if (proxy)
            proxy->reset();
        delete scantool;
        scantool = nullptr;
        // Deleting without close(): a failed opening is no link loss for the listener.
        delete connection;
        connection = nullptr;
    }
    return result;
}

} // namespace Obd
