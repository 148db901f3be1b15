#ifndef HARMATTAN_CONNECTIONMANAGER_H
#define HARMATTAN_CONNECTIONMANAGER_H

#include "idisconnectlistener.h"

#include <QBluetoothLocalDevice>
#include <QFuture>
#include <QObject>
#include <QString>

#include <atomic>
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

    ConnectionManager(Obd::SettingsModel* settings, QObject* parent = nullptr);
    ~ConnectionManager() override;

    Q_INVOKABLE bool openConnection();
    Q_INVOKABLE bool isConnected();
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

public slots:
    void closeConnection();
    // Gives up an opening under way: it fails with OPENING_CANCELLED as soon
    // as its current step lets go. Nothing happens to an open link.
    void cancelOpening();
    void onHostModeStateChanged(QBluetoothLocalDevice::HostMode state);
    // Runs on a pool thread.
    void openThread();

private:
    void startOpenThread();
    void failOpening(const QString& reason);

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
};

} // namespace Harmattan

#endif
