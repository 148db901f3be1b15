#include "workerthread.h"

#include "trlog.h"

#include <QCoreApplication>
#include <QSemaphore>

#include <cstdlib>
#include <memory>
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

void destroyAtExit()
{
    WorkerThread::shutdown();
}

} // namespace

WorkerThread::WorkerThread()
    : QThread(nullptr)
    , m_context(new QObject)
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

bool WorkerThread::stop()
{
    if (isRunning()) {
        quit();
        if (!wait(STOP_WAIT_MS))
            return false;
    }
    // The thread no longer runs, so deleting its object here cannot race.
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
    auto done = std::make_shared<QSemaphore>(0);
    {
        std::lock_guard<std::mutex> lock(instanceMutex());
        // No thread, or a stopped one: nothing queued can still run.
        if (!s_instance || !s_instance->m_context)
            return true;
        QMetaObject::invokeMethod(s_instance->m_context, [done]() { done->release(); },
                                  Qt::QueuedConnection);
    }
    return done->tryAcquire(1, timeoutMs);
}

} // namespace Obd
