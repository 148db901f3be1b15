#ifndef OBD_TCPBUS_H
#define OBD_TCPBUS_H

#include "descriptorbus.h"

#include <netinet/in.h>

#include <string>

namespace Obd {

// The Wi-Fi bus: a TCP stream to an adapter listening on a port.
class TcpBus : public DescriptorBus
{
public:
    // An adapter switched off or out of range never answers the connect.
    static constexpr int CONNECT_TIMEOUT_MS = 5000;

    TcpBus();

    // Only while closed. False when the host does not resolve.
    bool init(const std::string& host, unsigned int port);

    OpenStatus open() override;

private:
    struct sockaddr_in address_;
};

} // namespace Obd

#endif
