#include "sensor.h"

#include "obdparameterupdater.h"
#include "powertrainparameter.h"
#include "sensorinfo.h"
#include "sensorvalue.h"
#include "trlog.h"
#include "unittable.h"
#include "workerthread.h"

#include <QCoreApplication>
#include <QTimer>

#include <cassert>
#include <string>
#include <vector>

namespace Obd {

namespace {

const int DEFAULT_INTERVAL_MS = 1000;

QString unitDisplayText(unsigned int unit)
{
    return QCoreApplication::translate("Obd::Sensor", unitText(unit));
}

} // namespace

Sensor::Sensor(const Ecu& ecu, PowertrainParameter* parameter, QObject* parent)
    : QObject(parent)
    , m_ecu(ecu)
    , m_parameter(parameter)
    , m_updater(nullptr)
    , m_timer(nullptr)
    , m_index(0)
    , m_queued(0)
{
    assert(parameter != 0 && "parameter != 0");

    m_updater = new ObdParameterUpdater(parameter);
    WorkerThread* worker = WorkerThread::instance();
    m_timer = new QTimer(this);

    m_updater->moveToThread(worker);
    connect(m_updater, &ObdParameterUpdater::updateDone, this, &Sensor::onUpdated);
    m_timer->setInterval(DEFAULT_INTERVAL_MS);
    connect(m_timer, &QTimer::timeout, this, &Sensor::runUpdate);

    if (!parameter)
        return;
    m_name = QString::fromStdString(parameter->getName(ecu));
    m_title = m_name;

    std::vector<SensorInfo*> infos;
    parameter->getSensorInfos(infos);
    if (infos.size() > 1)
        m_title += QStringLiteral(": ");
    const QString ecuName = QString::fromStdString(ecu.getShortName());
    const QString pid = SensorValue::pidText(parameter->getPid());
    for (size_t i = 0; i < infos.size(); ++i) {
        const SensorInfo* info = infos[i];
        SensorValue* value = new SensorValue(ecuName, pid, QString::fromStdString(info->getName()),
                                             unitDisplayText(info->getUnit(US_METRIC)),
                                             unitDisplayText(info->getUnit(US_IMPERIAL)));
        m_values.append(value);
        if (infos.size() > 1) {
            m_title += value->getDescription();
            if (i + 1 < infos.size())
                m_title += QStringLiteral(", ");
        }
    }
}

Sensor::~Sensor()
{
    m_timer->stop();
    qDeleteAll(m_values);
    m_values.clear();
    // No further updateDone is queued to this sensor; Qt drops the ones
    // already queued when this object goes.
    disconnect(m_updater, nullptr, this, nullptr);
    ObdParameterUpdater::dispose(m_updater, m_parameter);
    m_updater = nullptr;
    m_parameter = nullptr;
}

void Sensor::setProxy(IObdProxy* proxy)
{
    m_updater->setProxy(proxy);
}

void Sensor::setUnitSystem(UnitSystem unitSystem)
{
    if (!SensorValue::isValid(unitSystem)) {
        OBD_WARN << "invalid unit system " << static_cast<int>(unitSystem);
        return;
    }
    for (SensorValue* value : m_values)
        value->setUnitSystem(unitSystem);
    emit unitChanged();
}

void Sensor::setIndex(int index)
{
    m_index = index;
}

unsigned int Sensor::getEcuId() const
{
    return m_ecu.getId();
}

unsigned char Sensor::getPid() const
{
    return m_parameter ? m_parameter->getPid() : 0;
}

QString Sensor::getName() const
{
    return m_name;
}

QString Sensor::getTitle() const
{
    return m_title;
}

void Sensor::setUpdateInterval(int ms)
{
    m_timer->setInterval(ms);
}

void Sensor::start()
{
    runUpdate();
    m_timer->start();
}

void Sensor::updateNow()
{
    QTimer::singleShot(0, this, &Sensor::runUpdate);
}

void Sensor::stop()
{
    m_timer->stop();
}

QList<SensorValue*> Sensor::getValues() const
{
    return m_values;
}

void Sensor::updated(bool)
{
}

int Sensor::getIndex() const
{
    return m_index;
}

bool Sensor::isQueued() const
{
    return m_queued != 0;
}

bool Sensor::isActive() const
{
    return m_timer->isActive();
}

int Sensor::getUpdateInterval() const
{
    return m_timer->interval();
}

void Sensor::runUpdate()
{
    if (m_queued) {
        OBD_DEBUG << "already queued " << m_index;
        return;
    }
    m_queued = 1;
    ObdParameterUpdater::requestUpdate(m_updater, Qt::AutoConnection);
}

void Sensor::onUpdated(bool success)
{
    ObdParameterUpdater::resultReceived(m_updater);
    if (m_queued > 0)
        --m_queued;
    m_refreshed = true;
    m_readStatus = m_parameter ? m_parameter->readStatus(m_ecu.getId()) : ReadStatus();
    // An update that ran no exchange (link gone) leaves the last statuses.
    if (!success && m_readStatus.ok())
        m_readStatus = ReadStatus{ READ_TIMEOUT, "the link to the adapter was lost" };
    if (success && m_parameter) {
        std::vector<std::string> metricValues;
        std::vector<std::string> imperialValues;
        m_parameter->getFormattedValues(m_ecu, US_METRIC, metricValues);
        for (size_t i = 0; i < metricValues.size() && i < size_t(m_values.size()); ++i)
            m_values[int(i)]->setValue(QString::fromStdString(metricValues[i]), US_METRIC);
        m_parameter->getFormattedValues(m_ecu, US_IMPERIAL, imperialValues);
        for (size_t i = 0; i < imperialValues.size() && i < size_t(m_values.size()); ++i)
            m_values[int(i)]->setValue(QString::fromStdString(imperialValues[i]), US_IMPERIAL);
        assert(metricValues.size() == imperialValues.size()
               && "metricValues.size() == imperialValues.size()");
    }
    updated(success);
    emit changed();
    emit changed(m_index);
    emit changed(static_cast<int>(m_ecu.getId()), static_cast<int>(getPid()));
}

} // namespace Obd
