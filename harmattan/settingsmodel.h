#ifndef OBD_SETTINGSMODEL_H
#define OBD_SETTINGSMODEL_H

#include <QObject>
#include <QString>

namespace Obd {

// The connection settings, kept in memory and written through to the
// platform settings store on every change.
class SettingsModel : public QObject
{
    Q_OBJECT
    Q_PROPERTY(int connectionMethod READ connectionMethod WRITE setConnectionMethod NOTIFY connectionMethodChanged)
    Q_PROPERTY(QString bluetoothDeviceName READ bluetoothDeviceName WRITE setBluetoothDeviceName NOTIFY bluetoothDeviceNameChanged)
    Q_PROPERTY(QString bluetoothDeviceAddress READ bluetoothDeviceAddress WRITE setBluetoothDeviceAddress NOTIFY bluetoothDeviceAddressChanged)
    Q_PROPERTY(QString ipAddress READ ipAddress WRITE setIpAddress NOTIFY ipAddressChanged)
    Q_PROPERTY(QString ipPort READ ipPort WRITE setIpPort NOTIFY ipPortChanged)

public:
    enum ConnectionMethod { CM_BLUETOOTH = 0, CM_WIFI = 1 };

    static const char* const KEY_CONNECTION_METHOD;
    static const char* const KEY_BLUETOOTH_DEVICE_NAME;
    static const char* const KEY_BLUETOOTH_DEVICE_ADDRESS;
    static const char* const KEY_IP_ADDRESS;
    static const char* const KEY_IP_PORT;

    // The defaults double as "never set" markers for isValid().
    static const char* const DEFAULT_BLUETOOTH_DEVICE_NAME;
    static const char* const DEFAULT_BLUETOOTH_DEVICE_ADDRESS;
    static const char* const DEFAULT_IP_ADDRESS;
    static const char* const DEFAULT_IP_PORT;

    explicit SettingsModel(QObject* parent = nullptr);

    int connectionMethod() const;
    QString bluetoothDeviceName() const;
    QString bluetoothDeviceAddress() const;
    QString ipAddress() const;
    QString ipPort() const;

    void setConnectionMethod(int method);
    void setBluetoothDeviceName(const QString& name);
    void setBluetoothDeviceAddress(const QString& address);
    void setIpAddress(const QString& address);
    void setIpPort(const QString& port);

    Q_INVOKABLE bool isValid() const;

signals:
    void connectionMethodChanged();
    void bluetoothDeviceNameChanged();
    void bluetoothDeviceAddressChanged();
    void ipAddressChanged();
    void ipPortChanged();

private:
    int m_connectionMethod;
    QString m_bluetoothDeviceName;
    QString m_bluetoothDeviceAddress;
    QString m_ipAddress;
    QString m_ipPort;
};

} // namespace Obd

#endif
