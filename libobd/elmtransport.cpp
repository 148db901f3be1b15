#include "elmtransport.h"

#include "iconnection.h"
#include "trlog.h"

#include <algorithm>
#include <string>

namespace Obd {

namespace {

inline bool isFraming(unsigned char byte)
{
    return byte == 0x00 || byte == 0x0A || byte == 0x0D || byte == '>';
}

} // namespace

int ElmTransport::send(IConnection* connection, const std::vector<unsigned char>& command)
{
    if (!connection) {
        OBD_ERROR << "Failed to send data";
        return 1;
    }

    // A reply that came after its reader gave up must not pass for the answer to this command.
    std::vector<unsigned char> stale;
    if (connection->read(stale, 0) == 0 && !stale.empty())
        OBD_DEBUG << "Payload data discarded: " << std::string(stale.begin(), stale.end());

    std::vector<unsigned char> line;
    line.reserve(command.size() + 1);
    line.assign(command.begin(), command.end());
    line.push_back(0x0D);
    if (connection->write(line) != 0) {
        OBD_ERROR << "Failed to send data";
        return 1;
    }
    return 0;
}

int ElmTransport::receive(IConnection* connection, std::vector<unsigned char>& reply,
                          unsigned int timeoutMs)
{
    int status = connection ? connection->read(reply, timeoutMs) : 2;
    if (status == 0) {
        // Line breaks go rather than becoming separators: headers tell the frames apart.
        reply.erase(std::remove_if(reply.begin(), reply.end(), isFraming), reply.end());
        return 0;
    }
    if (status == 2) {
        OBD_ERROR << "Failed to receive data";
        return 2;
    }
    if (timeoutMs == 0)
        return 0; // a zero-timeout receive is a poll and never fails
    OBD_ERROR << "Connection timeout: " << timeoutMs << " ms";
    return 1;
}

} // namespace Obd
