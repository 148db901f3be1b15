#include "connection.h"
#include "elmtransport.h"
#include "logcapture.h"
#include "scriptedserver.h"
#include "tcpbus.h"
#include "trlog.h"

#include <gtest/gtest.h>

#include <chrono>
#include <deque>
#include <memory>
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

// Hands out queued messages; records writes. Single-threaded.
class QueueConnection : public IConnection
{
public:
    std::deque<Bytes> messages;
    std::vector<std::string> written;
    bool connected = true;
    int writeResult = 0;

    IMessageBus::OpenStatus open(IDisconnectListener*) override { return IMessageBus::OS_OK; }
    void close() override { connected = false; }
    bool isConnected() const override { return connected; }
    int write(const Bytes& data) override
    {
        written.push_back(text(data));
        return writeResult;
    }
    int read(Bytes& message, unsigned int) override
    {
        if (!connected)
            return 2;
        if (messages.empty())
            return 1;
        message = messages.front();
        messages.pop_front();
        return 0;
    }
    void setDelimiter(unsigned char) override {}
    std::string errorString() const override { return std::string(); }
    void addLogger(ILogger*) override {}
    void removeLogger(ILogger*) override {}
};

class ElmTransportTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        LogCapture::instance().clear();
        ASSERT_TRUE(server.isListening());
        TcpBus* bus = new TcpBus;
        ASSERT_TRUE(bus->init("127.0.0.1", server.port()));
        connection.reset(new Connection(bus));
        connection->setDelimiter('>');
        ASSERT_EQ(IMessageBus::OS_OK, connection->open(nullptr));
        ASSERT_TRUE(server.waitForConnections(1, 2000));
    }

    ScriptedServer server;
    std::unique_ptr<Connection> connection;
};

} // namespace

TEST_F(ElmTransportTest, ReceiveStripsTheFraming)
{
    struct Row
    {
        const char* name;
        std::string adapter;
        std::string expected;
    };
    const Row rows[] = {
        {"single line, spaces kept", "41 0C 1A F8\r\r>", "41 0C 1A F8"},
        {"trailing space of a data line", "41 0C 1A F8 \r\r>", "41 0C 1A F8 "},
        {"only a carriage return and the prompt", "\r>", ""},
        {"line feeds on", "41 0D 32 \r\n\r\n>", "41 0D 32 "},
        {"two ECUs on two lines are joined without separator",
         "7E8 03 41 0D 00 \r7E9 03 41 0D 00 \r\r>", "7E8 03 41 0D 00 7E9 03 41 0D 00 "},
        {"NUL bytes around a reset banner", std::string("\0\0ELM327 v1.5\r\r\0>", 17),
         "ELM327 v1.5"},
        {"headers-off multi-frame lines",
         "014\r0: 49 02 01 31 44 34 \r1: 47 50 30 30 52 35 35 \r\r>",
         "0140: 49 02 01 31 44 34 1: 47 50 30 30 52 35 35 "},
        {"high bytes are not framing", "\xFC\xFE" "OK\r\r>", "\xFC\xFE" "OK"},
    };
    for (const Row& row : rows) {
        SCOPED_TRACE(row.name);
        server.once("0100", ScriptedServer::reply(row.adapter));
        ASSERT_EQ(0, ElmTransport::send(connection.get(), bytes("0100")));
        Bytes reply;
        ASSERT_EQ(0, ElmTransport::receive(connection.get(), reply, 2000));
        EXPECT_EQ(row.expected, text(reply));
    }
}

TEST_F(ElmTransportTest, SendAppendsACarriageReturnOnly)
{
    server.on("ATI", ScriptedServer::answer("ELM327 v1.5"));
    ASSERT_EQ(0, ElmTransport::send(connection.get(), bytes("ATI")));
    ASSERT_EQ(0, ElmTransport::send(connection.get(), Bytes()));
    ASSERT_TRUE(server.waitForCommands(2, 2000));
    EXPECT_EQ((std::vector<std::string>{"ATI", ""}), server.commands());
}

TEST_F(ElmTransportTest, StaleReplyIsLoggedAndDroppedByTheNextSend)
{
    server.push("STOPPED\r\r>");
    // Let the unprompted bytes reach the queue before the next command goes out.
    std::this_thread::sleep_for(std::chrono::milliseconds(200));
    server.on("010C", ScriptedServer::answer("41 0C 1A F8 "));
    ASSERT_EQ(0, ElmTransport::send(connection.get(), bytes("010C")));
    LogCapture::Record record = LogCapture::instance().find("Payload data discarded: ");
    EXPECT_EQ(LOG_DEBUG, record.level);
    EXPECT_EQ("Payload data discarded: STOPPED\r\r>", record.message);
    Bytes reply;
    ASSERT_EQ(0, ElmTransport::receive(connection.get(), reply, 2000));
    EXPECT_EQ("41 0C 1A F8 ", text(reply));
}

TEST_F(ElmTransportTest, NothingIsLoggedWhenThereIsNothingStale)
{
    server.on("010C", ScriptedServer::answer("41 0C 1A F8 "));
    ASSERT_EQ(0, ElmTransport::send(connection.get(), bytes("010C")));
    EXPECT_FALSE(LogCapture::instance().contains("Payload data discarded"));
}

TEST_F(ElmTransportTest, TimeoutLogsTheWaitAndReturnsOne)
{
    server.on("0100", ScriptedServer::silence());
    ASSERT_EQ(0, ElmTransport::send(connection.get(), bytes("0100")));
    Bytes reply;
    auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(1, ElmTransport::receive(connection.get(), reply, 500));
    long long elapsed = millisecondsSince(start);
    EXPECT_GE(elapsed, 400);
    EXPECT_LE(elapsed, 2000);
    EXPECT_TRUE(LogCapture::instance().contains("Connection timeout: 500 ms", LOG_ERROR));
}

TEST_F(ElmTransportTest, ZeroTimeoutReceiveIsAPollThatNeverFails)
{
    Bytes reply = bytes("left alone");
    auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(0, ElmTransport::receive(connection.get(), reply, 0));
    EXPECT_LT(millisecondsSince(start), 200);
    EXPECT_EQ("left alone", text(reply));
    EXPECT_FALSE(LogCapture::instance().contains("Connection timeout"));
}

TEST_F(ElmTransportTest, ClosedConnectionFailsBothWays)
{
    connection->close();
    Bytes reply;
    EXPECT_EQ(2, ElmTransport::receive(connection.get(), reply, 100));
    EXPECT_TRUE(LogCapture::instance().contains("Failed to receive data", LOG_ERROR));
    EXPECT_EQ(1, ElmTransport::send(connection.get(), bytes("ATZ")));
    EXPECT_TRUE(LogCapture::instance().contains("Failed to send data", LOG_ERROR));
}

TEST(ElmTransportQueue, OnlyOneStaleMessageIsDroppedPerSend)
{
    LogCapture::instance().clear();
    QueueConnection connection;
    connection.messages.push_back(bytes("41 0C 1A F8 \r\r>"));
    connection.messages.push_back(bytes("41 0D 32 \r\r>"));
    ASSERT_EQ(0, ElmTransport::send(&connection, bytes("0105")));
    EXPECT_EQ(std::vector<std::string>{"0105\r"}, connection.written);
    EXPECT_EQ(1u, LogCapture::instance().count("Payload data discarded: 41 0C 1A F8 \r\r>", LOG_DEBUG));
    ASSERT_EQ(1u, connection.messages.size());
    EXPECT_EQ("41 0D 32 \r\r>", text(connection.messages.front()));
}

TEST(ElmTransportQueue, EmptyStaleMessageIsNotLogged)
{
    LogCapture::instance().clear();
    QueueConnection connection;
    connection.messages.push_back(Bytes());
    ASSERT_EQ(0, ElmTransport::send(&connection, bytes("ATI")));
    EXPECT_FALSE(LogCapture::instance().contains("Payload data discarded"));
}

TEST(ElmTransportQueue, WriteFailureLogsAndReturnsOne)
{
    LogCapture::instance().clear();
    QueueConnection connection;
    connection.writeResult = 1;
    EXPECT_EQ(1, ElmTransport::send(&connection, bytes("ATI")));
    EXPECT_EQ(1u, LogCapture::instance().count("Failed to send data", LOG_ERROR));
}

TEST(ElmTransportQueue, NullConnectionFailsQuietlyWithoutCrashing)
{
    LogCapture::instance().clear();
    Bytes reply;
    EXPECT_EQ(1, ElmTransport::send(nullptr, bytes("ATI")));
    EXPECT_EQ(2, ElmTransport::receive(nullptr, reply, 10));
}
