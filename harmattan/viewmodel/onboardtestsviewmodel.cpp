#include "onboardtestsviewmodel.h"

#include "canmonitortestitem.h"
#include "iscantool.h"
#include "monitortestitem.h"
#include "monitortestnames.h"
#include "parameterbatch.h"
#include "parameters/monitortestresult.h"
#include "parameters/oxygensensortestresult.h"
#include "settingsmodel.h"
#include "unittable.h"

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
    : BatchViewModel(navigationModel, NavigationModel::OnBoardTestsView, connectionManager, "onBoardTestsListModel",
                     "onBoardTestsViewModel", parent)
    , m_settings(settings)
{
    connect(m_settings, &Obd::SettingsModel::unitSystemChanged, this, &OnBoardTestsViewModel::onUnitSystemChanged);
}

void OnBoardTestsViewModel::onUnitSystemChanged()
{
    if (!m_batch->running())
        compose();
}

void OnBoardTestsViewModel::addRequests(const std::vector<Obd::EcuPtr>& ecus)
{
    m_monitorTests.clear();
    m_oxygenTests.clear();
    std::vector<unsigned char> mids;
    std::vector<unsigned char> tids;
    for (const Obd::EcuPtr& ecu : ecus) {
        if (!ecu)
            continue;
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
}

void OnBoardTestsViewModel::collect(QVector<Row>& rows, bool running)
{
    int tests = 0;
    int failed = 0;
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
            addTo(groups, group, { QString(), title, unread(ecu, status), QString(), QString(), QString(),
                                   ResultListModel::Unread });
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
        const QString header = section(ecu);
        for (Group& group : groups) {
            std::stable_sort(group.rows.begin(), group.rows.end(),
                             [](const Row& a, const Row& b) { return rank(a) < rank(b); });
            for (Row& row : group.rows) {
                row.section = header + QStringLiteral("  \u00b7  ") + group.name;
                rows.append(row);
            }
        }
    }
    if (running)
        m_summary = QStringLiteral("Reading the test results...");
    else if (rows.isEmpty())
        m_summary = m_ecus.empty() ? QString() : QStringLiteral("No control unit reports on-board tests");
    else if (tests == 0)
        m_summary = hasUnread() ? QStringLiteral("Could not read the test results") : QStringLiteral("No test results");
    else
        m_summary = failed == 0 ? QStringLiteral("%1 tests, all passed").arg(tests)
                                : QStringLiteral("%1 tests, %2 failed").arg(tests).arg(failed);
}

void OnBoardTestsViewModel::showReadings()
{
    m_view->setProperty("summary", m_summary);
    m_view->setProperty("readError", readError());
}

} // namespace Harmattan
