#include "scriptedserver.h"
#include "tcpbus.h"

#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <dirent.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <chrono>
#include <cstring>
#include <string>
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

int openDescriptors()
{
    int count = 0;
    if (DIR* dir = opendir("/proc/self/fd")) {
        while (readdir(dir))
            ++count;
        closedir(dir);
    }
    return count;
}

// A loopback port where nothing listens: bound once, then released.
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

long long millisecondsSince(std::chrono::steady_clock::time_point start)
{
    return std::chrono::duration_cast<std::chrono::milliseconds>(
               std::chrono::steady_clock::now() - start).count();
}

// Reads until something arrives or the attempts run out.
IMessageBus::ReadStatus readSomething(TcpBus& bus, Bytes& buffer, int attempts = 6)
{
    IMessageBus::ReadStatus status = IMessageBus::RS_TIMEOUT;
    for (int i = 0; i < attempts && status == IMessageBus::RS_TIMEOUT; ++i)
        status = bus.read(buffer);
    return status;
}

class TcpBusTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(server.isListening());
        ASSERT_TRUE(bus.init("127.0.0.1", server.port()));
    }

    void openBus()
    {
        ASSERT_EQ(IMessageBus::OS_OK, bus.open());
        ASSERT_TRUE(server.waitForConnections(1, 2000));
    }

    ScriptedServer server;
    TcpBus bus;
};

} // namespace

TEST(TcpBusOpen, ConnectionRefusedGivesThreeAndLeavesTheBusClosed)
{
    TcpBus bus;
    ASSERT_TRUE(bus.init("127.0.0.1", deadPort()));
    int before = openDescriptors();
    EXPECT_EQ(IMessageBus::OS_CONNECTION_REFUSED, bus.open());
    EXPECT_FALSE(bus.isOpen());
    EXPECT_EQ(before, openDescriptors()) << "the failed socket must be closed";
    EXPECT_EQ(std::string(std::strerror(ECONNREFUSED)), bus.errorString());
    // Closed again, so a second attempt is allowed and fails the same way.
    EXPECT_EQ(IMessageBus::OS_CONNECTION_REFUSED, bus.open());
    EXPECT_FALSE(bus.isOpen());
}

TEST(TcpBusInit, UnresolvableHostReturnsFalse)
{
    TcpBus bus;
    EXPECT_FALSE(bus.init("no-such-adapter.invalid", 35000));
    EXPECT_FALSE(bus.init("", 35000));
    EXPECT_FALSE(bus.isOpen());
}

TEST(TcpBusInit, NamesAndDottedAddressesResolve)
{
    TcpBus bus;
    EXPECT_TRUE(bus.init("192.168.0.10", 35000));
    EXPECT_TRUE(bus.init("localhost", 35000));
}

TEST(TcpBusInit, OnlyTheLowSixteenBitsOfThePortCount)
{
    ScriptedServer server;
    TcpBus bus;
    ASSERT_TRUE(bus.init("127.0.0.1", 0x10000u + server.port()));
    EXPECT_EQ(IMessageBus::OS_OK, bus.open());
    EXPECT_TRUE(server.waitForConnections(1, 2000));
}

TEST(TcpBusClose, CloseOnAClosedBusReturnsTrue)
{
    TcpBus bus;
    EXPECT_TRUE(bus.close());
    EXPECT_TRUE(bus.close());
    EXPECT_FALSE(bus.isOpen());
}

TEST_F(TcpBusTest, OpenAndCloseLeaveNoDescriptorBehind)
{
    int before = openDescriptors();
    openBus();
    EXPECT_TRUE(bus.isOpen());
    EXPECT_TRUE(bus.close());
    EXPECT_FALSE(bus.isOpen());
    // The server closes its end of the link on its own thread when it sees ours go.
    auto start = std::chrono::steady_clock::now();
    while (openDescriptors() != before && millisecondsSince(start) < 3000)
        std::this_thread::sleep_for(std::chrono::milliseconds(5));
    EXPECT_EQ(before, openDescriptors());
}

TEST_F(TcpBusTest, ReopensAfterCloseWithoutANewInit)
{
    openBus();
    EXPECT_TRUE(bus.close());
    EXPECT_EQ(IMessageBus::OS_OK, bus.open());
    EXPECT_TRUE(server.waitForConnections(2, 2000));
}

TEST_F(TcpBusTest, WriteSendsEveryByte)
{
    openBus();
    EXPECT_EQ(IMessageBus::WS_OK, bus.write(bytes("ATI\r0100\r")));
    ASSERT_TRUE(server.waitForCommands(2, 2000));
    EXPECT_EQ((std::vector<std::string>{"ATI", "0100"}), server.commands());
}

TEST_F(TcpBusTest, WriteOfNothingSucceeds)
{
    openBus();
    EXPECT_EQ(IMessageBus::WS_OK, bus.write(Bytes()));
}

TEST_F(TcpBusTest, ReadTimesOutAfterHalfASecondAndLeavesTheBufferAlone)
{
    openBus();
    Bytes buffer = bytes("kept");
    auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(IMessageBus::RS_TIMEOUT, bus.read(buffer));
    long long elapsed = millisecondsSince(start);
    EXPECT_GE(elapsed, 400);
    EXPECT_LE(elapsed, 2000);
    EXPECT_EQ("kept", text(buffer));
}

TEST_F(TcpBusTest, ReadAppendsToWhatIsAlreadyThere)
{
    openBus();
    server.push("41 0C ");
    Bytes buffer;
    ASSERT_EQ(IMessageBus::RS_OK, readSomething(bus, buffer));
    EXPECT_EQ("41 0C ", text(buffer));
    server.push("1A F8\r\r>");
    while (buffer.size() < 14 && readSomething(bus, buffer) == IMessageBus::RS_OK) {
    }
    EXPECT_EQ("41 0C 1A F8\r\r>", text(buffer));
}

TEST_F(TcpBusTest, OneReadTakesAtMost256Bytes)
{
    openBus();
    server.push(std::string(1000, 'A'));
    Bytes buffer;
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    ASSERT_EQ(IMessageBus::RS_OK, readSomething(bus, buffer));
    EXPECT_GT(buffer.size(), 0u);
    EXPECT_LE(buffer.size(), 256u);
    while (buffer.size() < 1000 && readSomething(bus, buffer) == IMessageBus::RS_OK) {
    }
    EXPECT_EQ(std::string(1000, 'A'), text(buffer));
}

TEST_F(TcpBusTest, NulAndHighBytesPassUntouched)
{
    openBus();
    const std::string raw("\0\xFC\xFE\r>", 5);
    server.push(raw);
    Bytes buffer;
    while (buffer.size() < raw.size() && readSomething(bus, buffer) == IMessageBus::RS_OK) {
    }
    EXPECT_EQ(raw, text(buffer));
}

TEST_F(TcpBusTest, PeerCloseGivesDisconnected)
{
    openBus();
    server.disconnect();
    Bytes buffer;
    EXPECT_EQ(IMessageBus::RS_DISCONNECTED, readSomething(bus, buffer));
    EXPECT_TRUE(buffer.empty());
}

TEST_F(TcpBusTest, WritingToAPeerThatHungUpFailsWithoutKillingTheProcess)
{
    openBus();
    server.disconnect();
    Bytes buffer;
    ASSERT_EQ(IMessageBus::RS_DISCONNECTED, readSomething(bus, buffer));
    // The first send may still be accepted locally; the reset makes a later one fail.
    IMessageBus::WriteStatus status = IMessageBus::WS_OK;
    for (int i = 0; i < 20 && status == IMessageBus::WS_OK; ++i) {
        status = bus.write(bytes("0100\r"));
        std::this_thread::sleep_for(std::chrono::milliseconds(20));
    }
    EXPECT_EQ(IMessageBus::WS_ERROR, status);
    EXPECT_FALSE(bus.errorString().empty());
}
