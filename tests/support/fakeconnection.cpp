#include "fakeconnection.h"

FakeConnection::FakeConnection()
    : m_connected(true)
{
}

FakeConnection::~FakeConnection()
{
}

void FakeConnection::addReply(const std::vector<unsigned char>& reply)
{
    m_replies.push_back(reply);
}

Obd::IMessageBus::OpenStatus FakeConnection::open(Obd::IDisconnectListener*)
{
    m_connected = true;
    return Obd::IMessageBus::OS_OK;
}

void FakeConnection::close()
{
    m_connected = false;
}

bool FakeConnection::isConnected() const
{
    return m_connected;
}

int FakeConnection::write(const std::vector<unsigned char>& data)
{
    if (!m_connected)
        return 1;
    m_written.push_back(std::string(data.begin(), data.end()));
    return 0;
}

int FakeConnection::read(std::vector<unsigned char>& message, unsigned int timeoutMs)
{
    if (!m_connected)
        return 2;
    // A zero wait is the drain before each command: the reply comes after it.
    if (timeoutMs == 0 || m_replies.empty())
        return 1;
    message = m_replies.front();
    m_replies.pop_front();
    return 0;
}

void FakeConnection::setDelimiter(unsigned char)
{
}

std::string FakeConnection::errorString() const
{
    return std::string();
}

void FakeConnection::addLogger(Obd::ILogger*)
{
}

void FakeConnection::removeLogger(Obd::ILogger*)
{
}
