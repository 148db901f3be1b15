#include "descriptorbus.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>

namespace Obd {

namespace {

const int POLL_PERIOD_MS = 500;
const size_t CHUNK_SIZE = 256;

typedef std::chrono::steady_clock Clock;

int millisecondsUntil(Clock::time_point deadline)
{
    long long left = std::chrono::duration_cast<std::chrono::milliseconds>(
                         deadline - Clock::now()).count();
    return left > 0 ? static_cast<int>(left) : 0;
}

} // namespace

BusInterrupt::BusInterrupt()
    : m_fd(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK))
    , m_raised(false)
{
}

BusInterrupt::~BusInterrupt()
{
    if (m_fd != -1)
        ::close(m_fd);
}

void BusInterrupt::raise()
{
    m_raised = true;
    // Never read back: the descriptor stays readable and ends every later wait too.
    if (m_fd != -1) {
        const uint64_t one = 1;
        [[maybe_unused]] ssize_t n = ::write(m_fd, &one, sizeof(one));
    }
}

DescriptorBus::DescriptorBus()
    : fd_(-1)
    , lastError_(0)
    , socket_(false)
{
}

DescriptorBus::~DescriptorBus()
{
    close();
}

bool DescriptorBus::close()
{
    if (fd_ == -1)
        return true;
    int result = ::close(fd_);
    fd_ = -1;
    return result == 0;
}

void DescriptorBus::adopt(int fd, bool socket)
{
    fd_ = fd;
    socket_ = socket;
    ::fcntl(fd_, F_SETFL, ::fcntl(fd_, F_GETFL) | O_NONBLOCK);
}

IMessageBus::OpenStatus DescriptorBus::fail(int error)
{
    lastError_ = error;
    close();
    switch (error) {
    case EHOSTDOWN:
    // Nobody answered within the bound, or no device is there: the adapter is off.
    case ETIMEDOUT:
    case ENOENT:
    case ENODEV:
    case ENXIO:
        return OS_HOST_DOWN;
    case ECONNREFUSED:
        return OS_CONNECTION_REFUSED;
    default:
        return OS_ERROR;
    }
}

int DescriptorBus::wait(short events, int timeoutMs)
{
    if (interrupt_ && interrupt_->raised()) {
        lastError_ = ECANCELED;
        return -1;
    }
    // poll rather than select: no FD_SETSIZE limit on the descriptor.
    struct pollfd watch[2] = { { fd_, events, 0 },
                               { interrupt_ ? interrupt_->descriptor() : -1, POLLIN, 0 } };
    int ready = ::poll(watch, 2, timeoutMs);
    if (interrupt_ && interrupt_->raised()) {
        lastError_ = ECANCELED;
        return -1;
    }
    if (ready < 0 && errno != EINTR) {
        lastError_ = errno;
        return -1;
    }
    // A hang-up or error shows in the read or write that follows.
    return ready > 0 && watch[0].revents != 0 ? 1 : 0;
}

ssize_t DescriptorBus::receive(unsigned char* data, size_t size)
{
    return socket_ ? ::recv(fd_, data, size, MSG_DONTWAIT) : ::read(fd_, data, size);
}

ssize_t DescriptorBus::send(const unsigned char* data, size_t size)
{
    // MSG_NOSIGNAL: a peer that hung up must give an error, not kill the process.
    // A terminal raises no SIGPIPE.
    return socket_ ? ::send(fd_, data, size, MSG_NOSIGNAL | MSG_DONTWAIT) : ::write(fd_, data, size);
}

IMessageBus::OpenStatus DescriptorBus::connectSocket(int domain, int protocol,
                                                     const struct sockaddr* address,
                                                     socklen_t length, int timeoutMs)
{
    if (interrupt_ && interrupt_->raised())
        return fail(ECANCELED);
    int fd = ::socket(domain, SOCK_STREAM | SOCK_NONBLOCK | SOCK_CLOEXEC, protocol);
    if (fd < 0) {
        lastError_ = errno;
        return OS_SOCKET_FAILED;
    }
    adopt(fd, true);
    if (::connect(fd_, address, length) == 0)
        return OS_OK;
    if (errno != EINPROGRESS && errno != EINTR)
        return fail(errno);
    // The kernel would retry an unanswered connect for minutes.
    const Clock::time_point deadline = Clock::now() + std::chrono::milliseconds(timeoutMs);
    for (;;) {
        const int left = millisecondsUntil(deadline);
        if (left == 0)
            return fail(ETIMEDOUT);
        const int ready = wait(POLLOUT, left);
        if (ready < 0)
            return fail(lastError_);
        if (ready == 0)
            continue;
        int error = 0;
        socklen_t size = sizeof(error);
        if (::getsockopt(fd_, SOL_SOCKET, SO_ERROR, &error, &size) != 0)
            error = errno;
        return error == 0 ? OS_OK : fail(error);
    }
}

IMessageBus::ReadStatus DescriptorBus::read(std::vector<unsigned char>& buffer)
{
    const int ready = wait(POLLIN, POLL_PERIOD_MS);
    if (ready < 0)
        return RS_ERROR;
    if (ready == 0)
        return RS_TIMEOUT;

    // Never blocks: the descriptor is non-blocking.
    unsigned char chunk[CHUNK_SIZE];
    ssize_t received = receive(chunk, sizeof(chunk));
    if (received < 0) {
        if (errno == EAGAIN || errno == EWOULDBLOCK || errno == EINTR)
            return RS_TIMEOUT;
        lastError_ = errno;
        // A terminal whose device went away (unplugged, other end of a pty closed).
        if (!socket_ && errno == EIO)
            return RS_DISCONNECTED;
        return RS_ERROR;
    }
    if (received == 0)
        return RS_DISCONNECTED;
    buffer.insert(buffer.end(), chunk, chunk + received);
    return RS_OK;
}

IMessageBus::WriteStatus DescriptorBus::write(const std::vector<unsigned char>& data)
{
    const Clock::time_point deadline = Clock::now() + std::chrono::milliseconds(POLL_PERIOD_MS);
    size_t sent = 0;
    while (sent < data.size()) {
        if (interrupt_ && interrupt_->raised()) {
            lastError_ = ECANCELED;
            return WS_ERROR;
        }
        // Try first and wait only when the descriptor is full: one system call per command.
        ssize_t count = send(data.data() + sent, data.size() - sent);
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
        const int left = millisecondsUntil(deadline);
        if (left == 0)
            return WS_TIMEOUT;
        const int ready = wait(POLLOUT, left);
        if (ready < 0)
            return WS_ERROR;
        if (ready == 0 && millisecondsUntil(deadline) == 0)
            return WS_TIMEOUT;
    }
    return WS_OK;
}

std::string DescriptorBus::errorString() const
{
    return std::string(std::strerror(lastError_));
}

} // namespace Obd
