#ifndef OBD_ELMSCANTOOL_H
#define OBD_ELMSCANTOOL_H

#include "iscantool.h"

#include <string>
#include <vector>

namespace Obd {

class IConnection;

// Drives an ELM327-type adapter through its AT command set. Every exchange
// is one command line and the reply up to the '>' prompt. Not locked: one
// thread at a time drives it.
class ElmScantool : public IScantool
{
public:
    // Adapter error codes: what the error word in a reply stands for.
    enum AdapterError {
        ERROR_NO_DATA = 0,
        ERROR_BUFFER_FULL = 2,
        ERROR_BUS_BUSY = 3,
        ERROR_BUS_ERROR = 4,
        ERROR_CAN_ERROR = 5,
        ERROR_DATA_ERROR = 6,
        ERROR_ERR = 7,
        ERROR_FB_ERROR = 8,
        ERROR_LV_RESET = 9,
        ERROR_RX_ERROR = 10,
        ERROR_STOPPED = 11,
        ERROR_UNABLE_TO_CONNECT = 12,
        ERROR_NONE = 13
    };

    ElmScantool();
    ~ElmScantool() override;

    // A scan tool on the connection, or null without one. The caller owns it.
    static ElmScantool* create(IConnection* connection);

    // The code of the first error word found in a reply, ERROR_NONE without one.
    static int findAdapterError(const std::vector<unsigned char>& reply);

    void setConnection(IConnection* connection) override;
    bool checkDevice() override;
    bool setBaudRateTimeout() override;
    bool changeBaudRate(unsigned int baud) override;
    bool confirmBaudRate() override;
    bool reset() override;
    void sendReset() override;
    bool identify() override;
    bool readDescription() override;
    bool initialize(unsigned int protocol) override;
    bool identifyProtocol() override;
    bool isInitialized() const override;
    bool setHeadersOn() override;
    bool setDlcDisplayOn() override;
    bool setHeadersOff() override;
    bool isHeadersOn() const override;
    bool setTryProtocol(unsigned int protocol) override;
    DeviceInfo getDeviceInfo() const override;
    unsigned int getProtocol() const override;
    std::string getProtocolName() const override;
    bool sendCommand(const std::vector<unsigned char>& command,
                     std::vector<unsigned char>& response, unsigned int timeoutMs) override;
    bool sendObdCommand(const std::string& command, std::string& response,
                        unsigned int timeoutMs) override;

private:
    ElmScantool(const ElmScantool&) = delete;
    ElmScantool& operator=(const ElmScantool&) = delete;

    bool sendBytes(const std::vector<unsigned char>& command);
    bool send(const std::string& command);
    bool readResponse(std::vector<unsigned char>& reply, unsigned int timeoutMs);
    bool read(std::string& text, unsigned int timeoutMs);
    std::string readJoined(unsigned int firstMs, unsigned int secondMs);
    void drain(unsigned int timeoutMs);
    bool setting(const std::string& command, const char* failureText, bool appendReply = true);
    bool identifyDevice(const std::string& reply);
    bool isOBDProsAdapter() const;
    void setDelimiter(unsigned char delimiter);
    void resetState();

    IConnection* m_connection;
    bool m_initialized;
    std::string m_deviceName;
    std::string m_deviceDescription;
    std::string m_deviceVersion;
    std::string m_protocolName;
    unsigned int m_protocol;
    bool m_headersOn;
    unsigned int m_requestedProtocol;
};

} // namespace Obd

#endif
