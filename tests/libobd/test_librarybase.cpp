#include "ccondition.h"
#include "clock.h"
#include "cmutex.h"
#include "consolelogger.h"
#include "cthread.h"
#include "libobd.h"
#include "logcapture.h"
#include "trlog.h"

#include <gtest/gtest.h>

#include <atomic>
#include <ctime>
#include <thread>

using namespace Obd;

TEST(ConsoleLogger, OnlyInfoLinesGoWithoutTimeAndSource)
{
    struct tm t = {};
    t.tm_year = 2026 - 1900, t.tm_mday = 5, t.tm_hour = 7, t.tm_min = 3, t.tm_sec = 9;
    const struct { int level; const char* line; } rows[] = {
        {LOG_DEBUG, "2026-01-05 07:03:09 (libobd/elmscantool.cpp:155) DEBUG - hello\n"},
        {LOG_ERROR, "2026-01-05 07:03:09 (libobd/elmscantool.cpp:155) ERROR - hello\n"},
        {LOG_WARN, "2026-01-05 07:03:09 (libobd/elmscantool.cpp:155) WARN - hello\n"},
        {LOG_INFO, "INFO - hello\n"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(row.line, ConsoleLogger::formatLine("libobd/elmscantool.cpp", 155, row.level, "hello", &t));
    // A logger writes one such line to standard error.
    testing::internal::CaptureStderr();
    ConsoleLogger().log("x.cpp", 42, LOG_DEBUG, "to stderr");
    const std::string out = testing::internal::GetCapturedStderr();
    EXPECT_NE(std::string::npos, out.find("(x.cpp:42) DEBUG - to stderr\n"));
    EXPECT_EQ(out.size() - 1, out.find('\n'));
}

TEST(TrLogDelivery, MacroGivesRelativeFileLineAndLevelAndTheLibraryLogsItsLife)
{
    LogCapture::instance().clear();
    const int line = __LINE__ + 1;
    OBD_WARN << "value " << 42 << " and " << std::string("text");
    LogCapture::Record r = LogCapture::instance().find("value 42 and text");
    EXPECT_EQ(line, r.line);
    EXPECT_EQ(LOG_WARN, r.level);
    EXPECT_EQ("tests/libobd/test_librarybase.cpp", r.file);
    EXPECT_TRUE(libInit());
    libCleanup();
    EXPECT_TRUE(LogCapture::instance().contains("Lib init", LOG_DEBUG));
    EXPECT_TRUE(LogCapture::instance().contains("Lib cleanup done", LOG_DEBUG));
}

TEST(Synchronisation, ConditionWaitWithoutTimeGivesFalse)
{
    CMutex mutex;
    CCondition condition;
    CLock lock(mutex);
    EXPECT_FALSE(condition.wait(mutex, 0));
}

TEST(Synchronisation, AThreadWakesAWaiterAndJoinWaitsForItsEnd)
{
    struct Shared
    {
        CMutex mutex;
        CCondition condition;
        bool ready = false;
        std::atomic<int> done{0};
    } shared;
    CThread thread;
    thread.start([](void* p) {
        Shared* s = static_cast<Shared*>(p);
        {
            CLock lock(s->mutex);
            s->ready = true;
            s->condition.wakeOne();
        }
        CThread::sleep(10000); // work that takes a while: join must wait for it
        s->done = 17;
    }, &shared);
    {
        CLock lock(shared.mutex);
        while (!shared.ready)
            ASSERT_TRUE(shared.condition.wait(shared.mutex, 5000));
    }
    thread.join();
    EXPECT_EQ(17, shared.done.load());
}

TEST(Synchronisation, TryLockFailsWhileHeld)
{
    CMutex mutex;
    mutex.lock();
    std::atomic<bool> got{true};
    std::thread([&] { got = mutex.tryLock(); }).join();
    EXPECT_FALSE(got.load());
    mutex.unlock();
    EXPECT_TRUE(mutex.tryLock());
    mutex.unlock();
}

TEST(ThreadsDeathTest, DestroyingRunningThreadEndsProcess)
{
    EXPECT_DEATH(
        {
            CThread thread;
            thread.start([](void*) { CThread::sleep(900000); CThread::sleep(900000); }, nullptr);
        },
        "");
}
