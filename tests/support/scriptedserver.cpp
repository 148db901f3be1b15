#include "scriptedserver.h"

#include <arpa/inet.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <poll.h>
#include <sys/eventfd.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <cstring>

ScriptedServer::Reply& ScriptedServer::Reply::send(const std::string& bytes)
{
    m_steps.push_back(Step{Step::Send, bytes, 0});
    return *this;
}

ScriptedServer::Reply& ScriptedServer::Reply::pause(int ms)
{
    m_steps.push_back(Step{Step::Pause, std::string(), ms});
    return *this;
}

ScriptedServer::Reply& ScriptedServer::Reply::close()
{
    m_steps.push_back(Step{Step::Close, std::string(), 0});
    return *this;
}

ScriptedServer::Reply ScriptedServer::reply(const std::string& bytes)
{
    return Reply().send(bytes);
}

ScriptedServer::Reply ScriptedServer::answer(const std::string& text)
{
    return Reply().send(text + "\r\r>");
}

ScriptedServer::Reply ScriptedServer::chunks(const std::vector<std::string>& parts, int pauseMs)
{
    Reply r;
    for (size_t i = 0; i < parts.size(); ++i) {
        if (i > 0)
            r.pause(pauseMs);
        r.send(parts[i]);
    }
    return r;
}

ScriptedServer::Reply ScriptedServer::silence()
{
    return Reply();
}

ScriptedServer::Reply ScriptedServer::hangUp()
{
    return Reply().close();
}

ScriptedServer::ScriptedServer()
{
    m_default = answer("?");
    m_wakeFd = ::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
    int fd = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (fd < 0)
        return;
    int yes = 1;
    ::setsockopt(fd, SOL_SOCKET, SO_REUSEADDR, &yes, sizeof(yes));
    struct sockaddr_in address;
    std::memset(&address, 0, sizeof(address));
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    address.sin_port = 0;
    socklen_t length = sizeof(address);
    if (::bind(fd, reinterpret_cast<struct sockaddr*>(&address), sizeof(address)) != 0
        || ::listen(fd, 4) != 0
        || ::getsockname(fd, reinterpret_cast<struct sockaddr*>(&address), &length) != 0) {
        ::close(fd);
        return;
    }
    m_listenFd = fd;
    m_port = ntohs(address.sin_port);
    m_thread = std::thread(&ScriptedServer::run, this);
}

ScriptedServer::~ScriptedServer()
{
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_stopping = true;
    }
    wake();
    if (m_thread.joinable())
        m_thread.join();
    if (m_clientFd != -1)
        ::close(m_clientFd);
    if (m_listenFd != -1)
        ::close(m_listenFd);
    if (m_wakeFd != -1)
        ::close(m_wakeFd);
}

void ScriptedServer::on(const std::string& command, const Reply& reply)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_rules[command] = reply;
}

void ScriptedServer::once(const std::string& command, const Reply& reply)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_once[command].push_back(reply);
}

void ScriptedServer::onAnything(const Reply& reply)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_default = reply;
}

void ScriptedServer::push(const std::string& bytes)
{
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_actions.push_back(Action{false, bytes});
    }
    wake();
}

void ScriptedServer::disconnect()
{
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_actions.push_back(Action{true, std::string()});
    }
    wake();
}

std::vector<std::string> ScriptedServer::commands() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_commands;
}

size_t ScriptedServer::commandCount() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_commands.size();
}

void ScriptedServer::clearCommands()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_commands.clear();
}

template <typename Predicate>
bool ScriptedServer::waitUntil(int timeoutMs, Predicate predicate) const
{
    std::unique_lock<std::mutex> lock(m_mutex);
    return m_changed.wait_for(lock, std::chrono::milliseconds(timeoutMs), predicate);
}

bool ScriptedServer::waitForCommands(size_t count, int timeoutMs) const
{
    return waitUntil(timeoutMs, [&] { return m_commands.size() >= count; });
}

size_t ScriptedServer::repliesDone() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_repliesDone;
}

bool ScriptedServer::waitForReplies(size_t count, int timeoutMs) const
{
    return waitUntil(timeoutMs, [&] { return m_repliesDone >= count; });
}

size_t ScriptedServer::connectionCount() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_connections;
}

bool ScriptedServer::waitForConnections(size_t count, int timeoutMs) const
{
    return waitUntil(timeoutMs, [&] { return m_connections >= count; });
}

void ScriptedServer::wake()
{
    if (m_wakeFd == -1)
        return;
    uint64_t one = 1;
    ssize_t ignored = ::write(m_wakeFd, &one, sizeof(one));
    (void)ignored;
}

void ScriptedServer::run()
{
    for (;;) {
        std::deque<Action> actions;
        {
            std::lock_guard<std::mutex> lock(m_mutex);
            if (m_stopping)
                return;
            actions.swap(m_actions);
        }
        for (const Action& action : actions) {
            if (m_clientFd == -1)
                continue;
            if (action.disconnect)
                dropClient();
            else
                sendAll(action.bytes);
        }

        struct pollfd watch[2];
        watch[0] = { m_wakeFd, POLLIN, 0 };
        // While a client is served the next one waits in the backlog.
        watch[1] = { m_clientFd != -1 ? m_clientFd : m_listenFd, POLLIN, 0 };
        int ready = ::poll(watch, 2, 1000);
        if (ready <= 0)
            continue;
        if (watch[0].revents) {
            uint64_t count;
            ssize_t ignored = ::read(m_wakeFd, &count, sizeof(count));
            (void)ignored;
        }
        if (!watch[1].revents)
            continue;

        if (m_clientFd == -1) {
            int fd = ::accept4(m_listenFd, nullptr, nullptr, SOCK_CLOEXEC);
            if (fd < 0)
                continue;
            int yes = 1;
            ::setsockopt(fd, IPPROTO_TCP, TCP_NODELAY, &yes, sizeof(yes));
            m_clientFd = fd;
            m_lineBuffer.clear();
            std::lock_guard<std::mutex> lock(m_mutex);
            ++m_connections;
            m_changed.notify_all();
            continue;
        }

        char chunk[4096];
        ssize_t received = ::recv(m_clientFd, chunk, sizeof(chunk), 0);
        if (received <= 0) {
            if (received < 0 && errno == EINTR)
                continue;
            dropClient();
            continue;
        }
        m_lineBuffer.append(chunk, static_cast<size_t>(received));
        size_t end;
        while (m_clientFd != -1 && (end = m_lineBuffer.find('\r')) != std::string::npos) {
            std::string line;
            line.reserve(end);
            for (size_t i = 0; i < end; ++i) {
                if (m_lineBuffer[i] != '\n')
                    line += m_lineBuffer[i];
            }
            m_lineBuffer.erase(0, end + 1);
            handleLine(line);
        }
    }
}

void ScriptedServer::handleLine(const std::string& line)
{
    Reply reply;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_commands.push_back(line);
        auto queued = m_once.find(line);
        if (queued != m_once.end() && !queued->second.empty()) {
            reply = queued->second.front();
            queued->second.pop_front();
        } else {
            auto rule = m_rules.find(line);
            reply = rule != m_rules.end() ? rule->second : m_default;
        }
        m_changed.notify_all();
    }
    play(reply);
    std::lock_guard<std::mutex> lock(m_mutex);
    ++m_repliesDone;
    m_changed.notify_all();
}

void ScriptedServer::play(const Reply& reply)
{
    for (const Reply::Step& step : reply.m_steps) {
        if (m_clientFd == -1)
            return;
        switch (step.kind) {
        case Reply::Step::Send:
            sendAll(step.bytes);
            break;
        case Reply::Step::Pause: {
            // In slices, so that a test ending mid-pause is not held up.
            auto until = std::chrono::steady_clock::now() + std::chrono::milliseconds(step.ms);
            while (std::chrono::steady_clock::now() < until) {
                {
                    std::lock_guard<std::mutex> lock(m_mutex);
                    if (m_stopping)
                        return;
                }
                auto left = std::chrono::duration_cast<std::chrono::milliseconds>(
                    until - std::chrono::steady_clock::now());
                std::this_thread::sleep_for(
                    std::min(left, std::chrono::milliseconds(20)));
            }
            break;
        }
        case Reply::Step::Close:
            dropClient();
            break;
        }
    }
}

bool ScriptedServer::sendAll(const std::string& bytes)
{
    size_t sent = 0;
    while (sent < bytes.size() && m_clientFd != -1) {
        ssize_t count = ::send(m_clientFd, bytes.data() + sent, bytes.size() - sent,
                               MSG_NOSIGNAL | MSG_DONTWAIT);
        if (count >= 0) {
            sent += static_cast<size_t>(count);
            continue;
        }
        if (errno == EINTR)
            continue;
        if (errno != EAGAIN && errno != EWOULDBLOCK) {
            dropClient();
            return false;
        }
        // A client that does not read must not keep the destructor waiting.
        {
            std::lock_guard<std::mutex> lock(m_mutex);
            if (m_stopping)
                return false;
        }
        struct pollfd watch = { m_clientFd, POLLOUT, 0 };
        ::poll(&watch, 1, 50);
    }
    return sent == bytes.size();
}

void ScriptedServer::dropClient()
{
    if (m_clientFd == -1)
        return;
    ::close(m_clientFd);
    m_clientFd = -1;
    m_lineBuffer.clear();
}
