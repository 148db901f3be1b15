#include "workerthread.h"

#include "trlog.h"
#include "tsanannotations.h"

#include <QCoreApplication>
#include <QEvent>

#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <mutex>

namespace Obd {

namespace {

const unsigned long STOP_WAIT_MS = 1000;

std::mutex& instanceMutex()
{
    static std::mutex mutex;
    return mutex;
}

WorkerThread* s_instance = nullptr;
bool s_exitHandlerRegistered = false;

// flush() markers: the worker runs its queue in order, so the n-th marker
// run means every marker up to n has run. Plain C++ synchronisation, which
// ThreadSanitizer sees (it cannot see inside Qt's semaphores).
std::mutex s_flushMutex;
std::condition_variable s_flushed;
unsigned long long s_flushRequests = 0;
unsigned long long s_flushesDone = 0;

void markerRan()
{
    std::lock_guard<std::mutex> lock(s_flushMutex);
    ++s_flushesDone;
    s_flushed.notify_all();
}

const QEvent::Type MARKER_EVENT = QEvent::User;

// Lives on the worker and runs the markers posted to it.
class MarkerReceiver : public QObject
{
public:
    bool event(QEvent* event) override
    {
        // Pairs with the release before the post: Qt's queue orders them,
        // but ThreadSanitizer cannot see inside Qt.
        OBD_TSAN_ACQUIRE(this);
        if (event->type() != MARKER_EVENT)
            return QObject::event(event);
        markerRan();
        return true;
    }
};

// After the thread stopped: markers still queued will never run.
void forgetPendingMarkers()
{
    std::lock_guard<std::mutex> lock(s_flushMutex);
    s_flushesDone = s_flushRequests;
    s_flushed.notify_all();
}

void destroyAtExit()
{
    WorkerThread::shutdown();
}

} // namespace

WorkerThread::WorkerThread()
    : QThread(nullptr)
    , m_context(new MarkerReceiver)
{
    setObjectName(QStringLiteral("Obd::WorkerThread"));
    // Gives flush() a receiver that lives on this thread.
    m_context->moveToThread(this);
    start(QThread::InheritPriority);
}

WorkerThread::~WorkerThread()
{
    stop();
}

void WorkerThread::run()
{
    exec();
    // Deletes still queued would otherwise run after this function, out of
    // reach of the release below.
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    // Pairs with the acquire after wait(): Qt's join happens inside Qt,
    // where ThreadSanitizer cannot see it.
    OBD_TSAN_RELEASE(this);
}

bool WorkerThread::stop()
{
    if (isRunning()) {
        quit();
        if (!wait(STOP_WAIT_MS))
            return false;
    }
    OBD_TSAN_ACQUIRE(this);
    // The thread no longer runs, so deleting its object here cannot race.
    forgetPendingMarkers();
    delete m_context;
    m_context = nullptr;
    return true;
}

WorkerThread* WorkerThread::instance()
{
    std::lock_guard<std::mutex> lock(instanceMutex());
    if (!s_instance) {
        s_instance = new WorkerThread;
        // Stopped while the application object still exists: once it is
        // gone, the thread's event loop can no longer run, and whatever was
        // still queued on it (deferred deletes) would never be delivered.
        if (QCoreApplication::instance()) {
            qRemovePostRoutine(destroyAtExit);
            qAddPostRoutine(destroyAtExit);
        }
        if (!s_exitHandlerRegistered) {
            s_exitHandlerRegistered = true;
            std::atexit(destroyAtExit);
        }
    }
    return s_instance;
}

bool WorkerThread::exists()
{
    std::lock_guard<std::mutex> lock(instanceMutex());
    return s_instance != nullptr;
}

void WorkerThread::shutdown()
{
    WorkerThread* thread = nullptr;
    {
        std::lock_guard<std::mutex> lock(instanceMutex());
        thread = s_instance;
        s_instance = nullptr;
    }
    if (!thread)
        return;
    if (thread->stop()) {
        delete thread;
    } else {
        // Destroying a running QThread aborts the process; leave it.
        OBD_WARN << "worker thread still busy after " << STOP_WAIT_MS << " ms";
    }
}

bool WorkerThread::flush(int timeoutMs)
{
    unsigned long long ticket = 0;
    {
        std::lock_guard<std::mutex> lock(instanceMutex());
        // No thread, or a stopped one: nothing queued can still run.
        if (!s_instance || !s_instance->m_context)
            return true;
        {
            std::lock_guard<std::mutex> flushLock(s_flushMutex);
            ticket = ++s_flushRequests;
        }
        OBD_TSAN_RELEASE(s_instance->m_context);
        QCoreApplication::postEvent(s_instance->m_context, new QEvent(MARKER_EVENT));
    }
    std::unique_lock<std::mutex> flushLock(s_flushMutex);
    return s_flushed.wait_for(flushLock, std::chrono::milliseconds(timeoutMs),
                              [ticket] { return s_flushesDone >= ticket; });
}

} // namespace Obd
