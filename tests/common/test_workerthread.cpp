#include "fakeproxy.h"
#include "fakescantool.h"
#include "obdparameterupdater.h"
#include "sensortesthelpers.h"
#include "workerthread.h"

#include <gtest/gtest.h>

#include <cstdlib>
#include <unistd.h>

#if defined(__SANITIZE_ADDRESS__)
#include <sanitizer/lsan_interface.h>
#define LEFT_ALIVE_ON_PURPOSE() __lsan::ScopedDisabler leftAlive
#else
#define LEFT_ALIVE_ON_PURPOSE() (void)0
#endif

using namespace Obd;

namespace {

// Registered before anything else at exit, so it runs last: by then the
// worker must neither exist nor have been created by the exit itself.
void checkNothingCreatedAtExit()
{
    if (WorkerThread::exists())
        _exit(3);
}

// Queues one exchange of delayMs on the worker and returns once it has begun.
void startExchange(unsigned int delayMs)
{
    LEFT_ALIVE_ON_PURPOSE(); // the process may exit while the exchange runs
    FakeScantool* tool = new FakeScantool(PROTOCOL_CAN_11BIT, false);
    tool->setReply("0105", "41 05 50\r\r>");
    tool->setReplyDelayMs(delayMs);
    ObdParameterUpdater* updater = new ObdParameterUpdater(new CountedPid(0x05));
    updater->setProxy(new FakeProxy(tool));
    updater->moveToThread(WorkerThread::instance());
    ObdParameterUpdater::requestUpdate(updater);
    waitFor([&] { return !tool->commands().empty(); });
}

} // namespace

TEST(WorkerThread, OneRunningInstanceCreatedOnFirstUse)
{
    WorkerThread* worker = WorkerThread::instance();
    ASSERT_NE(nullptr, worker);
    EXPECT_TRUE(WorkerThread::exists());
    EXPECT_EQ(worker, WorkerThread::instance());
    EXPECT_TRUE(worker->isRunning());
    EXPECT_NE(QThread::currentThread(), static_cast<QThread*>(worker));
}

TEST(WorkerThreadDeathTest, ExitAndShutdownInEveryState)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    // Each row runs in a child process; its exit code says what went wrong.
    EXPECT_EXIT(
        {
            std::atexit(checkNothingCreatedAtExit);
            if (WorkerThread::exists() || !WorkerThread::flush(10))
                _exit(2);
            std::exit(0);
        },
        ::testing::ExitedWithCode(0), "")
        << "a process that never used the worker";
    // An exit that waited for this exchange would outlast any test time-out;
    // the worker is left to the operating system, not destroyed running.
    EXPECT_EXIT(
        {
            startExchange(3600 * 1000);
            std::exit(7);
        },
        ::testing::ExitedWithCode(7), "")
        << "exit during a long exchange";
    EXPECT_EXIT(
        {
            startExchange(10);
            WorkerThread::flush(5000);
            WorkerThread::shutdown();
            if (WorkerThread::exists() || !WorkerThread::flush(10))
                _exit(2);
            if (!WorkerThread::instance()->isRunning() || !WorkerThread::flush(5000))
                _exit(3);
            std::exit(0);
        },
        ::testing::ExitedWithCode(0), "")
        << "shutdown, then a fresh worker on the next use";
}
