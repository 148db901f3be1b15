#include "simclient.h"

#include <arpa/inet.h>
#include <cctype>
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
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (m_fd < 0 || ::connect(m_fd, reinterpret_cast<sockaddr*>(&address), sizeof(address)) != 0) {
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
    return m_fd >= 0 && ::send(m_fd, bytes.data(), bytes.size(), MSG_NOSIGNAL) == ssize_t(bytes.size());
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
        pollfd p{ m_fd, POLLIN, 0 };
        char buffer[4096];
        ssize_t n = 0;
        if (left <= 0 || m_fd < 0 || ::poll(&p, 1, int(left)) <= 0
            || (n = ::recv(m_fd, buffer, sizeof(buffer), 0)) <= 0)
            break;
        m_pending.append(buffer, size_t(n));
    }
    std::string partial;
    partial.swap(m_pending);
    return partial;
}

std::string SimClient::exchange(const std::string& command, int timeoutMs)
{
    return sendRaw(command + "\r") ? readUntil(">", timeoutMs) : std::string();
}

bool SimClient::waitClosed(int timeoutMs)
{
    pollfd p{ m_fd, POLLIN, 0 };
    char byte;
    return m_fd < 0 || (::poll(&p, 1, timeoutMs) > 0 && ::recv(m_fd, &byte, 1, MSG_PEEK) == 0);
}

::testing::AssertionResult SimRig::open(const std::vector<std::string>& setup, bool echoOff)
{
    if (!server.start())
        return ::testing::AssertionFailure() << server.errorString();
    if (!client.connectTo(server.port()))
        return ::testing::AssertionFailure() << "cannot connect";
    std::string reply;
    if (echoOff && (reply = client.exchange("ATE0")) != "ATE0\rOK\r\r>")
        return ::testing::AssertionFailure() << "ATE0 answered " << reply;
    for (const std::string& command : setup)
        if ((reply = client.exchange(command)) != "OK\r\r>")
            return ::testing::AssertionFailure() << command << " answered " << reply;
    return ::testing::AssertionSuccess();
}

std::string testName(const char* description)
{
    std::string name;
    for (const char* c = description; *c; ++c)
        name.push_back(std::isalnum(static_cast<unsigned char>(*c)) ? *c : '_');
    return name;
}
