#ifndef OBD_ELMTRANSPORT_H
#define OBD_ELMTRANSPORT_H

#include <vector>

namespace Obd {

class IConnection;

// Line discipline of the ELM dialogue: one command line out, one
// prompt-terminated reply in with its framing stripped. Stateless.
class ElmTransport
{
public:
    // 0 sent, 1 failed. Drops one stale reply left in the queue first.
    static int send(IConnection* connection, const std::vector<unsigned char>& command);
    // 0 reply taken (or, with timeoutMs 0, nothing waiting), 1 timeout, 2 not connected.
    // NUL, line feed, carriage return and '>' are removed; spaces are kept.
    static int receive(IConnection* connection, std::vector<unsigned char>& reply,
                       unsigned int timeoutMs);

private:
    ElmTransport() = delete;
};

} // namespace Obd

#endif
