#ifndef OBD_ISCANTOOL_H
#define OBD_ISCANTOOL_H

#include <string>
#include <vector>

namespace Obd {

class IConnection;

// Protocol classes reported by getProtocol().
enum ProtocolClass {
    PROTOCOL_ISO9141 = 0,
    PROTOCOL_KWP2000 = 1,
    PROTOCOL_J1850 = 2,
    PROTOCOL_CAN_11BIT = 3,
    PROTOCOL_CAN_29BIT = 4,
    PROTOCOL_UNKNOWN = 5
};

inline bool isCanProtocol(unsigned int protocol)
{
    return protocol == PROTOCOL_CAN_11BIT || protocol == PROTOCOL_CAN_29BIT;
}

struct DeviceInfo
{
    std::string name;
    std::string description;
    std::string version;
};

class IScantool
{
public:
    virtual ~IScantool() {}
    virtual void setConnection(IConnection* connection) = 0;
    virtual bool checkDevice() = 0;
    virtual bool setBaudRateTimeout() = 0;
    virtual bool changeBaudRate(unsigned int baud) = 0;
    virtual bool confirmBaudRate() = 0;
    virtual bool reset() = 0;
    virtual void sendReset() = 0;
    virtual bool identify() = 0;
    virtual bool readDescription() = 0;
    virtual bool initialize(unsigned int protocol) = 0;
    virtual bool identifyProtocol() = 0;
    virtual bool isInitialized() const = 0;
    virtual bool setHeadersOn() = 0;
    virtual bool setDlcDisplayOn() = 0;
    virtual bool setHeadersOff() = 0;
    virtual bool isHeadersOn() const = 0;
    virtual bool setTryProtocol(unsigned int protocol) = 0;
    virtual DeviceInfo getDeviceInfo() const = 0;
    virtual unsigned int getProtocol() const = 0;
    virtual std::string getProtocolName() const = 0;
    // One exchange; spaces removed from the reply.
    virtual bool sendCommand(const std::vector<unsigned char>& command,
                             std::vector<unsigned char>& response, unsigned int timeoutMs) = 0;
    // One exchange; the reply text as it came, framing stripped.
    virtual bool sendObdCommand(const std::string& command, std::string& response,
                                unsigned int timeoutMs) = 0;
};

} // namespace Obd

#endif
