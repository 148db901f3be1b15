#include "connection.h"
#include "idisconnectlistener.h"
#include "ilogger.h"
#include "logcapture.h"
#include "scriptedserver.h"
#include "tcpbus.h"
#include "trlog.h"

#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <atomic>
#include <chrono>
#include <cstring>
#include <deque>
#include <memory>
#include <mutex>
#include <thread>

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

long long millisecondsSince(std::chrono::steady_clock::time_point start)
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(
               std::chrono::steady_clock::now() - start).count();
}

template <typename Predicate>
bool eventually(Predicate predicate, int timeoutMs = 3000)
{
    auto start = std::chrono::steady_clock::now();
    while (!predicate()) {
        if (millisecondsSince(start) > timeoutMs)
            return false;
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    }
    return true;
}

struct CountingListener : IDisconnectListener
{
    std::atomic<int> calls{0};
    void onDisconnected() override { ++calls; }
};

struct RecordingLogger : ILogger
{
    std::mutex mutex;
    std::vector<std::string> sent;
    std::vector<std::string> received;
    void onDataSent(const Bytes& data) override
    {
        std::lock_guard<std::mutex> lock(mutex);
        sent.push_back(text(data));
    }
    void onDataReceived(const Bytes& data) override
    {
        std::lock_guard<std::mutex> lock(mutex);
        received.push_back(text(data));
    }
};

// A bus whose reads and writes are dictated by the test.
class FakeBus : public IMessageBus
{
public:
    struct Counters
    {
        std::atomic<int> opens{0};
        std::atomic<int> closes{0};
        std::atomic<int> writes{0};
    };

    explicit FakeBus(std::shared_ptr<Counters> counters)
        : m_counters(counters)
    {
    }

    void queueRead(ReadStatus status, const std::string& data = std::string())
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_reads.push_back(std::make_pair(status, data));
    }
    void setWriteStatus(WriteStatus status) { m_writeStatus = status; }

    OpenStatus open() override
    {
        ++m_counters->opens;
        return OS_OK;
    }
    bool close() override
    {
        ++m_counters->closes;
        return true;
    }
    ReadStatus read(Bytes& buffer) override
    {
        {
            std::lock_guard<std::mutex> lock(m_mutex);
            if (!m_reads.empty()) {
                std::pair<ReadStatus, std::string> next = m_reads.front();
                m_reads.pop_front();
                buffer.insert(buffer.end(), next.second.begin(), next.second.end());
                return next.first;
            }
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
        return RS_TIMEOUT;
    }
    WriteStatus write(const Bytes&) override
    {
        ++m_counters->writes;
        return m_writeStatus;
    }
    std::string errorString() const override { return "fake failure"; }

private:
    std::shared_ptr<Counters> m_counters;
    std::mutex m_mutex;
    std::deque<std::pair<ReadStatus, std::string>> m_reads;
    std::atomic<WriteStatus> m_writeStatus{WS_OK};
};

unsigned short deadPort()
{
    int fd = ::socket(AF_INET, SOCK_STREAM, 0);
    struct sockaddr_in address;
    std::memset(&address, 0, sizeof(address));
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t length = sizeof(address);
    ::bind(fd, reinterpret_cast<struct sockaddr*>(&address), sizeof(address));
    ::getsockname(fd, reinterpret_cast<struct sockaddr*>(&address), &length);
    ::close(fd);
    return ntohs(address.sin_port);
}

// A connection over the real TCP bus to a scripted server.
class ConnectionTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        LogCapture::instance().clear();
        ASSERT_TRUE(server.isListening());
        TcpBus* bus = new TcpBus;
        ASSERT_TRUE(bus->init("127.0.0.1", server.port()));
        connection.reset(new Connection(bus));
    }

    void openConnection(unsigned char delimiter = '>')
    {
        connection->setDelimiter(delimiter);
        ASSERT_EQ(IMessageBus::OS_OK, connection->open(&listener));
        ASSERT_TRUE(connection->isConnected());
        ASSERT_TRUE(server.waitForConnections(1, 2000));
    }

    ScriptedServer server;
    CountingListener listener;
    std::unique_ptr<Connection> connection;
};

class FakeBusConnectionTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        LogCapture::instance().clear();
        counters = std::make_shared<FakeBus::Counters>();
        bus = new FakeBus(counters);
        connection.reset(new Connection(bus));
        connection->setDelimiter('>');
    }

    std::shared_ptr<FakeBus::Counters> counters;
    FakeBus* bus = nullptr; // owned by the connection
    CountingListener listener;
    std::unique_ptr<Connection> connection;
};

size_t recordsFrom(const std::string& file)
{
    size_t n = 0;
    for (const LogCapture::Record& r : LogCapture::instance().records()) {
        if (r.file == file)
            ++n;
    }
    return n;
}

} // namespace

TEST(ConnectionOpen, RefusedOpenLogsTheStatusNumberAndStaysDisconnected)
{
    LogCapture::instance().clear();
    TcpBus* bus = new TcpBus;
    ASSERT_TRUE(bus->init("127.0.0.1", deadPort()));
    Connection connection(bus);
    CountingListener listener;
    EXPECT_EQ(IMessageBus::OS_CONNECTION_REFUSED, connection.open(&listener));
    EXPECT_FALSE(connection.isConnected());
    LogCapture::Record record = LogCapture::instance().find("Failed to connect (");
    EXPECT_EQ(LOG_ERROR, record.level);
    EXPECT_EQ("Failed to connect (3): " + std::string(std::strerror(ECONNREFUSED)),
              record.message);
    EXPECT_EQ("libobd/connection.cpp", record.file);
    Bytes message;
    EXPECT_EQ(2, connection.read(message, 100));
    EXPECT_EQ(0, listener.calls.load());
}

TEST_F(FakeBusConnectionTest, OpenOnAnOpenConnectionReturnsZeroWithoutTouchingTheBus)
{
    ASSERT_EQ(IMessageBus::OS_OK, connection->open(&listener));
    EXPECT_EQ(1, counters->opens.load());
    EXPECT_EQ(IMessageBus::OS_OK, connection->open(&listener));
    EXPECT_EQ(1, counters->opens.load());
    EXPECT_EQ(0, counters->closes.load());
    EXPECT_TRUE(connection->isConnected());
}

TEST_F(FakeBusConnectionTest, WriteOnAClosedConnectionReturnsOneAndLogsNothing)
{
    EXPECT_EQ(1, connection->write(bytes("ATZ\r")));
    EXPECT_EQ(0, counters->writes.load());
    EXPECT_EQ(0u, recordsFrom("libobd/connection.cpp"));
}

TEST_F(FakeBusConnectionTest, ReadOnAClosedConnectionReturnsTwo)
{
    Bytes message = bytes("untouched");
    EXPECT_EQ(2, connection->read(message, 0));
    EXPECT_EQ(2, connection->read(message, 50));
    EXPECT_EQ("untouched", text(message));
}

TEST_F(FakeBusConnectionTest, ReadTaskAnnouncesItself)
{
    ASSERT_EQ(IMessageBus::OS_OK, connection->open(&listener));
    EXPECT_TRUE(eventually([] { return LogCapture::instance().contains("Read task started", LOG_DEBUG); }));
}

TEST_F(FakeBusConnectionTest, BusReadErrorLogsAndTellsTheListener)
{
    ASSERT_EQ(IMessageBus::OS_OK, connection->open(&listener));
    bus->queueRead(IMessageBus::RS_OK, "41 0C 1A F8\r\r>");
    bus->queueRead(IMessageBus::RS_ERROR);
    ASSERT_TRUE(eventually([&] { return !connection->isConnected(); }));
    EXPECT_TRUE(eventually([&] { return listener.calls.load() == 1; }));
    EXPECT_TRUE(LogCapture::instance().contains("Failed to read socket: fake failure", LOG_ERROR));
    EXPECT_GE(counters->closes.load(), 1);
    Bytes message;
    EXPECT_EQ(2, connection->read(message, 0));
}

TEST_F(FakeBusConnectionTest, BusWriteErrorClosesTellsTheListenerAndReturnsOne)
{
    ASSERT_EQ(IMessageBus::OS_OK, connection->open(&listener));
    bus->setWriteStatus(IMessageBus::WS_TIMEOUT);
    EXPECT_EQ(1, connection->write(bytes("0100\r")));
    EXPECT_FALSE(connection->isConnected());
    EXPECT_EQ(1, listener.calls.load());
    EXPECT_TRUE(LogCapture::instance().contains("Failed to write socket: fake failure", LOG_ERROR));
    // Closed now: further writes fail silently.
    LogCapture::instance().clear();
    EXPECT_EQ(1, connection->write(bytes("0100\r")));
    EXPECT_EQ(0u, recordsFrom("libobd/connection.cpp"));
}

TEST_F(FakeBusConnectionTest, DestructionDoesNotTellTheListener)
{
    ASSERT_EQ(IMessageBus::OS_OK, connection->open(&listener));
    connection.reset();
    EXPECT_EQ(0, listener.calls.load());
}

TEST_F(FakeBusConnectionTest, MessageEndsAtTheChunkHoldingTheDelimiter)
{
    struct Row
    {
        const char* name;
        std::vector<std::string> chunks;
        std::vector<std::string> messages;
    };
    const Row rows[] = {
        {"reply in one chunk", {"41 0C 1A F8 \r\r>"}, {"41 0C 1A F8 \r\r>"}},
        {"reply split over three chunks", {"41 0C", " 1A F8", " \r\r>"}, {"41 0C 1A F8 \r\r>"}},
        {"bytes after the prompt stay in its message", {"OK\r\r>\r"}, {"OK\r\r>\r"}},
        {"two replies in one chunk make one message",
         {"41 00 BE 3F A8 13 \r\r>41 0C 1A F8 \r\r>"},
         {"41 00 BE 3F A8 13 \r\r>41 0C 1A F8 \r\r>"}},
        {"prompt in the middle of a chunk", {"SEARCHING...>41 0C", " 1A F8\r\r>"},
         {"SEARCHING...>41 0C", " 1A F8\r\r>"}},
        {"prompt alone", {">"}, {">"}},
    };
    ASSERT_EQ(IMessageBus::OS_OK, connection->open(&listener));
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        for (const std::string& chunk : row.chunks)
            bus->queueRead(IMessageBus::RS_OK, chunk);
        for (const std::string& expected : row.messages) {
            Bytes message;
            ASSERT_EQ(0, connection->read(message, 2000));
            EXPECT_EQ(expected, text(message));
        }
        Bytes none;
        EXPECT_EQ(1, connection->read(none, 0));
    }
}

TEST_F(ConnectionTest, WithoutADelimiterNothingIsEverQueued)
{
    openConnection(0);
    server.push("41 0C 1A F8 \r\r>");
    Bytes message;
    EXPECT_EQ(1, connection->read(message, 700));
    EXPECT_TRUE(message.empty());
}

TEST_F(ConnectionTest, ZeroTimeoutReadOnAnEmptyQueueReturnsAtOnce)
{
    openConnection();
    Bytes message = bytes("untouched");
    auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(1, connection->read(message, 0));
    EXPECT_LT(millisecondsSince(start), 200);
    EXPECT_EQ("untouched", text(message));
}

TEST_F(ConnectionTest, ReadTimesOutWithinGenerousBounds)
{
    openConnection();
    Bytes message;
    auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(1, connection->read(message, 500));
    long long elapsed = millisecondsSince(start);
    EXPECT_GE(elapsed, 400);
    EXPECT_LE(elapsed, 2000);
}

TEST_F(ConnectionTest, TwoRepliesInOneChunkAreOneMessage)
{
    openConnection();
    server.on("0100", ScriptedServer::reply("41 00 BE 3F A8 13 \r\r>41 0C 1A F8 \r\r>"));
    ASSERT_EQ(0, connection->write(bytes("0100\r")));
    Bytes message;
    ASSERT_EQ(0, connection->read(message, 2000));
    EXPECT_EQ("41 00 BE 3F A8 13 \r\r>41 0C 1A F8 \r\r>", text(message));
    EXPECT_EQ(1, connection->read(message, 200));
}

TEST_F(ConnectionTest, RepliesQueueInOrder)
{
    openConnection();
    server.on("ATI", ScriptedServer::answer("ELM327 v1.5"));
    server.on("0100", ScriptedServer::answer("41 00 BE 3F A8 13 "));
    // Both replies in flight at once; the second is held back so it comes in its own chunk.
    server.once("0100", ScriptedServer::Reply().pause(100).send("41 00 BE 3F A8 13 \r\r>"));
    ASSERT_EQ(0, connection->write(bytes("ATI\r0100\r")));
    Bytes first;
    Bytes second;
    ASSERT_EQ(0, connection->read(first, 2000));
    ASSERT_EQ(0, connection->read(second, 2000));
    EXPECT_EQ("ELM327 v1.5\r\r>", text(first));
    EXPECT_EQ("41 00 BE 3F A8 13 \r\r>", text(second));
}

TEST_F(ConnectionTest, PeerCloseDisconnectsEmptiesTheQueueAndTellsOnce)
{
    openConnection();
    // A reply is queued, then the adapter goes away before anyone reads it.
    server.push("41 0C 1A F8 \r\r>");
    server.disconnect();
    ASSERT_TRUE(eventually([&] { return !connection->isConnected(); }));
    EXPECT_TRUE(eventually([&] { return listener.calls.load() >= 1; }));
    EXPECT_TRUE(LogCapture::instance().contains("Disconnected by server", LOG_DEBUG));
    Bytes message;
    EXPECT_EQ(2, connection->read(message, 0));
    // Closing what is already closed tells nobody again.
    connection->close();
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    EXPECT_EQ(1, listener.calls.load());

    // Reopened, nothing of the old link is left in the queue.
    ASSERT_EQ(IMessageBus::OS_OK, connection->open(&listener));
    ASSERT_TRUE(server.waitForConnections(2, 2000));
    EXPECT_EQ(1, connection->read(message, 300));
    EXPECT_EQ(1, listener.calls.load());
}

TEST_F(ConnectionTest, AReaderWaitingWhenThePeerClosesIsReleasedEarly)
{
    openConnection();
    server.on("ATZ", ScriptedServer::Reply().pause(100).close());
    ASSERT_EQ(0, connection->write(bytes("ATZ\r")));
    Bytes message;
    auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(2, connection->read(message, 10000));
    EXPECT_LT(millisecondsSince(start), 5000);
}

TEST_F(ConnectionTest, CloseTellsTheListenerOnceAndMayBeRepeated)
{
    openConnection();
    connection->close();
    EXPECT_FALSE(connection->isConnected());
    EXPECT_EQ(1, listener.calls.load());
    connection->close();
    EXPECT_EQ(1, listener.calls.load());
    EXPECT_EQ(1, connection->write(bytes("0100\r")));
}

TEST_F(ConnectionTest, LoggersSeeWhatIsSentAndReceived)
{
    openConnection();
    RecordingLogger logger;
    RecordingLogger removed;
    connection->addLogger(&logger);
    connection->addLogger(&removed);
    connection->removeLogger(&removed);
    connection->removeLogger(&removed); // not there any more: nothing happens
    server.on("010C", ScriptedServer::answer("41 0C 1A F8 "));
    ASSERT_EQ(0, connection->write(bytes("010C\r")));
    Bytes message;
    ASSERT_EQ(0, connection->read(message, 2000));
    EXPECT_EQ(std::vector<std::string>{"010C\r"}, logger.sent);
    EXPECT_EQ(std::vector<std::string>{"41 0C 1A F8 \r\r>"}, logger.received);
    EXPECT_TRUE(removed.sent.empty());
    EXPECT_TRUE(removed.received.empty());
}

TEST_F(ConnectionTest, APeerThatNeverPromptsIsCappedAndTheNextReplyStillArrives)
{
    openConnection();
    // 100 kB of noise without a prompt, then an ordinary reply.
    server.push(std::string(100 * 1024, 'X'));
    server.push("41 0C 1A F8 \r\r>");
    Bytes message;
    ASSERT_EQ(0, connection->read(message, 5000));
    EXPECT_LE(message.size(), Connection::MAX_PENDING + 256);
    EXPECT_EQ("41 0C 1A F8 \r\r>", text(message).substr(message.size() - 15));
    EXPECT_TRUE(LogCapture::instance().contains("No delimiter in", LOG_ERROR));
    EXPECT_EQ(1, connection->read(message, 200));
}

TEST_F(ConnectionTest, CapDropsRepeatedlyForAnEndlessTalker)
{
    openConnection();
    server.push(std::string(300 * 1024, '7'));
    ASSERT_TRUE(eventually([] { return LogCapture::instance().count("No delimiter in", LOG_ERROR) >= 4; }));
    Bytes message;
    EXPECT_EQ(1, connection->read(message, 0));
    EXPECT_TRUE(connection->isConnected());
}

TEST_F(ConnectionTest, ChangingTheDelimiterTakesEffectOnPendingBytes)
{
    openConnection();
    server.push("ELM327 v1.5\r");
    Bytes message;
    EXPECT_EQ(1, connection->read(message, 300));
    connection->setDelimiter('\r');
    server.push("OK\r");
    ASSERT_EQ(0, connection->read(message, 2000));
    EXPECT_EQ("ELM327 v1.5\rOK\r", text(message));
}

TEST_F(ConnectionTest, ReopensAgainAndAgainAfterTheAdapterHangsUp)
{
    openConnection();
    for (int cycle = 1; cycle <= 10; ++cycle) {
        SCOPED_TRACE(cycle);
        server.disconnect();
        ASSERT_TRUE(eventually([&] { return !connection->isConnected(); }));
        // Reopened at once, while the old read task may still be on its way out.
        ASSERT_EQ(IMessageBus::OS_OK, connection->open(&listener));
        ASSERT_TRUE(server.waitForConnections(cycle + 1, 2000));
        server.once("ATI", ScriptedServer::answer("ELM327 v1.5"));
        ASSERT_EQ(0, connection->write(bytes("ATI\r")));
        Bytes message;
        ASSERT_EQ(0, connection->read(message, 2000));
        EXPECT_EQ("ELM327 v1.5\r\r>", text(message));
    }
    EXPECT_EQ(10, listener.calls.load());
}
