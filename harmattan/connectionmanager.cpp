#include "connectionmanager.h"

#include "adapteraddress.h"
#include "iobdproxy.h"
#include "iscantool.h"
#include "obdparameterupdater.h"
#include "obdproxy.h"
#include "settingsmodel.h"
#include "trlog.h"
#include "vehiclelink.h"
#include "workerthread.h"
#include "zrvinfo.h"

#include <QElapsedTimer>
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
const char* const ConnectionManager::RECONNECTING = "Reconnecting...";
const char* const ConnectionManager::VEHICLE_NOT_RESPONDING = "Vehicle not responding";

// Passes everything to the scan tool of the open link and watches how its
// requests end: an adapter whose car went quiet (ignition off) answers
// every request with NO DATA or UNABLE TO CONNECT.
class WatchingScantool : public Obd::IScantool
{
public:
    explicit WatchingScantool(ConnectionManager* manager)
        : m_manager(manager)
    {
        m_clock.start();
    }
    void setInner(Obd::IScantool* inner) { m_inner = inner; }
    // A fresh link starts with a vehicle that answers.
    void restart() { m_silentSince = -1; m_reported = false; }

    void setConnection(Obd::IConnection* c) override { m_inner.load()->setConnection(c); }
    bool checkDevice() override { return m_inner.load()->checkDevice(); }
    bool setBaudRateTimeout() override { return m_inner.load()->setBaudRateTimeout(); }
    bool changeBaudRate(unsigned int baud) override { return m_inner.load()->changeBaudRate(baud); }
    bool confirmBaudRate() override { return m_inner.load()->confirmBaudRate(); }
    bool reset() override { return m_inner.load()->reset(); }
    void sendReset() override { m_inner.load()->sendReset(); }
    bool identify() override { return m_inner.load()->identify(); }
    bool readDescription() override { return m_inner.load()->readDescription(); }
    bool initialize(unsigned int protocol) override { return m_inner.load()->initialize(protocol); }
    bool identifyProtocol() override { return m_inner.load()->identifyProtocol(); }
    bool isInitialized() const override { return m_inner.load()->isInitialized(); }
    bool setHeadersOn() override { return m_inner.load()->setHeadersOn(); }
    bool setDlcDisplayOn() override { return m_inner.load()->setDlcDisplayOn(); }
    bool setHeadersOff() override { return m_inner.load()->setHeadersOff(); }
    bool isHeadersOn() const override { return m_inner.load()->isHeadersOn(); }
    bool setTryProtocol(unsigned int protocol) override { return m_inner.load()->setTryProtocol(protocol); }
    Obd::DeviceInfo getDeviceInfo() const override { return m_inner.load()->getDeviceInfo(); }
    unsigned int getProtocol() const override { return m_inner.load()->getProtocol(); }
    std::string getProtocolName() const override { return m_inner.load()->getProtocolName(); }
    Obd::ScantoolError lastError() const override { return m_inner.load()->lastError(); }
    bool warmStart() override { return m_inner.load()->warmStart(); }
    bool sendCommand(const std::vector<unsigned char>& command, std::vector<unsigned char>& response,
                     unsigned int timeoutMs) override
    {
        const bool ok = m_inner.load()->sendCommand(command, response, timeoutMs);
        watch(ok);
        return ok;
    }
    bool sendObdCommand(const std::string& command, std::string& response,
                        unsigned int timeoutMs) override
    {
        const bool ok = m_inner.load()->sendObdCommand(command, response, timeoutMs);
        watch(ok);
        return ok;
    }

private:
    // The worker's thread: one request ended.
    void watch(bool ok)
    {
        const Obd::ScantoolError error = m_inner.load()->lastError();
        const bool quiet = error.status == Obd::ScantoolError::SE_ERROR_WORD
                           && (error.word == "NO DATA" || error.word == "UNABLE TO CONNECT");
        if (!quiet) {
            // A time-out or a lost link is no word about the car.
            if (ok && error.status == Obd::ScantoolError::SE_NONE) {
                m_silentSince = -1;
                if (m_reported.exchange(false))
                    tell(true);
            }
            return;
        }
        const qint64 now = m_clock.elapsed();
        qint64 since = -1;
        if (m_silentSince.compare_exchange_strong(since, now))
            since = now;
        if (now - since >= m_manager->m_silenceLimitMs && !m_reported.exchange(true))
            tell(false);
    }
    void tell(bool responding)
    {
        ConnectionManager* manager = m_manager;
        QMetaObject::invokeMethod(
            manager, [manager, responding]() { manager->setVehicleResponding(responding); },
            Qt::QueuedConnection);
    }

    ConnectionManager* m_manager;
    std::atomic<Obd::IScantool*> m_inner{ nullptr };
    QElapsedTimer m_clock;
    std::atomic<qint64> m_silentSince{ -1 };
    std::atomic<bool> m_reported{ false };
};

namespace {

// The proxy hands out the watching scan tool in place of the link's own.
class WatchingProxy : public Obd::ObdProxy
{
public:
    explicit WatchingProxy(ConnectionManager* manager)
        : m_watch(manager)
    {
    }
    Obd::IScantool* getScantool() override
    {
        Obd::IScantool* inner = Obd::ObdProxy::getScantool();
        if (!inner)
            return nullptr;
        m_watch.setInner(inner);
        return &m_watch;
    }
    void restart() { m_watch.restart(); }

private:
    WatchingScantool m_watch;
};

const int CONNECTIVITY_LOST_TIMEOUT_MS = 4000;
// Longest wait for an exchange in progress when the link closes: a few
// request time-outs.
const int CLOSE_WAIT_MS = 5000;

// The one place that decides which proxy serves every connection.
Obd::IObdProxy* createProxy(ConnectionManager* manager)
{
    return new WatchingProxy(manager);
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
    , m_proxy(createProxy(this))
    , m_connected(false)
    , m_settings(settings)
    , m_localDevice(new QBluetoothLocalDevice(this))
    , m_awaitingBluetooth(false)
    , m_backoff(&Obd::VehicleLink::reconnectDelayMs)
    , m_attempt(0)
    , m_reconnecting(false)
    , m_attemptAbandoned(false)
    , m_vehicleResponding(true)
    , m_silenceLimitMs(SILENCE_LIMIT_MS)
{
    m_retryTimer.setSingleShot(true);
    connect(&m_retryTimer, &QTimer::timeout, this, &ConnectionManager::onRetryTimer);
}

ConnectionManager::~ConnectionManager()
{
    shutdown();
    delete m_proxy;
}

void ConnectionManager::shutdown()
{
    stopReconnecting();
    m_opening.waitForFinished();
    closeConnection();
    m_link.reset();
}

bool ConnectionManager::openConnection()
{
    if (!m_settings->isValid())
        return false;
    // The user asks now: the wait is over, and an attempt under way is theirs.
    if (m_reconnecting) {
        m_retryTimer.stop();
        m_reconnecting = false;
        emit reconnectingChanged(false);
        if (m_opening.isRunning())
            return true;
    }

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
    m_attemptAbandoned = false;
    if (!m_connected)
        m_link.reset(new Obd::VehicleLink(m_proxy, this));
    if (m_link)
        m_link->setNoReset(m_settings->noReset());
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
        // What the last link taught the live reads does not hold for this one.
        Obd::ObdParameterUpdater::forgetProxy(m_proxy);
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
    QMetaObject::invokeMethod(this, [this]() { finishOpening(QString()); }, Qt::QueuedConnection);
}

void ConnectionManager::failOpening(const QString& reason)
{
    QMetaObject::invokeMethod(this, [this, reason]() { finishOpening(reason); }, Qt::QueuedConnection);
}

void ConnectionManager::finishOpening(QString reason)
{
    // The thread has only its return left.
    m_opening.waitForFinished();
    if (reason.isEmpty() && (m_attemptAbandoned || !m_link || !m_link->isOpen())) {
        // Given up, or closed, while it opened: the user's word stands.
        closeLink();
        reason = QString::fromLatin1(OPENING_CANCELLED);
    }
    if (!reason.isEmpty()) {
        if (m_reconnecting) {
            OBD_INFO << "reconnect attempt " << m_attempt << " failed: " << reason.toStdString();
            m_retryTimer.start(m_backoff(m_attempt));
            return;
        }
        emit failed(reason);
        return;
    }
    static_cast<WatchingProxy*>(m_proxy)->restart();
    setVehicleResponding(true);
    m_connected = true;
    if (m_reconnecting) {
        OBD_INFO << "reconnected after " << m_attempt << " attempts";
        m_reconnecting = false;
        emit reconnectingChanged(false);
    }
    emit connected();
}

void ConnectionManager::startReconnecting()
{
    m_attempt = 0;
    m_reconnecting = true;
    emit reconnectingChanged(true);
    m_retryTimer.start(m_backoff(m_attempt));
}

void ConnectionManager::stopReconnecting()
{
    m_retryTimer.stop();
    if (!m_reconnecting)
        return;
    m_reconnecting = false;
    if (m_opening.isRunning()) {
        m_attemptAbandoned = true;
        if (m_link)
            m_link->cancel();
    }
    emit reconnectingChanged(false);
}

void ConnectionManager::onRetryTimer()
{
    if (!m_reconnecting)
        return;
    ++m_attempt;
    OBD_INFO << "reconnect attempt " << m_attempt;
    startOpenThread();
}

void ConnectionManager::setVehicleResponding(bool responding)
{
    if (responding == m_vehicleResponding || (!responding && !m_connected))
        return;
    m_vehicleResponding = responding;
    OBD_INFO << (responding ? "vehicle responds again" : "vehicle not responding");
    emit vehicleRespondingChanged(responding);
}

void ConnectionManager::cancelOpening()
{
    if (m_reconnecting) {
        const bool attempting = m_opening.isRunning();
        stopReconnecting();
        // A running attempt reports its own end.
        if (!attempting)
            emit failed(QString::fromLatin1(OPENING_CANCELLED));
        return;
    }
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
    // The user's close is final: no reconnect undoes it.
    stopReconnecting();
    closeLink();
}

void ConnectionManager::closeLink()
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
    Obd::ObdParameterUpdater::forgetProxy(m_proxy);
    m_link->close();
}

void ConnectionManager::onDisconnected()
{
    if (!m_connected)
        return;
    // The read task must not close its own connection: hand over to our thread.
    QTimer::singleShot(0, this, [this]() {
        // The user may have closed in the meantime.
        const bool wasOpen = m_connected;
        closeLink();
        Obd::ZrvInfo info(CONNECTIVITY_LOST);
        info.setTimeout(CONNECTIVITY_LOST_TIMEOUT_MS);
        info.show();
        if (wasOpen)
            startReconnecting();
    });
}

} // namespace Harmattan
