#include "logcapture.h"
#include "trlog.h"

#include <cstdio>

LogCapture& LogCapture::instance()
{
    static LogCapture capture;
    return capture;
}

void LogCapture::log(const char* file, int line, int level, const std::string& message)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    // Bounded so a long soak test cannot eat the memory.
    if (m_records.size() > 200000)
        m_records.erase(m_records.begin(), m_records.begin() + 100000);
    m_records.push_back(Record{file ? file : "", line, level, message});
    if (m_echo)
        std::fprintf(stderr, "[%s] %s:%d %s\n", Obd::TrLog::levelName(level), file, line,
                     message.c_str());
}

void LogCapture::clear()
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_records.clear();
}

size_t LogCapture::count(const std::string& text, int level) const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    size_t n = 0;
    for (const Record& r : m_records) {
        if ((level < 0 || r.level == level) && r.message.find(text) != std::string::npos)
            ++n;
    }
    return n;
}

LogCapture::Record LogCapture::find(const std::string& text) const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    for (const Record& r : m_records) {
        if (r.message.find(text) != std::string::npos)
            return r;
    }
    return Record{"", -1, -1, ""};
}

std::string LogCapture::dump() const
{
    std::lock_guard<std::mutex> lock(m_mutex);
    std::string out;
    for (const Record& r : m_records)
        out += std::string(Obd::TrLog::levelName(r.level)) + " " + r.file + ":" +
               std::to_string(r.line) + " " + r.message + "\n";
    return out;
}

void LogCapture::setEcho(bool echo)
{
    std::lock_guard<std::mutex> lock(m_mutex);
    m_echo = echo;
}
