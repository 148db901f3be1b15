#include "onboardtestsviewmodel.h"

#include "canmonitortestitem.h"
#include "connectionmanager.h"
#include "iobdproxy.h"
#include "iscantool.h"
#include "monitortestitem.h"
#include "monitortestnames.h"
#include "navigationmodel.h"
#include "parameterbatch.h"
#include "parameters/monitortestresult.h"
#include "parameters/oxygensensortestresult.h"
#include "resultlistmodel.h"
#include "settingsmodel.h"
#include "unittable.h"

#include <QQmlContext>
#include <QStringList>
#include <QVariant>

#include <algorithm>

namespace Harmattan {

namespace {

using Row = ResultListModel::Row;

const char* const NO_UNIT = "no unit known";

struct Group
{
    QString name;
    QVector<Row> rows;
    bool failed;
};

QString text(const std::string& value)
{
    return QString::fromStdString(value);
}

void addTo(QVector<Group>& groups, const QString& name, const Row& row)
{
    auto group = std::find_if(groups.begin(), groups.end(), [&](const Group& g) { return g.name == name; });
    if (group == groups.end())
        group = groups.insert(groups.end(), Group { name, {}, false });
    group->rows.append(row);
    group->failed = group->failed || row.state == ResultListModel::Failed || row.state == ResultListModel::Unread;
}

// Unread before failed before the rest.
int rank(const Row& row)
{
    return row.state == ResultListModel::Unread ? 0 : row.state == ResultListModel::Failed ? 1 : 2;
}

bool hasTid(const Obd::Ecu& ecu, unsigned char tid)
{
    for (const auto& sensor : ecu.getSupportedTids()) {
        if (std::find(sensor.second.begin(), sensor.second.end(), tid) != sensor.second.end())
            return true;
    }
    return false;
}

// Multiples of 0x20 only say which further ids are supported.
void addIds(const std::vector<unsigned char>& from, std::vector<unsigned char>& to)
{
    for (unsigned char id : from) {
        if (id % 0x20 != 0 && std::find(to.begin(), to.end(), id) == to.end())
            to.push_back(id);
    }
}

} // namespace

OnBoardTestsViewModel::OnBoardTestsViewModel(NavigationModel* navigationModel, ConnectionManager* connectionManager,
                                             Obd::SettingsModel* settings, QObject* parent)
    : QObject(parent)
    , m_navigationModel(navigationModel)
    , m_connectionManager(connectionManager)
    , m_settings(settings)
    , m_listModel(new ResultListModel(this))
    , m_batch(new ParameterBatch(this))
    , m_connected(false)
{
    connect(m_batch, &ParameterBatch::finished, this, &OnBoardTestsViewModel::onRead);
    connect(m_connectionManager, &ConnectionManager::connected, this, &OnBoardTestsViewModel::onConnected);
    connect(m_connectionManager, &ConnectionManager::disconnected, this, &OnBoardTestsViewModel::onDisconnected);
    connect(m_settings, &Obd::SettingsModel::unitSystemChanged, this, &OnBoardTestsViewModel::onUnitSystemChanged);
}

OnBoardTestsViewModel::~OnBoardTestsViewModel()
{
    m_batch->clear();
}

void OnBoardTestsViewModel::setView(QObject* view)
{
    detachView(m_view, this);
    m_view = view;
    if (!m_view)
        return;
    connect(m_view, &QObject::destroyed, this, &OnBoardTestsViewModel::onViewDestroyed);
    m_connected = m_connectionManager->isConnected();
    showState();
    read();
}

void OnBoardTestsViewModel::setContext(QQmlContext* context)
{
    context->setContextProperty("onBoardTestsListModel", m_listModel);
    context->setContextProperty("onBoardTestsViewModel", this);
}

ResultListModel* OnBoardTestsViewModel::listModel() const
{
    return m_listModel;
}

QString OnBoardTestsViewModel::summary() const
{
    return m_summary;
}

QString OnBoardTestsViewModel::readError() const
{
    return m_readError;
}

void OnBoardTestsViewModel::open()
{
    m_navigationModel->activateView(NavigationModel::OnBoardTestsView);
}

void OnBoardTestsViewModel::onConnected()
{
    m_connected = true;
    showState();
    read();
}

void OnBoardTestsViewModel::onDisconnected()
{
    m_connected = false;
    m_batch->stop();
    // The last results stay on screen, greyed.
    showState();
}

void OnBoardTestsViewModel::onViewDestroyed()
{
    m_view = nullptr;
}

void OnBoardTestsViewModel::onUnitSystemChanged()
{
    if (!m_batch->running())
        compose();
}

void OnBoardTestsViewModel::read()
{
    Obd::IObdProxy* proxy = m_connectionManager->proxy();
    if (!m_view || !m_connected || !proxy || m_batch->running())
        return;
    m_batch->clear();
    m_monitorTests.clear();
    m_oxygenTests.clear();
    m_ecus.clear();
    std::vector<Obd::EcuPtr> ecus;
    proxy->getEcus(ecus);
    std::vector<unsigned char> mids;
    std::vector<unsigned char> tids;
    for (const Obd::EcuPtr& ecu : ecus) {
        if (!ecu)
            continue;
        m_ecus.push_back(*ecu);
        std::vector<unsigned char> supported;
        ecu->getSupported(6, supported);
        addIds(supported, mids);
        // Service 05 only where service 06 is not on CAN.
        if (!Obd::isCanProtocol(ecu->getProtocol())) {
            for (const auto& sensor : ecu->getSupportedTids())
                addIds(sensor.second, tids);
        }
    }
    std::sort(mids.begin(), mids.end());
    std::sort(tids.begin(), tids.end());
    for (unsigned char mid : mids) {
        m_monitorTests.push_back(new Obd::MonitorTestResult(mid));
        m_batch->add(m_monitorTests.back());
    }
    for (unsigned char tid : tids) {
        m_oxygenTests.push_back(new Obd::OxygenSensorTestResult(tid));
        m_batch->add(m_oxygenTests.back());
    }
    m_batch->start(proxy);
    compose();
}

void OnBoardTestsViewModel::onRead()
{
    compose();
}

void OnBoardTestsViewModel::compose()
{
    QVector<Row> rows;
    QStringList causes;
    int tests = 0;
    int failed = 0;
    const bool running = m_batch->running();
    const Obd::UnitSystem units = static_cast<Obd::UnitSystem>(m_settings->unitSystem());
    for (const Obd::Ecu& ecu : m_ecus) {
        if (running)
            break;
        const bool can = Obd::isCanProtocol(ecu.getProtocol());
        QVector<Group> groups;
        // False, and a row saying why, when the ECU's answer is missing.
        auto read = [&](const Obd::ObdParameter& parameter, const QString& group, const QString& title) {
            const Obd::ReadStatus status = parameter.readStatus(ecu.getId());
            if (status.ok())
                return true;
            const QString cause = ParameterBatch::failure(ecu, status);
            if (!causes.contains(cause))
                causes << cause;
            addTo(groups, group, { QString(), title, QStringLiteral("could not read: ") + cause, QString(), QString(),
                                   QString(), ResultListModel::Unread });
            return false;
        };
        for (Obd::MonitorTestResult* result : m_monitorTests) {
            const unsigned char id = result->getId();
            const QString monitor = can ? text(Obd::MonitorTestResult::getMidName(id))
                                        : QStringLiteral("TID %1: %2").arg(text(Obd::MonitorTestNames::hexId(id)),
                                                                           text(Obd::MonitorTestResult::getTidName(id)));
            if (!ecu.isSupported(6, id) || !read(*result, monitor, QStringLiteral("Test results")))
                continue;
            result->setUnitSystem(units);
            for (unsigned char mid : result->getMids(ecu)) {
                for (const auto& item : result->getTestItems(ecu, mid)) {
                    Row row { QString(), text(item->getTidName()), text(item->getValueText()),
                              text(item->getMinimumText()), text(item->getMaximumText()),
                              text(Obd::unitText(item->getUnit())),
                              item->isPassed() ? ResultListModel::Passed : ResultListModel::Failed };
                    const auto* scaled = dynamic_cast<const Obd::CanMonitorTestItem*>(item.get());
                    if (const auto* raw = dynamic_cast<const Obd::MonitorTestItem*>(item.get()))
                        row.title = text(raw->getComponentName());
                    // Without a known scaling the number stays as it came.
                    if (!scaled || !scaled->getScaling()) {
                        row.value = QString::number(item->getValue(), 'f', 0);
                        row.unit = QString::fromLatin1(NO_UNIT);
                    }
                    ++tests;
                    failed += row.state == ResultListModel::Failed;
                    addTo(groups, can ? text(Obd::MonitorTestResult::getMidName(mid)) : monitor, row);
                }
            }
        }
        for (Obd::OxygenSensorTestResult* result : m_oxygenTests) {
            const unsigned char tid = result->getTid();
            const QString name = text(Obd::OxygenSensorTestResult::getTidName(tid));
            if (!hasTid(ecu, tid) || !read(*result, QStringLiteral("Oxygen sensors"), name))
                continue;
            for (Obd::OxygenSensorLocation location : result->getSensors(ecu)) {
                const std::shared_ptr<Obd::OxygenSensorTestItem> item = result->getItem(ecu, location);
                if (!item)
                    continue;
                const QString unit = text(Obd::unitText(item->getUnit()));
                Row row { QString(), name, text(item->getValueText()), text(item->getMinimumText()),
                          text(item->getMaximumText()), unit.isEmpty() ? QString::fromLatin1(NO_UNIT) : unit,
                          item->isPassed() ? ResultListModel::Passed : ResultListModel::Failed };
                // The fixed thresholds come without limits: values, not verdicts.
                if (tid >= 0x01 && tid <= 0x04 && item->getRawMinimum() == 0 && item->getRawMaximum() == 0) {
                    row.minimum.clear();
                    row.maximum.clear();
                    row.state = ResultListModel::Reading;
                } else {
                    ++tests;
                    failed += row.state == ResultListModel::Failed;
                }
                addTo(groups, QStringLiteral("Oxygen sensor %1").arg(text(Obd::oxygenSensorLocationName(location))),
                      row);
            }
        }
        std::stable_sort(groups.begin(), groups.end(),
                         [](const Group& a, const Group& b) { return a.failed && !b.failed; });
        const QString header = QStringLiteral("%1 (0x%2)").arg(text(ecu.getShortName()),
                                                              QString::number(ecu.getId(), 16).toUpper());
        for (Group& group : groups) {
            std::stable_sort(group.rows.begin(), group.rows.end(),
                             [](const Row& a, const Row& b) { return rank(a) < rank(b); });
            for (Row& row : group.rows) {
                row.section = header + QStringLiteral("  \u00b7  ") + group.name;
                rows.append(row);
            }
        }
    }
    m_readError = causes.join(QStringLiteral("; "));
    if (running)
        m_summary = QStringLiteral("Reading the test results...");
    else if (rows.isEmpty())
        m_summary = m_ecus.empty() ? QString() : QStringLiteral("No control unit reports on-board tests");
    else if (tests == 0)
        m_summary = causes.isEmpty() ? QStringLiteral("No test results") : QStringLiteral("Could not read the test results");
    else
        m_summary = failed == 0 ? QStringLiteral("%1 tests, all passed").arg(tests)
                                : QStringLiteral("%1 tests, %2 failed").arg(tests).arg(failed);
    m_listModel->setRows(rows);
    showState();
}

void OnBoardTestsViewModel::showState()
{
    if (!m_view)
        return;
    m_view->setProperty("connectionStatus", m_connected ? 2 : 0);
    m_view->setProperty("summary", m_summary);
    m_view->setProperty("readError", m_readError);
}

} // namespace Harmattan
