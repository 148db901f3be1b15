#ifndef OBD_WORKERTHREAD_H
#define OBD_WORKERTHREAD_H

#include <QThread>

namespace Obd {

// The one background thread that runs every parameter updater's exchange,
// one at a time, in the order the requests were queued. It only runs the
// default event loop.
//
// Created on first use by instance(); stopped and destroyed at process exit,
// or earlier by shutdown(). A process that never called instance() creates
// nothing at exit.
class WorkerThread : public QThread
{
    Q_OBJECT

public:
    // Creates and starts the thread on the first call (thread-safe).
    static WorkerThread* instance();
    static bool exists();
    // Asks the event loop to quit and waits at most 1000 ms. A thread still
    // busy then is left to the operating system rather than destroyed while
    // running. A later instance() starts a new thread.
    static void shutdown();
    // Waits until every request queued on the thread so far has run; false
    // when that took longer than timeoutMs (true at once without a thread).
    static bool flush(int timeoutMs);

private:
    WorkerThread();
    // Only shutdown() deletes, and only a thread that has stopped.
    ~WorkerThread() override;
    void run() override;
    // Stops the thread; false when it was still running after 1000 ms.
    bool stop();

    QObject* m_context;
};

} // namespace Obd

#endif
