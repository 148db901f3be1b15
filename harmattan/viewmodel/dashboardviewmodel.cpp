#include "dashboardviewmodel.h"

#include "connectionmanager.h"
#include "consumption.h"
#include "consumptiongauge.h"
#include "iobdproxy.h"
#include "measurableparameter.h"
#include "metergauge.h"
#include "numericgauge.h"
#include "obdparameterupdater.h"
#include "powertrain/parameterfactory.h"
#include "sensorinfo.h"
#include "settingsmodel.h"
#include "trlog.h"
#include "unittable.h"
#include "workerthread.h"

#include <QCoreApplication>
#include <QMetaObject>
#include <QTimer>
#include <QVariant>

#include <cmath>
#include <string>
#include <vector>

namespace Harmattan {

namespace {

const int ENGINE_SPEED = 0x0C;
const int VEHICLE_SPEED = 0x0D;
const char* const GAUGE_NAMES[DashboardViewModel::GAUGES] = { "firstGauge", "secondGauge" };

// The printed dials and their scales; other PIDs get a bar over their range.
QString dialFor(int pid)
{
    return pid == ENGINE_SPEED ? QStringLiteral(":/dial_rpm.svg")
         : pid == VEHICLE_SPEED ? QStringLiteral(":/dial_speed.svg") : QString();
}

Obd::MeasurableParameter* createParameter(int pid)
{
    Obd::PowertrainParameter* parameter = Obd::ParameterFactory::create(static_cast<unsigned char>(pid));
    auto* measurable = dynamic_cast<Obd::MeasurableParameter*>(parameter);
    std::vector<Obd::SensorInfo*> infos;
    if (measurable)
        measurable->getSensorInfos(infos);
    if (!measurable || infos.empty()) {
        delete parameter;
        return nullptr;
    }
    return measurable;
}

Obd::SensorInfo* firstInfo(const Obd::MeasurableParameter* parameter)
{
    std::vector<Obd::SensorInfo*> infos;
    parameter->getSensorInfos(infos);
    return infos.front();
}

} // namespace

DashboardViewModel::DashboardViewModel(ConnectionManager* connectionManager,
                                       Obd::SettingsModel* settings, QObject* parent)
    : QObject(parent)
    , m_connectionManager(connectionManager)
    , m_settings(settings)
    , m_timer(new QTimer(this))
    , m_hasEcu(false)
    , m_workerThread(Obd::WorkerThread::instance())
    , m_connected(false)
    , m_requestCount(0)
    , m_valueCount(0)
{
    m_timer->setInterval(REFRESH_MS);
    connect(m_timer, &QTimer::timeout, this, &DashboardViewModel::onStartUpdate);
    connect(m_connectionManager, &ConnectionManager::connected, this, &DashboardViewModel::onConnected);
    connect(m_connectionManager, &ConnectionManager::disconnected, this,
            &DashboardViewModel::onDisconnected);
    connect(m_settings, &Obd::SettingsModel::unitSystemChanged, this, &DashboardViewModel::showUnits);
    connect(m_settings, &Obd::SettingsModel::gaugePidsChanged, this, &DashboardViewModel::choosePids);
    choosePids();
}

DashboardViewModel::~DashboardViewModel()
{
    m_timer->stop();
    // The proxy goes with the connection manager; the item may outlive us.
    if (m_consumptionGauge) {
        m_consumptionGauge->stop();
        m_consumptionGauge->consumption()->setProxy(nullptr);
    }
    for (Gauge& gauge : m_gauges)
        Obd::ObdParameterUpdater::dispose(gauge.updater, gauge.parameter);
}

void DashboardViewModel::setView(QObject* view)
{
    detachView(m_view, this);
    m_view = view;
    if (!m_view)
        return;
    connect(m_view, &QObject::destroyed, this, &DashboardViewModel::onViewDestroyed);
    for (int i = 0; i < GAUGES; ++i) {
        m_gauges[i].item = m_view->findChild<QObject*>(GAUGE_NAMES[i]);
        m_gauges[i].meter = m_gauges[i].item ? m_gauges[i].item->findChild<MeterGauge*>() : nullptr;
        showGauge(i);
    }
    m_consumptionGauge = m_view->findChild<Obd::ConsumptionGauge*>("consumptionGauge");
    if (Obd::NumericGauge* readout = m_view->findChild<Obd::NumericGauge*>("rpmReadout"))
        connect(this, &DashboardViewModel::engineRpmChanged, readout, &Obd::NumericGauge::setValue);
    m_view->setProperty("connectionStatus", m_connected ? 2 : 0);
    showUnits();
    if (m_connected)
        QTimer::singleShot(START_DELAY_MS, this, &DashboardViewModel::startRefresh);
}

void DashboardViewModel::setContext(QQmlContext*)
{
}

bool DashboardViewModel::isRefreshing() const
{
    return m_timer->isActive();
}

int DashboardViewModel::requestCount() const
{
    return m_requestCount;
}

int DashboardViewModel::valueCount() const
{
    return m_valueCount;
}

int DashboardViewModel::gaugePid(int gauge) const
{
    return gauge >= 0 && gauge < GAUGES ? m_gauges[gauge].pid : 0;
}

void DashboardViewModel::choosePids()
{
    for (int i = 0; i < GAUGES; ++i)
        setPid(i, m_settings->gaugePid(i));
}

void DashboardViewModel::setPid(int index, int pid)
{
    Gauge& gauge = m_gauges[index];
    if (gauge.pid == pid && gauge.parameter)
        return;
    Obd::MeasurableParameter* parameter = createParameter(pid);
    if (!parameter) {
        OBD_WARN << "PID " << pid << " has no number to show; gauge " << index << " keeps its default";
        pid = index == 0 ? ENGINE_SPEED : VEHICLE_SPEED;
        parameter = createParameter(pid);
    }
    Obd::ObdParameterUpdater::dispose(gauge.updater, gauge.parameter);
    gauge.pid = pid;
    gauge.parameter = parameter;
    gauge.updater = new Obd::ObdParameterUpdater(parameter);
    gauge.updater->moveToThread(m_workerThread);
    gauge.updater->setProxy(m_connected ? m_connectionManager->proxy() : nullptr);
    gauge.inFlight = false;
    gauge.fresh = false;
    connect(gauge.updater, &Obd::ObdParameterUpdater::updateDone, this,
            [this, index](bool success) { onGaugeUpdated(index, success); });
    showGauge(index);
}

// Name, unit and scale of a gauge; the value comes with the next reading.
void DashboardViewModel::showGauge(int index)
{
    Gauge& gauge = m_gauges[index];
    if (!gauge.item || !gauge.parameter)
        return;
    const Obd::UnitSystem units = static_cast<Obd::UnitSystem>(m_settings->unitSystem());
    const Obd::SensorInfo* info = firstInfo(gauge.parameter);
    const QString dial = dialFor(gauge.pid);
    gauge.item->setProperty("pid", gauge.pid);
    gauge.item->setProperty("dial", dial);
    gauge.item->setProperty("title", QString::fromStdString(gauge.parameter->getName()));
    gauge.item->setProperty("unit", QCoreApplication::translate("Obd::Sensor", Obd::unitText(info->getUnit(units))));
    // The dials are printed in rpm and km/h.
    gauge.item->setProperty("minimum", dial.isEmpty() ? info->getMinimum(units) : 0.0);
    gauge.item->setProperty("maximum", dial.isEmpty() ? info->getMaximum(units)
                                                      : gauge.pid == ENGINE_SPEED ? 8000.0 : 240.0);
    gauge.item->setProperty("readout", QString());
    showFresh(index, gauge.fresh);
}

void DashboardViewModel::showFresh(int index, bool fresh)
{
    m_gauges[index].fresh = fresh;
    if (m_gauges[index].item)
        m_gauges[index].item->setProperty("fresh", fresh);
}

void DashboardViewModel::showUnits()
{
    if (!m_view)
        return;
    m_view->setProperty("imperial", m_settings->unitSystem() == Obd::US_IMPERIAL);
    if (m_consumptionGauge)
        m_consumptionGauge->setUnitSystem(m_settings->unitSystem());
    for (int i = 0; i < GAUGES; ++i)
        showGauge(i);
}

void DashboardViewModel::startRefresh()
{
    // The screen may have closed or the link dropped during the delay.
    if (!m_view || !m_connected)
        return;
    m_timer->start();
    onStartUpdate();
    if (m_consumptionGauge) {
        Obd::Consumption* consumption = m_consumptionGauge->consumption();
        consumption->setProxy(m_connectionManager->proxy());
        if (m_hasEcu)
            consumption->setEcu(m_ecu);
        m_consumptionGauge->start();
    }
}

void DashboardViewModel::stopRefresh()
{
    m_timer->stop();
    if (m_consumptionGauge)
        m_consumptionGauge->stop();
}

void DashboardViewModel::onConnected()
{
    m_connected = true;
    Obd::IObdProxy* proxy = m_connectionManager->proxy();
    const Obd::EcuPtr first = proxy ? proxy->getFirstEcu() : Obd::EcuPtr();
    m_hasEcu = static_cast<bool>(first);
    if (first)
        m_ecu = *first;
    for (Gauge& gauge : m_gauges)
        gauge.updater->setProxy(proxy);
    if (m_view) {
        m_view->setProperty("connectionStatus", 2);
        QTimer::singleShot(START_DELAY_MS, this, &DashboardViewModel::startRefresh);
    }
}

void DashboardViewModel::onDisconnected()
{
    m_connected = false;
    stopRefresh();
    // Requests still queued on the worker end without an exchange.
    for (int i = 0; i < GAUGES; ++i) {
        m_gauges[i].updater->setProxy(nullptr);
        showFresh(i, false);
    }
    if (m_consumptionGauge)
        m_consumptionGauge->consumption()->setProxy(nullptr);
    if (m_view)
        m_view->setProperty("connectionStatus", 0);
}

void DashboardViewModel::onViewDestroyed()
{
    for (Gauge& gauge : m_gauges) {
        gauge.item = nullptr;
        gauge.meter = nullptr;
    }
    m_consumptionGauge = nullptr;
    m_view = nullptr;
    m_timer->stop();
}

// Both gauges are asked together, so that the worker reads them in one
// request where the vehicle allows.
void DashboardViewModel::onStartUpdate()
{
    std::vector<Obd::ObdParameterUpdater*> due;
    for (Gauge& gauge : m_gauges) {
        if (!gauge.item || gauge.inFlight)
            continue;
        gauge.inFlight = true;
        ++m_requestCount;
        due.push_back(gauge.updater);
    }
    Obd::ObdParameterUpdater::requestUpdates(due);
}

void DashboardViewModel::onGaugeUpdated(int index, bool success)
{
    Gauge& gauge = m_gauges[index];
    Obd::ObdParameterUpdater::resultReceived(gauge.updater);
    gauge.inFlight = false;
    // The first ECU that has the PID, the engine's for the defaults.
    Obd::Ecu ecu = m_ecu;
    Obd::IObdProxy* proxy = m_connectionManager->proxy();
    std::vector<Obd::EcuPtr> ecus;
    if (proxy && m_connected && !m_ecu.isSupported(1, static_cast<unsigned char>(gauge.pid)))
        proxy->getEcus(ecus);
    for (const Obd::EcuPtr& other : ecus) {
        if (other && other->isSupported(1, static_cast<unsigned char>(gauge.pid))) {
            ecu = *other;
            break;
        }
    }
    const bool read = success && m_hasEcu && gauge.parameter->isRead(ecu.getId());
    showFresh(index, read && m_connected);
    if (!read || !gauge.item)
        return;
    ++m_valueCount;
    const Obd::UnitSystem units = static_cast<Obd::UnitSystem>(m_settings->unitSystem());
    std::vector<float> metric;
    std::vector<float> shown;
    std::vector<std::string> texts;
    gauge.parameter->getValues(ecu, Obd::US_METRIC, metric);
    gauge.parameter->getValues(ecu, units, shown);
    gauge.parameter->getFormattedValues(ecu, units, texts);
    if (metric.empty() || shown.empty() || texts.empty())
        return;
    gauge.item->setProperty("value", shown.front());
    QString readout;
    if (gauge.pid == ENGINE_SPEED) {
        readout = QString::number(std::lround(metric.front()));
        emit engineRpmChanged(metric.front());
    } else if (gauge.pid == VEHICLE_SPEED) {
        readout = QString::number(std::lround(shown.front()));
        if (units == Obd::US_IMPERIAL)
            readout += QStringLiteral(" mph");
    } else {
        readout = QString::fromStdString(texts.front());
    }
    gauge.item->setProperty("readout", readout);
    if (gauge.meter && !dialFor(gauge.pid).isEmpty())
        gauge.meter->setValueAnimated(metric.front());
}

} // namespace Harmattan
