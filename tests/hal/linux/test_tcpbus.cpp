#include "eventually.h"
#include "resourcebaseline.h"
#include "tcpbus.h"

#include <gtest/gtest.h>

#include <arpa/inet.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstring>
#include <string>

using namespace Obd;

namespace {

typedef std::vector<unsigned char> Bytes;

// A listening loopback socket; the test accepts and plays the adapter's end itself.
struct Peer
{
    Peer()
        : listener(::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0))
    {
        struct sockaddr_in address = {};
        address.sin_family = AF_INET;
        address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
        socklen_t length = sizeof(address);
        ::bind(listener, reinterpret_cast<struct sockaddr*>(&address), sizeof(address));
        ::listen(listener, 4);
        ::getsockname(listener, reinterpret_cast<struct sockaddr*>(&address), &length);
        port = ntohs(address.sin_port);
    }
    ~Peer() { hangUp(), ::close(listener); }
    bool accept()
    {
        hangUp();
        fd = ::accept4(listener, nullptr, nullptr, SOCK_CLOEXEC);
        const struct timeval limit = {10, 0};
        return fd >= 0 && ::setsockopt(fd, SOL_SOCKET, SO_RCVTIMEO, &limit, sizeof(limit)) == 0;
    }
    void hangUp()
    {
        if (fd >= 0)
            ::close(fd);
        fd = -1;
    }

    int listener;
    int fd = -1;
    unsigned short port;
};

class TcpBusTest : public ::testing::Test
{
protected:
    void SetUp() override
    {
        ASSERT_TRUE(bus.init("127.0.0.1", peer.port));
        ASSERT_EQ(IMessageBus::OS_OK, bus.open());
        ASSERT_TRUE(peer.accept());
    }

    Peer peer;
    TcpBus bus;
};

} // namespace

TEST(TcpBusSetUp, HostsResolveOrNot)
{
    const struct { const char* host; bool resolves; } rows[] = {
        {"no-such-adapter.invalid", false}, {"", false}, {"192.168.0.10", true}, {"localhost", true}};
    for (const auto& row : rows) {
        TcpBus bus;
        EXPECT_EQ(row.resolves, bus.init(row.host, 35000)) << row.host;
        EXPECT_FALSE(bus.isOpen());
    }
}

TEST(TcpBusSetUp, OpeningAndClosingLeaveNoDescriptorBehind)
{
    unsigned short deadPort;
    {
        Peer gone;
        deadPort = gone.port;
    }
    Peer peer;
    TcpBus refused, bus;
    EXPECT_TRUE(bus.close()) << "closing a closed bus";
    ASSERT_TRUE(refused.init("127.0.0.1", deadPort));
    ASSERT_TRUE(bus.init("127.0.0.1", 0x10000u + peer.port)) << "only the low sixteen bits count";
    const int before = ResourceBaseline::openDescriptors();
    for (int attempt = 0; attempt < 2; ++attempt) {
        EXPECT_EQ(IMessageBus::OS_CONNECTION_REFUSED, refused.open());
        EXPECT_FALSE(refused.isOpen());
        EXPECT_EQ(std::string(std::strerror(ECONNREFUSED)), refused.errorString());
        ASSERT_EQ(IMessageBus::OS_OK, bus.open());
        EXPECT_TRUE(peer.accept());
        EXPECT_TRUE(bus.close());
        EXPECT_TRUE(bus.close());
        EXPECT_FALSE(bus.isOpen());
    }
    peer.hangUp();
    EXPECT_EQ(before, ResourceBaseline::openDescriptors());
}

TEST_F(TcpBusTest, WriteSendsEveryByte)
{
    EXPECT_EQ(IMessageBus::WS_OK, bus.write(Bytes()));
    const std::string lines = "ATI\r0100\r";
    EXPECT_EQ(IMessageBus::WS_OK, bus.write(Bytes(lines.begin(), lines.end())));
    std::string got(lines.size(), '\0');
    EXPECT_EQ(static_cast<ssize_t>(got.size()), ::recv(peer.fd, &got[0], got.size(), MSG_WAITALL));
    EXPECT_EQ(lines, got);
}

TEST_F(TcpBusTest, ASilentPeerTimesTheReadOutAndLeavesTheBufferAlone)
{
    Bytes buffer{'k', 'e', 'p', 't'};
    EXPECT_EQ(IMessageBus::RS_TIMEOUT, bus.read(buffer));
    EXPECT_EQ("kept", std::string(buffer.begin(), buffer.end()));
}

TEST_F(TcpBusTest, ReadsAppendAtMost256BytesEachAndPassEveryByteValue)
{
    std::string sent = "kept";
    for (int i = 0; i < 1000; ++i)
        sent.push_back(static_cast<char>(i % 256));
    ASSERT_EQ(1000, ::send(peer.fd, sent.data() + 4, 1000, 0));
    Bytes buffer{'k', 'e', 'p', 't'};
    while (buffer.size() < sent.size()) {
        const size_t before = buffer.size();
        ASSERT_EQ(IMessageBus::RS_OK, bus.read(buffer));
        EXPECT_LE(buffer.size() - before, 256u);
    }
    EXPECT_EQ(sent, std::string(buffer.begin(), buffer.end()));
}

TEST_F(TcpBusTest, APeerThatHungUpIsSeenAndWritingToItFailsWithoutKillingTheProcess)
{
    peer.hangUp();
    Bytes buffer;
    EXPECT_EQ(IMessageBus::RS_DISCONNECTED, bus.read(buffer));
    EXPECT_TRUE(buffer.empty());
    // The first send may still be taken locally; the peer's reset fails a later one.
    EXPECT_TRUE(eventually([&] { return bus.write(Bytes{'0', '1', '0', '0', '\r'}) == IMessageBus::WS_ERROR; }));
    EXPECT_FALSE(bus.errorString().empty());
}
