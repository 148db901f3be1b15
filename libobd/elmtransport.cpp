#include "elmtransport.h"

#include "iconnection.h"
#include "trlog.h"

#include <cstdio>
#include <string>

namespace Obd {

namespace {

inline bool isLineEnd(unsigned char byte)
{
    return byte == 0x0A || byte == 0x0D || byte == '>';
}

inline bool isPrintable(unsigned char byte)
{
    return byte >= 0x20 && byte < 0x7F;
}

std::string trimmedLine(const std::string& line)
{
    size_t first = line.find_first_not_of(' ');
    return first == std::string::npos ? std::string() : line.substr(first);
}

} // namespace

int ElmTransport::send(IConnection* connection, const std::vector<unsigned char>& command)
{
    if (!connection) {
        OBD_ERROR << "Failed to send data";
        return 1;
    }

    // A reply that came after its reader gave up must not pass for the answer to this command.
    discard(connection, 0);

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

int ElmTransport::discard(IConnection* connection, unsigned int timeoutMs)
{
    std::vector<unsigned char> stale;
    const int status = connection ? connection->read(stale, timeoutMs) : 2;
    if (status == 0 && !stale.empty())
        OBD_DEBUG << "Payload data discarded: " << std::string(stale.begin(), stale.end());
    return status;
}

std::vector<std::string> ElmTransport::splitLines(const std::vector<unsigned char>& raw)
{
    std::vector<std::string> lines;
    std::string line;
    std::string noise;
    auto endLine = [&]() {
        // Leading blanks only: a data line's trailing space is how adapters print it.
        std::string kept = trimmedLine(line);
        line.clear();
        if (kept.empty() || kept.find_first_not_of(' ') == std::string::npos)
            return;
        if (kept[0] == '+') {
            OBD_DEBUG << "Status line dropped: " << kept;
            return;
        }
        lines.push_back(kept);
    };
    for (unsigned char byte : raw) {
        if (isLineEnd(byte))
            endLine();
        else if (isPrintable(byte))
            line.push_back(static_cast<char>(byte));
        else
            noise.push_back(static_cast<char>(byte));
    }
    endLine();
    if (!noise.empty())
        OBD_DEBUG << "Noise dropped: " << escaped(noise);
    return lines;
}

std::string ElmTransport::escaped(const std::string& text)
{
    std::string out;
    for (unsigned char c : text) {
        if (isPrintable(c) && c != '\\') {
            out.push_back(static_cast<char>(c));
        } else {
            char hex[8];
            std::snprintf(hex, sizeof hex, "\\x%02X", c);
            out += hex;
        }
    }
    return out;
}

int ElmTransport::receiveLines(IConnection* connection, std::vector<std::string>& lines,
                               unsigned int timeoutMs)
{
    lines.clear();
    std::vector<unsigned char> raw;
    const int status = connection ? connection->read(raw, timeoutMs) : 2;
    if (status == 0) {
        lines = splitLines(raw);
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

int ElmTransport::receive(IConnection* connection, std::vector<unsigned char>& reply,
                          unsigned int timeoutMs)
{
    std::vector<std::string> lines;
    const int status = receiveLines(connection, lines, timeoutMs);
    reply.clear();
    // Line breaks go rather than becoming separators: headers tell the frames apart.
    for (const std::string& line : lines)
        reply.insert(reply.end(), line.begin(), line.end());
    return status;
}

} // namespace Obd
