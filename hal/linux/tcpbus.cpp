#include "tcpbus.h"

#include <arpa/inet.h>
#include <netdb.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cassert>
#include <cerrno>
#include <chrono>
#include <cstring>

namespace Obd {

namespace {

const int POLL_PERIOD_MS = 500;
const size_t CHUNK_SIZE = 256;

} // namespace

TcpBus::TcpBus()
    : socket_(-1)
    , lastError_(0)
{
    std::memset(&address_, 0, sizeof(address_));
}

TcpBus::~TcpBus()
{
    close();
}

bool TcpBus::init(const std::string& host, unsigned int port)
{
    assert(socket_ == -1 && "socket_ == -1");

    // The reentrant form: the opening thread may resolve while others log or resolve.
    struct hostent entry;
    struct hostent* result = nullptr;
    char scratch[2048];
    int resolveError = 0;
    if (gethostbyname_r(host.c_str(), &entry, scratch, sizeof(scratch), &result, &resolveError) != 0
        || !result || result->h_addrtype != AF_INET || !result->h_addr_list
        || !result->h_addr_list[0] || result->h_length <= 0
        || static_cast<size_t>(result->h_length) > sizeof(address_.sin_addr))
        return false;

    std::memcpy(&address_.sin_addr, result->h_addr_list[0], result->h_length);
    address_.sin_family = AF_INET;
    address_.sin_port = htons(static_cast<uint16_t>(port & 0xFFFF));
    return true;
}

IMessageBus::OpenStatus TcpBus::open()
{
    assert(socket_ == -1 && "socket_ == -1");

    socket_ = ::socket(AF_INET, SOCK_STREAM, 0);
    if (socket_ < 0) {
        lastError_ = errno;
        return OS_SOCKET_FAILED;
    }
    if (::connect(socket_, reinterpret_cast<const struct sockaddr*>(&address_), sizeof(address_))
        != 0) {
        lastError_ = errno;
        close();
        if (lastError_ == EHOSTDOWN)
            return OS_HOST_DOWN;
        if (lastError_ == ECONNREFUSED)
            return OS_CONNECTION_REFUSED;
        return OS_ERROR;
    }
    return OS_OK;
}

bool TcpBus::close()
{
    if (socket_ == -1)
        return true;
    int result = ::close(socket_);
    socket_ = -1;
    return result == 0;
}

IMessageBus::ReadStatus TcpBus::read(std::vector<unsigned char>& buffer)
{
    assert(socket_ != -1 && "socket_ != -1");

    // poll rather than select: no FD_SETSIZE limit on the descriptor.
    struct pollfd watch = { socket_, POLLIN, 0 };
    int ready = ::poll(&watch, 1, POLL_PERIOD_MS);
    if (ready == 0 || (ready < 0 && errno == EINTR))
        return RS_TIMEOUT;

    // Never blocks: a failed poll falls through to here without stalling the read task.
    unsigned char chunk[CHUNK_SIZE];
    ssize_t received = ::recv(socket_, chunk, sizeof(chunk), MSG_DONTWAIT);
    if (received < 0) {
        if (errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR)
            return RS_TIMEOUT;
        lastError_ = errno;
        return RS_ERROR;
    }
    if (received == 0)
        return RS_DISCONNECTED;
    buffer.insert(buffer.end(), chunk, chunk + received);
    return RS_OK;
}

IMessageBus::WriteStatus TcpBus::write(const std::vector<unsigned char>& data)
{
    assert(socket_ != -1 && "socket_ != -1");

    typedef std::chrono::steady_clock Clock;
    const Clock::time_point deadline = Clock::now() + std::chrono::milliseconds(POLL_PERIOD_MS);
    size_t sent = 0;
    while (sent < data.size()) {
        // Try first and wait only when the socket is full: one system call per command.
        // MSG_NOSIGNAL: a peer that hung up must give an error, not kill the process.
        ssize_t count = ::send(socket_, data.data() + sent, data.size() - sent,
                               MSG_NOSIGNAL | MSG_DONTWAIT);
        if (count >= 0) {
            sent += static_cast<size_t>(count);
            continue;
        }
        if (errno == EINTR)
            continue;
        if (errno != EAGAIN && errno != EWOULDBLOCK) {
            lastError_ = errno;
            return WS_ERROR;
        }
        long long left = std::chrono::duration_cast<std::chrono::milliseconds>(
                             deadline - Clock::now()).count();
        if (left <= 0)
            return WS_TIMEOUT;
        struct pollfd watch = { socket_, POLLOUT, 0 };
        int ready = ::poll(&watch, 1, static_cast<int>(left));
        if (ready == 0)
            return WS_TIMEOUT;
    }
    return WS_OK;
}

std::string TcpBus::errorString() const
{
    return std::string(std::strerror(lastError_));
}

} // namespace Obd
