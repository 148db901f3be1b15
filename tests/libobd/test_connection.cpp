#include "connection.h"
#include "elmsimserver.h"
#include "eventually.h"
#include "idisconnectlistener.h"
#include "ilogger.h"
#include "logcapture.h"
#include "simlink.h"
#include "tcpbus.h"
#include "trlog.h"

#include <gtest/gtest.h>

#include <atomic>
#include <condition_variable>
#include <deque>
#include <future>
#include <memory>
#include <mutex>

using namespace Obd;

namespace {

typedef std::vector<unsigned char> Bytes;

Bytes bytes(const std::string& text)
{
    return Bytes(text.begin(), text.end());
}

std::string text(const Bytes& data)
{
    return std::string(data.begin(), data.end());
}

struct CountingListener : IDisconnectListener
{
    std::atomic<int> calls{0};
    void onDisconnected() override { ++calls; }
};

struct RecordingLogger : ILogger
{
    std::vector<std::string> sent, received;
    void onDataSent(const Bytes& data) override { sent.push_back(text(data)); }
    void onDataReceived(const Bytes& data) override { received.push_back(text(data)); }
};

// A bus whose reads and writes the test dictates; a read with nothing queued
// waits a little, as the real bus waits for its time-out.
class FakeBus : public IMessageBus
{
public:
    std::atomic<int> opens{0}, closes{0}, writes{0};
    std::atomic<OpenStatus> openStatus{OS_OK};
    std::atomic<WriteStatus> writeStatus{WS_OK};

    void queueRead(ReadStatus status, const std::string& data = std::string())
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_reads.push_back(std::make_pair(status, data));
        m_changed.notify_all();
    }
    // True once the connection has taken every queued read.
    bool waitTaken()
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        return m_changed.wait_for(lock, std::chrono::seconds(10), [this] { return m_reads.empty(); });
    }

    OpenStatus open() override { ++opens; return openStatus; }
    bool close() override { ++closes; return true; }
    ReadStatus read(Bytes& buffer) override
    {
        std::unique_lock<std::mutex> lock(m_mutex);
        if (!m_changed.wait_for(lock, std::chrono::milliseconds(20), [this] { return !m_reads.empty(); }))
            return RS_TIMEOUT;
        const std::pair<ReadStatus, std::string> next = m_reads.front();
        m_reads.pop_front();
        m_changed.notify_all();
        buffer.insert(buffer.end(), next.second.begin(), next.second.end());
        return next.first;
    }
    WriteStatus write(const Bytes&) override { ++writes; return writeStatus; }
    std::string errorString() const override { return "fake failure"; }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::deque<std::pair<ReadStatus, std::string>> m_reads;
};

class ConnectionTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        LogCapture::instance().clear();
        bus = new FakeBus;
        connection.reset(new Connection(bus));
        connection->setDelimiter('>');
    }

    FakeBus* bus; // owned by the connection
    CountingListener listener;
    std::unique_ptr<Connection> connection;
};

} // namespace

TEST_F(ConnectionTest, ClosedItRefusesQuietlyOpenItOpensTheBusOnce)
{
    Bytes message = bytes("untouched");
    bus->openStatus = IMessageBus::OS_CONNECTION_REFUSED;
    EXPECT_EQ(IMessageBus::OS_CONNECTION_REFUSED, connection->open(&listener));
    EXPECT_EQ("Failed to connect (3): fake failure", LogCapture::instance().find("Failed to connect").message);
    LogCapture::instance().clear();
    EXPECT_EQ(1, connection->write(bytes("ATZ\r")));
    EXPECT_EQ(2, connection->read(message, 50));
    EXPECT_EQ(0, bus->writes.load());
    EXPECT_FALSE(LogCapture::instance().contains("Failed"));

    bus->openStatus = IMessageBus::OS_OK;
    ASSERT_EQ(IMessageBus::OS_OK, connection->open(&listener));
    ASSERT_EQ(IMessageBus::OS_OK, connection->open(&listener));
    EXPECT_EQ(2, bus->opens.load());
    EXPECT_EQ(0, bus->closes.load());
    EXPECT_EQ(1, connection->read(message, 0));
    EXPECT_EQ("untouched", text(message));
    EXPECT_EQ(0, listener.calls.load());
}

TEST_F(ConnectionTest, AMessageEndsWithTheChunkHoldingTheDelimiter)
{
    const struct {
        const char* name;
        unsigned char delimiter, then; // then: set once the chunks are taken, if not 0
        std::vector<std::string> chunks, messages;
    } rows[] = {
        {"reply in one chunk", '>', 0, {"41 0C 1A F8 \r\r>"}, {"41 0C 1A F8 \r\r>"}},
        {"reply split over three chunks", '>', 0, {"41 0C", " 1A F8", " \r\r>"}, {"41 0C 1A F8 \r\r>"}},
        {"bytes after the prompt stay in its message", '>', 0, {"OK\r\r>\r"}, {"OK\r\r>\r"}},
        {"two replies in one chunk make one message", '>', 0, {"41 00 BE 3F A8 13 \r\r>41 0C 1A F8 \r\r>"},
         {"41 00 BE 3F A8 13 \r\r>41 0C 1A F8 \r\r>"}},
        {"prompt in the middle of a chunk", '>', 0, {"SEARCHING...>41 0C", " 1A F8\r\r>"},
         {"SEARCHING...>41 0C", " 1A F8\r\r>"}},
        {"carriage return as the delimiter", '\r', 0, {"OK\r", "ELM327 v1.5\r"}, {"OK\r", "ELM327 v1.5\r"}},
        {"a new delimiter ends the bytes pending", '>', '\r', {"ELM327 v1.5\rOK\r"}, {"ELM327 v1.5\rOK\r"}},
        {"without a delimiter nothing is queued", 0, 0, {"41 0C 1A F8 \r\r>"}, {}},
    };
    ASSERT_EQ(IMessageBus::OS_OK, connection->open(&listener));
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        connection->setDelimiter(row.delimiter);
        for (const std::string& chunk : row.chunks)
            bus->queueRead(IMessageBus::RS_OK, chunk);
        ASSERT_TRUE(bus->waitTaken());
        if (row.then)
            connection->setDelimiter(row.then);
        for (const std::string& expected : row.messages) {
            Bytes message;
            ASSERT_EQ(0, connection->read(message, 5000));
            EXPECT_EQ(expected, text(message));
        }
        Bytes none;
        EXPECT_EQ(1, connection->read(none, 50));
    }
}

TEST_F(ConnectionTest, APeerThatNeverPromptsIsCappedAndTheNextReplyStillArrives)
{
    ASSERT_EQ(IMessageBus::OS_OK, connection->open(&listener));
    for (int i = 0; i < 100; ++i)
        bus->queueRead(IMessageBus::RS_OK, std::string(1024, 'X'));
    bus->queueRead(IMessageBus::RS_OK, "41 0C 1A F8 \r\r>");
    Bytes message;
    ASSERT_EQ(0, connection->read(message, 10000));
    EXPECT_LE(message.size(), Connection::MAX_PENDING + 1024);
    EXPECT_EQ("41 0C 1A F8 \r\r>", text(message).substr(message.size() - 15));
    EXPECT_TRUE(LogCapture::instance().contains("No delimiter in", LOG_ERROR));
    EXPECT_EQ(1, connection->read(message, 50));
}

TEST_F(ConnectionTest, AnEndedLinkIsEmptiedAndTheListenerToldOnceButNotOnDestruction)
{
    typedef IMessageBus Bus;
    const struct { const char* name; Bus::ReadStatus read; Bus::WriteStatus write; std::string log; } rows[] = {
        {"read error", Bus::RS_ERROR, Bus::WS_OK, "Failed to read socket: fake failure"},
        {"peer hung up", Bus::RS_DISCONNECTED, Bus::WS_OK, "Disconnected by server"},
        {"write error", Bus::RS_OK, Bus::WS_TIMEOUT, "Failed to write socket: fake failure"},
        {"closed by its owner", Bus::RS_OK, Bus::WS_OK, ""},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(row.name);
        SetUp();
        listener.calls = 0;
        ASSERT_EQ(IMessageBus::OS_OK, connection->open(&listener));
        // A reply is queued, then the link ends before anyone reads it.
        bus->queueRead(IMessageBus::RS_OK, "41 0C 1A F8\r\r>");
        ASSERT_TRUE(bus->waitTaken());
        bus->writeStatus = row.write;
        if (row.read != IMessageBus::RS_OK) {
            bus->queueRead(row.read);
        } else if (row.write != IMessageBus::WS_OK) {
            EXPECT_EQ(1, connection->write(bytes("0100\r")));
        } else {
            connection->close();
        }
        ASSERT_TRUE(eventually([&] { return !connection->isConnected() && listener.calls > 0; }));
        EXPECT_TRUE(row.log.empty() || LogCapture::instance().contains(row.log));
        EXPECT_GE(bus->closes.load(), 1);
        // Ended already: nothing more to tell, writes fail without a word.
        LogCapture::instance().clear();
        connection->close();
        EXPECT_EQ(1, connection->write(bytes("0100\r")));
        EXPECT_FALSE(LogCapture::instance().contains("socket"));
        // Reopened, nothing of the old link is left.
        bus->writeStatus = IMessageBus::WS_OK;
        ASSERT_EQ(IMessageBus::OS_OK, connection->open(&listener));
        Bytes message;
        EXPECT_EQ(1, connection->read(message, 50));
        connection.reset();
        EXPECT_EQ(1, listener.calls.load());
    }
}

// Through the real TCP bus: the adapter hangs up, again and again; loggers see the traffic.
TEST(ConnectionOverTcp, AWaitingReaderIsReleasedWhenTheAdapterHangsUpAndTheLinkReopens)
{
    ElmSim::ElmSimServer adapter(SimLink::quickOptions("can11"));
    ASSERT_TRUE(adapter.start()) << adapter.errorString();
    TcpBus* bus = new TcpBus;
    ASSERT_TRUE(bus->init("127.0.0.1", adapter.port()));
    Connection connection(bus);
    connection.setDelimiter('>');
    CountingListener listener;
    RecordingLogger logger, removed;
    connection.addLogger(&logger);
    connection.addLogger(&removed);
    connection.removeLogger(&removed);
    connection.removeLogger(&removed);
    for (int cycle = 1; cycle <= 3; ++cycle) {
        SCOPED_TRACE(cycle);
        // Reopened at once, while the old read task may still be on its way out.
        ASSERT_EQ(IMessageBus::OS_OK, connection.open(&listener));
        ASSERT_EQ(0, connection.write(bytes("ATI\r")));
        Bytes message;
        ASSERT_EQ(0, connection.read(message, 5000));
        EXPECT_NE(std::string::npos, text(message).find("ELM327"));
        EXPECT_EQ("ATI\r", logger.sent.back());
        EXPECT_EQ(text(message), logger.received.back());

        adapter.setSilent(true);
        ASSERT_EQ(0, connection.write(bytes("0100\r")));
        std::future<int> waiting = std::async(std::launch::async, [&connection] {
            Bytes late;
            return connection.read(late, 600000);
        });
        adapter.dropNow();
        ASSERT_EQ(std::future_status::ready, waiting.wait_for(std::chrono::seconds(30)));
        EXPECT_EQ(2, waiting.get());
        EXPECT_FALSE(connection.isConnected());
        EXPECT_TRUE(eventually([&] { return listener.calls == cycle; }));
        adapter.setSilent(false);
    }
    EXPECT_EQ(3, listener.calls.load());
    EXPECT_TRUE(removed.sent.empty() && removed.received.empty());
}
