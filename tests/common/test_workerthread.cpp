#include "fakeproxy.h"
#include "fakescantool.h"
#include "obdparameterupdater.h"
#include "sensortesthelpers.h"
#include "workerthread.h"

#include <gtest/gtest.h>

#include <QElapsedTimer>

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

// Queues one slow exchange on the worker and returns once it has begun.
void startSlowExchange(unsigned int delayMs)
{
    // Left alive on purpose: the process exits while the exchange runs.
    LEFT_ALIVE_ON_PURPOSE();
    FakeScantool* tool = new FakeScantool(PROTOCOL_CAN_11BIT, false);
    tool->setReply("0105", "41 05 50\r\r>");
    tool->setReplyDelayMs(delayMs);
    FakeProxy* proxy = new FakeProxy(tool);
    FakeMeasurable* parameter = new FakeMeasurable(
        0x05, "Coolant", {{"Coolant", 11, 12, -40, 215, -40, 419, nullptr}});
    ObdParameterUpdater* updater = new ObdParameterUpdater(parameter);
    updater->setProxy(proxy);
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
    EXPECT_TRUE(WorkerThread::flush(5000));
}

TEST(WorkerThreadDeathTest, ProcessThatNeverUsedItCreatesNothingAtExit)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            std::atexit(checkNothingCreatedAtExit);
            if (WorkerThread::exists() || !WorkerThread::flush(10))
                _exit(2);
            std::exit(0);
        },
        ::testing::ExitedWithCode(0), "");
}

TEST(WorkerThreadDeathTest, IdleWorkerStopsCleanlyAtExit)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            std::atexit(checkNothingCreatedAtExit);
            WorkerThread::instance();
            startSlowExchange(10);
            WorkerThread::flush(5000);
            std::exit(5);
        },
        ::testing::ExitedWithCode(5), "");
}

TEST(WorkerThreadDeathTest, ExitDuringALongExchangeWaitsOnlyItsLimit)
{
    // The exchange takes 6 s; exit waits 1000 ms for the worker, then leaves
    // it to the operating system instead of destroying a running thread.
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    QElapsedTimer timer;
    timer.start();
    EXPECT_EXIT(
        {
            startSlowExchange(6000);
            std::exit(7);
        },
        ::testing::ExitedWithCode(7), "");
    EXPECT_LT(timer.elapsed(), 5000);
}

TEST(WorkerThreadDeathTest, ShutdownStopsItAndALaterUseStartsAFreshOne)
{
    GTEST_FLAG_SET(death_test_style, "threadsafe");
    EXPECT_EXIT(
        {
            WorkerThread::instance();
            startSlowExchange(10);
            WorkerThread::flush(5000);
            WorkerThread::shutdown();
            if (WorkerThread::exists() || !WorkerThread::flush(10))
                _exit(2);
            WorkerThread* again = WorkerThread::instance();
            if (!again->isRunning() || !WorkerThread::flush(5000))
                _exit(3);
            std::exit(0);
        },
        ::testing::ExitedWithCode(0), "");
}
