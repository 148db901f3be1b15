#include "bluetoothsearchviewmodel.h"

#include "settingsmodel.h"
#include "trlog.h"

#include <QBluetoothAddress>
#include <QBluetoothLocalDevice>
#include <QVariantList>
#include <QVariantMap>

namespace Harmattan {

const char* const BluetoothSearchViewModel::NO_ADAPTER
    = "No Bluetooth adapter is available. Check that this device has Bluetooth and that the "
      "Bluetooth service is running, or use Wi-Fi.";
const char* const BluetoothSearchViewModel::SEARCHING = "Searching for devices...";
const char* const BluetoothSearchViewModel::NOTHING_FOUND
    = "No devices found. Make sure the adapter is powered and nearby.";

BluetoothSearchViewModel::BluetoothSearchViewModel(Obd::SettingsModel* settings, QObject* parent)
    : QObject(parent)
    , m_settings(settings)
    , m_agent(nullptr)
    , m_searching(false)
    , m_adapterAvailable(false)
{
}

BluetoothSearchViewModel::~BluetoothSearchViewModel()
{
    if (m_agent)
        m_agent->stop();
}

void BluetoothSearchViewModel::setView(QObject* view)
{
    detachView(m_view, this);
    m_view = view;
    if (!m_view)
        return;
    connect(m_view, &QObject::destroyed, this, &BluetoothSearchViewModel::onViewDestroyed);
    connect(m_view, SIGNAL(searchRequested()), this, SLOT(onSearchRequested()));
    connect(m_view, SIGNAL(deviceSelected(int)), this, SLOT(onDeviceSelected(int)));
    onSearchRequested();
}

void BluetoothSearchViewModel::setContext(QQmlContext*)
{
}

void BluetoothSearchViewModel::onSearchRequested()
{
    m_devices.clear();
    publishDevices();

    // Without an adapter or a running Bluetooth service the agent cannot work.
    m_adapterAvailable = QBluetoothLocalDevice().isValid();
    setViewProperty("adapterAvailable", m_adapterAvailable);
    if (!m_adapterAvailable) {
        setStatus(QString::fromLatin1(NO_ADAPTER), false);
        return;
    }
    if (!m_agent) {
        m_agent = new QBluetoothDeviceDiscoveryAgent(this);
        connect(m_agent, &QBluetoothDeviceDiscoveryAgent::deviceDiscovered, this,
                &BluetoothSearchViewModel::onDeviceDiscovered);
        connect(m_agent, &QBluetoothDeviceDiscoveryAgent::finished, this,
                &BluetoothSearchViewModel::onSearchFinished);
        connect(m_agent, &QBluetoothDeviceDiscoveryAgent::canceled, this,
                &BluetoothSearchViewModel::onSearchFinished);
        connect(m_agent, &QBluetoothDeviceDiscoveryAgent::errorOccurred, this,
                &BluetoothSearchViewModel::onSearchError);
    }
    m_agent->stop();
    setStatus(QString::fromLatin1(SEARCHING), true);
    m_agent->start(QBluetoothDeviceDiscoveryAgent::ClassicMethod);
}

void BluetoothSearchViewModel::onDeviceSelected(int index)
{
    if (index < 0 || index >= m_devices.size())
        return;
    if (m_agent)
        m_agent->stop();
    const QBluetoothDeviceInfo& device = m_devices.at(index);
    const QString name = device.name().isEmpty() ? device.address().toString() : device.name();
    m_settings->setBluetoothDeviceName(name);
    m_settings->setBluetoothDeviceAddress(device.address().toString());
}

void BluetoothSearchViewModel::onViewDestroyed()
{
    m_view = nullptr;
    if (m_agent)
        m_agent->stop();
}

void BluetoothSearchViewModel::setDevices(const QList<QBluetoothDeviceInfo>& devices)
{
    m_devices = devices;
    publishDevices();
}

void BluetoothSearchViewModel::onDeviceDiscovered(const QBluetoothDeviceInfo& device)
{
    for (const QBluetoothDeviceInfo& known : m_devices) {
        if (known.address() == device.address())
            return;
    }
    m_devices.append(device);
    publishDevices();
}

void BluetoothSearchViewModel::onSearchFinished()
{
    setStatus(m_devices.isEmpty() ? QString::fromLatin1(NOTHING_FOUND) : QString(), false);
}

void BluetoothSearchViewModel::onSearchError(QBluetoothDeviceDiscoveryAgent::Error error)
{
    QString text;
    switch (error) {
    case QBluetoothDeviceDiscoveryAgent::PoweredOffError:
        text = QStringLiteral("Bluetooth is switched off. Switch it on and search again.");
        break;
    case QBluetoothDeviceDiscoveryAgent::InvalidBluetoothAdapterError:
        text = QString::fromLatin1(NO_ADAPTER);
        break;
    default:
        text = QStringLiteral("Search failed: ") + m_agent->errorString();
        break;
    }
    OBD_ERROR << "Bluetooth search failed: " << m_agent->errorString().toStdString();
    setStatus(text, false);
}

void BluetoothSearchViewModel::publishDevices()
{
    QVariantList list;
    for (const QBluetoothDeviceInfo& device : m_devices) {
        QVariantMap entry;
        entry.insert(QStringLiteral("name"),
                     device.name().isEmpty() ? QStringLiteral("Unnamed device") : device.name());
        entry.insert(QStringLiteral("address"), device.address().toString());
        list.append(entry);
    }
    setViewProperty("devices", list);
}

void BluetoothSearchViewModel::setStatus(const QString& text, bool searching)
{
    m_status = text;
    m_searching = searching;
    setViewProperty("statusText", text);
    setViewProperty("searching", searching);
}

void BluetoothSearchViewModel::setViewProperty(const char* name, const QVariant& value)
{
    if (m_view)
        m_view->setProperty(name, value);
}

} // namespace Harmattan
