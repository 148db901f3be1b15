#include "settingsmodel.h"

#include <QSettings>

namespace Obd {

const char* const SettingsModel::KEY_CONNECTION_METHOD = "connectivity/connectionMethod";
const char* const SettingsModel::KEY_BLUETOOTH_DEVICE_NAME = "connectivity/defaultBluetoothDeviceName";
const char* const SettingsModel::KEY_BLUETOOTH_DEVICE_ADDRESS = "connectivity/defaultBluetoothDeviceAddress";
const char* const SettingsModel::KEY_IP_ADDRESS = "connectivity/defaultIpAddress";
const char* const SettingsModel::KEY_IP_PORT = "connectivity/defaultIpPort";

const char* const SettingsModel::DEFAULT_BLUETOOTH_DEVICE_NAME = "None";
const char* const SettingsModel::DEFAULT_BLUETOOTH_DEVICE_ADDRESS = "00:00:00:00:00:00";
const char* const SettingsModel::DEFAULT_IP_ADDRESS = "0.0.0.0";
const char* const SettingsModel::DEFAULT_IP_PORT = "0";

SettingsModel::SettingsModel(QObject* parent)
    : QObject(parent)
    , m_connectionMethod(CM_BLUETOOTH)
    , m_bluetoothDeviceName(DEFAULT_BLUETOOTH_DEVICE_NAME)
    , m_bluetoothDeviceAddress(DEFAULT_BLUETOOTH_DEVICE_ADDRESS)
    , m_ipAddress(DEFAULT_IP_ADDRESS)
    , m_ipPort(DEFAULT_IP_PORT)
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

bool SettingsModel::isValid() const
{
    switch (m_connectionMethod) {
    case CM_BLUETOOTH:
        return m_bluetoothDeviceName != QLatin1String(DEFAULT_BLUETOOTH_DEVICE_NAME)
            && m_bluetoothDeviceAddress != QLatin1String(DEFAULT_BLUETOOTH_DEVICE_ADDRESS);
    case CM_WIFI:
        return m_ipAddress != QLatin1String(DEFAULT_IP_ADDRESS)
            && m_ipPort != QLatin1String(DEFAULT_IP_PORT);
    default:
        return false;
    }
}

} // namespace Obd
