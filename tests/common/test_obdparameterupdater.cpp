#include "fakeproxy.h"
#include "fakescantool.h"
#include "logcapture.h"
#include "trlog.h"
#include "obdparameterupdater.h"
#include "sensortesthelpers.h"
#include "workerthread.h"

#include <gtest/gtest.h>

#include <QThread>

#include <memory>
#include <mutex>
#include <vector>

using namespace Obd;

namespace {

const unsigned char PID = 0x05;

std::vector<FakeMeasurable::Row> oneRow()
{
    return {{"Engine Coolant Temperature", 11, 12, -40, 215, -40, 419, nullptr}};
}

// An updater on the worker thread with its parameter; results of
// updateDone collected on this (the test's) thread.
struct UpdaterFixture
{
    FakeMeasurable* parameter = new FakeMeasurable(PID, "Coolant", oneRow());
    ObdParameterUpdater* updater = new ObdParameterUpdater(parameter);
    QObject receiver;
    std::vector<bool> results;

    UpdaterFixture()
    {
        updater->moveToThread(WorkerThread::instance());
        QObject::connect(updater, &ObdParameterUpdater::updateDone, &receiver,
                         [this](bool ok) { results.push_back(ok); });
    }

    ~UpdaterFixture() { ObdParameterUpdater::dispose(updater, parameter); }

    // Queues one update() on the worker and waits for its updateDone.
    bool runOnce()
    {
        size_t before = results.size();
        ObdParameterUpdater::requestUpdate(updater, Qt::AutoConnection);
        EXPECT_TRUE(waitFor([&] { return results.size() > before; }));
        return results.size() > before && results.back();
    }
};

// Records on which threads exchanges ran and whether two ever overlapped.
class ThreadRecordingScantool : public FakeScantool
{
public:
    ThreadRecordingScantool()
        : FakeScantool(Obd::PROTOCOL_CAN_11BIT, false)
    {
    }

    bool sendCommand(const std::vector<unsigned char>& command,
                     std::vector<unsigned char>& response, unsigned int timeoutMs) override
    {
        int running = ++m_running;
        {
            std::lock_guard<std::mutex> lock(m_recordMutex);
            m_threads.push_back(QThread::currentThread());
            if (running > m_maxRunning)
                m_maxRunning = running;
        }
        bool ok = FakeScantool::sendCommand(command, response, timeoutMs);
        --m_running;
        return ok;
    }

    std::vector<QThread*> threads() const
    {
        std::lock_guard<std::mutex> lock(m_recordMutex);
        return m_threads;
    }

    int maxRunning() const
    {
        std::lock_guard<std::mutex> lock(m_recordMutex);
        return m_maxRunning;
    }

private:
    mutable std::mutex m_recordMutex;
    std::atomic<int> m_running{0};
    int m_maxRunning = 0;
    std::vector<QThread*> m_threads;
};

} // namespace

TEST(ObdParameterUpdater, WithoutProxyReportsFailureAndMeasuresNothing)
{
    UpdaterFixture f;
    EXPECT_FALSE(f.runOnce());
    EXPECT_EQ(0u, f.updater->getUpdateCount());
    EXPECT_EQ(0, f.updater->getAverageUpdateTime());
}

TEST(ObdParameterUpdater, ScantoolNotInitialisedSendsNothing)
{
    FakeScantool tool(PROTOCOL_CAN_11BIT, false, false);
    tool.setReply(commandFor(PID), replyFor(PID, 90));
    FakeProxy proxy(&tool);
    UpdaterFixture f;
    f.updater->setProxy(&proxy);
    EXPECT_FALSE(f.runOnce());
    EXPECT_TRUE(tool.commands().empty());
    EXPECT_EQ(0u, f.updater->getUpdateCount());
}

TEST(ObdParameterUpdater, SuccessfulExchangeDecodesIntoTheParameter)
{
    FakeScantool tool(PROTOCOL_CAN_11BIT, false);
    tool.setReply(commandFor(PID), replyFor(PID, 90));
    FakeProxy proxy(&tool);
    UpdaterFixture f;
    f.updater->setProxy(&proxy);
    EXPECT_TRUE(f.runOnce());
    EXPECT_EQ(1u, f.updater->getUpdateCount());
    std::vector<float> values;
    f.parameter->getValues(Ecu(), US_METRIC, values);
    ASSERT_EQ(1u, values.size());
    EXPECT_FLOAT_EQ(90.0f, values[0]);
}

TEST(ObdParameterUpdater, NoDataIsMeasuredButReportedAsFailure)
{
    FakeScantool tool(PROTOCOL_CAN_11BIT, false);
    tool.setReply(commandFor(PID), "NO DATA\r\r>");
    tool.setReplyDelayMs(30);
    FakeProxy proxy(&tool);
    UpdaterFixture f;
    f.updater->setProxy(&proxy);
    EXPECT_FALSE(f.runOnce());
    EXPECT_EQ(1u, f.updater->getUpdateCount());
    EXPECT_GE(f.updater->getAverageUpdateTime(), 30);
    EXPECT_EQ(1u, tool.commandCount(commandFor(PID)));
}

TEST(ObdParameterUpdater, RunningMeanTruncatesInSinglePrecision)
{
    struct Row
    {
        const char* name;
        int average;
        qint64 elapsed;
        unsigned int count;
        int expected;
    } rows[] = {
        {"first exchange of 100 ms", 0, 100, 1, 100},
        {"second of 200 ms", 100, 200, 2, 150},
        {"third of 151 ms: 150 + 1/3 truncated", 150, 151, 3, 150},
        {"faster exchange truncates toward zero", 150, 10, 4, 115},
        {"zero-length exchange", 0, 0, 1, 0},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(row.expected, ObdParameterUpdater::nextAverage(row.average, row.elapsed, row.count));
    }
}

TEST(ObdParameterUpdater, AverageFollowsSleepingExchanges)
{
    // Exchanges of 100, 200 and 151 ms: averages 100, 150, 150 plus the
    // exchange overhead, which only ever adds.
    FakeScantool tool(PROTOCOL_CAN_11BIT, false);
    tool.setReply(commandFor(PID), replyFor(PID, 1));
    FakeProxy proxy(&tool);
    UpdaterFixture f;
    f.updater->setProxy(&proxy);
    const unsigned int delays[] = {100, 200, 151};
    const int expected[] = {100, 150, 150};
    const int slack = 60;
    for (int i = 0; i < 3; ++i) {
        tool.setReplyDelayMs(delays[i]);
        EXPECT_TRUE(f.runOnce());
        EXPECT_EQ(unsigned(i + 1), f.updater->getUpdateCount());
        EXPECT_GE(f.updater->getAverageUpdateTime(), expected[i]);
        EXPECT_LE(f.updater->getAverageUpdateTime(), expected[i] + slack);
    }
}

TEST(ObdParameterUpdater, DestructionLogsTheAverageOnlyAfterMeasuredExchanges)
{
    // Updaters of earlier tests may still be on their way out.
    ASSERT_TRUE(WorkerThread::flush(5000));
    LogCapture::instance().clear();
    {
        UpdaterFixture f;
        f.runOnce();
    }
    ASSERT_TRUE(WorkerThread::flush(5000));
    EXPECT_FALSE(LogCapture::instance().contains("average update time"));

    FakeScantool tool(PROTOCOL_CAN_11BIT, false);
    tool.setReply(commandFor(PID), replyFor(PID, 1));
    tool.setReplyDelayMs(20);
    FakeProxy proxy(&tool);
    {
        UpdaterFixture f;
        f.updater->setProxy(&proxy);
        f.runOnce();
    }
    ASSERT_TRUE(WorkerThread::flush(5000));
    LogCapture::Record record = LogCapture::instance().find("average update time ");
    ASSERT_NE(-1, record.line) << LogCapture::instance().dump();
    EXPECT_EQ(LOG_DEBUG, record.level);
    EXPECT_NE(std::string::npos, record.file.find("common/obdparameterupdater"));
    EXPECT_EQ(0u, record.message.find("average update time "));
}

TEST(ObdParameterUpdater, AllUpdatersShareOneWorkerAndRunInQueueOrder)
{
    ThreadRecordingScantool tool;
    tool.setReplyDelayMs(20);
    const unsigned char pids[] = {0x05, 0x0C, 0x0D};
    for (unsigned char pid : pids)
        tool.setReply(commandFor(pid), replyFor(pid, 1));
    FakeProxy proxy(&tool);

    std::vector<std::unique_ptr<FakeMeasurable>> parameters;
    std::vector<ObdParameterUpdater*> updaters;
    QObject receiver;
    int done = 0;
    for (unsigned char pid : pids) {
        parameters.emplace_back(new FakeMeasurable(pid, "p", oneRow()));
        ObdParameterUpdater* updater = new ObdParameterUpdater(parameters.back().get());
        updater->setProxy(&proxy);
        updater->moveToThread(WorkerThread::instance());
        QObject::connect(updater, &ObdParameterUpdater::updateDone, &receiver,
                         [&done](bool) { ++done; });
        updaters.push_back(updater);
    }
    std::vector<std::string> expected;
    for (int round = 0; round < 3; ++round) {
        for (size_t i = 0; i < updaters.size(); ++i) {
            ObdParameterUpdater::requestUpdate(updaters[i], Qt::AutoConnection);
            expected.push_back(commandFor(pids[i]));
        }
    }
    EXPECT_TRUE(waitFor([&] { return done == 9; }));
    EXPECT_EQ(expected, tool.commands());
    EXPECT_EQ(1, tool.maxRunning());
    for (QThread* thread : tool.threads()) {
        EXPECT_EQ(WorkerThread::instance(), thread);
        EXPECT_NE(QThread::currentThread(), thread);
    }
    for (size_t i = 0; i < updaters.size(); ++i)
        ObdParameterUpdater::dispose(updaters[i], parameters[i].release());
    EXPECT_TRUE(WorkerThread::flush(5000));
}

TEST(ObdParameterUpdater, DisposeWaitsForTheQueuedExchangeAndFreesTheParameter)
{
    FakeScantool tool(PROTOCOL_CAN_11BIT, false);
    tool.setReply(commandFor(PID), replyFor(PID, 1));
    tool.setReplyDelayMs(150);
    FakeProxy proxy(&tool);
    ASSERT_TRUE(WorkerThread::flush(5000));
    int before = FakeMeasurable::liveCount();
    FakeMeasurable* parameter = new FakeMeasurable(PID, "Coolant", oneRow());
    ObdParameterUpdater* updater = new ObdParameterUpdater(parameter);
    updater->setProxy(&proxy);
    updater->moveToThread(WorkerThread::instance());
    ObdParameterUpdater::requestUpdate(updater, Qt::AutoConnection);
    ObdParameterUpdater::requestUpdate(updater, Qt::AutoConnection);
    EXPECT_TRUE(waitFor([&] { return tool.commands().size() >= 1; }));
    ObdParameterUpdater::dispose(updater, parameter);
    EXPECT_TRUE(WorkerThread::flush(5000));
    EXPECT_EQ(before, FakeMeasurable::liveCount());
    // The second request was cancelled: one exchange only.
    EXPECT_EQ(1u, tool.commands().size());
}
