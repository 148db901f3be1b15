#ifndef OBD_CONSOLELOGGER_H
#define OBD_CONSOLELOGGER_H

#include "itracelogger.h"

namespace Obd {

// Writes one line per message to standard error.
class ConsoleLogger : public ITraceLogger
{
public:
    ~ConsoleLogger() override;
    void log(const char* file, int line, int level, const std::string& message) override;

    // The line exactly as log() writes it, without the time stamp's clock:
    // used by log() and by tests that need a fixed time.
    static std::string formatLine(const char* file, int line, int level,
                                  const std::string& message, const struct tm* localTime);
};

} // namespace Obd

#endif
