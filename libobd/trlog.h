#ifndef OBD_TRLOG_H
#define OBD_TRLOG_H

#include <sstream>
#include <string>
#include <vector>

namespace Obd {

class ITraceLogger;

enum LogLevel { LOG_DEBUG = 0, LOG_INFO = 1, LOG_WARN = 2, LOG_ERROR = 3 };

// One log record under construction. The message is streamed into
// stream(); the destructor hands the finished text to every sink.
class TrLog
{
public:
    TrLog();
    ~TrLog();

    std::ostringstream& stream(const char* file, int line, int level);

    static void addLogger(ITraceLogger* logger);
    static void log(const char* file, int line, int level, const std::string& message);
    static const char* levelName(int level);

private:
    TrLog(const TrLog&) = delete;
    TrLog& operator=(const TrLog&) = delete;

    std::ostringstream m_stream;
    const char* m_file;
    int m_line;
    int m_level;
};

} // namespace Obd

// __FILE__ is project-relative: the build maps the source root away.
#define OBD_LOG(level) ::Obd::TrLog().stream(__FILE__, __LINE__, (level))
#define OBD_DEBUG OBD_LOG(::Obd::LOG_DEBUG)
#define OBD_INFO OBD_LOG(::Obd::LOG_INFO)
#define OBD_WARN OBD_LOG(::Obd::LOG_WARN)
#define OBD_ERROR OBD_LOG(::Obd::LOG_ERROR)

#endif
