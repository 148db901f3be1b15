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
        ERROR_BUS_INIT = 13,
        ERROR_ACT_ALERT = 14,
        ERROR_LP_ALERT = 15,
        ERROR_UNKNOWN_COMMAND = 16,  // "?": the adapter did not understand the line
        ERROR_NONE = 17
    };

    // Bounds for a reply to reach its prompt: slow Bluetooth clones take
    // 600 ms for an AT reply and 1.5 s for a reset.
    static constexpr unsigned int AT_TIMEOUT_MS = 2000;
    static constexpr unsigned int RESET_TIMEOUT_MS = 3000;

    ElmScantool();
    ~ElmScantool() override;

    // A scan tool on the connection, or null without one. The caller owns it.
    static ElmScantool* create(IConnection* connection);

    // The code of the first error word found in a reply, ERROR_NONE without one.
    static int findAdapterError(const std::vector<unsigned char>& reply);
    // The same, with the word as printed and what to do about it.
    static ScantoolError describeAdapterError(const std::vector<unsigned char>& reply);

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
    ScantoolError lastError() const override { return m_lastError; }
    bool warmStart() override;

private:
    ElmScantool(const ElmScantool&) = delete;
    ElmScantool& operator=(const ElmScantool&) = delete;

    bool sendBytes(const std::vector<unsigned char>& command);
    bool send(const std::string& command);
    bool readResponse(std::vector<unsigned char>& reply, unsigned int timeoutMs);
    // One reply's lines, noise dropped; a reply that misses its bound is owed
    // and drained before the next command goes out.
    int readLines(std::vector<std::string>& lines, unsigned int timeoutMs);
    void settleOwedReplies();
    // readLines() for an OBD request: the echo and lines that are neither a
    // frame, an error word nor a status dropped (logged). False with
    // lastError() set on a time-out, a lost link, or nothing readable.
    bool readDataLines(const std::string& command, std::vector<std::string>& lines, unsigned int timeoutMs);
    bool exchange(const std::vector<unsigned char>& command, std::vector<unsigned char>& response,
                  unsigned int timeoutMs);
    // An AT command and its one-line answer without echo; empty without one.
    bool atCommand(const std::string& command, std::string& reply, unsigned int timeoutMs = AT_TIMEOUT_MS);
    bool reinitialise();
    void readChip();
    bool read(std::string& text, unsigned int timeoutMs);
    std::string readJoined(unsigned int firstMs, unsigned int secondMs);
    void drain(unsigned int timeoutMs);
    // ATZ or ATWS, kept in step with an adapter that still had a reply on its way.
    bool restart(const std::string& command);
    enum SettingResult { SR_OK, SR_REFUSED, SR_FAILED };
    SettingResult trySetting(const std::string& command, const char* failureText, bool appendReply = true);
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
    std::string m_chip;
    ScantoolError m_lastError;
    unsigned int m_owed;        // replies whose prompt has not come yet
    unsigned int m_owedBoundMs; // how long the latest of them may still take
};

} // namespace Obd

#endif
