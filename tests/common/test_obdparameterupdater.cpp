#include "fakeproxy.h"
#include "fakescantool.h"
#include "obdparameterupdater.h"
#include "sensortesthelpers.h"
#include "workerthread.h"

#include <gtest/gtest.h>

#include <memory>

using namespace Obd;

namespace {

const unsigned char PID = 0x05;

// An updater on the worker thread with its coolant parameter; results of
// updateDone collected on this (the test's) thread.
struct Updater
{
    CountedPid* parameter;
    ObdParameterUpdater* updater;
    QObject receiver;
    std::vector<bool> results;

    explicit Updater(IObdProxy* proxy, unsigned char pid = PID)
        : parameter(new CountedPid(pid))
        , updater(new ObdParameterUpdater(parameter))
    {
        updater->setProxy(proxy);
        updater->moveToThread(WorkerThread::instance());
        QObject::connect(updater, &ObdParameterUpdater::updateDone, &receiver,
                         [this](bool ok) { results.push_back(ok); });
    }
    ~Updater() { ObdParameterUpdater::dispose(updater, parameter); }

    // Queues one update() on the worker and waits for its updateDone.
    bool runOnce()
    {
        const size_t before = results.size();
        ObdParameterUpdater::requestUpdate(updater, Qt::AutoConnection);
        EXPECT_TRUE(waitFor([&] { return results.size() > before; }));
        return results.size() > before && results.back();
    }
};

} // namespace

TEST(ObdParameterUpdater, ExchangeOutcomes)
{
    struct Row
    {
        const char* name;
        bool proxy;
        bool initialised;
        const char* reply;
        bool ok;
        unsigned int measured;
        size_t sent;
    } rows[] = {
        {"without a proxy nothing is measured", false, true, "41 05 5A\r\r>", false, 0, 0},
        {"an adapter not initialised is not asked", true, false, "41 05 5A\r\r>", false, 0, 0},
        {"an answer is decoded into the parameter", true, true, "41 05 5A\r\r>", true, 1, 1},
        {"NO DATA is measured but fails", true, true, "NO DATA\r\r>", false, 1, 1},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        FakeScantool tool(PROTOCOL_CAN_11BIT, false, row.initialised);
        tool.setReply("0105", row.reply);
        FakeProxy proxy(&tool);
        Updater u(row.proxy ? &proxy : nullptr);
        EXPECT_EQ(row.ok, u.runOnce());
        EXPECT_EQ(row.measured, u.updater->getUpdateCount());
        EXPECT_EQ(row.sent, tool.commands().size());
        // 0x5A - 40 = 50 degrees C once decoded; nothing before.
        EXPECT_FLOAT_EQ(row.ok ? 50.0f : 0.0f, u.parameter->getValue(Ecu()));
    }
}

TEST(ObdParameterUpdater, AllUpdatersShareOneWorkerAndRunInQueueOrder)
{
    FakeScantool tool(PROTOCOL_CAN_11BIT, false);
    tool.setReplyDelayMs(5);
    const unsigned char pids[] = {0x05, 0x0D, 0x11};
    const char* const commands[] = {"0105", "010d", "0111"};
    FakeProxy proxy(&tool);
    std::vector<std::unique_ptr<Updater>> updaters;
    std::vector<QThread*> threads; // written on the worker only
    for (size_t i = 0; i < 3; ++i) {
        tool.setReply(commands[i], replyFor(pids[i], 1));
        updaters.emplace_back(new Updater(&proxy, pids[i]));
        QObject::connect(updaters.back()->updater, &ObdParameterUpdater::updateDone, updaters.back()->updater,
                         [&threads] { threads.push_back(QThread::currentThread()); }, Qt::DirectConnection);
    }
    std::vector<std::string> expected;
    for (int round = 0; round < 3; ++round) {
        for (size_t i = 0; i < updaters.size(); ++i) {
            ObdParameterUpdater::requestUpdate(updaters[i]->updater, Qt::AutoConnection);
            expected.push_back(commands[i]);
        }
    }
    ASSERT_TRUE(WorkerThread::flush(5000));
    // In the order they were asked for, all on the one worker.
    EXPECT_EQ(expected, tool.commands());
    EXPECT_EQ(std::vector<QThread*>(9, WorkerThread::instance()), threads);
}
