#include "vehiclelink.h"

#include "bluetoothbus.h"
#include "iconnection.h"
#include "iobdproxy.h"
#include "iscantool.h"
#include "serialbus.h"
#include "tcpbus.h"
#include "trlog.h"

#include <mutex>
#include <set>

namespace Obd {

namespace {

// Adapters that dropped the link on ATZ, by address, for this process.
std::mutex resetDroppersMutex;
std::set<std::string>& resetDroppers()
{
    static std::set<std::string> addresses;
    return addresses;
}

} // namespace

bool VehicleLink::dropsLinkOnReset(const AdapterAddress& address)
{
    std::lock_guard<std::mutex> lock(resetDroppersMutex);
    return resetDroppers().count(address.toString()) > 0;
}

const char* VehicleLink::statusName(Status status)
{
    switch (status) {
    case VL_OK:
        return "ok";
    case VL_BAD_ADDRESS:
        return "bad address";
    case VL_NO_ANSWER:
        return "no answer";
    case VL_REFUSED:
        return "refused";
    case VL_CONNECT_FAILED:
        return "connect failed";
    case VL_NOT_IDENTIFIED:
        return "adapter not identified";
    case VL_NOT_INITIALIZED:
        return "adapter not initialised";
    case VL_VEHICLE_NOT_REACHED:
        return "vehicle not reached";
    case VL_CANCELLED:
        return "cancelled";
    }
    return "unknown";
}

VehicleLink::VehicleLink(IObdProxy* proxy, IDisconnectListener* listener)
    : m_proxy(proxy)
    , m_listener(listener)
    , m_interrupt(std::make_shared<BusInterrupt>())
    , m_state(LS_CLOSED)
    , m_connection(nullptr)
    , m_scantool(nullptr)
{
}

VehicleLink::~VehicleLink()
{
    close();
}

void VehicleLink::setProgress(const LinkOpener::Progress& progress)
{
    m_progress = progress;
}

void VehicleLink::cancel()
{
    int closed = LS_CLOSED;
    if (m_state.compare_exchange_strong(closed, LS_CANCELLED))
        m_interrupt->raise();
}

VehicleLink::Status VehicleLink::open(const AdapterAddress& address)
{
    if (m_connection)
        return VL_OK;
    m_address = address;
    m_error.clear();
    if (isCancelled())
        return VL_CANCELLED;
    if (!address.isValid()) {
        m_error = "not an adapter address: " + address.toString();
        return VL_BAD_ADDRESS;
    }
    DescriptorBus* bus = nullptr;
    switch (address.kind()) {
    case AdapterAddress::AK_TCP: {
        TcpBus* tcp = new TcpBus;
        if (!tcp->init(address.location(), address.port())) {
            delete tcp;
            // An unaimed socket must not be opened: the address is at fault.
            m_error = "cannot resolve host " + address.location();
            OBD_ERROR << "Cannot resolve " << address.location();
            return VL_BAD_ADDRESS;
        }
        bus = tcp;
        break;
    }
    case AdapterAddress::AK_BLUETOOTH: {
        BluetoothBus* bluetooth = new BluetoothBus;
        bluetooth->init(address.location(), RFCOMM_CHANNEL);
        bus = bluetooth;
        break;
    }
    case AdapterAddress::AK_SERIAL:
    default: {
        SerialBus* serial = new SerialBus;
        serial->init(address.location(), address.baud());
        bus = serial;
        break;
    }
    }
    bus->setInterrupt(m_interrupt);

    LinkOpener opener;
    opener.setProgress(m_progress);
    opener.setNoReset(m_noReset || dropsLinkOnReset(address));
    opener.setCancelled([this]() { return isCancelled(); });
    LinkOpener::Result result = opener.open(bus, m_listener, m_proxy, m_connection, m_scantool);
    if (opener.resetDroppedLink()) {
        std::lock_guard<std::mutex> lock(resetDroppersMutex);
        resetDroppers().insert(address.toString());
    }
    int closed = LS_CLOSED;
    if (result == LinkOpener::LO_OK && !m_state.compare_exchange_strong(closed, LS_OPEN)) {
        // Cancelled after the last step: the user no longer wants it.
        close();
        result = LinkOpener::LO_CANCELLED;
    }
    m_error = opener.connectError();
    switch (result) {
    case LinkOpener::LO_OK:
        return VL_OK;
    case LinkOpener::LO_CONNECT_FAILED:
        if (opener.connectStatus() == IMessageBus::OS_HOST_DOWN)
            return VL_NO_ANSWER;
        if (opener.connectStatus() == IMessageBus::OS_CONNECTION_REFUSED)
            return VL_REFUSED;
        return VL_CONNECT_FAILED;
    case LinkOpener::LO_IDENTIFY_FAILED:
        return VL_NOT_IDENTIFIED;
    case LinkOpener::LO_INITIALIZE_FAILED:
        return VL_NOT_INITIALIZED;
    case LinkOpener::LO_DISCOVERY_FAILED:
        return VL_VEHICLE_NOT_REACHED;
    case LinkOpener::LO_CANCELLED:
    default:
        OBD_INFO << "Opening of " << address.toString() << " cancelled";
        return VL_CANCELLED;
    }
}

void VehicleLink::close()
{
    if (!m_connection)
        return;
    if (m_proxy)
        m_proxy->reset();
    if (m_connection->isConnected() && m_scantool)
        m_scantool->sendReset();
    m_connection->close();
    delete m_scantool;
    m_scantool = nullptr;
    delete m_connection;
    m_connection = nullptr;
    int open = LS_OPEN;
    m_state.compare_exchange_strong(open, LS_CLOSED);
}

int VehicleLink::reconnectDelayMs(int attempt)
{
    static const int DOUBLING[] = { 1000, 2000, 4000, 8000 };
    return attempt >= 0 && attempt < 4 ? DOUBLING[attempt] : 15000;
}

} // namespace Obd
