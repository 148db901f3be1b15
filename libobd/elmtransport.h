#ifndef OBD_ELMTRANSPORT_H
#define OBD_ELMTRANSPORT_H

#include <string>
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
    // Line ends, '>' and noise are removed; spaces are kept.
    static int receive(IConnection* connection, std::vector<unsigned char>& reply,
                       unsigned int timeoutMs);
    // As receive(), the reply's lines kept apart and trimmed; empty lines go.
    static int receiveLines(IConnection* connection, std::vector<std::string>& lines,
                            unsigned int timeoutMs);
    // Waits up to timeoutMs for one reply and throws it away: 0 one dropped.
    static int discard(IConnection* connection, unsigned int timeoutMs);

    // The lines of a raw reply. Noise around replies goes, and is logged:
    // bytes outside printable ASCII (NUL, 0xFC/0xFE after a reset, ...) and
    // a Bluetooth module's "+..." status lines.
    static std::vector<std::string> splitLines(const std::vector<unsigned char>& raw);
    // Control and non-ASCII bytes as \xHH, for logs and messages.
    static std::string escaped(const std::string& text);

private:
    ElmTransport() = delete;
};

} // namespace Obd

#endif
