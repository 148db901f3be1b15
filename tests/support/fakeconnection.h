#ifndef TEST_FAKECONNECTION_H
#define TEST_FAKECONNECTION_H

#include "iconnection.h"

#include <condition_variable>
#include <deque>
#include <map>
#include <mutex>
#include <string>
#include <vector>

// A link without a socket, for driving the ELM scan tool and transport with
// any adapter output. Each written line is answered by the front reply
// scripted for its command (up to the CR); the last one stays and answers
// again; an unscripted command or an empty reply gets no answer. A reply is
// one message (as one chunk makes one message on a real connection); its
// late part arrives only once a read has timed out, like a reply that came
// after its reader gave up. Reads of any time-out take from what arrived.
// Thread-safe.
class FakeConnection : public Obd::IConnection
{
public:
    void addReply(const std::string& command, const std::string& reply,
                  const std::string& late = std::string());
    void setReply(const std::string& command, const std::string& reply,
                  const std::string& late = std::string());
    // A message arriving without a command.
    void push(const std::string& message);
    // Each answer waits this long before it is read, as on a slow adapter.
    void setReplyDelayMs(unsigned int delayMs);

    // Lines as written, CR included.
    std::vector<std::string> written() const;
    void clearWritten();
    // Messages arrived and not read yet.
    size_t pending() const;
    unsigned char delimiter() const;

    Obd::IMessageBus::OpenStatus open(Obd::IDisconnectListener* listener) override;
    void close() override;
    bool isConnected() const override;
    int write(const std::vector<unsigned char>& data) override;
    int read(std::vector<unsigned char>& message, unsigned int timeoutMs) override;
    void setDelimiter(unsigned char delimiter) override;
    std::string errorString() const override { return std::string(); }
    void addLogger(Obd::ILogger*) override {}
    void removeLogger(Obd::ILogger*) override {}

private:
    struct Reply
    {
        std::string now;
        std::string late;
    };

    mutable std::mutex m_mutex;
    std::condition_variable m_closed;
    bool m_connected = true;
    std::map<std::string, std::deque<Reply>> m_scripts;
    std::deque<std::string> m_arrived;
    std::deque<std::string> m_late;
    std::vector<std::string> m_written;
    unsigned int m_delayMs = 0;
    unsigned char m_delimiter = 0;
};

#endif
