#include "settingsmodel.h"

#include "adapteraddress.h"
#include "unitsystem.h"

#include <QSettings>

namespace Obd {

const char* const SettingsModel::KEY_CONNECTION_METHOD = "connectivity/connectionMethod";
const char* const SettingsModel::KEY_BLUETOOTH_DEVICE_NAME = "connectivity/defaultBluetoothDeviceName";
const char* const SettingsModel::KEY_BLUETOOTH_DEVICE_ADDRESS = "connectivity/defaultBluetoothDeviceAddress";
const char* const SettingsModel::KEY_IP_ADDRESS = "connectivity/defaultIpAddress";
const char* const SettingsModel::KEY_IP_PORT = "connectivity/defaultIpPort";
const char* const SettingsModel::KEY_SERIAL_DEVICE = "connectivity/serialDevice";
const char* const SettingsModel::KEY_SERIAL_BAUD_RATE = "connectivity/serialBaudRate";
const char* const SettingsModel::KEY_UNIT_SYSTEM = "display/unitSystem";
const char* const SettingsModel::OLD_KEY_UNIT_SYSTEM = "unitSystem";
const char* const SettingsModel::KEY_NO_RESET = "connectivity/noReset";
const char* const SettingsModel::KEY_GAUGE_PIDS[2] = { "display/firstGaugePid", "display/secondGaugePid" };
// Engine speed and vehicle speed, on their printed dials.
const int SettingsModel::DEFAULT_GAUGE_PIDS[2] = { 0x0C, 0x0D };

const char* const SettingsModel::DEFAULT_BLUETOOTH_DEVICE_NAME = "None";
const char* const SettingsModel::DEFAULT_BLUETOOTH_DEVICE_ADDRESS = "00:00:00:00:00:00";
const char* const SettingsModel::DEFAULT_IP_ADDRESS = "0.0.0.0";
const char* const SettingsModel::DEFAULT_IP_PORT = "0";
const char* const SettingsModel::DEFAULT_SERIAL_DEVICE = "";
const char* const SettingsModel::DEFAULT_SERIAL_BAUD_RATE = "38400";
const char* const SettingsModel::AUTO_BAUD_RATE = "auto";

SettingsModel::SettingsModel(QObject* parent)
    : QObject(parent)
    , m_connectionMethod(CM_BLUETOOTH)
    , m_bluetoothDeviceName(DEFAULT_BLUETOOTH_DEVICE_NAME)
    , m_bluetoothDeviceAddress(DEFAULT_BLUETOOTH_DEVICE_ADDRESS)
    , m_ipAddress(DEFAULT_IP_ADDRESS)
    , m_ipPort(DEFAULT_IP_PORT)
    , m_serialDevice(DEFAULT_SERIAL_DEVICE)
    , m_serialBaudRate(DEFAULT_SERIAL_BAUD_RATE)
    , m_unitSystem(US_METRIC)
    , m_noReset(false)
    , m_gaugePids{ DEFAULT_GAUGE_PIDS[0], DEFAULT_GAUGE_PIDS[1] }
{
    QSettings settings;
    if (settings.contains(KEY_CONNECTION_METHOD))
        m_connectionMethod = settings.value(KEY_CONNECTION_METHOD).toInt();
    if (settings.contains(KEY_BLUETOOTH_DEVICE_NAME))
        m_bluetoothDeviceName = settings.value(KEY_BLUETOOTH_DEVICE_NAME).toString();
    if (settings.contains(KEY_BLUETOOTH_DEVICE_ADDRESS))
        m_bluetoothDeviceAddress = settings.value(KEY_BLUETOOTH_DEVICE_ADDRESS).toString();
    if (settings.contains(KEY_IP_ADDRESS))
        m_ipAddress = settings.value(KEY_IP_ADDRESS).toString();
    if (settings.contains(KEY_IP_PORT))
        m_ipPort = settings.value(KEY_IP_PORT).toString();
    if (settings.contains(KEY_SERIAL_DEVICE))
        m_serialDevice = settings.value(KEY_SERIAL_DEVICE).toString();
    if (settings.contains(KEY_SERIAL_BAUD_RATE))
        m_serialBaudRate = settings.value(KEY_SERIAL_BAUD_RATE).toString();
    if (!settings.contains(KEY_UNIT_SYSTEM) && settings.contains(OLD_KEY_UNIT_SYSTEM)) {
        settings.setValue(KEY_UNIT_SYSTEM, settings.value(OLD_KEY_UNIT_SYSTEM));
        settings.remove(OLD_KEY_UNIT_SYSTEM);
    }
    if (settings.value(KEY_UNIT_SYSTEM).toInt() == US_IMPERIAL)
        m_unitSystem = US_IMPERIAL;
    m_noReset = settings.value(KEY_NO_RESET, false).toBool();
    for (int i = 0; i < 2; ++i) {
        const int pid = settings.value(KEY_GAUGE_PIDS[i], DEFAULT_GAUGE_PIDS[i]).toInt();
        if (pid > 0 && pid <= 0xFF)
            m_gaugePids[i] = pid;
    }
}

bool SettingsModel::noReset() const
{
    return m_noReset;
}

int SettingsModel::gaugePid(int gauge) const
{
    return gauge == 0 || gauge == 1 ? m_gaugePids[gauge] : 0;
}

void SettingsModel::setNoReset(bool noReset)
{
    m_noReset = noReset;
    QSettings().setValue(KEY_NO_RESET, noReset);
    emit noResetChanged();
}

void SettingsModel::setGaugePid(int gauge, int pid)
{
    if ((gauge != 0 && gauge != 1) || pid <= 0 || pid > 0xFF)
        return;
    m_gaugePids[gauge] = pid;
    QSettings().setValue(KEY_GAUGE_PIDS[gauge], pid);
    emit gaugePidsChanged();
}

int SettingsModel::connectionMethod() const
{
    return m_connectionMethod;
}

QString SettingsModel::bluetoothDeviceName() const
{
    return m_bluetoothDeviceName;
}

QString SettingsModel::bluetoothDeviceAddress() const
{
    return m_bluetoothDeviceAddress;
}

QString SettingsModel::ipAddress() const
{
    return m_ipAddress;
}

QString SettingsModel::ipPort() const
{
    return m_ipPort;
}

QString SettingsModel::serialDevice() const
{
    return m_serialDevice;
}

QString SettingsModel::serialBaudRate() const
{
    return m_serialBaudRate;
}

int SettingsModel::unitSystem() const
{
    return m_unitSystem;
}

unsigned int SettingsModel::baudRate(const QString& text)
{
    unsigned int rate = AdapterAddress::AUTO_BAUD;
    return AdapterAddress::parseBaud(text.trimmed().toStdString(), rate) ? rate
                                                                        : AdapterAddress::AUTO_BAUD;
}

bool SettingsModel::isBaudRate(const QString& text)
{
    unsigned int unused = 0;
    return AdapterAddress::parseBaud(text.trimmed().toStdString(), unused);
}

void SettingsModel::setConnectionMethod(int method)
{
    m_connectionMethod = method;
    QSettings().setValue(KEY_CONNECTION_METHOD, QVariant(method));
    emit connectionMethodChanged();
}

void SettingsModel::setBluetoothDeviceName(const QString& name)
{
    m_bluetoothDeviceName = name;
    QSettings().setValue(KEY_BLUETOOTH_DEVICE_NAME, name);
    emit bluetoothDeviceNameChanged();
}

void SettingsModel::setBluetoothDeviceAddress(const QString& address)
{
    m_bluetoothDeviceAddress = address;
    QSettings().setValue(KEY_BLUETOOTH_DEVICE_ADDRESS, address);
    emit bluetoothDeviceAddressChanged();
}

void SettingsModel::setIpAddress(const QString& address)
{
    m_ipAddress = address;
    QSettings().setValue(KEY_IP_ADDRESS, address);
    emit ipAddressChanged();
}

void SettingsModel::setIpPort(const QString& port)
{
    m_ipPort = port;
    QSettings().setValue(KEY_IP_PORT, port);
    emit ipPortChanged();
}

void SettingsModel::setSerialDevice(const QString& device)
{
    m_serialDevice = device;
    QSettings().setValue(KEY_SERIAL_DEVICE, device);
    emit serialDeviceChanged();
}

void SettingsModel::setSerialBaudRate(const QString& rate)
{
    m_serialBaudRate = rate;
    QSettings().setValue(KEY_SERIAL_BAUD_RATE, rate);
    emit serialBaudRateChanged();
}

void SettingsModel::setUnitSystem(int unitSystem)
{
    if ((unitSystem != US_METRIC && unitSystem != US_IMPERIAL) || unitSystem == m_unitSystem)
        return;
    m_unitSystem = unitSystem;
    QSettings().setValue(KEY_UNIT_SYSTEM, QVariant(unitSystem));
    emit unitSystemChanged();
}

bool SettingsModel::isValid() const
{
    switch (m_connectionMethod) {
    case CM_BLUETOOTH:
        return m_bluetoothDeviceName != QLatin1String(DEFAULT_BLUETOOTH_DEVICE_NAME)
            && m_bluetoothDeviceAddress != QLatin1String(DEFAULT_BLUETOOTH_DEVICE_ADDRESS);
    case CM_WIFI:
        return m_ipAddress != QLatin1String(DEFAULT_IP_ADDRESS)
            && m_ipPort != QLatin1String(DEFAULT_IP_PORT);
    case CM_SERIAL:
        return !m_serialDevice.isEmpty() && isBaudRate(m_serialBaudRate);
    default:
        return false;
    }
}

} // namespace Obd
