#ifndef TEST_FAKECONNECTION_H
#define TEST_FAKECONNECTION_H

#include "iconnection.h"

#include <deque>
#include <string>
#include <vector>

// A connection without a link: read() hands out scripted replies in order
// (then times out), write() records each command. For driving the ELM scan
// tool with arbitrary adapter output.
class FakeConnection : public Obd::IConnection
{
public:
    FakeConnection();
    ~FakeConnection() override;

    void addReply(const std::vector<unsigned char>& reply);
    const std::vector<std::string>& written() const { return m_written; }

    Obd::IMessageBus::OpenStatus open(Obd::IDisconnectListener* listener) override;
    void close() override;
    bool isConnected() const override;
    int write(const std::vector<unsigned char>& data) override;
    int read(std::vector<unsigned char>& message, unsigned int timeoutMs) override;
    void setDelimiter(unsigned char delimiter) override;
    std::string errorString() const override;
    void addLogger(Obd::ILogger* logger) override;
    void removeLogger(Obd::ILogger* logger) override;

private:
    bool m_connected;
    std::deque<std::vector<unsigned char>> m_replies;
    std::vector<std::string> m_written;
};

#endif
