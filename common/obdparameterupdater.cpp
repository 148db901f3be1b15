#include "obdparameterupdater.h"

#include "iobdproxy.h"
#include "obdparameter.h"
#include "obdtransporter.h"
#include "trlog.h"
#include "tsanannotations.h"

#include <QElapsedTimer>
#include <QThread>

namespace Obd {

ObdParameterUpdater::ObdParameterUpdater(ObdParameter* parameter)
    : QObject(nullptr)
    , m_proxy(nullptr)
    , m_parameter(parameter)
    , m_averageUpdateTime(0)
    , m_updateCount(0)
    , m_cancelled(false)
{
}

ObdParameterUpdater::~ObdParameterUpdater()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    if (m_averageUpdateTime > 0)
        OBD_DEBUG << "average update time " << m_averageUpdateTime;
}

void ObdParameterUpdater::setProxy(IObdProxy* proxy)
{
    m_proxy.store(proxy);
}

IObdProxy* ObdParameterUpdater::getProxy() const
{
    return m_proxy.load();
}

int ObdParameterUpdater::getAverageUpdateTime() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_averageUpdateTime;
}

unsigned int ObdParameterUpdater::getUpdateCount() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_updateCount;
}

void ObdParameterUpdater::cancel()
{
    m_cancelled.store(true);
}

int ObdParameterUpdater::nextAverage(int average, qint64 elapsedMs, unsigned int count)
{
    float mean = static_cast<float>(average)
                 + (static_cast<float>(elapsedMs) - static_cast<float>(average))
                       / static_cast<float>(count);
    return static_cast<int>(mean);
}

void ObdParameterUpdater::requestUpdate(ObdParameterUpdater* updater, Qt::ConnectionType type)
{
    OBD_TSAN_RELEASE(updater);
    QMetaObject::invokeMethod(updater, "update", type);
}

void ObdParameterUpdater::resultReceived(const ObdParameterUpdater* updater)
{
    OBD_TSAN_ACQUIRE(updater);
    (void)updater;
}

bool ObdParameterUpdater::event(QEvent* event)
{
    // Every queued call and the deferred delete arrive here first, on the
    // worker, after the release of requestUpdate() or dispose().
    OBD_TSAN_ACQUIRE(this);
    return QObject::event(event);
}

void ObdParameterUpdater::update()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    bool success = false;
    IObdProxy* proxy = m_proxy.load();
    if (!m_cancelled.load() && proxy && m_parameter && proxy->isInitialized()) {
        QElapsedTimer stopwatch;
        stopwatch.start();
        ExchangeResult result = ObdTransporter().execute(proxy, m_parameter);
        success = (result == ER_OK);
        ++m_updateCount;
        m_averageUpdateTime = nextAverage(m_averageUpdateTime, stopwatch.elapsed(), m_updateCount);
    }
    OBD_TSAN_RELEASE(this);
    emit updateDone(success);
}

void ObdParameterUpdater::dispose(ObdParameterUpdater* updater, ObdParameter* parameter)
{
    if (!updater) {
        delete parameter;
        return;
    }
    updater->cancel();
    // Receivers drop their side of the connections here, on this thread,
    // rather than racing the updater's destruction on the worker.
    QObject::disconnect(updater, nullptr, nullptr, nullptr);
    QThread* thread = updater->thread();
    if (thread && thread != QThread::currentThread()) {
        // An exchange in progress ends before the caller goes on, so its
        // updateDone is either already queued (and dropped with the
        // receiver) or never sent.
        std::lock_guard<std::mutex> wait(updater->m_mutex);
    }
    if (!thread || thread == QThread::currentThread() || !thread->isRunning()) {
        // Nothing can deliver a queued update() concurrently.
        delete updater;
        delete parameter;
        return;
    }
    // The deferred delete is queued behind any pending update(), so the
    // parameter outlives every exchange that can still use it.
    QObject::connect(updater, &QObject::destroyed, [parameter]() { delete parameter; });
    OBD_TSAN_RELEASE(updater);
    updater->deleteLater();
}

} // namespace Obd
