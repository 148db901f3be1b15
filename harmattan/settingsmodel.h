#ifndef OBD_SETTINGSMODEL_H
#define OBD_SETTINGSMODEL_H

#include <QObject>
#include <QString>

namespace Obd {

// The connection and display settings, kept in memory and written through to the
// platform settings store on every change.
class SettingsModel : public QObject
{
    Q_OBJECT
    Q_PROPERTY(int connectionMethod READ connectionMethod WRITE setConnectionMethod NOTIFY connectionMethodChanged)
    Q_PROPERTY(QString bluetoothDeviceName READ bluetoothDeviceName WRITE setBluetoothDeviceName NOTIFY bluetoothDeviceNameChanged)
    Q_PROPERTY(QString bluetoothDeviceAddress READ bluetoothDeviceAddress WRITE setBluetoothDeviceAddress NOTIFY bluetoothDeviceAddressChanged)
    Q_PROPERTY(QString ipAddress READ ipAddress WRITE setIpAddress NOTIFY ipAddressChanged)
    Q_PROPERTY(QString ipPort READ ipPort WRITE setIpPort NOTIFY ipPortChanged)
    Q_PROPERTY(QString serialDevice READ serialDevice WRITE setSerialDevice NOTIFY serialDeviceChanged)
    Q_PROPERTY(QString serialBaudRate READ serialBaudRate WRITE setSerialBaudRate NOTIFY serialBaudRateChanged)
    Q_PROPERTY(int unitSystem READ unitSystem WRITE setUnitSystem NOTIFY unitSystemChanged)
    Q_PROPERTY(bool noReset READ noReset WRITE setNoReset NOTIFY noResetChanged)
    Q_PROPERTY(int firstGaugePid READ firstGaugePid WRITE setFirstGaugePid NOTIFY gaugePidsChanged)
    Q_PROPERTY(int secondGaugePid READ secondGaugePid WRITE setSecondGaugePid NOTIFY gaugePidsChanged)

public:
    enum ConnectionMethod { CM_BLUETOOTH = 0, CM_WIFI = 1, CM_SERIAL = 2 };

    static const char* const KEY_CONNECTION_METHOD;
    static const char* const KEY_BLUETOOTH_DEVICE_NAME;
    static const char* const KEY_BLUETOOTH_DEVICE_ADDRESS;
    static const char* const KEY_IP_ADDRESS;
    static const char* const KEY_IP_PORT;
    static const char* const KEY_SERIAL_DEVICE;
    static const char* const KEY_SERIAL_BAUD_RATE;
    static const char* const KEY_UNIT_SYSTEM;
    static const char* const KEY_NO_RESET;
    // One key per dashboard gauge: the service 01 PID it shows.
    static const char* const KEY_GAUGE_PIDS[2];
    static const int DEFAULT_GAUGE_PIDS[2];
    // Where the live-data screen kept the unit choice before; moved on first read.
    static const char* const OLD_KEY_UNIT_SYSTEM;

    // The defaults double as "never set" markers for isValid().
    static const char* const DEFAULT_BLUETOOTH_DEVICE_NAME;
    static const char* const DEFAULT_BLUETOOTH_DEVICE_ADDRESS;
    static const char* const DEFAULT_IP_ADDRESS;
    static const char* const DEFAULT_IP_PORT;
    static const char* const DEFAULT_SERIAL_DEVICE;
    static const char* const DEFAULT_SERIAL_BAUD_RATE;
    // The baud rate text that asks for detection.
    static const char* const AUTO_BAUD_RATE;

    explicit SettingsModel(QObject* parent = nullptr);

    int connectionMethod() const;
    QString bluetoothDeviceName() const;
    QString bluetoothDeviceAddress() const;
    QString ipAddress() const;
    QString ipPort() const;
    QString serialDevice() const;
    QString serialBaudRate() const;
    // An Obd::UnitSystem: metric or imperial, for every screen.
    int unitSystem() const;
    // The adapter is opened with a warm start instead of ATZ.
    bool noReset() const;
    // The PID of dashboard gauge 0 or 1.
    int gaugePid(int gauge) const;
    int firstGaugePid() const { return gaugePid(0); }
    int secondGaugePid() const { return gaugePid(1); }
    // The rate a baud rate text stands for (0: detect); 0 too for a text that is none.
    static unsigned int baudRate(const QString& text);
    static bool isBaudRate(const QString& text);

    void setConnectionMethod(int method);
    void setBluetoothDeviceName(const QString& name);
    void setBluetoothDeviceAddress(const QString& address);
    void setIpAddress(const QString& address);
    void setIpPort(const QString& port);
    void setSerialDevice(const QString& device);
    void setSerialBaudRate(const QString& rate);
    // Anything but metric or imperial is ignored.
    void setUnitSystem(int unitSystem);
    void setNoReset(bool noReset);
    // A gauge other than 0 or 1, or a PID outside 0x01..0xFF, is ignored.
    void setGaugePid(int gauge, int pid);
    void setFirstGaugePid(int pid) { setGaugePid(0, pid); }
    void setSecondGaugePid(int pid) { setGaugePid(1, pid); }

    Q_INVOKABLE bool isValid() const;

signals:
    void connectionMethodChanged();
    void bluetoothDeviceNameChanged();
    void bluetoothDeviceAddressChanged();
    void ipAddressChanged();
    void ipPortChanged();
    void serialDeviceChanged();
    void serialBaudRateChanged();
    void unitSystemChanged();
    void noResetChanged();
    void gaugePidsChanged();

private:
    int m_connectionMethod;
    QString m_bluetoothDeviceName;
    QString m_bluetoothDeviceAddress;
    QString m_ipAddress;
    QString m_ipPort;
    QString m_serialDevice;
    QString m_serialBaudRate;
    int m_unitSystem;
    bool m_noReset;
    int m_gaugePids[2];
};

} // namespace Obd

#endif
