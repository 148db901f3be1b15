#include "runtimecontrol.h"

namespace ElmSim {

RuntimeControl::RuntimeControl(const ServerOptions& options)
    : m_delayMs(options.delayMs)
    , m_jitterMs(options.delayJitterMs)
    , m_silent(options.silent)
    , m_garbageBytes(options.garbageBytes)
    , m_errorWord(options.errorWord)
    , m_errorCount(options.errorWord.empty() ? 0 : options.errorCount)
    , m_dropAfter(options.dropAfter)
    , m_dropRemaining(options.dropAfter)
{
}

void RuntimeControl::injectError(const std::string& word, int count)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_errorWord = word;
    m_errorCount = word.empty() ? 0 : count;
}

bool RuntimeControl::takeError(std::string& word)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    if (m_errorCount <= 0)
        return false;
    --m_errorCount;
    word = m_errorWord;
    return true;
}

void RuntimeControl::setDropAfter(int requests)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_dropAfter = requests;
    m_dropRemaining = requests;
}

void RuntimeControl::restartDropCount()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_dropRemaining = m_dropAfter;
}

bool RuntimeControl::dropBeforeRequest()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    if (m_dropRemaining < 0)
        return false;
    if (m_dropRemaining == 0)
        return true;
    --m_dropRemaining;
    return false;
}

void RuntimeControl::logLine(const std::string& line)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_requestLog.push_back(line);
    // A long-running simulator must not grow without bound.
    if (m_requestLog.size() > MAX_LOG)
        m_requestLog.pop_front();
}

std::vector<std::string> RuntimeControl::requestLog() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return std::vector<std::string>(m_requestLog.begin(), m_requestLog.end());
}

void RuntimeControl::setLastExchange(const ExchangeTiming& timing)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_lastExchange = timing;
}

ExchangeTiming RuntimeControl::lastExchange() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    return m_lastExchange;
}

} // namespace ElmSim
