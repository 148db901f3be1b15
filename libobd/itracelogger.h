#ifndef OBD_ITRACELOGGER_H
#define OBD_ITRACELOGGER_H

#include <string>

namespace Obd {

// A log sink. Sinks are registered once with TrLog::addLogger and must
// outlive every thread that logs.
class ITraceLogger
{
public:
    virtual ~ITraceLogger() {}
    virtual void log(const char* file, int line, int level, const std::string& message) = 0;
};

} // namespace Obd

#endif
