#include "consolelogger.h"
#include "trlog.h"

#include <cstdio>
#include <ctime>
#include <iomanip>
#include <sstream>

namespace Obd {

ConsoleLogger::~ConsoleLogger()
{
}

std::string ConsoleLogger::formatLine(const char* file, int line, int level,
                                      const std::string& message, const struct tm* t)
{
    std::ostringstream out;
    out.fill('0');
    if (level == LOG_INFO) {
        out << TrLog::levelName(level) << " - " << message;
    } else {
        out << (t->tm_year + 1900) << "-" << std::setw(2) << (t->tm_mon + 1) << "-"
            << std::setw(2) << t->tm_mday << " " << std::setw(2) << t->tm_hour << ":"
            << std::setw(2) << t->tm_min << ":" << std::setw(2) << t->tm_sec
            << " (" << file << ":" << line << ") " << TrLog::levelName(level) << " - " << message;
    }
    out << "\n";
    return out.str();
}

void ConsoleLogger::log(const char* file, int line, int level, const std::string& message)
{
    time_t now = time(nullptr);
    struct tm local;
    localtime_r(&now, &local);
    // One fputs per line so lines from different threads never interleave.
    std::fputs(formatLine(file, line, level, message, &local).c_str(), stderr);
    std::fflush(stderr);
}

} // namespace Obd
