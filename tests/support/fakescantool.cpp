#include "fakescantool.h"

#include <algorithm>

FakeScantool::FakeScantool(unsigned int protocol, bool headersOn, bool initialized)
{
    // ATDPN digit of each protocol class, unknown last.
    static const char DIGITS[] = "352670";
    m_link.setReply("ATDPN", std::string(1, DIGITS[std::min(protocol, 5u)]));
    m_link.setReply("ATDP", "FAKE");
    for (const char* setting : {"ATE0", "ATL0", "ATTP0", "ATH1", "ATH0", "ATD1"})
        m_link.setReply(setting, "OK");
    setConnection(&m_link);
    if (initialized) {
        // An empty prompt for each of the two drains of initialize().
        m_link.push(">");
        m_link.push(">");
        initialize(0);
    }
    identifyProtocol();
    if (headersOn)
        setHeadersOn();
    m_link.clearWritten();
}

std::vector<std::string> FakeScantool::commands() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_commands;
}

std::vector<unsigned int> FakeScantool::timeouts() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_timeouts;
}

size_t FakeScantool::commandCount(const std::string& command) const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return static_cast<size_t>(std::count(m_commands.begin(), m_commands.end(), command));
}

void FakeScantool::clearRecord()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_commands.clear();
    m_timeouts.clear();
}

void FakeScantool::record(const std::string& command, unsigned int timeoutMs)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_commands.push_back(command);
    m_timeouts.push_back(timeoutMs);
}

bool FakeScantool::sendCommand(const std::vector<unsigned char>& command,
                               std::vector<unsigned char>& response, unsigned int timeoutMs)
{
    record(std::string(command.begin(), command.end()), timeoutMs);
    return ElmScantool::sendCommand(command, response, timeoutMs);
}

bool FakeScantool::sendObdCommand(const std::string& command, std::string& response,
                                  unsigned int timeoutMs)
{
    record(command, timeoutMs);
    return ElmScantool::sendObdCommand(command, response, timeoutMs);
}
