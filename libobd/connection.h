#ifndef OBD_CONNECTION_H
#define OBD_CONNECTION_H

#include "ccondition.h"
#include "cmutex.h"
#include "cthread.h"
#include "iconnection.h"

#include <atomic>
#include <deque>
#include <string>
#include <vector>

namespace Obd {

class IDisconnectListener;
class ILogger;

// Turns a byte bus into a message pipe: a read task gathers bytes until the
// delimiter has arrived and queues the run as one message for read().
// Owns the bus.
class Connection : public IConnection
{
public:
    explicit Connection(IMessageBus* bus);
    ~Connection() override;

    IMessageBus::OpenStatus open(IDisconnectListener* listener) override;
    // Never from the read task (it joins it); a listener may call it, it then does nothing.
    void close() override;
    bool isConnected() const override;
    int write(const std::vector<unsigned char>& data) override;
    // Also 2 when the link goes while the reader waits: it is released at once.
    int read(std::vector<unsigned char>& message, unsigned int timeoutMs) override;
    void setDelimiter(unsigned char delimiter) override;
    // Who hears of a lost link from now on; null: nobody.
    void setListener(IDisconnectListener* listener) { listener_.store(listener); }
    std::string errorString() const override;
    // Loggers run under the queue mutex and must not call back into the connection.
    void addLogger(ILogger* logger) override;
    void removeLogger(ILogger* logger) override;

    // Bytes a peer may send without a delimiter before they are dropped.
    static constexpr size_t MAX_PENDING = 64 * 1024;

private:
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    static void readTask(void* self);
    void runReadTask();
    void disconnectCleanup();

    IMessageBus* bus_;
    std::atomic<bool> connected_;
    std::deque<std::vector<unsigned char>> queue_;
    CMutex queueMutex_;
    CCondition queueCondition_;
    std::vector<ILogger*> loggers_;
    std::atomic<unsigned char> delimiter_;
    std::atomic<IDisconnectListener*> listener_;
    CThread readThread_;
    std::atomic<bool> stop_;
    // Keeps write() off a bus the read task is closing.
    CMutex busMutex_;
};

} // namespace Obd

#endif
