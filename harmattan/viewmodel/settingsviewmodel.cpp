#include "settingsviewmodel.h"

#include "measurableparameter.h"
#include "navigationmodel.h"
#include "powertrain/parameterfactory.h"
#include "sensorinfo.h"
#include "settingsmodel.h"
#include "unitsystem.h"

#include <memory>
#include <vector>

#include <QRegularExpression>
#include <QStringList>
#include <QVariant>
#include <QVariantMap>

namespace Harmattan {

const char* const SettingsViewModel::IP_ADDRESS_PROBLEM
    = "Enter a dotted IPv4 address such as 192.168.0.10, or a host name";
const char* const SettingsViewModel::IP_ADDRESS_UNSET_PROBLEM
    = "0.0.0.0 is not an adapter address";
const char* const SettingsViewModel::IP_PORT_PROBLEM = "Enter a port number from 1 to 65535";
const char* const SettingsViewModel::SERIAL_DEVICE_PROBLEM
    = "Enter the adapter's device path, such as /dev/ttyUSB0 or /dev/rfcomm0";
const char* const SettingsViewModel::SERIAL_BAUD_RATE_PROBLEM
    = "Enter a baud rate such as 38400, or auto to detect it";

namespace {

const char* const METHOD_BLUETOOTH = "bluetooth";
const char* const METHOD_WIFI = "wifi";
const char* const METHOD_SERIAL = "serial";
const char* const UNITS_METRIC = "metric";
const char* const UNITS_IMPERIAL = "imperial";
const int MAX_HOST_NAME_LENGTH = 253;

bool isDottedIpv4(const QString& text)
{
    const QStringList parts = text.split(QLatin1Char('.'));
    if (parts.size() != 4)
        return false;
    for (const QString& part : parts) {
        if (part.isEmpty() || part.size() > 3)
            return false;
        bool ok = false;
        const int value = part.toInt(&ok, 10);
        if (!ok || value < 0 || value > 255)
            return false;
    }
    return true;
}

bool isHostName(const QString& text)
{
    static const QRegularExpression label(
        QStringLiteral("^[A-Za-z0-9]([A-Za-z0-9-]{0,61}[A-Za-z0-9])?$"));
    if (text.isEmpty() || text.size() > MAX_HOST_NAME_LENGTH)
        return false;
    const QStringList labels = text.split(QLatin1Char('.'));
    for (const QString& part : labels) {
        if (!label.match(part).hasMatch())
            return false;
    }
    return true;
}

} // namespace

SettingsViewModel::SettingsViewModel(Obd::SettingsModel* settings,
                                     NavigationModel* navigationModel, QObject* parent)
    : QObject(parent)
    , m_settings(settings)
    , m_navigationModel(navigationModel)
{
    connect(m_settings, &Obd::SettingsModel::connectionMethodChanged, this,
            &SettingsViewModel::updateConnectionMethod);
    connect(m_settings, &Obd::SettingsModel::ipAddressChanged, this,
            &SettingsViewModel::updateIpAddress);
    connect(m_settings, &Obd::SettingsModel::ipPortChanged, this, &SettingsViewModel::updateIpPort);
    // A device chosen on the search screen shows up on this screen below it.
    connect(m_settings, &Obd::SettingsModel::bluetoothDeviceNameChanged, this,
            &SettingsViewModel::updateBluetoothDevice);
    connect(m_settings, &Obd::SettingsModel::bluetoothDeviceAddressChanged, this,
            &SettingsViewModel::updateBluetoothDevice);
    connect(m_settings, &Obd::SettingsModel::serialDeviceChanged, this,
            &SettingsViewModel::updateSerial);
    connect(m_settings, &Obd::SettingsModel::serialBaudRateChanged, this,
            &SettingsViewModel::updateSerial);
    connect(m_settings, &Obd::SettingsModel::unitSystemChanged, this,
            &SettingsViewModel::updateUnitSystem);
    connect(m_settings, &Obd::SettingsModel::gaugePidsChanged, this, &SettingsViewModel::updateGauges);
    connect(m_settings, &Obd::SettingsModel::noResetChanged, this, &SettingsViewModel::updateNoReset);
}

void SettingsViewModel::setView(QObject* view)
{
    detachView(m_view, this);
    m_view = view;
    if (!m_view)
        return;
    setViewProperty("connectionMethodText", methodText(m_settings->connectionMethod()));
    setViewProperty("bluetoothDevice", m_settings->bluetoothDeviceName());
    setViewProperty("bluetoothAddress", m_settings->bluetoothDeviceAddress());
    setViewProperty("ipAddress", m_settings->ipAddress());
    setViewProperty("ipPort", m_settings->ipPort());
    setViewProperty("ipAddressError", QString());
    setViewProperty("ipPortError", QString());
    updateSerial();
    setViewProperty("serialDeviceError", QString());
    setViewProperty("serialBaudRateError", QString());
    updateUnitSystem();
    setViewProperty("gaugeChoices", gaugeChoices());
    updateGauges();
    updateNoReset();

    connect(m_view, &QObject::destroyed, this, &SettingsViewModel::onViewDestroyed);
    connect(m_view, SIGNAL(connectionMethodChanged(QString)), this,
            SLOT(onViewConnectionMethodChanged(QString)));
    // The screen's ipAddress/ipPort properties already own the ...Changed() names.
    connect(m_view, SIGNAL(ipAddressEdited(QString)), this, SLOT(onViewIpAddressChanged(QString)));
    connect(m_view, SIGNAL(ipPortEdited(QString)), this, SLOT(onViewIpPortChanged(QString)));
    connect(m_view, SIGNAL(searchBluetoothDevices()), this, SLOT(onShowBluetoothSearch()));
    connect(m_view, SIGNAL(serialDeviceEdited(QString)), this,
            SLOT(onViewSerialDeviceChanged(QString)));
    connect(m_view, SIGNAL(serialBaudRateEdited(QString)), this,
            SLOT(onViewSerialBaudRateChanged(QString)));
    connect(m_view, SIGNAL(unitSystemChanged(QString)), this,
            SLOT(onViewUnitSystemChanged(QString)));
    connect(m_view, SIGNAL(gaugeChosen(int,int)), this, SLOT(onViewGaugeChosen(int,int)));
    connect(m_view, SIGNAL(noResetToggled(bool)), this, SLOT(onViewNoResetToggled(bool)));
}

QVariantList SettingsViewModel::gaugeChoices()
{
    QVariantList choices;
    for (unsigned char pid : Obd::ParameterFactory::knownPids()) {
        if (pid % 0x20 == 0)
            continue; // the ranges of supported PIDs
        std::unique_ptr<Obd::PowertrainParameter> parameter(Obd::ParameterFactory::create(pid));
        std::vector<Obd::SensorInfo*> infos;
        if (!dynamic_cast<Obd::MeasurableParameter*>(parameter.get()))
            continue;
        parameter->getSensorInfos(infos);
        if (infos.empty())
            continue;
        QVariantMap choice;
        choice.insert(QStringLiteral("pid"), int(pid));
        choice.insert(QStringLiteral("text"), QStringLiteral("%1 %2")
                          .arg(int(pid), 2, 16, QLatin1Char('0')).toUpper()
                          .arg(QString::fromStdString(parameter->getName())));
        choices.append(choice);
    }
    return choices;
}

void SettingsViewModel::onViewGaugeChosen(int gauge, int pid)
{
    m_settings->setGaugePid(gauge, pid);
}

void SettingsViewModel::onViewNoResetToggled(bool noReset)
{
    m_settings->setNoReset(noReset);
}

void SettingsViewModel::updateGauges()
{
    setViewProperty("firstGaugePid", m_settings->gaugePid(0));
    setViewProperty("secondGaugePid", m_settings->gaugePid(1));
}

void SettingsViewModel::updateNoReset()
{
    setViewProperty("noReset", m_settings->noReset());
}

void SettingsViewModel::setContext(QQmlContext*)
{
}

QString SettingsViewModel::methodText(int method)
{
    switch (method) {
    case Obd::SettingsModel::CM_BLUETOOTH:
        return QString::fromLatin1(METHOD_BLUETOOTH);
    case Obd::SettingsModel::CM_WIFI:
        return QString::fromLatin1(METHOD_WIFI);
    case Obd::SettingsModel::CM_SERIAL:
        return QString::fromLatin1(METHOD_SERIAL);
    default:
        return QString();
    }
}

QString SettingsViewModel::unitSystemText(int unitSystem)
{
    return QString::fromLatin1(unitSystem == Obd::US_IMPERIAL ? UNITS_IMPERIAL : UNITS_METRIC);
}

QString SettingsViewModel::ipAddressProblem(const QString& address)
{
    const QString text = address.trimmed();
    if (text == QLatin1String(Obd::SettingsModel::DEFAULT_IP_ADDRESS))
        return QString::fromLatin1(IP_ADDRESS_UNSET_PROBLEM);
    // All digits and dots: meant as an IPv4 address, so it must be one.
    static const QRegularExpression numeric(QStringLiteral("^[0-9.]+$"));
    if (numeric.match(text).hasMatch())
        return isDottedIpv4(text) ? QString() : QString::fromLatin1(IP_ADDRESS_PROBLEM);
    return isHostName(text) ? QString() : QString::fromLatin1(IP_ADDRESS_PROBLEM);
}

QString SettingsViewModel::ipPortProblem(const QString& port)
{
    static const QRegularExpression digits(QStringLiteral("^[0-9]{1,5}$"));
    const QString text = port.trimmed();
    if (!digits.match(text).hasMatch())
        return QString::fromLatin1(IP_PORT_PROBLEM);
    const int value = text.toInt();
    if (value < 1 || value > 65535)
        return QString::fromLatin1(IP_PORT_PROBLEM);
    return QString();
}

QString SettingsViewModel::serialDeviceProblem(const QString& device)
{
    const QString text = device.trimmed();
    return text.startsWith(QLatin1Char('/')) && text.size() > 1
               ? QString()
               : QString::fromLatin1(SERIAL_DEVICE_PROBLEM);
}

QString SettingsViewModel::serialBaudRateProblem(const QString& rate)
{
    return Obd::SettingsModel::isBaudRate(rate) ? QString()
                                                : QString::fromLatin1(SERIAL_BAUD_RATE_PROBLEM);
}

void SettingsViewModel::onViewConnectionMethodChanged(QString method)
{
    if (method == QLatin1String(METHOD_BLUETOOTH))
        m_settings->setConnectionMethod(Obd::SettingsModel::CM_BLUETOOTH);
    else if (method == QLatin1String(METHOD_WIFI))
        m_settings->setConnectionMethod(Obd::SettingsModel::CM_WIFI);
    else if (method == QLatin1String(METHOD_SERIAL))
        m_settings->setConnectionMethod(Obd::SettingsModel::CM_SERIAL);
}

void SettingsViewModel::onViewIpAddressChanged(QString address)
{
    const QString problem = ipAddressProblem(address);
    setViewProperty("ipAddressError", problem);
    if (problem.isEmpty())
        m_settings->setIpAddress(address.trimmed());
}

void SettingsViewModel::onViewIpPortChanged(QString port)
{
    const QString problem = ipPortProblem(port);
    setViewProperty("ipPortError", problem);
    if (problem.isEmpty())
        m_settings->setIpPort(QString::number(port.trimmed().toInt()));
}

void SettingsViewModel::onViewSerialDeviceChanged(QString device)
{
    const QString problem = serialDeviceProblem(device);
    setViewProperty("serialDeviceError", problem);
    if (problem.isEmpty())
        m_settings->setSerialDevice(device.trimmed());
}

void SettingsViewModel::onViewSerialBaudRateChanged(QString rate)
{
    const QString problem = serialBaudRateProblem(rate);
    setViewProperty("serialBaudRateError", problem);
    if (problem.isEmpty())
        m_settings->setSerialBaudRate(rate.trimmed());
}

void SettingsViewModel::onViewUnitSystemChanged(QString units)
{
    if (units == QLatin1String(UNITS_METRIC))
        m_settings->setUnitSystem(Obd::US_METRIC);
    else if (units == QLatin1String(UNITS_IMPERIAL))
        m_settings->setUnitSystem(Obd::US_IMPERIAL);
}

void SettingsViewModel::onShowBluetoothSearch()
{
    m_navigationModel->activateView(NavigationModel::BluetoothSearchView);
}

void SettingsViewModel::onViewDestroyed()
{
    m_view = nullptr;
}

void SettingsViewModel::updateConnectionMethod()
{
    setViewProperty("connectionMethodText", methodText(m_settings->connectionMethod()));
}

void SettingsViewModel::updateIpAddress()
{
    setViewProperty("ipAddress", m_settings->ipAddress());
}

void SettingsViewModel::updateIpPort()
{
    setViewProperty("ipPort", m_settings->ipPort());
}

void SettingsViewModel::updateBluetoothDevice()
{
    setViewProperty("bluetoothDevice", m_settings->bluetoothDeviceName());
    setViewProperty("bluetoothAddress", m_settings->bluetoothDeviceAddress());
}

void SettingsViewModel::updateSerial()
{
    setViewProperty("serialDevice", m_settings->serialDevice());
    setViewProperty("serialBaudRate", m_settings->serialBaudRate());
}

void SettingsViewModel::updateUnitSystem()
{
    setViewProperty("unitSystemText", unitSystemText(m_settings->unitSystem()));
}

void SettingsViewModel::setViewProperty(const char* name, const QVariant& value)
{
    if (m_view)
        m_view->setProperty(name, value);
}

} // namespace Harmattan
