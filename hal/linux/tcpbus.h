#ifndef OBD_TCPBUS_H
#define OBD_TCPBUS_H

#include "imessagebus.h"

#include <netinet/in.h>

#include <string>
#include <vector>

namespace Obd {

// The Wi-Fi bus: a TCP stream to an adapter listening on a port.
// One thread reads while another writes; nothing here is locked.
class TcpBus : public IMessageBus
{
public:
    TcpBus();
    ~TcpBus() override;

    // Only while closed. False when the host does not resolve.
    bool init(const std::string& host, unsigned int port);

    OpenStatus open() override;
    bool close() override;
    // Waits up to half a second, then appends at most one 256-byte chunk.
    ReadStatus read(std::vector<unsigned char>& buffer) override;
    // The half second bounds the whole write, not each pass.
    WriteStatus write(const std::vector<unsigned char>& data) override;
    std::string errorString() const override;

    bool isOpen() const { return socket_ != -1; }

private:
    TcpBus(const TcpBus&) = delete;
    TcpBus& operator=(const TcpBus&) = delete;

    int socket_;
    struct sockaddr_in address_;
    int lastError_;
};

} // namespace Obd

#endif
