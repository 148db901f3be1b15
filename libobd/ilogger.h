#ifndef OBD_ILOGGER_H
#define OBD_ILOGGER_H

#include <vector>

namespace Obd {

// Data-logging hook of a connection: sees every message written and read.
class ILogger
{
public:
    virtual ~ILogger() {}
    virtual void onDataSent(const std::vector<unsigned char>& data) = 0;
    virtual void onDataReceived(const std::vector<unsigned char>& data) = 0;
};

} // namespace Obd

#endif
