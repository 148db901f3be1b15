#ifndef HARMATTAN_CONNECTIONMANAGER_H
#define HARMATTAN_CONNECTIONMANAGER_H

#include "idisconnectlistener.h"

#include <QBluetoothLocalDevice>
#include <QFuture>
#include <QObject>
#include <QString>
#include <QTimer>

#include <atomic>
#include <functional>
#include <memory>

namespace Obd {
class AdapterAddress;
class IObdProxy;
class SettingsModel;
class VehicleLink;
}

namespace Harmattan {

// Owns the life cycle of the link to the adapter: the vehicle link is opened
// on a pool thread so that the screen stays live.
class ConnectionManager : public QObject, public Obd::IDisconnectListener
{
    Q_OBJECT

public:
    static const char* const FAILED_TO_CONNECT;
    static const char* const FAILED_TO_IDENTIFY;
    static const char* const FAILED_TO_INITIALIZE_SCANTOOL;
    static const char* const FAILED_TO_INITIALIZE_COMMUNICATION;
    static const char* const CONNECTIVITY_LOST;
    static const char* const BLUETOOTH_TURNED_ON;
    static const char* const OPENING_CANCELLED;
    static const char* const RECONNECTING;
    static const char* const VEHICLE_NOT_RESPONDING;
    // How long every request may meet NO DATA or UNABLE TO CONNECT before
    // the vehicle counts as not responding.
    static constexpr int SILENCE_LIMIT_MS = 5000;


    ConnectionManager(Obd::SettingsModel* settings, QObject* parent = nullptr);
    ~ConnectionManager() override;

    Q_INVOKABLE bool openConnection();
    Q_INVOKABLE bool isConnected();
    // Between a lost link and the attempt that opens it again (or Cancel).
    bool isReconnecting() const { return m_reconnecting; }
    // Whether a reconnect attempt is waiting for its turn.
    bool isRetryPending() const { return m_retryTimer.isActive(); }
    bool isVehicleResponding() const { return m_vehicleResponding; }
    // Tests: shorter waits than the real schedule, a shorter silence.
    void setBackoff(const std::function<int(int)>& backoff) { m_backoff = backoff; }
    void setSilenceLimitMs(int ms) { m_silenceLimitMs = ms; }
    Obd::IObdProxy* proxy();
    // The adapter the settings point at.
    Obd::AdapterAddress adapterAddress() const;
    // Waits for an opening under way, then closes: for the application's end,
    // while the settings and the view models are still there.
    void shutdown();

    // Called by the connection's read task when the link drops.
    void onDisconnected() override;

signals:
    void connected();
    void failed(QString reason);
    void disconnected();
    // A lost link is being opened again (true) until it is or the user gives up.
    void reconnectingChanged(bool reconnecting);
    // The adapter answers but the vehicle behind it does not (false), or again.
    void vehicleRespondingChanged(bool responding);

public slots:
    void closeConnection();
    // Gives up an opening under way: it fails with OPENING_CANCELLED as soon
    // as its current step lets go; reconnecting stops. Nothing happens to an
    // open link.
    void cancelOpening();
    void onHostModeStateChanged(QBluetoothLocalDevice::HostMode state);
    // Runs on a pool thread.
    void openThread();

private:
    friend class WatchingScantool;

    void startOpenThread();
    void failOpening(const QString& reason);
    // Our thread: the outcome of the opening that just ended (empty: open).
    void finishOpening(QString reason);
    void closeLink();
    void startReconnecting();
    // Ends reconnecting; an attempt under way is given up.
    void stopReconnecting();
    void onRetryTimer();
    void setVehicleResponding(bool responding);

    // Made on our thread before each opening, so that cancelOpening() never
    // meets one being deleted.
    std::unique_ptr<Obd::VehicleLink> m_link;
    Obd::IObdProxy* m_proxy;
    std::atomic<bool> m_connected;
    Obd::SettingsModel* m_settings;
    QBluetoothLocalDevice* m_localDevice;
    bool m_awaitingBluetooth;
    // Only so that destruction can wait for an opening still under way.
    QFuture<void> m_opening;

    QTimer m_retryTimer;
    std::function<int(int)> m_backoff;
    int m_attempt;
    bool m_reconnecting;
    // The attempt under way was given up: an opening it makes is closed again.
    bool m_attemptAbandoned;
    bool m_vehicleResponding;
    std::atomic<int> m_silenceLimitMs;
};

} // namespace Harmattan

#endif
