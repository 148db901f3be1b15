#ifndef TEST_FAKESCANTOOL_H
#define TEST_FAKESCANTOOL_H

#include "iscantool.h"

#include <deque>
#include <map>
#include <mutex>
#include <string>
#include <vector>

// A scripted scan tool for decoder, transporter and proxy tests.
//
// Replies are scripted per command text ("0100", "ATH1", ...). Each command
// has a queue: every exchange takes the front reply; the last reply stays and
// answers again, so one addReply() serves any number of requests. Commands
// without a script get the default reply (empty text, failure: what a real
// adapter's "NO DATA" becomes).
//
// Reply texts are written as the adapter prints them
// ("7E8 06 41 00 BE 3F A8 13 \r7E9 ...\r\r>") and are cleaned like the real
// ELM scan tool: NUL, CR, LF and '>' are dropped; sendCommand() also drops
// spaces. A reply containing an adapter error word ("NO DATA",
// "UNABLE TO CONNECT", "BUS BUSY", "CAN ERROR", "ERR94", ...) comes back empty
// with a failure, as from the real scan tool.
//
// Every call is recorded (calls(): operation names such as "reset",
// "initialize 0", "setHeadersOn", "sendCommand 0100"), and the command texts of
// sendCommand/sendObdCommand separately (commands(), timeouts()).
// Thread-safe, so a poller thread may use it.
class FakeScantool : public Obd::IScantool
{
public:
    explicit FakeScantool(unsigned int protocol = Obd::PROTOCOL_CAN_11BIT, bool headersOn = true,
                          bool initialized = true);
    ~FakeScantool() override;

    // --- configuration ---
    void setProtocol(unsigned int protocol);
    void setProtocolName(const std::string& name);
    // The header flag as isHeadersOn() reports it (setHeadersOn()/Off() change it too).
    void setHeaders(bool on);
    void setInitialized(bool initialized);
    void setDeviceInfo(const Obd::DeviceInfo& info);
    // Result of an operation other than the exchanges, by operation name:
    // "checkDevice", "setBaudRateTimeout", "changeBaudRate", "confirmBaudRate",
    // "reset", "identify", "readDescription", "initialize", "identifyProtocol",
    // "setHeadersOn", "setDlcDisplayOn", "setHeadersOff", "setTryProtocol".
    // All succeed unless told otherwise. A failing initialize clears the
    // initialised flag; a successful one sets it.
    void setResult(const std::string& operation, bool result);
    // Protocol class that identifyProtocol() switches to (when it succeeds);
    // by default it keeps the current one.
    void setIdentifiedProtocol(unsigned int protocol);

    // Appends a reply to the command's queue.
    void addReply(const std::string& command, const std::string& text, bool ok = true);
    // Replaces the command's queue by this one reply.
    void setReply(const std::string& command, const std::string& text, bool ok = true);
    void setDefaultReply(const std::string& text, bool ok);
    void clearReplies();
    // Each exchange sleeps this long before answering (default 0).
    void setReplyDelayMs(unsigned int delayMs);

    // --- record ---
    std::vector<std::string> calls() const;
    std::vector<std::string> commands() const;
    std::vector<unsigned int> timeouts() const;
    size_t commandCount(const std::string& command) const;
    void clearRecord();

    // --- IScantool ---
    void setConnection(Obd::IConnection* connection) override;
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
    Obd::DeviceInfo getDeviceInfo() const override;
    unsigned int getProtocol() const override;
    std::string getProtocolName() const override;
    bool sendCommand(const std::vector<unsigned char>& command,
                     std::vector<unsigned char>& response, unsigned int timeoutMs) override;
    bool sendObdCommand(const std::string& command, std::string& response,
                        unsigned int timeoutMs) override;

    // The cleaning applied to a scripted reply (exposed for tests of the fake).
    static std::string clean(const std::string& text, bool removeSpaces);
    static bool hasErrorWord(const std::string& cleanedWithoutSpaces);

private:
    struct Reply
    {
        std::string text;
        bool ok;
    };

    bool resultOf(const std::string& operation) const;
    void record(const std::string& call);
    Reply take(const std::string& command, unsigned int timeoutMs);

    mutable std::mutex m_mutex;
    unsigned int m_protocol;
    unsigned int m_identifiedProtocol;
    bool m_hasIdentifiedProtocol;
    std::string m_protocolName;
    bool m_headersOn;
    bool m_initialized;
    Obd::DeviceInfo m_deviceInfo;
    std::map<std::string, bool> m_results;
    std::map<std::string, std::deque<Reply>> m_replies;
    Reply m_defaultReply;
    unsigned int m_delayMs;
    std::vector<std::string> m_calls;
    std::vector<std::string> m_commands;
    std::vector<unsigned int> m_timeouts;
};

#endif
