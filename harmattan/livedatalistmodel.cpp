#include "livedatalistmodel.h"

#include "dtcdatamodel.h"
#include "iobdproxy.h"
#include "measurableparameter.h"
#include "powertrain/counterpid.h"
#include "powertrain/parameterfactory.h"
#include "sensor.h"
#include "sensorcreator.h"
#include "sensorvalue.h"

#include <memory>
#include <vector>

namespace Harmattan {

LiveDataListModel::LiveDataListModel(QObject* parent)
    : QAbstractListModel(parent)
    , m_proxy(nullptr)
{
}

LiveDataListModel::~LiveDataListModel()
{
    clear();
}

int LiveDataListModel::rowCount(const QModelIndex& parent) const
{
    return parent.isValid() ? 0 : m_sensors.size();
}

QVariant LiveDataListModel::data(const QModelIndex& index, int role) const
{
    if (!index.isValid() || index.row() >= m_sensors.size())
        return QVariant();
    const Obd::Sensor* sensor = m_sensors[index.row()];
    const QList<Obd::SensorValue*> values = sensor->getValues();
    switch (role) {
    case NameRole:
        // An oxygen sensor of an ECU without a sensor layout has no name: its PID stands in.
        if (sensor->getName().isEmpty() && !values.isEmpty())
            return QStringLiteral("PID ") + values.first()->getPid() + sensor->getTitle();
        return sensor->getTitle();
    case ValueRole: {
        // A failed read says why, as the trouble-code screens do.
        if (sensor->wasRefreshed() && !sensor->getReadStatus().ok())
            return QStringLiteral("could not read: ")
                   + QString::fromStdString(Obd::DtcDataModel::describe(
                         { Obd::DtcDataModel::failureOf(sensor->getEcu(), sensor->getReadStatus()) }));
        // Never a dash a user could take for a value: a row not read yet says so.
        if (!sensor->wasRefreshed())
            return QStringLiteral("reading\u2026");
        // Two-value PIDs read "value unit, value unit"; the unit column stays empty.
        QStringList texts;
        for (const Obd::SensorValue* value : values) {
            const QString text = value->getValue().isEmpty() ? QStringLiteral("no value") : value->getValue();
            texts << (values.size() > 1 ? (text + QLatin1Char(' ') + value->getUnit()).trimmed() : text);
        }
        return texts.join(QStringLiteral(", "));
    }
    case UnitRole:
        return values.size() == 1 ? values.first()->getUnit() : QString();
    case EcuRole:
        return values.isEmpty() ? QString() : values.first()->getEcuName();
    case PolledRole:
        return sensor->isActive();
    case NumericRole:
        return m_numeric.value(index.row());
    default:
        return QVariant();
    }
}

QHash<int, QByteArray> LiveDataListModel::roleNames() const
{
    return { { NameRole, "name" }, { ValueRole, "value" }, { UnitRole, "unit" },
             { EcuRole, "ecu" }, { PolledRole, "polled" }, { NumericRole, "numeric" } };
}

void LiveDataListModel::build(Obd::IObdProxy* proxy, Obd::UnitSystem unitSystem, int intervalMs)
{
    beginResetModel();
    qDeleteAll(m_sensors);
    m_sensors.clear();
    m_numeric.clear();
    m_proxy = proxy;
    std::vector<Obd::EcuPtr> ecus;
    if (proxy)
        proxy->getEcus(ecus);
    for (const Obd::EcuPtr& ecu : ecus) {
        std::vector<unsigned char> pids;
        if (!ecu || !ecu->getSupported(1, pids))
            continue;
        for (unsigned char pid : pids) {
            // The range PIDs only say which others exist.
            if (pid % 0x20 == 0)
                continue;
            Obd::Sensor* sensor = Obd::SensorCreator::createSensor(*ecu, pid);
            if (!sensor)
                continue;
            const std::unique_ptr<Obd::PowertrainParameter> probe(Obd::ParameterFactory::create(pid));
            // Counters (run time, distances) are whole numbers without a formatter.
            m_numeric.append(dynamic_cast<Obd::MeasurableParameter*>(probe.get())
                             || dynamic_cast<Obd::CounterPid*>(probe.get()));
            const int row = m_sensors.size();
            sensor->setParent(this);
            sensor->setIndex(row);
            sensor->setUnitSystem(unitSystem);
            sensor->setUpdateInterval(intervalMs);
            connect(sensor, qOverload<int>(&Obd::Sensor::changed), this,
                    &LiveDataListModel::onSensorChanged);
            m_sensors.append(sensor);
        }
    }
    endResetModel();
}

void LiveDataListModel::clear()
{
    beginResetModel();
    qDeleteAll(m_sensors);
    m_sensors.clear();
    m_numeric.clear();
    m_proxy = nullptr;
    endResetModel();
}

void LiveDataListModel::detach()
{
    m_proxy = nullptr;
    for (Obd::Sensor* sensor : m_sensors) {
        sensor->stop();
        sensor->setProxy(nullptr);
    }
    if (!m_sensors.isEmpty())
        emit dataChanged(index(0), index(m_sensors.size() - 1), { PolledRole });
}

void LiveDataListModel::setPolled(int row, bool polled)
{
    if (row < 0 || row >= m_sensors.size())
        return;
    Obd::Sensor* sensor = m_sensors[row];
    if (polled == sensor->isActive() || (polled && !m_proxy))
        return;
    if (polled) {
        sensor->setProxy(m_proxy);
        sensor->start();
    } else {
        sensor->stop();
    }
    emit dataChanged(index(row), index(row), { PolledRole });
}

void LiveDataListModel::setUnitSystem(Obd::UnitSystem unitSystem)
{
    for (Obd::Sensor* sensor : m_sensors)
        sensor->setUnitSystem(unitSystem);
    if (!m_sensors.isEmpty())
        emit dataChanged(index(0), index(m_sensors.size() - 1), { ValueRole, UnitRole });
}

int LiveDataListModel::polledCount() const
{
    int count = 0;
    for (const Obd::Sensor* sensor : m_sensors)
        count += sensor->isActive() ? 1 : 0;
    return count;
}

Obd::Sensor* LiveDataListModel::sensor(int row) const
{
    return row >= 0 && row < m_sensors.size() ? m_sensors[row] : nullptr;
}

bool LiveDataListModel::isNumeric(int row) const
{
    return m_numeric.value(row);
}

int LiveDataListModel::rowOf(unsigned int ecuId, unsigned char pid) const
{
    for (int row = 0; row < m_sensors.size(); ++row)
        if (m_sensors[row]->getEcuId() == ecuId && m_sensors[row]->getPid() == pid)
            return row;
    return -1;
}

void LiveDataListModel::onSensorChanged(int row)
{
    if (row < 0 || row >= m_sensors.size())
        return;
    emit dataChanged(index(row), index(row), { ValueRole, UnitRole });
    emit valueUpdated(row);
}

} // namespace Harmattan
