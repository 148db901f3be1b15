#include "connectionmanager.h"

#include "bluetoothbus.h"
#include "iconnection.h"
#include "iobdproxy.h"
#include "iscantool.h"
#include "linkopener.h"
#include "obdproxy.h"
#include "settingsmodel.h"
#include "tcpbus.h"
#include "trlog.h"
#include "workerthread.h"
#include "zrvinfo.h"

#include <QTimer>
#include <QtConcurrent/QtConcurrentRun>

namespace Harmattan {

const char* const ConnectionManager::FAILED_TO_CONNECT
    = "Failed to connect. Check hardware attachment, and turn the ignition to ON position.";
const char* const ConnectionManager::FAILED_TO_IDENTIFY = "Failed to identify interface";
const char* const ConnectionManager::FAILED_TO_INITIALIZE_SCANTOOL = "Failed to initialize scantool";
const char* const ConnectionManager::FAILED_TO_INITIALIZE_COMMUNICATION
    = "Failed to initialize communication";
const char* const ConnectionManager::CONNECTIVITY_LOST = "Connectivity suddenly lost";
const char* const ConnectionManager::BLUETOOTH_TURNED_ON = "Turned Bluetooth on";

namespace {

const int CONNECTIVITY_LOST_TIMEOUT_MS = 4000;
// Longest wait for an exchange in progress when the link closes: a few
// request time-outs.
const int CLOSE_WAIT_MS = 5000;

// The one place that decides which proxy serves every connection.
Obd::IObdProxy* createProxy()
{
    return new Obd::ObdProxy();
}

// A port text that is not a decimal number gives port 0, which cannot connect.
unsigned int portNumber(const QString& text)
{
    bool ok = false;
    unsigned int port = text.toUInt(&ok, 10);
    return ok ? port : 0;
}

} // namespace

ConnectionManager::ConnectionManager(Obd::SettingsModel* settings, QObject* parent)
    : QObject(parent)
    , m_connection(nullptr)
    , m_scantool(nullptr)
    , m_proxy(createProxy())
    , m_connected(false)
    , m_settings(settings)
    , m_localDevice(new QBluetoothLocalDevice(this))
{
}

ConnectionManager::~ConnectionManager()
{
    shutdown();
    delete m_proxy;
}

void ConnectionManager::shutdown()
{
    m_opening.waitForFinished();
    closeConnection();
}

bool ConnectionManager::openConnection()
{
    if (!m_settings->isValid())
        return false;

    if (m_settings->connectionMethod() != Obd::SettingsModel::CM_BLUETOOTH) {
        startOpenThread();
        return true;
    }
    // Without an adapter or a Bluetooth service no mode change will ever come:
    // go ahead and let the RFCOMM connect report the failure.
    if (m_localDevice->isValid()
        && m_localDevice->hostMode() == QBluetoothLocalDevice::HostPoweredOff) {
        connect(m_localDevice, &QBluetoothLocalDevice::hostModeStateChanged, this,
                &ConnectionManager::onHostModeStateChanged);
        m_localDevice->powerOn();
        return true;
    }
    startOpenThread();
    return true;
}

bool ConnectionManager::isConnected()
{
    return m_connected;
}

Obd::IObdProxy* ConnectionManager::proxy()
{
    return m_proxy;
}

void ConnectionManager::onHostModeStateChanged(QBluetoothLocalDevice::HostMode state)
{
    if (state == QBluetoothLocalDevice::HostPoweredOff || m_connected)
        return;
    disconnect(m_localDevice, nullptr, this, nullptr);
    Obd::ZrvInfo info(BLUETOOTH_TURNED_ON);
    info.show();
    startOpenThread();
}

void ConnectionManager::startOpenThread()
{
    // The outcome arrives as connected() or failed().
    m_opening = QtConcurrent::run(&ConnectionManager::openThread, this);
}

void ConnectionManager::openThread()
{
    Obd::IMessageBus* bus = nullptr;
    const int method = m_settings->connectionMethod();
    if (method == Obd::SettingsModel::CM_WIFI) {
        Obd::TcpBus* tcpBus = new Obd::TcpBus();
        if (!tcpBus->init(m_settings->ipAddress().toStdString(), portNumber(m_settings->ipPort()))) {
            // An unaimed socket must not be opened: it is a plain connect failure.
            OBD_ERROR << "Cannot resolve " << m_settings->ipAddress().toStdString();
            delete tcpBus;
            failOpening(FAILED_TO_CONNECT);
            return;
        }
        bus = tcpBus;
    } else if (method == Obd::SettingsModel::CM_BLUETOOTH) {
        Obd::BluetoothBus* bluetoothBus = new Obd::BluetoothBus();
        bluetoothBus->init(m_settings->bluetoothDeviceAddress().toStdString(), SERIAL_PORT_CHANNEL);
        bus = bluetoothBus;
    }
    if (!bus) {
        failOpening(FAILED_TO_CONNECT);
        return;
    }

    // The one opening dialogue of the library; it cleans up after a failure.
    Obd::IConnection* connection = nullptr;
    Obd::IScantool* scantool = nullptr;
    switch (Obd::LinkOpener().open(bus, this, m_proxy, connection, scantool)) {
    case Obd::LinkOpener::LO_OK:
        break;
    case Obd::LinkOpener::LO_CONNECT_FAILED:
        failOpening(FAILED_TO_CONNECT);
        return;
    case Obd::LinkOpener::LO_IDENTIFY_FAILED:
        failOpening(FAILED_TO_IDENTIFY);
        return;
    case Obd::LinkOpener::LO_INITIALIZE_FAILED:
        failOpening(FAILED_TO_INITIALIZE_SCANTOOL);
        return;
    case Obd::LinkOpener::LO_DISCOVERY_FAILED:
        failOpening(FAILED_TO_INITIALIZE_COMMUNICATION);
        return;
    }
    m_connection = connection;
    m_scantool = scantool;
    m_connected = true;
    emit connected();
}

void ConnectionManager::failOpening(const QString& reason)
{
    delete m_scantool;
    m_scantool = nullptr;
    delete m_connection;
    m_connection = nullptr;
    emit failed(reason);
}

void ConnectionManager::closeConnection()
{
    m_connected = false;
    if (!m_connection)
        return;
    // The screens stop polling and unhook their requests from the proxy;
    // an exchange already running on the worker still uses the scan tool,
    // so it must end before anything it uses goes.
    emit disconnected();
    if (!Obd::WorkerThread::flush(CLOSE_WAIT_MS)) {
        // Deleting under a running exchange would crash; leaking cannot.
        OBD_WARN << "exchange still running after " << CLOSE_WAIT_MS << " ms, link left open";
        m_scantool = nullptr;
        m_connection = nullptr;
        return;
    }
    m_proxy->reset();
    if (m_connection->isConnected()) {
        if (m_scantool)
            m_scantool->sendReset();
        m_connection->close();
    }
    delete m_scantool;
    m_scantool = nullptr;
    delete m_connection;
    m_connection = nullptr;
}

void ConnectionManager::onDisconnected()
{
    if (!m_connected)
        return;
    // The read task must not close its own connection: hand over to our thread.
    QTimer::singleShot(0, this, [this]() {
        closeConnection();
        Obd::ZrvInfo info(CONNECTIVITY_LOST);
        info.setTimeout(CONNECTIVITY_LOST_TIMEOUT_MS);
        info.show();
    });
}

} // namespace Harmattan
