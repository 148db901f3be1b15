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
#include <chrono>
#include <cstdio>
#include <ctime>

using namespace Obd;

namespace {

struct tm fixedTime()
{
    struct tm t = {};
    t.tm_year = 2026 - 1900;
    t.tm_mon = 0;
    t.tm_mday = 5;
    t.tm_hour = 7;
    t.tm_min = 3;
    t.tm_sec = 9;
    return t;
}

} // namespace

TEST(ConsoleLoggerFormat, DebugLineCarriesTimeSourceAndLevel)
{
    struct tm t = fixedTime();
    EXPECT_EQ("2026-01-05 07:03:09 (libobd/elmscantool.cpp:155) DEBUG - hello\n",
              ConsoleLogger::formatLine("libobd/elmscantool.cpp", 155, LOG_DEBUG, "hello", &t));
    EXPECT_EQ("2026-01-05 07:03:09 (a.cpp:1) ERROR - boom\n",
              ConsoleLogger::formatLine("a.cpp", 1, LOG_ERROR, "boom", &t));
    EXPECT_EQ("2026-01-05 07:03:09 (a.cpp:2) WARN - w\n",
              ConsoleLogger::formatLine("a.cpp", 2, LOG_WARN, "w", &t));
}

TEST(ConsoleLoggerFormat, InfoLineHasNoTimeOrSource)
{
    struct tm t = fixedTime();
    EXPECT_EQ("INFO - plain\n", ConsoleLogger::formatLine("a.cpp", 10, LOG_INFO, "plain", &t));
}

TEST(ConsoleLoggerOutput, WritesOneLineToStandardError)
{
    testing::internal::CaptureStderr();
    ConsoleLogger logger;
    logger.log("x.cpp", 42, LOG_DEBUG, "to stderr");
    std::string out = testing::internal::GetCapturedStderr();
    EXPECT_NE(std::string::npos, out.find("(x.cpp:42) DEBUG - to stderr\n"));
    EXPECT_EQ(out.size() - 1, out.find('\n'));
}

TEST(TrLogDelivery, MacroGivesRelativeFileLineAndLevel)
{
    LogCapture::instance().clear();
    int line = __LINE__ + 1;
    OBD_WARN << "value " << 42 << " and " << std::string("text");
    LogCapture::Record r = LogCapture::instance().find("value 42 and text");
    ASSERT_EQ(line, r.line);
    EXPECT_EQ(LOG_WARN, r.level);
    EXPECT_EQ("tests/libobd/test_librarybase.cpp", r.file);
}

TEST(TrLogDelivery, LibInitAndCleanupLog)
{
    LogCapture::instance().clear();
    EXPECT_TRUE(libInit());
    libCleanup();
    EXPECT_TRUE(LogCapture::instance().contains("Lib init", LOG_DEBUG));
    EXPECT_TRUE(LogCapture::instance().contains("Lib cleanup done", LOG_DEBUG));
}

TEST(Synchronisation, ConditionWaitZeroReturnsAtOnceWithFalse)
{
    CMutex mutex;
    CCondition condition;
    CLock lock(mutex);
    auto start = std::chrono::steady_clock::now();
    EXPECT_FALSE(condition.wait(mutex, 0));
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(200));
}

TEST(Synchronisation, ConditionWakesWaiter)
{
    struct Shared
    {
        CMutex mutex;
        CCondition condition;
        bool ready = false;
    } shared;
    CThread thread;
    thread.start([](void* p) {
        Shared* s = static_cast<Shared*>(p);
        CThread::sleep(20000);
        CLock lock(s->mutex);
        s->ready = true;
        s->condition.wakeOne();
    }, &shared);
    {
        CLock lock(shared.mutex);
        while (!shared.ready)
            ASSERT_TRUE(shared.condition.wait(shared.mutex, 5000));
    }
    thread.join();
}

TEST(Synchronisation, TryLockFailsWhileHeld)
{
    CMutex mutex;
    mutex.lock();
    std::atomic<bool> got{true};
    CThread thread;
    struct Args { CMutex* m; std::atomic<bool>* got; } args{&mutex, &got};
    thread.start([](void* p) {
        Args* a = static_cast<Args*>(p);
        *a->got = a->m->tryLock();
    }, &args);
    thread.join();
    EXPECT_FALSE(got.load());
    mutex.unlock();
    EXPECT_TRUE(mutex.tryLock());
    mutex.unlock();
}

TEST(Threads, StartRunsEntryWithArgumentAndJoinWaits)
{
    std::atomic<int> value{0};
    CThread thread;
    thread.start([](void* p) {
        CThread::sleep(10000);
        static_cast<std::atomic<int>*>(p)->store(17);
    }, &value);
    thread.join();
    EXPECT_EQ(17, value.load());
}

TEST(Threads, SleepTakesMicroseconds)
{
    auto start = std::chrono::steady_clock::now();
    CThread::sleep(30000);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(29));
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
