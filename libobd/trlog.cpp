#include "trlog.h"
#include "itracelogger.h"

namespace Obd {

namespace {

// Sinks are registered before other threads start and never removed,
// so the list is read without a lock.
std::vector<ITraceLogger*>& sinks()
{
    static std::vector<ITraceLogger*> list;
    return list;
}

const char* const LEVEL_NAMES[] = { "DEBUG", "INFO", "WARN", "ERROR" };

} // namespace

TrLog::TrLog()
    : m_file("")
    , m_line(0)
    , m_level(0)
{
}

TrLog::~TrLog()
{
    log(m_file, m_line, m_level, m_stream.str());
}

std::ostringstream& TrLog::stream(const char* file, int line, int level)
{
    m_file = file;
    m_line = line;
    m_level = level;
    return m_stream;
}

void TrLog::addLogger(ITraceLogger* logger)
{
    sinks().push_back(logger);
}

void TrLog::log(const char* file, int line, int level, const std::string& message)
{
    for (ITraceLogger* sink : sinks())
        sink->log(file, line, level, message);
}

const char* TrLog::levelName(int level)
{
    if (level < 0 || level > 3)
        return "";
    return LEVEL_NAMES[level];
}

} // namespace Obd
