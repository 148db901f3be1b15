#include "fakescantool.h"

#include <chrono>
#include <thread>

using namespace Obd;

FakeScantool::FakeScantool(unsigned int protocol, bool headersOn, bool initialized)
    : m_protocol(protocol)
    , m_identifiedProtocol(protocol)
    , m_hasIdentifiedProtocol(false)
    , m_protocolName("FAKE")
    , m_headersOn(headersOn)
    , m_initialized(initialized)
    , m_deviceInfo{"ELM327", "FAKE", "v1.5"}
    , m_defaultReply{std::string(), false}
    , m_delayMs(0)
{
}

FakeScantool::~FakeScantool()
{
}

void FakeScantool::setProtocol(unsigned int protocol)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_protocol = protocol;
}

void FakeScantool::setProtocolName(const std::string& name)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_protocolName = name;
}

void FakeScantool::setHeaders(bool on)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_headersOn = on;
}

void FakeScantool::setInitialized(bool initialized)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_initialized = initialized;
}

void FakeScantool::setDeviceInfo(const DeviceInfo& info)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_deviceInfo = info;
}

void FakeScantool::setResult(const std::string& operation, bool result)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_results[operation] = result;
}

void FakeScantool::setIdentifiedProtocol(unsigned int protocol)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_identifiedProtocol = protocol;
    m_hasIdentifiedProtocol = true;
}

void FakeScantool::addReply(const std::string& command, const std::string& text, bool ok)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_replies[command].push_back(Reply{text, ok});
}

void FakeScantool::setReply(const std::string& command, const std::string& text, bool ok)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_replies[command] = std::deque<Reply>(1, Reply{text, ok});
}

void FakeScantool::setDefaultReply(const std::string& text, bool ok)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_defaultReply = Reply{text, ok};
}

void FakeScantool::clearReplies()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_replies.clear();
}

void FakeScantool::setReplyDelayMs(unsigned int delayMs)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_delayMs = delayMs;
}

std::vector<std::string> FakeScantool::calls() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_calls;
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
    size_t n = 0;
    for (const std::string& c : m_commands)
        if (c == command)
            ++n;
    return n;
}

void FakeScantool::clearRecord()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_calls.clear();
    m_commands.clear();
    m_timeouts.clear();
}

bool FakeScantool::resultOf(const std::string& operation) const
{
    auto it = m_results.find(operation);
    return it == m_results.end() ? true : it->second;
}

void FakeScantool::record(const std::string& call)
{
    m_calls.push_back(call);
}

FakeScantool::Reply FakeScantool::take(const std::string& command, unsigned int timeoutMs)
{
    unsigned int delayMs = 0;
    Reply reply;
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_commands.push_back(command);
        m_timeouts.push_back(timeoutMs);
        auto it = m_replies.find(command);
        if (it == m_replies.end() || it->second.empty()) {
            reply = m_defaultReply;
        } else {
            reply = it->second.front();
            if (it->second.size() > 1)
                it->second.pop_front();
        }
        delayMs = m_delayMs;
    }
    if (delayMs)
        std::this_thread::sleep_for(std::chrono::milliseconds(delayMs));
    return reply;
}

std::string FakeScantool::clean(const std::string& text, bool removeSpaces)
{
    std::string out;
    out.reserve(text.size());
    for (char c : text) {
        if (c == '\0' || c == '\r' || c == '\n' || c == '>')
            continue;
        if (removeSpaces && c == ' ')
            continue;
        out.push_back(c);
    }
    return out;
}

bool FakeScantool::hasErrorWord(const std::string& cleanedWithoutSpaces)
{
    static const char* const WORDS[] = {"NODATA",  "UNABLETOCONNECT", "BUFFERFULL", "BUSBUSY",
                                        "BUSERROR", "CANERROR",       "DATAERROR",  "FBERROR",
                                        "LVRESET", "RXERROR",         "STOPPED",    "ERR"};
    std::string text = cleanedWithoutSpaces;
    size_t searching = text.find("SEARCHING...");
    if (searching != std::string::npos)
        text.erase(searching, 12);
    for (const char* word : WORDS)
        if (text.find(word) != std::string::npos)
            return true;
    return false;
}

void FakeScantool::setConnection(IConnection*)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    record("setConnection");
}

bool FakeScantool::checkDevice()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    record("checkDevice");
    return resultOf("checkDevice");
}

bool FakeScantool::setBaudRateTimeout()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    record("setBaudRateTimeout");
    return resultOf("setBaudRateTimeout");
}

bool FakeScantool::changeBaudRate(unsigned int baud)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    record("changeBaudRate " + std::to_string(baud));
    return resultOf("changeBaudRate");
}

bool FakeScantool::confirmBaudRate()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    record("confirmBaudRate");
    return resultOf("confirmBaudRate");
}

bool FakeScantool::reset()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    record("reset");
    return resultOf("reset");
}

void FakeScantool::sendReset()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    record("sendReset");
}

bool FakeScantool::identify()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    record("identify");
    return resultOf("identify");
}

bool FakeScantool::readDescription()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    record("readDescription");
    return resultOf("readDescription");
}

bool FakeScantool::initialize(unsigned int protocol)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    record("initialize " + std::to_string(protocol));
    m_initialized = resultOf("initialize");
    return m_initialized;
}

bool FakeScantool::identifyProtocol()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    record("identifyProtocol");
    bool ok = resultOf("identifyProtocol");
    if (ok && m_hasIdentifiedProtocol)
        m_protocol = m_identifiedProtocol;
    return ok;
}

bool FakeScantool::isInitialized() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_initialized;
}

bool FakeScantool::setHeadersOn()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    record("setHeadersOn");
    bool ok = resultOf("setHeadersOn");
    if (ok)
        m_headersOn = true;
    return ok;
}

bool FakeScantool::setDlcDisplayOn()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    record("setDlcDisplayOn");
    return resultOf("setDlcDisplayOn");
}

bool FakeScantool::setHeadersOff()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    record("setHeadersOff");
    bool ok = resultOf("setHeadersOff");
    if (ok)
        m_headersOn = false;
    return ok;
}

bool FakeScantool::isHeadersOn() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_headersOn;
}

bool FakeScantool::setTryProtocol(unsigned int protocol)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    record("setTryProtocol " + std::to_string(protocol));
    return resultOf("setTryProtocol");
}

DeviceInfo FakeScantool::getDeviceInfo() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_deviceInfo;
}

unsigned int FakeScantool::getProtocol() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_protocol;
}

std::string FakeScantool::getProtocolName() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_protocolName;
}

bool FakeScantool::sendCommand(const std::vector<unsigned char>& command,
                               std::vector<unsigned char>& response, unsigned int timeoutMs)
{
    std::string text(command.begin(), command.end());
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        record("sendCommand " + text);
    }
    Reply reply = take(text, timeoutMs);
    std::string cleaned = clean(reply.text, true);
    if (hasErrorWord(cleaned)) {
        response.clear();
        return false;
    }
    response.assign(cleaned.begin(), cleaned.end());
    return reply.ok;
}

bool FakeScantool::sendObdCommand(const std::string& command, std::string& response,
                                  unsigned int timeoutMs)
{
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        record("sendObdCommand " + command);
    }
    Reply reply = take(command, timeoutMs);
    if (hasErrorWord(clean(reply.text, true))) {
        response.clear();
        return false;
    }
    response = clean(reply.text, false);
    return reply.ok;
}
