#include "fakeconnection.h"

#include <chrono>

void FakeConnection::addReply(const std::string& command, const std::string& reply,
                              const std::string& late)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_scripts[command].push_back(Reply{reply, late});
}

void FakeConnection::setReply(const std::string& command, const std::string& reply,
                              const std::string& late)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_scripts[command] = std::deque<Reply>(1, Reply{reply, late});
}

void FakeConnection::push(const std::string& message)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_arrived.push_back(message);
}

void FakeConnection::setReplyDelayMs(unsigned int delayMs)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_delayMs = delayMs;
}

std::vector<std::string> FakeConnection::written() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_written;
}

void FakeConnection::clearWritten()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_written.clear();
}

size_t FakeConnection::pending() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_arrived.size();
}

unsigned char FakeConnection::delimiter() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_delimiter;
}

Obd::IMessageBus::OpenStatus FakeConnection::open(Obd::IDisconnectListener*)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_connected = true;
    return Obd::IMessageBus::OS_OK;
}

void FakeConnection::close()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_connected = false;
    m_closed.notify_all();
}

bool FakeConnection::isConnected() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_connected;
}

int FakeConnection::write(const std::vector<unsigned char>& data)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    if (!m_connected)
        return 1;
    const std::string line(data.begin(), data.end());
    m_written.push_back(line);
    auto script = m_scripts.find(line.substr(0, line.find('\r')));
    if (script == m_scripts.end() || script->second.empty())
        return 0;
    const Reply reply = script->second.front();
    if (script->second.size() > 1)
        script->second.pop_front();
    if (!reply.now.empty())
        m_arrived.push_back(reply.now);
    if (!reply.late.empty())
        m_late.push_back(reply.late);
    return 0;
}

int FakeConnection::read(std::vector<unsigned char>& message, unsigned int timeoutMs)
{
    std::unique_lock<std::mutex> lock(m_mutex);
    // The slow adapter's wait ends early when the link goes.
    if (m_connected && timeoutMs > 0 && m_delayMs > 0 && !m_arrived.empty())
        m_closed.wait_for(lock, std::chrono::milliseconds(m_delayMs), [this] { return !m_connected; });
    if (!m_connected)
        return 2;
    if (m_arrived.empty()) {
        if (timeoutMs > 0 && !m_late.empty()) {
            m_arrived.push_back(m_late.front());
            m_late.pop_front();
        }
        return 1;
    }
    message.assign(m_arrived.front().begin(), m_arrived.front().end());
    m_arrived.pop_front();
    return 0;
}

void FakeConnection::setDelimiter(unsigned char delimiter)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_delimiter = delimiter;
}
