#include "consumption.h"

#include "iobdproxy.h"
#include "measurableparameter.h"
#include "obdparameterupdater.h"
#include "powertrain/airflowrate.h"
#include "powertrain/vehiclespeed.h"
#include "workerthread.h"

#include <QDebug>
#include <QTimer>

#include <algorithm>
#include <cmath>
#include <vector>

namespace Obd {

namespace {

const int DEFAULT_INTERVAL_MS = 1000;
const int MSECS_PER_DAY = 24 * 60 * 60 * 1000;
// The stored figure uses 710.7, the factor for the air flow in the PID's raw
// unit of 0.01 g/s. With the air flow in g/s, petrol at 14.7:1 and US
// gallons, true MPG = 7.107 x km/h / (g/s), and l/100 km = 235.215 / MPG.
const double STORED_MPG_FACTOR = 710.7;
const double MPG_FACTOR = 7.107;
const double LITRES_PER_100KM_FACTOR = 235.215;

} // namespace

Consumption::Consumption(QObject* parent)
    : QObject(parent)
    , m_consumption(0.0f)
    , m_airFlowParameter(new AirFlowRate)
    , m_speedParameter(new VehicleSpeed)
    , m_airFlow(0.0f)
    , m_estimatedSpeed(0.0f)
    , m_metric{0.0, 0.0, 0.0, 0}
    , m_imperial{0.0, 0.0, 0.0, 0}
    , m_proxy(nullptr)
    , m_ecuSet(false)
    , m_airFlowUpdater(nullptr)
    , m_speedUpdater(nullptr)
    , m_airFlowQueued(false)
    , m_speedQueued(false)
    , m_timer(new QTimer(this))
{
    // Placeholders until the first readings replace them.
    const QTime now = QTime::currentTime();
    m_previousAirFlow = Sample{now.addMSecs(-500), 1.0f};
    m_currentAirFlow = Sample{now, 5.0f};
    m_previousSpeed = Sample{now, 2.0f};
    m_currentSpeed = Sample{now, 3.0f};

    m_timer->setInterval(DEFAULT_INTERVAL_MS);
    connect(m_timer, &QTimer::timeout, this, &Consumption::onTick);
}

Consumption::~Consumption()
{
    m_timer->stop();
    if (m_airFlowUpdater)
        disconnect(m_airFlowUpdater, nullptr, this, nullptr);
    if (m_speedUpdater)
        disconnect(m_speedUpdater, nullptr, this, nullptr);
    // The parameters go after any exchange still queued for them.
    ObdParameterUpdater::dispose(m_airFlowUpdater, m_airFlowParameter);
    ObdParameterUpdater::dispose(m_speedUpdater, m_speedParameter);
}

void Consumption::setProxy(IObdProxy* proxy)
{
    m_proxy = proxy;
    if (m_airFlowUpdater)
        m_airFlowUpdater->setProxy(proxy);
    if (m_speedUpdater)
        m_speedUpdater->setProxy(proxy);
}

void Consumption::setEcu(const Ecu& ecu)
{
    m_ecu = ecu;
    m_ecuSet = true;
}

void Consumption::setUpdateInterval(int ms)
{
    m_timer->setInterval(ms);
}

int Consumption::getUpdateInterval() const
{
    return m_timer->interval();
}

bool Consumption::isRunning() const
{
    return m_timer->isActive();
}

void Consumption::createUpdaters()
{
    if (m_airFlowUpdater || m_speedUpdater)
        return;
    WorkerThread* worker = WorkerThread::instance();
    if (m_airFlowParameter) {
        m_airFlowUpdater = new ObdParameterUpdater(m_airFlowParameter);
        m_airFlowUpdater->setProxy(m_proxy);
        m_airFlowUpdater->moveToThread(worker);
        connect(m_airFlowUpdater, &ObdParameterUpdater::updateDone, this,
                &Consumption::onAirFlowDone);
    }
    if (m_speedParameter) {
        m_speedUpdater = new ObdParameterUpdater(m_speedParameter);
        m_speedUpdater->setProxy(m_proxy);
        m_speedUpdater->moveToThread(worker);
        connect(m_speedUpdater, &ObdParameterUpdater::updateDone, this,
                &Consumption::onSpeedDone);
    }
}

void Consumption::start()
{
    createUpdaters();
    onTick();
    m_timer->start();
}

void Consumption::stop()
{
    m_timer->stop();
}

void Consumption::onTick()
{
    // Speed first, so the air-flow reading that follows has a fresh speed.
    if (m_speedUpdater && !m_speedQueued) {
        m_speedQueued = true;
        ObdParameterUpdater::requestUpdate(m_speedUpdater, Qt::AutoConnection);
    }
    if (m_airFlowUpdater && !m_airFlowQueued) {
        m_airFlowQueued = true;
        ObdParameterUpdater::requestUpdate(m_airFlowUpdater, Qt::AutoConnection);
    }
}

void Consumption::onSpeedDone(bool success)
{
    ObdParameterUpdater::resultReceived(m_speedUpdater);
    m_speedQueued = false;
    if (success)
        onSpeedUpdated();
}

void Consumption::onAirFlowDone(bool success)
{
    ObdParameterUpdater::resultReceived(m_airFlowUpdater);
    m_airFlowQueued = false;
    if (success)
        onAirFlowUpdated();
}

Ecu Consumption::readingEcu() const
{
    if (m_ecuSet)
        return m_ecu;
    if (m_proxy) {
        EcuPtr first = m_proxy->getFirstEcu();
        if (first)
            return *first;
    }
    return Ecu();
}

bool Consumption::readValue(MeasurableParameter* parameter, float& value)
{
    if (!parameter)
        return false;
    std::vector<float> values;
    parameter->getValues(readingEcu(), US_METRIC, values);
    if (values.empty())
        return false;
    value = values.front();
    return true;
}

void Consumption::onSpeedUpdated()
{
    float kmh = 0.0f;
    if (readValue(m_speedParameter, kmh))
        addSpeedSample(QTime::currentTime(), kmh);
}

void Consumption::onAirFlowUpdated()
{
    float gramsPerSecond = 0.0f;
    if (readValue(m_airFlowParameter, gramsPerSecond))
        addAirFlowSample(QTime::currentTime(), gramsPerSecond);
}

void Consumption::addSpeedSample(const QTime& time, float kmh)
{
    m_previousSpeed = m_currentSpeed;
    m_currentSpeed = Sample{time, kmh};
}

void Consumption::addAirFlowSample(const QTime& time, float gramsPerSecond)
{
    m_previousAirFlow = m_currentAirFlow;
    m_currentAirFlow = Sample{time, gramsPerSecond};
    m_airFlow = m_currentAirFlow.value;
    estimateSpeed(time);
    computeConsumption();
    updateReadings();
    emit changed();
}

int Consumption::msecsBetween(const QTime& a, const QTime& b)
{
    int msecs = a.msecsTo(b);
    // A reading just after midnight follows one just before it.
    if (msecs < -MSECS_PER_DAY / 2)
        msecs += MSECS_PER_DAY;
    return msecs;
}

void Consumption::estimateSpeed(const QTime& now)
{
    const float sp = m_previousSpeed.value;
    const float sc = m_currentSpeed.value;
    const float span = static_cast<float>(msecsBetween(m_previousSpeed.time, m_currentSpeed.time));
    const float age = static_cast<float>(msecsBetween(m_currentSpeed.time, now));
    // Two speeds in the same millisecond give inf or nan here; the public
    // readings treat that as undefined.
    m_estimatedSpeed = sc + age * ((sc - sp) / span);
    qDebug() << "estimated speed: " << m_estimatedSpeed << "(" << sp << ", " << sc << ")";
}

void Consumption::computeConsumption()
{
    const float mpg = static_cast<float>(static_cast<double>(m_estimatedSpeed) * STORED_MPG_FACTOR
                                         / static_cast<double>(m_airFlow));
    qDebug() << "comsuption: " << mpg << " MPG";
    // The historical stored figure: a product, not the conversion.
    m_consumption = mpg * 235.0f;
    qDebug() << "comsumption: " << m_consumption << "l/100km";
}

void Consumption::updateReadings()
{
    const double speed = m_estimatedSpeed;
    const double airFlow = m_airFlow;
    const bool defined = std::isfinite(speed) && speed > 0.0 && std::isfinite(airFlow)
                         && airFlow > 0.0;
    if (!defined) {
        m_metric.current = 0.0;
        m_imperial.current = 0.0;
        return;
    }
    const double mpg = speed * MPG_FACTOR / airFlow;
    const double litresPer100Km = LITRES_PER_100KM_FACTOR / mpg;
    if (!std::isfinite(mpg) || !std::isfinite(litresPer100Km)) {
        m_metric.current = 0.0;
        m_imperial.current = 0.0;
        return;
    }
    Reading* readings[] = {&m_metric, &m_imperial};
    const double values[] = {litresPer100Km, mpg};
    for (int i = 0; i < 2; ++i) {
        Reading& r = *readings[i];
        r.current = values[i];
        r.count += 1;
        r.average += (values[i] - r.average) / static_cast<double>(r.count);
        r.peak = r.count == 1 ? values[i] : std::max(r.peak, values[i]);
    }
}

const Consumption::Reading* Consumption::readingFor(UnitSystem system) const
{
    if (system == US_METRIC)
        return &m_metric;
    if (system == US_IMPERIAL)
        return &m_imperial;
    return nullptr;
}

double Consumption::consumption(UnitSystem system) const
{
    const Reading* r = readingFor(system);
    return r ? r->current : 0.0;
}

double Consumption::averageConsumption(UnitSystem system) const
{
    const Reading* r = readingFor(system);
    return r ? r->average : 0.0;
}

double Consumption::peakConsumption(UnitSystem system) const
{
    const Reading* r = readingFor(system);
    return r ? r->peak : 0.0;
}

float Consumption::getStoredConsumption() const
{
    return m_consumption;
}

float Consumption::getEstimatedSpeed() const
{
    return m_estimatedSpeed;
}

float Consumption::getAirFlow() const
{
    return m_airFlow;
}

Consumption::Sample Consumption::getPreviousSpeed() const
{
    return m_previousSpeed;
}

Consumption::Sample Consumption::getCurrentSpeed() const
{
    return m_currentSpeed;
}

Consumption::Sample Consumption::getPreviousAirFlow() const
{
    return m_previousAirFlow;
}

Consumption::Sample Consumption::getCurrentAirFlow() const
{
    return m_currentAirFlow;
}

} // namespace Obd
