#include "readinessviewmodel.h"

#include "connectionmanager.h"
#include "dtcdatamodel.h"
#include "iobdproxy.h"
#include "obdparameterupdater.h"
#include "powertrain/drivecyclemonitorstatus.h"
#include "powertrain/monitorstatus.h"
#include "resultlistmodel.h"
#include "sensor.h"
#include "sensorcreator.h"
#include "sensorvalue.h"
#include "settingsmodel.h"
#include "workerthread.h"

#include <QQmlContext>
#include <QStringList>
#include <QVariant>

namespace Harmattan {

const char* const ReadinessViewModel::READY = "Ready for an emissions inspection";

namespace {

// Distance and time since the codes were cleared, then with the lamp on.
const unsigned char COUNTER_PIDS[] = { 0x31, 0x4E, 0x21, 0x4D };
const unsigned int LAST_CONTINUOUS = 2;
const unsigned int FIRST_SPARK = 3;
const unsigned int LAST_SPARK = 9;
const unsigned int FIRST_COMPRESSION = 10;
const unsigned int LAST_COMPRESSION = 15;

using Row = ResultListModel::Row;

Row row(const QString& section, const QString& title, const QString& value, int state)
{
    return { section, title, value, QString(), QString(), QString(), state };
}

// "NO DATA (ECM 0x7E8)", as the trouble-code screens say it.
QString cause(const Obd::Ecu& ecu, const Obd::ReadStatus& status)
{
    return QString::fromStdString(Obd::DtcDataModel::describe({ Obd::DtcDataModel::failureOf(ecu, status) }));
}

} // namespace

ReadinessViewModel::ReadinessViewModel(ConnectionManager* connectionManager,
                                       Obd::SettingsModel* settings, QObject* parent)
    : QObject(parent)
    , m_connectionManager(connectionManager)
    , m_settings(settings)
    , m_listModel(new ResultListModel(this))
    , m_status(new Obd::MonitorStatus())
    , m_updater(new Obd::ObdParameterUpdater(m_status))
    , m_inFlight(false)
    , m_haveStatus(false)
    , m_cycle(new Obd::DriveCycleMonitorStatus())
    , m_cycleUpdater(new Obd::ObdParameterUpdater(m_cycle))
    , m_connected(false)
{
    m_updater->moveToThread(Obd::WorkerThread::instance());
    m_cycleUpdater->moveToThread(Obd::WorkerThread::instance());
    connect(m_updater, &Obd::ObdParameterUpdater::updateDone, this, &ReadinessViewModel::onStatusRead);
    connect(m_cycleUpdater, &Obd::ObdParameterUpdater::updateDone, this, &ReadinessViewModel::onCycleRead);
    connect(m_connectionManager, &ConnectionManager::connected, this, &ReadinessViewModel::onConnected);
    connect(m_connectionManager, &ConnectionManager::disconnected, this,
            &ReadinessViewModel::onDisconnected);
    connect(m_settings, &Obd::SettingsModel::unitSystemChanged, this,
            &ReadinessViewModel::onUnitSystemChanged);
}

void ReadinessViewModel::onUnitSystemChanged()
{
    // The counters hold both units; only the shown one changes.
    const Obd::UnitSystem units = static_cast<Obd::UnitSystem>(m_settings->unitSystem());
    for (Obd::Sensor* counter : m_counters)
        counter->setUnitSystem(units);
    compose();
}

ReadinessViewModel::~ReadinessViewModel()
{
    qDeleteAll(m_counters);
    Obd::ObdParameterUpdater::dispose(m_updater, m_status);
    Obd::ObdParameterUpdater::dispose(m_cycleUpdater, m_cycle);
}

void ReadinessViewModel::setView(QObject* view)
{
    detachView(m_view, this);
    m_view = view;
    if (!m_view)
        return;
    connect(m_view, &QObject::destroyed, this, &ReadinessViewModel::onViewDestroyed);
    showState();
    read();
}

void ReadinessViewModel::setContext(QQmlContext* context)
{
    context->setContextProperty("readinessListModel", m_listModel);
}

ResultListModel* ReadinessViewModel::listModel() const
{
    return m_listModel;
}

QString ReadinessViewModel::verdict() const
{
    return m_verdict;
}

void ReadinessViewModel::onConnected()
{
    m_connected = true;
    showState();
    read();
}

void ReadinessViewModel::onDisconnected()
{
    m_connected = false;
    m_updater->setProxy(nullptr);
    m_cycleUpdater->setProxy(nullptr);
    for (Obd::Sensor* counter : m_counters)
        counter->setProxy(nullptr);
    // The last readings stay on screen, greyed.
    showState();
}

void ReadinessViewModel::onViewDestroyed()
{
    m_view = nullptr;
}

void ReadinessViewModel::read()
{
    if (!m_view || !m_connected || m_inFlight || m_cycleInFlight)
        return;
    Obd::IObdProxy* proxy = m_connectionManager->proxy();
    std::vector<Obd::EcuPtr> ecus;
    if (proxy)
        proxy->getEcus(ecus);
    m_ecus.clear();
    qDeleteAll(m_counters);
    m_counters.clear();
    m_haveStatus = false;
    m_statusDone = false;
    m_haveCycle = false;
    m_cycleDone = false;
    bool anyCycle = false;
    const Obd::UnitSystem units = static_cast<Obd::UnitSystem>(m_settings->unitSystem());
    for (const Obd::EcuPtr& ecu : ecus) {
        if (!ecu || !ecu->isSupported(1, 0x01))
            continue;
        m_ecus.push_back(*ecu);
        anyCycle = anyCycle || ecu->isSupported(1, 0x41);
        for (unsigned char pid : COUNTER_PIDS) {
            Obd::Sensor* counter = ecu->isSupported(1, pid) ? Obd::SensorCreator::createSensor(*ecu, pid) : nullptr;
            if (!counter)
                continue;
            counter->setProxy(proxy);
            counter->setUnitSystem(units);
            connect(counter, qOverload<>(&Obd::Sensor::changed), this, &ReadinessViewModel::compose);
            counter->updateNow();
            m_counters.append(counter);
        }
    }
    m_inFlight = true;
    m_updater->setProxy(proxy);
    std::vector<Obd::ObdParameterUpdater*> batch{ m_updater };
    if (anyCycle) {
        m_cycleInFlight = true;
        m_cycleUpdater->setProxy(proxy);
        batch.push_back(m_cycleUpdater);
    }
    Obd::ObdParameterUpdater::requestUpdates(batch);
    compose();
}

void ReadinessViewModel::onStatusRead(bool success)
{
    Obd::ObdParameterUpdater::resultReceived(m_updater);
    m_inFlight = false;
    m_haveStatus = success;
    m_statusDone = true;
    compose();
}

void ReadinessViewModel::onCycleRead(bool success)
{
    Obd::ObdParameterUpdater::resultReceived(m_cycleUpdater);
    m_cycleInFlight = false;
    m_haveCycle = success;
    m_cycleDone = true;
    compose();
}

// The monitors enabled this drive cycle, under a heading of their own after
// the counters: what a test drive still has to run.
void ReadinessViewModel::composeCycle(const Obd::Ecu& ecu, const QString& header, QVector<Row>& rows) const
{
    if (!ecu.isSupported(1, 0x41))
        return;
    const QString section = header + QStringLiteral(" \u00b7 this drive cycle");
    // The worker owns the parameter while its read is in flight.
    const Obd::ReadStatus status = m_cycleDone ? m_cycle->readStatus(ecu.getId()) : Obd::ReadStatus();
    if (m_cycleDone && !(m_haveCycle && status.ok())) {
        rows.append(row(section, "Monitors", QStringLiteral("could not read: ") + cause(ecu, status),
                        ResultListModel::Unread));
        return;
    }
    if (!m_haveCycle)
        return;
    for (unsigned int id : m_cycle->supportedMonitors(ecu)) {
        const bool complete = m_cycle->isComplete(ecu, id);
        rows.append(row(section, QString::fromStdString(Obd::MonitorStatus::getMonitorName(id)),
                        complete ? "Complete" : "Incomplete",
                        complete ? ResultListModel::Passed : ResultListModel::Failed));
    }
}

void ReadinessViewModel::compose()
{
    QVector<Row> rows;
    QStringList notReady;
    std::vector<Obd::DtcDataModel::ReadFailure> failures;
    for (const Obd::Ecu& ecu : m_ecus) {
        const QString name = QString::fromStdString(ecu.getShortName());
        const QString header = QStringLiteral("%1 (0x%2)").arg(name, QString::number(ecu.getId(), 16).toUpper());
        // The worker owns the parameter while its read is in flight.
        const Obd::ReadStatus status = m_statusDone ? m_status->readStatus(ecu.getId()) : Obd::ReadStatus();
        // An ECU whose answer did not come is unknown, never "lamp off".
        if (m_statusDone && !(m_haveStatus && status.ok())) {
            failures.push_back(Obd::DtcDataModel::failureOf(ecu, status));
            rows.append(row(header, "Monitors", QStringLiteral("could not read: ") + cause(ecu, status),
                            ResultListModel::Unread));
        } else if (m_haveStatus) {
            rows.append(row(header, "Malfunction indicator lamp", m_status->isMilOn(ecu) ? "On" : "Off",
                            m_status->isMilOn(ecu) ? ResultListModel::Failed : ResultListModel::Reading));
            rows.append(row(header, "Confirmed trouble codes", QString::number(m_status->getDtcCount(ecu)),
                            ResultListModel::Reading));
            const bool compression = m_status->isCompressionIgnition(ecu);
            const unsigned int first = compression ? FIRST_COMPRESSION : FIRST_SPARK;
            const unsigned int last = compression ? LAST_COMPRESSION : LAST_SPARK;
            for (unsigned int id = 0; id <= last; ++id) {
                if (id > LAST_CONTINUOUS && id < first)
                    continue;
                const QString monitor = QString::fromStdString(Obd::MonitorStatus::getMonitorName(id));
                if (!m_status->isSupported(ecu, id)) {
                    rows.append(row(header, monitor, "Not supported", ResultListModel::NotSupported));
                } else if (m_status->isComplete(ecu, id)) {
                    rows.append(row(header, monitor, "Complete", ResultListModel::Passed));
                } else {
                    rows.append(row(header, monitor, "Incomplete", ResultListModel::Failed));
                    notReady << QStringLiteral("%1 (%2)").arg(monitor, name);
                }
            }
        }
        for (const Obd::Sensor* counter : m_counters) {
            const QList<Obd::SensorValue*> values = counter->getValues();
            if (counter->getEcuId() != ecu.getId() || values.isEmpty())
                continue;
            if (counter->wasRefreshed() && !counter->getReadStatus().ok()) {
                rows.append(row(header, counter->getTitle(),
                                QStringLiteral("could not read: ") + cause(ecu, counter->getReadStatus()),
                                ResultListModel::Unread));
                continue;
            }
            if (values.first()->getValue().isEmpty())
                continue;
            rows.append(row(header, counter->getTitle(),
                            (values.first()->getValue() + QLatin1Char(' ') + values.first()->getUnit()).trimmed(),
                            ResultListModel::Reading));
        }
        composeCycle(ecu, header, rows);
    }
    if (!failures.empty())
        m_verdict = QStringLiteral("Could not read the monitors: ")
                    + QString::fromStdString(Obd::DtcDataModel::describe(failures));
    else if (!m_haveStatus)
        m_verdict = m_inFlight ? QStringLiteral("Reading the monitors...") : QString();
    else if (m_ecus.empty())
        m_verdict = QStringLiteral("No control unit reports its monitors");
    else
        m_verdict = notReady.isEmpty() ? QString::fromLatin1(READY)
                                       : QStringLiteral("Not ready yet: ") + notReady.join(QStringLiteral(", "));
    m_listModel->setRows(rows);
    showState();
}

void ReadinessViewModel::showState()
{
    if (!m_view)
        return;
    m_view->setProperty("connectionStatus", m_connected ? 2 : 0);
    m_view->setProperty("verdict", m_verdict);
    m_view->setProperty("ready", m_verdict == QLatin1String(READY));
}

} // namespace Harmattan
