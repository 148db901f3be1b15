#include "session.h"
#include "bluetoothbus.h"
#include "iconnection.h"
#include "iscantool.h"
#include "linkopener.h"
#include "options.h"
#include "tcpbus.h"

namespace Cli {

namespace {

// The serial-port service class; the bus keeps its low byte as the channel.
const unsigned int SERIAL_PORT_SERVICE = 0x1101;

} // namespace

Session::Session()
    : m_connection(nullptr)
    , m_scantool(nullptr)
    , m_open(false)
    , m_lost(false)
    , m_lostWhileOpening(false)
{
}

Session::~Session()
{
    close();
}

void Session::onDisconnected()
{
    if (m_open)
        m_lost = true;
    else
        m_lostWhileOpening = true;
}

Session::Status Session::open(const Options& options,
                              const std::function<void(const std::string&)>& progress,
                              std::string& why)
{
    Obd::IMessageBus* bus = nullptr;
    if (!options.bluetoothAddress.empty()) {
        Obd::BluetoothBus* bluetooth = new Obd::BluetoothBus;
        bluetooth->init(options.bluetoothAddress, SERIAL_PORT_SERVICE);
        bus = bluetooth;
    } else {
        Obd::TcpBus* tcp = new Obd::TcpBus;
        if (!tcp->init(options.host, options.port)) {
            delete tcp;
            why = "cannot resolve host " + options.host;
            return SS_CANNOT_CONNECT;
        }
        bus = tcp;
    }
    Obd::LinkOpener opener;
    opener.setProgress(progress);
    m_lost = false;
    m_lostWhileOpening = false;
    const Obd::LinkOpener::Result result = opener.open(bus, this, &m_proxy, m_connection, m_scantool);
    // Blaming the adapter or the car for a link that went away misleads the user.
    if (result != Obd::LinkOpener::LO_OK && m_lostWhileOpening) {
        why = "the link to the adapter was lost while opening it";
        return result == Obd::LinkOpener::LO_DISCOVERY_FAILED ? SS_NOT_REACHED : SS_NOT_IDENTIFIED;
    }
    switch (result) {
    case Obd::LinkOpener::LO_OK:
        m_open = true;
        return SS_OK;
    case Obd::LinkOpener::LO_CONNECT_FAILED:
        why = "cannot connect to the adapter at " +
              (options.bluetoothAddress.empty()
                   ? options.host + ":" + std::to_string(options.port)
                   : options.bluetoothAddress);
        return SS_CANNOT_CONNECT;
    case Obd::LinkOpener::LO_IDENTIFY_FAILED:
        why = "the adapter did not identify itself as an ELM327";
        return SS_NOT_IDENTIFIED;
    case Obd::LinkOpener::LO_INITIALIZE_FAILED:
        why = "the adapter could not be initialised";
        return SS_NOT_IDENTIFIED;
    case Obd::LinkOpener::LO_DISCOVERY_FAILED:
    default:
        why = "the vehicle did not answer (is the ignition on?)";
        return SS_NOT_REACHED;
    }
}

void Session::close()
{
    if (!m_connection)
        return;
    m_open = false;
    m_proxy.reset();
    if (m_connection->isConnected() && m_scantool)
        m_scantool->sendReset();
    m_connection->close();
    delete m_scantool;
    m_scantool = nullptr;
    delete m_connection;
    m_connection = nullptr;
}

} // namespace Cli
