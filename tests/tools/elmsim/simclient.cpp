#include "simclient.h"

#include <arpa/inet.h>
#include <cerrno>
#include <chrono>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

SimClient::~SimClient()
{
    close();
}

bool SimClient::connectTo(unsigned short port)
{
    close();
    m_fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (m_fd < 0)
        return false;
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (::connect(m_fd, reinterpret_cast<sockaddr*>(&address), sizeof(address)) != 0) {
        close();
        return false;
    }
    const int on = 1;
    ::setsockopt(m_fd, IPPROTO_TCP, TCP_NODELAY, &on, sizeof(on));
    return true;
}

void SimClient::close()
{
    if (m_fd >= 0)
        ::close(m_fd);
    m_fd = -1;
    m_pending.clear();
}

bool SimClient::sendRaw(const std::string& bytes)
{
    if (m_fd < 0)
        return false;
    return ::send(m_fd, bytes.data(), bytes.size(), MSG_NOSIGNAL) == static_cast<ssize_t>(bytes.size());
}

std::string SimClient::readUntil(const std::string& terminator, int timeoutMs)
{
    using Clock = std::chrono::steady_clock;
    const Clock::time_point end = Clock::now() + std::chrono::milliseconds(timeoutMs);
    for (;;) {
        const size_t found = m_pending.find(terminator);
        if (found != std::string::npos) {
            const std::string reply = m_pending.substr(0, found + terminator.size());
            m_pending.erase(0, found + terminator.size());
            return reply;
        }
        const auto left = std::chrono::duration_cast<std::chrono::milliseconds>(end - Clock::now()).count();
        if (left <= 0 || m_fd < 0)
            break;
        pollfd p{ m_fd, POLLIN, 0 };
        if (::poll(&p, 1, static_cast<int>(left)) <= 0)
            break;
        char buffer[4096];
        const ssize_t n = ::recv(m_fd, buffer, sizeof(buffer), 0);
        if (n <= 0)
            break;
        m_pending.append(buffer, static_cast<size_t>(n));
    }
    std::string partial;
    partial.swap(m_pending);
    return partial;
}

std::string SimClient::exchange(const std::string& command, int timeoutMs)
{
    if (!sendRaw(command + "\r"))
        return std::string();
    return readUntil(">", timeoutMs);
}

bool SimClient::waitClosed(int timeoutMs)
{
    if (m_fd < 0)
        return true;
    pollfd p{ m_fd, POLLIN, 0 };
    if (::poll(&p, 1, timeoutMs) <= 0)
        return false;
    char byte;
    return ::recv(m_fd, &byte, 1, MSG_PEEK) == 0;
}
