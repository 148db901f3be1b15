#include "socketlink.h"

#include <cerrno>
#include <chrono>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

namespace ElmSim {

SocketLink::SocketLink(int socketFd, int wakeFd)
    : m_socketFd(socketFd)
    , m_wakeFd(wakeFd)
    , m_failed(false)
{
}

void SocketLink::send(const std::string& text)
{
    size_t sent = 0;
    while (sent < text.size() && !m_failed) {
        ssize_t n = ::send(m_socketFd, text.data() + sent, text.size() - sent, MSG_NOSIGNAL);
        if (n < 0 && errno == ENOTSOCK)
            n = ::write(m_socketFd, text.data() + sent, text.size() - sent);
        if (n < 0) {
            if (errno == EINTR)
                continue;
            m_failed = true;
            return;
        }
        sent += static_cast<size_t>(n);
    }
}

bool SocketLink::pause(unsigned int ms)
{
    using Clock = std::chrono::steady_clock;
    const Clock::time_point end = Clock::now() + std::chrono::milliseconds(ms);
    for (;;) {
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
        if (left <= 0)
            return true;
        pollfd wake{ m_wakeFd, POLLIN, 0 };
        const int ready = ::poll(&wake, 1, static_cast<int>(left));
        if (ready > 0)
            return false;
        if (ready < 0 && errno != EINTR)
            return false;
    }
}

} // namespace ElmSim
