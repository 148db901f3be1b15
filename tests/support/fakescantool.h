#ifndef TEST_FAKESCANTOOL_H
#define TEST_FAKESCANTOOL_H

#include "elmscantool.h"
#include "fakeconnection.h"

#include <mutex>
#include <string>
#include <vector>

// The real ELM scan tool over a scripted link, for decoder, transporter and
// proxy tests: cleaning, error words and time-outs are the library's own.
// The adapter behind it already has the protocol class given, and answers
// the settings and protocol questions of discovery; OBD replies are scripted
// per command text ("0100", "010d", ...) as the adapter prints them (see
// FakeConnection). Records the exchanges asked for, with their time-outs.
class FakeScantool : public Obd::ElmScantool
{
public:
    explicit FakeScantool(unsigned int protocol = Obd::PROTOCOL_CAN_11BIT, bool headersOn = true,
                          bool initialized = true);

    void setReply(const std::string& command, const std::string& text) { m_link.setReply(command, text); }
    void addReply(const std::string& command, const std::string& text) { m_link.addReply(command, text); }
    void setReplyDelayMs(unsigned int delayMs) { m_link.setReplyDelayMs(delayMs); }

    std::vector<std::string> commands() const;
    std::vector<unsigned int> timeouts() const;
    size_t commandCount(const std::string& command) const;
    void clearRecord();

    bool sendCommand(const std::vector<unsigned char>& command,
                     std::vector<unsigned char>& response, unsigned int timeoutMs) override;
    bool sendObdCommand(const std::string& command, std::string& response,
                        unsigned int timeoutMs) override;

private:
    void record(const std::string& command, unsigned int timeoutMs);

    FakeConnection m_link;
    mutable std::mutex m_mutex;
    std::vector<std::string> m_commands;
    std::vector<unsigned int> m_timeouts;
};

#endif
