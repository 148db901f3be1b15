#ifndef HARMATTAN_CONNECTIONMANAGER_H
#define HARMATTAN_CONNECTIONMANAGER_H

#include "idisconnectlistener.h"

#include <QBluetoothLocalDevice>
#include <QFuture>
#include <QObject>
#include <QString>

#include <atomic>

namespace Obd {
class IConnection;
class IObdProxy;
class IScantool;
class SettingsModel;
}

namespace Harmattan {

// Owns the life cycle of the link to the adapter: bus, connection, scan tool
// and discovery are built on a pool thread so that the screen stays live.
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
    // The serial-port service class; the Bluetooth bus keeps its low byte.
    static const unsigned int SERIAL_PORT_CHANNEL = 0x1101;

    ConnectionManager(Obd::SettingsModel* settings, QObject* parent = nullptr);
    ~ConnectionManager() override;

    Q_INVOKABLE bool openConnection();
    Q_INVOKABLE bool isConnected();
    Obd::IObdProxy* proxy();
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
    void onHostModeStateChanged(QBluetoothLocalDevice::HostMode state);
    // Runs on a pool thread.
    void openThread();

private:
    void startOpenThread();
    void failOpening(const QString& reason);

    Obd::IConnection* m_connection;
    Obd::IScantool* m_scantool;
    Obd::IObdProxy* m_proxy;
    std::atomic<bool> m_connected;
    Obd::SettingsModel* m_settings;
    QBluetoothLocalDevice* m_localDevice;
    // Only so that destruction can wait for an opening still under way.
    QFuture<void> m_opening;
};

} // namespace Harmattan

#endif
