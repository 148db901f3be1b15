#ifndef TEST_LOGCAPTURE_H
#define TEST_LOGCAPTURE_H

#include "itracelogger.h"

#include <mutex>
#include <string>
#include <vector>

// Records every log line of the process; registered once by the test main.
class LogCapture : public Obd::ITraceLogger
{
public:
    struct Record
    {
        std::string file;
        int line;
        int level;
        std::string message;
    };

    static LogCapture& instance();

    void log(const char* file, int line, int level, const std::string& message) override;

    void clear();
    // Records whose message contains text (and, when level >= 0, of that level).
    size_t count(const std::string& text, int level = -1) const;
    bool contains(const std::string& text, int level = -1) const { return count(text, level) > 0; }
    // The first matching record, or a record with line -1.
    Record find(const std::string& text) const;
    std::string dump() const;

    // Echo every record to stderr as well (ZARVANE_TEST_LOG=1).
    void setEcho(bool echo);

private:
    mutable std::mutex m_mutex;
    std::vector<Record> m_records;
    bool m_echo = false;
};

#endif
