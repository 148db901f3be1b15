#ifndef OBD_DESCRIPTORBUS_H
#define OBD_DESCRIPTORBUS_H

#include "imessagebus.h"

#include <sys/socket.h>

#include <atomic>
#include <memory>
#include <string>
#include <vector>

namespace Obd {

// Ends every wait of the buses it is given, for good: the opening they belong
// to was given up. Shared, so that it may be raised while a bus is deleted.
class BusInterrupt
{
public:
    BusInterrupt();
    ~BusInterrupt();

    // Any thread; async-signal-safe.
    void raise();
    bool raised() const { return m_raised; }
    int descriptor() const { return m_fd; }

private:
    BusInterrupt(const BusInterrupt&) = delete;
    BusInterrupt& operator=(const BusInterrupt&) = delete;

    int m_fd;
    std::atomic<bool> m_raised;
};

// The I/O every bus shares: reads and writes through poll, bounded to half a
// second, that never block and never raise SIGPIPE; a non-blocking connect
// with its own bound; every wait ends at once when the interrupt is raised.
// One thread reads while another writes; nothing here is locked.
class DescriptorBus : public IMessageBus
{
public:
    DescriptorBus();
    ~DescriptorBus() override;

    bool close() override;
    // Waits up to half a second, then appends at most one 256-byte chunk.
    ReadStatus read(std::vector<unsigned char>& buffer) override;
    // The half second bounds the whole write, not each pass.
    WriteStatus write(const std::vector<unsigned char>& data) override;
    std::string errorString() const override;

    bool isOpen() const { return fd_ != -1; }
    // Only while closed.
    void setInterrupt(const std::shared_ptr<BusInterrupt>& interrupt) { interrupt_ = interrupt; }
    // The errno of the last failure (ETIMEDOUT: unanswered connect, ECANCELED: interrupted).
    int errorNumber() const { return lastError_; }

protected:
    // A stream socket connected within timeoutMs, or a failure status.
    OpenStatus connectSocket(int domain, int protocol, const struct sockaddr* address,
                             socklen_t length, int timeoutMs);
    // Takes an opened descriptor; it is made non-blocking.
    void adopt(int fd, bool socket);
    // Records the error, closes, and says what it means for an opening.
    OpenStatus fail(int error);
    // 1 ready, 0 time-out, -1 interrupted or failed (lastError_ set).
    int wait(short events, int timeoutMs);
    ssize_t receive(unsigned char* data, size_t size);
    ssize_t send(const unsigned char* data, size_t size);

    int fd_;
    int lastError_;

private:
    DescriptorBus(const DescriptorBus&) = delete;
    DescriptorBus& operator=(const DescriptorBus&) = delete;

    bool socket_;
    std::shared_ptr<BusInterrupt> interrupt_;
};

} // namespace Obd

#endif
