#include "dashboardviewmodel.h"

#include "connectionmanager.h"
#include "consumption.h"
#include "consumptiongauge.h"
#include "iobdproxy.h"
#include "metergauge.h"
#include "numericgauge.h"
#include "obdparameterupdater.h"
#include "powertrain/enginerpm.h"
#include "powertrain/vehiclespeed.h"
#include "settingsmodel.h"
#include "trlog.h"
#include "workerthread.h"

#include <QMetaObject>
#include <QTimer>
#include <QVariant>

namespace Harmattan {

DashboardViewModel::DashboardViewModel(ConnectionManager* connectionManager,
                                       Obd::SettingsModel* settings, QObject* parent)
    : QObject(parent)
    , m_connectionManager(connectionManager)
    , m_settings(settings)
    , m_timer(new QTimer(this))
    , m_hasEcu(false)
    , m_workerThread(Obd::WorkerThread::instance())
    , m_connected(false)
    , m_rpmParameter(new Obd::EngineRpm())
    , m_rpmUpdater(new Obd::ObdParameterUpdater(m_rpmParameter))
    , m_rpmInFlight(false)
    , m_speedParameter(new Obd::VehicleSpeed())
    , m_speedUpdater(new Obd::ObdParameterUpdater(m_speedParameter))
    , m_speedInFlight(false)
    , m_requestCount(0)
{
    m_timer->setInterval(REFRESH_MS);
    connect(m_timer, &QTimer::timeout, this, &DashboardViewModel::onStartUpdate);
    connect(m_connectionManager, &ConnectionManager::connected, this, &DashboardViewModel::onConnected);
    connect(m_connectionManager, &ConnectionManager::disconnected, this,
            &DashboardViewModel::onDisconnected);
    m_rpmUpdater->moveToThread(m_workerThread);
    m_speedUpdater->moveToThread(m_workerThread);
    connect(m_rpmUpdater, &Obd::ObdParameterUpdater::updateDone, this, &DashboardViewModel::onRpmUpdated);
    connect(m_speedUpdater, &Obd::ObdParameterUpdater::updateDone, this,
            &DashboardViewModel::onSpeedUpdated);
    connect(m_settings, &Obd::SettingsModel::unitSystemChanged, this, &DashboardViewModel::showUnits);
}

DashboardViewModel::~DashboardViewModel()
{
    m_timer->stop();
    // The proxy goes with the connection manager; the item may outlive us.
    if (m_consumptionGauge) {
        m_consumptionGauge->stop();
        m_consumptionGauge->consumption()->setProxy(nullptr);
    }
    Obd::ObdParameterUpdater::dispose(m_rpmUpdater, m_rpmParameter);
    Obd::ObdParameterUpdater::dispose(m_speedUpdater, m_speedParameter);
}

void DashboardViewModel::setView(QObject* view)
{
    detachView(m_view, this);
    m_view = view;
    if (!m_view)
        return;
    connect(m_view, &QObject::destroyed, this, &DashboardViewModel::onViewDestroyed);
    m_rpmGauge = m_view->findChild<MeterGauge*>("rpmGauge");
    m_speedGauge = m_view->findChild<MeterGauge*>("speedGauge");
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

void DashboardViewModel::showUnits()
{
    if (!m_view)
        return;
    m_view->setProperty("imperial", m_settings->unitSystem() == Obd::US_IMPERIAL);
    if (m_consumptionGauge)
        m_consumptionGauge->setUnitSystem(m_settings->unitSystem());
}

void DashboardViewModel::startRefresh()
{
    // The screen may have closed or the link dropped during the delay.
    if (!m_view || !m_connected)
        return;
    m_timer->start();
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
    m_rpmUpdater->setProxy(proxy);
    m_speedUpdater->setProxy(proxy);
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
    m_rpmUpdater->setProxy(nullptr);
    m_speedUpdater->setProxy(nullptr);
    if (m_consumptionGauge)
        m_consumptionGauge->consumption()->setProxy(nullptr);
    if (m_view)
        m_view->setProperty("connectionStatus", 0);
}

void DashboardViewModel::onViewDestroyed()
{
    m_rpmGauge = nullptr;
    m_speedGauge = nullptr;
    m_consumptionGauge = nullptr;
    m_view = nullptr;
    m_timer->stop();
}

void DashboardViewModel::onStartUpdate()
{
    if (m_rpmGauge && !m_rpmInFlight) {
        m_rpmInFlight = true;
        ++m_requestCount;
        Obd::ObdParameterUpdater::requestUpdate(m_rpmUpdater);
    }
    if (m_speedGauge && !m_speedInFlight) {
        m_speedInFlight = true;
        ++m_requestCount;
        Obd::ObdParameterUpdater::requestUpdate(m_speedUpdater);
    }
}

void DashboardViewModel::onRpmUpdated(bool success)
{
    Obd::ObdParameterUpdater::resultReceived(m_rpmUpdater);
    m_rpmInFlight = false;
    if (!success || !m_hasEcu || !m_rpmGauge)
        return;
    const qreal rpm = m_rpmParameter->getValue(m_ecu);
    m_rpmGauge->setValueAnimated(rpm);
    emit engineRpmChanged(rpm);
}

void DashboardViewModel::onSpeedUpdated(bool success)
{
    Obd::ObdParameterUpdater::resultReceived(m_speedUpdater);
    m_speedInFlight = false;
    if (!success || !m_hasEcu || !m_speedGauge)
        return;
    m_speedGauge->setValueAnimated(m_speedParameter->getValue(m_ecu));
    m_view->setProperty("speed", m_speedParameter->getValue(
                                     m_ecu, static_cast<Obd::UnitSystem>(m_settings->unitSystem())));
}

} // namespace Harmattan
