#include "linkopener.h"
#include "connection.h"
#include "elmscantool.h"
#include "iobdproxy.h"
#include "trlog.h"

namespace Obd {

LinkOpener::LinkOpener()
    : m_connectStatus(IMessageBus::OS_OK)
{
}

LinkOpener::~LinkOpener()
{
}

void LinkOpener::setProgress(const Progress& progress)
{
    m_progress = progress;
}

void LinkOpener::setCancelled(const Cancelled& cancelled)
{
    m_cancelled = cancelled;
}

bool LinkOpener::cancelled() const
{
    return m_cancelled && m_cancelled();
}

void LinkOpener::report(const std::string& step)
{
    if (m_progress)
        m_progress(step);
}

bool LinkOpener::resetAdapter(IConnection* connection, IScantool* scantool,
                              IDisconnectListener* listener)
{
    Connection* link = static_cast<Connection*>(connection);
    if (!m_noReset) {
        scantool->reset();
        if (link->isConnected()) {
            link->setListener(listener);
            return true;
        }
        OBD_INFO << "The adapter dropped the link on ATZ: reconnecting without a reset";
        if (cancelled() || link->open(nullptr) != IMessageBus::OS_OK)
            return false;
        // Remembered only for an adapter that is there again: a link that is simply gone says nothing.
        m_resetDropped = true;
    }
    if (!scantool->warmStart())
        OBD_INFO << "No warm start either: going on with the adapter as it is";
    link->setListener(listener);
    return link->isConnected();
}

LinkOpener::Result LinkOpener::open(IMessageBus* bus, IDisconnectListener* listener,
                                    IObdProxy* proxy, IConnection*& connection,
                                    IScantool*& scantool)
{
    connection = nullptr;
    scantool = nullptr;
    m_connectStatus = IMessageBus::OS_OK;
    m_connectError.clear();
    if (!bus)
        return LO_CONNECT_FAILED;
    if (cancelled()) {
        delete bus;
        return LO_CANCELLED;
    }
    report("Connecting");
    m_resetDropped = false;
    Connection* link = new Connection(bus);
    // The listener hears of a lost link once the reset is behind: a clone
    // that drops it on ATZ is reopened.
    m_connectStatus = link->open(nullptr);
    if (m_connectStatus != IMessageBus::OS_OK) {
        m_connectError = link->errorString();
        delete link;
        return cancelled() ? LO_CANCELLED : LO_CONNECT_FAILED;
    }
    connection = link;
    Result result = LO_OK;
    scantool = ElmScantool::create(connection);
    report("Identifying adapter");
    const bool reset = resetAdapter(link, scantool, listener);
    if (cancelled() || !reset || !scantool->identify()) {
        result = LO_IDENTIFY_FAILED;
    } else {
        scantool->readDescription();
        report("Initialising adapter");
        if (cancelled() || !scantool->initialize(0)) {
            result = LO_INITIALIZE_FAILED;
        } else {
            report("Discovering vehicle");
            // A link lost halfway leaves a proxy that believes in a vehicle.
            if (cancelled() || !proxy || !proxy->initialize(scantool) || !connection->isConnected())
                result = LO_DISCOVERY_FAILED;
        }
    }
    // Given up by the user: whatever the last step said, it is no answer.
    if (cancelled())
        result = LO_CANCELLED;
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
