#include "connectionmanager.h"

#include "adapteraddress.h"
#include "iobdproxy.h"
#include "obdproxy.h"
#include "settingsmodel.h"
#include "trlog.h"
#include "vehiclelink.h"
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
const char* const ConnectionManager::OPENING_CANCELLED = "Opening cancelled";

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
    , m_proxy(createProxy())
    , m_connected(false)
    , m_settings(settings)
    , m_localDevice(new QBluetoothLocalDevice(this))
    , m_awaitingBluetooth(false)
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
    m_link.reset();
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
        m_awaitingBluetooth = true;
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
    m_awaitingBluetooth = false;
    Obd::ZrvInfo info(BLUETOOTH_TURNED_ON);
    info.show();
    startOpenThread();
}

Obd::AdapterAddress ConnectionManager::adapterAddress() const
{
    switch (m_settings->connectionMethod()) {
    case Obd::SettingsModel::CM_WIFI:
        return Obd::AdapterAddress::tcp(m_settings->ipAddress().toStdString(),
                                        portNumber(m_settings->ipPort()));
    case Obd::SettingsModel::CM_BLUETOOTH:
        return Obd::AdapterAddress::bluetooth(m_settings->bluetoothDeviceAddress().toStdString());
    case Obd::SettingsModel::CM_SERIAL:
        return Obd::AdapterAddress::serial(m_settings->serialDevice().toStdString(),
                                           Obd::SettingsModel::baudRate(m_settings->serialBaudRate()));
    default:
        return Obd::AdapterAddress();
    }
}

void ConnectionManager::startOpenThread()
{
    m_opening.waitForFinished();
    if (!m_connected)
        m_link.reset(new Obd::VehicleLink(m_proxy, this));
    // The outcome arrives as connected() or failed().
    m_opening = QtConcurrent::run(&ConnectionManager::openThread, this);
}

void ConnectionManager::openThread()
{
    if (!m_link) {
        failOpening(FAILED_TO_CONNECT);
        return;
    }
    // The one opening dialogue of the library; the link cleans up after a failure.
    switch (m_link->open(adapterAddress())) {
    case Obd::VehicleLink::VL_OK:
        break;
    case Obd::VehicleLink::VL_NOT_IDENTIFIED:
        failOpening(FAILED_TO_IDENTIFY);
        return;
    case Obd::VehicleLink::VL_NOT_INITIALIZED:
        failOpening(FAILED_TO_INITIALIZE_SCANTOOL);
        return;
    case Obd::VehicleLink::VL_VEHICLE_NOT_REACHED:
        failOpening(FAILED_TO_INITIALIZE_COMMUNICATION);
        return;
    case Obd::VehicleLink::VL_CANCELLED:
        failOpening(OPENING_CANCELLED);
        return;
    default:
        OBD_ERROR << "Cannot connect to " << m_link->address().toString() << ": "
                  << m_link->errorString();
        failOpening(FAILED_TO_CONNECT);
        return;
    }
    m_connected = true;
    emit connected();
}

void ConnectionManager::failOpening(const QString& reason)
{
    emit failed(reason);
}

void ConnectionManager::cancelOpening()
{
    if (m_awaitingBluetooth) {
        disconnect(m_localDevice, nullptr, this, nullptr);
        m_awaitingBluetooth = false;
        failOpening(OPENING_CANCELLED);
        return;
    }
    if (m_link && m_opening.isRunning())
        m_link->cancel();
}

void ConnectionManager::closeConnection()
{
    // An opening under way owns its link; one that has just connected is
    // about to end.
    if (m_connected.exchange(false))
        m_opening.waitForFinished();
    else if (m_opening.isRunning())
        return;
    if (!m_link || !m_link->isOpen())
        return;
    // The screens stop polling and unhook their requests from the proxy;
    // an exchange already running on the worker still uses the scan tool,
    // so it must end before anything it uses goes.
    emit disconnected();
    if (!Obd::WorkerThread::flush(CLOSE_WAIT_MS)) {
        // Deleting under a running exchange would crash; leaking cannot.
        OBD_WARN << "exchange still running after " << CLOSE_WAIT_MS << " ms, link left open";
        m_link.release();
        return;
    }
    m_link->close();
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
