#ifndef ELMSIM_RUNTIMECONTROL_H
#define ELMSIM_RUNTIMECONTROL_H

#include "serveroptions.h"
#include "timingmodel.h"

#include <atomic>
#include <deque>
#include <mutex>
#include <string>
#include <vector>

namespace ElmSim {

// Fault settings and counters shared between the serving thread and the
// thread that controls a test. Every member is safe to call from both.
class RuntimeControl
{
public:
    explicit RuntimeControl(const ServerOptions& options);

    void setDelay(unsigned int ms) { m_delayMs = ms; }
    unsigned int delayMs() const { return m_delayMs; }
    unsigned int jitterMs() const { return m_jitterMs; }
    void setSilent(bool silent) { m_silent = silent; }
    bool silent() const { return m_silent; }
    void setGarbage(unsigned int bytes) { m_garbageBytes = bytes; }
    unsigned int garbage() const { return m_garbageBytes; }

    void injectError(const std::string& word, int count);
    // The word to print instead of the next answer, if one is pending.
    bool takeError(std::string& word);

    void setDropAfter(int requests);
    void restartDropCount();             // a new client starts counting afresh
    // Counts one OBD request; true when the link must be dropped instead.
    bool dropBeforeRequest();

    void countRequest() { ++m_requestCount; }
    int requestCount() const { return m_requestCount; }
    void logLine(const std::string& line);
    static constexpr size_t MAX_LOG = 100000;
    std::vector<std::string> requestLog() const;

    // How the last reply's time was spent, as modelled.
    void setLastExchange(const ExchangeTiming& timing);
    ExchangeTiming lastExchange() const;

private:
    std::atomic<unsigned int> m_delayMs;
    std::atomic<unsigned int> m_jitterMs;
    std::atomic<bool> m_silent;
    std::atomic<unsigned int> m_garbageBytes;
    std::atomic<int> m_requestCount{ 0 };

    mutable std::mutex m_mutex;
    std::string m_errorWord;
    int m_errorCount;
    int m_dropAfter;
    int m_dropRemaining;
    std::deque<std::string> m_requestLog;      // the most recent MAX_LOG lines
    ExchangeTiming m_lastExchange;
};

} // namespace ElmSim

#endif
