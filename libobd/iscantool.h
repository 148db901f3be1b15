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
    // The chip behind an ELM327-compatible face ("STN1110 v4.2.0"), empty when unknown.
    std::string chip;
};

// How the last exchange ended, and the adapter's own word for it.
struct ScantoolError
{
    enum Status {
        SE_NONE = 0,
        SE_NOT_CONNECTED,  // no link, or it went during the exchange
        SE_TIMEOUT,        // no prompt within the bound
        SE_ERROR_WORD,     // the adapter printed an error word instead of data
        SE_UNREADABLE      // only bytes that are neither data, an error word nor a status
    };
    // What the scan tool does about an error word.
    enum Reaction { RE_REPORT = 0, RE_RETRY, RE_REINITIALISE };

    Status status = SE_NONE;
    // The error word as the adapter prints it ("NO DATA", "ERR94", "?"), or
    // for SE_UNREADABLE what came, control characters escaped.
    std::string word;
    Reaction reaction = RE_REPORT;

    static const char* statusName(Status status)
    {
        switch (status) {
        case SE_NONE: return "ok";
        case SE_NOT_CONNECTED: return "not connected";
        case SE_TIMEOUT: return "no answer in time";
        case SE_ERROR_WORD: return "adapter error";
        case SE_UNREADABLE: return "unreadable answer";
        }
        return "unknown";
    }
    // "adapter error: CAN ERROR"
    std::string text() const
    {
        return word.empty() ? statusName(status) : std::string(statusName(status)) + ": " + word;
    }
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
    // How the last OBD exchange ended.
    virtual ScantoolError lastError() const { return ScantoolError(); }
    // Opening without ATZ for adapters that drop the link on it: ATWS, or ATD
    // where that is refused. Identifies the adapter from the banner.
    virtual bool warmStart() { return false; }
};

} // namespace Obd

#endif
