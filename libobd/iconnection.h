#ifndef OBD_ICONNECTION_H
#define OBD_ICONNECTION_H

#include "imessagebus.h"

#include <string>
#include <vector>

namespace Obd {

class IDisconnectListener;
class ILogger;

class IConnection
{
public:
    virtual ~IConnection() {}
    virtual IMessageBus::OpenStatus open(IDisconnectListener* listener) = 0;
    virtual void close() = 0;
    virtual bool isConnected() const = 0;
    // 0 sent, 1 failed or not connected.
    virtual int write(const std::vector<unsigned char>& data) = 0;
    // 0 a message was taken, 1 timeout, 2 not connected.
    virtual int read(std::vector<unsigned char>& message, unsigned int timeoutMs) = 0;
    virtual void setDelimiter(unsigned char delimiter) = 0;
    virtual std::string errorString() const = 0;
    virtual void addLogger(ILogger* logger) = 0;
    virtual void removeLogger(ILogger* logger) = 0;
};

} // namespace Obd

#endif
