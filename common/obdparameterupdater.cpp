#include "obdparameterupdater.h"

#include "iobdproxy.h"
#include "iscantool.h"
#include "livereader.h"
#include "obdparameter.h"
#include "obdtransporter.h"
#include "powertrainparameter.h"
#include "trlog.h"
#include "tsanannotations.h"

#include <QElapsedTimer>
#include <QThread>

#include <algorithm>
#include <memory>
#include <set>

namespace Obd {

namespace {

// Updaters with an update() queued and not yet run, in request order.
std::mutex s_pendingMutex;
std::vector<ObdParameterUpdater*> s_pending;

void forgetPending(ObdParameterUpdater* updater)
{
    std::lock_guard<std::mutex> lock(s_pendingMutex);
    s_pending.erase(std::remove(s_pending.begin(), s_pending.end(), updater), s_pending.end());
}

// One reader per open link, so that what it learns (ECUs that cannot take
// several PIDs, the measured time-out) lasts as long as the link.
struct SharedReader
{
    IObdProxy* proxy;
    IScantool* scantool;
    std::mutex mutex;
    LiveReader reader;
    SharedReader(IObdProxy* p)
        : proxy(p), scantool(p->getScantool()), reader(p) {}
};
std::mutex s_readersMutex;
std::vector<std::shared_ptr<SharedReader>> s_readers;

std::shared_ptr<SharedReader> readerFor(IObdProxy* proxy)
{
    std::lock_guard<std::mutex> lock(s_readersMutex);
    for (auto it = s_readers.begin(); it != s_readers.end(); ++it) {
        if ((*it)->proxy != proxy)
            continue;
        // Another scan tool behind the same address is another link.
        if ((*it)->scantool == proxy->getScantool())
            return *it;
        s_readers.erase(it);
        break;
    }
    s_readers.push_back(std::make_shared<SharedReader>(proxy));
    return s_readers.back();
}

// The PID of a live (service 01) parameter that can be read with others.
int sharedPid(ObdParameter* parameter)
{
    PowertrainParameter* live = dynamic_cast<PowertrainParameter*>(parameter);
    if (!live || live->getMode() != 1 || live->getPid() % 0x20 == 0)
        return -1;
    return live->getPid();
}

} // namespace

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
    forgetPending(this);
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

void ObdParameterUpdater::forgetProxy(IObdProxy* proxy)
{
    std::lock_guard<std::mutex> lock(s_readersMutex);
    s_readers.erase(std::remove_if(s_readers.begin(), s_readers.end(),
                                   [proxy](const std::shared_ptr<SharedReader>& r) { return r->proxy == proxy; }),
                    s_readers.end());
}

void ObdParameterUpdater::requestUpdates(const std::vector<ObdParameterUpdater*>& updaters)
{
    {
        std::lock_guard<std::mutex> lock(s_pendingMutex);
        for (ObdParameterUpdater* updater : updaters)
            if (std::find(s_pending.begin(), s_pending.end(), updater) == s_pending.end())
                s_pending.push_back(updater);
    }
    for (ObdParameterUpdater* updater : updaters)
        requestUpdate(updater);
}

void ObdParameterUpdater::requestUpdate(ObdParameterUpdater* updater, Qt::ConnectionType type)
{
    if (updater) {
        std::lock_guard<std::mutex> lock(s_pendingMutex);
        if (std::find(s_pending.begin(), s_pending.end(), updater) == s_pending.end())
            s_pending.push_back(updater);
    }
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

void ObdParameterUpdater::counted(qint64 elapsedMs)
{
    ++m_updateCount;
    m_averageUpdateTime = nextAverage(m_averageUpdateTime, elapsedMs, m_updateCount);
}

std::vector<ObdParameterUpdater*> ObdParameterUpdater::claimPeers(IObdProxy* proxy)
{
    std::vector<ObdParameterUpdater*> peers;
    const int own = sharedPid(m_parameter);
    if (own < 0)
        return peers;
    std::lock_guard<std::mutex> lock(s_pendingMutex);
    std::set<int> pids{ own };
    for (ObdParameterUpdater* peer : s_pending) {
        // Only updaters of this thread: none of them can be deleted while
        // this exchange runs, and no other thread locks two updaters.
        if (peer == this || peer->thread() != QThread::currentThread() || peer->m_proxy.load() != proxy)
            continue;
        std::unique_lock<std::mutex> peerLock(peer->m_mutex);
        const int pid = sharedPid(peer->m_parameter);
        if (peer->m_cancelled.load() || peer->m_prepared || pid < 0 || !pids.insert(pid).second)
            continue;
        peerLock.release();
        peers.push_back(peer);
    }
    for (ObdParameterUpdater* peer : peers)
        s_pending.erase(std::remove(s_pending.begin(), s_pending.end(), peer), s_pending.end());
    return peers;
}

void ObdParameterUpdater::readTogether(IObdProxy* proxy, const std::vector<ObdParameterUpdater*>& peers,
                                       bool& success)
{
    std::vector<LiveReader::Item> items;
    items.emplace_back(static_cast<unsigned char>(sharedPid(m_parameter)), m_parameter);
    for (ObdParameterUpdater* peer : peers)
        items.emplace_back(static_cast<unsigned char>(sharedPid(peer->m_parameter)), peer->m_parameter);
    QElapsedTimer stopwatch;
    stopwatch.start();
    std::vector<bool> good;
    {
        std::shared_ptr<SharedReader> shared = readerFor(proxy);
        std::lock_guard<std::mutex> readerLock(shared->mutex);
        const unsigned int before = shared->reader.exchanges();
        good = shared->reader.read(items);
        OBD_DEBUG << items.size() << " PIDs in " << shared->reader.exchanges() - before << " exchanges";
    }
    const qint64 elapsed = stopwatch.elapsed();
    success = good[0];
    counted(elapsed);
    for (size_t i = 0; i < peers.size(); ++i) {
        ObdParameterUpdater* peer = peers[i];
        peer->m_prepared = true;
        peer->m_preparedResult = good[i + 1];
        peer->counted(elapsed);
        peer->m_mutex.unlock();
    }
}

void ObdParameterUpdater::update()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    forgetPending(this);
    bool success = false;
    IObdProxy* proxy = m_proxy.load();
    if (m_prepared) {
        m_prepared = false;
        success = m_preparedResult;
    } else if (!m_cancelled.load() && proxy && m_parameter && proxy->isInitialized()) {
        const std::vector<ObdParameterUpdater*> peers = claimPeers(proxy);
        if (!peers.empty()) {
            readTogether(proxy, peers, success);
        } else {
            QElapsedTimer stopwatch;
            stopwatch.start();
            ExchangeResult result = ObdTransporter().execute(proxy, m_parameter);
            success = (result == ER_OK);
            counted(stopwatch.elapsed());
        }
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
    forgetPending(updater);
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
