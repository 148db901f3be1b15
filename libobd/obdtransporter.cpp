#include "obdtransporter.h"
#include "canresponse.h"
#include "elmscantool.h"
#include "elmtransport.h"
#include "iobdproxy.h"
#include "iscantool.h"
#include "obdparameter.h"
#include "trlog.h"

#include <algorithm>
#include <cassert>
#include <string>

namespace Obd {

namespace {

// A CAN frame never occupies more than this; converting more of the
// remaining text for one frame would only be thrown away.
const size_t MAX_FRAME_BYTES = 8;

int hexValue(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'a' && c <= 'f')
        return c - 'a' + 10;
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

// Strict: the whole text must be pairs of hex digits.
bool hexToBytes(const std::string& text, std::vector<unsigned char>& bytes)
{
    bytes.clear();
    if (text.size() % 2 != 0)
        return false;
    bytes.reserve(text.size() / 2);
    for (size_t i = 0; i < text.size(); i += 2) {
        const int high = hexValue(text[i]);
        const int low = hexValue(text[i + 1]);
        if (high < 0 || low < 0) {
            bytes.clear();
            return false;
        }
        bytes.push_back(static_cast<unsigned char>(high * 16 + low));
    }
    return true;
}

// The leading whole hex pairs, up to maxBytes: frames are glued to the next
// identifier (3 characters on 11-bit CAN), so the rest of a CAN response is
// often odd or followed by something unreadable. The frame decides how much
// of it is its own.
void hexPrefixToBytes(const std::string& text, size_t maxBytes, std::vector<unsigned char>& bytes)
{
    bytes.clear();
    for (size_t i = 0; i + 1 < text.size() && bytes.size() < maxBytes; i += 2) {
        const int high = hexValue(text[i]);
        const int low = hexValue(text[i + 1]);
        if (high < 0 || low < 0)
            break;
        bytes.push_back(static_cast<unsigned char>(high * 16 + low));
    }
}

// The reply's lines, spaces gone; empty lines dropped. Text without line
// ends (a reply read with them stripped) is one line.
std::vector<std::string> replyLines(const std::string& text, bool keepSpaces = false)
{
    std::vector<std::string> lines(1);
    std::string compact; // decides which lines are empty, with or without spaces
    for (char c : text) {
        if (c == '\r' || c == '\n') {
            if (!compact.empty())
                lines.emplace_back();
            compact.clear();
        } else if (c != '>' && c != '\0' && (c != ' ' || keepSpaces)) {
            if (c != ' ')
                compact.push_back(c);
            if (c != ' ' || !compact.empty())
                lines.back().push_back(c);
        }
    }
    if (compact.empty())
        lines.pop_back();
    return lines;
}

bool startsWith(const std::string& text, const char* prefix)
{
    return text.compare(0, std::char_traits<char>::length(prefix), prefix) == 0;
}

// Status and error lines leave the frames; what remains is data. "SEARCHING..."
// may have the first frame glued after its dots.
struct SortedLines
{
    std::vector<std::string> frames;
    std::string errorWord; // the first error line, as printed
    size_t seen = 0;
};

SortedLines sortLines(const std::string& text)
{
    SortedLines sorted;
    std::vector<std::string> spaced = replyLines(text, true);
    for (std::string line : replyLines(text)) {
        const std::string printed = spaced[sorted.seen++];
        if (startsWith(line, "SEARCHING..."))
            line.erase(0, 12);
        if (line.empty() || (startsWith(line, "BUSINIT") && line.find("ERROR") == std::string::npos))
            continue;
        const std::vector<unsigned char> bytes(line.begin(), line.end());
        if (ElmScantool::findAdapterError(bytes) != ElmScantool::ERROR_NONE) {
            if (sorted.errorWord.empty())
                sorted.errorWord = printed;
            continue;
        }
        sorted.frames.push_back(line);
    }
    return sorted;
}

bool startsWithSignature(const std::vector<unsigned char>& data, size_t from,
                         const std::vector<unsigned char>& signature)
{
    for (size_t i = 0; i < signature.size() && from + i < data.size(); ++i) {
        if (data[from + i] != signature[i])
            return false;
    }
    return true;
}

// A single or first frame whose data starts with neither the expected answer
// nor a negative response belongs to another request.
bool isStaleFrame(const std::vector<unsigned char>& frame, const std::vector<unsigned char>& signature)
{
    if (signature.empty() || frame.empty())
        return false;
    const unsigned int type = frame[0] >> 4;
    const size_t from = type == 0 ? 1 : type == 1 ? 2 : 0;
    if (from == 0 || frame.size() <= from || frame[from] == 0x7F)
        return false;
    return !startsWithSignature(frame, from, signature);
}

// K-line and J1850: "7F SID 78" asks to keep waiting; the answer follows.
bool isResponsePending(const std::vector<unsigned char>& data)
{
    return data.size() >= 3 && data[0] == 0x7F && data[2] == 0x78;
}

// Hands each ECU's payload to the parameter in ascending id order; a
// rejection is noted and the next ECU follows.
void deliver(unsigned int protocol, unsigned int ecuId, const std::vector<unsigned char>& payload,
             ObdParameter* parameter)
{
    if (!parameter->parse(protocol, ecuId, payload))
        OBD_DEBUG << "Invalid data received for " << ecuId;
}

} // namespace

ObdTransporter::ObdTransporter()
{
}

ObdTransporter::~ObdTransporter()
{
}

ExchangeResult ObdTransporter::execute(IObdProxy* provider, ObdParameter* parameter)
{
    assert(parameter != 0 && "parameter != 0");
    if (!provider || !parameter)
        return ER_ERROR;
    IScantool* scantool = provider->getScantool();
    if (!scantool || !scantool->isInitialized())
        return ER_ERROR;

    const unsigned int protocol = scantool->getProtocol();
    std::vector<unsigned char> request;
    parameter->getRequest(protocol, request);
    const std::string command = ObdTransporter::commandText(request);

    parameter->beginExchange();
    // The reply's lines; an error word fails the call but its line still comes.
    std::string text;
    scantool->sendObdCommand(command, text, parameter->getTimeout());
    const SortedLines sorted = sortLines(text);
    if (sorted.frames.empty()) {
        const ScantoolError error = scantool->lastError();
        if (error.status == ScantoolError::SE_ERROR_WORD && !error.word.empty())
            parameter->setExchangeStatus(READ_ADAPTER_ERROR, error.text());
        else if (!sorted.errorWord.empty())
            parameter->setExchangeStatus(READ_ADAPTER_ERROR, "adapter error: " + ElmTransport::escaped(sorted.errorWord));
        else if (error.status == ScantoolError::SE_ERROR_WORD)
            parameter->setExchangeStatus(READ_ADAPTER_ERROR, error.text());
        else if (text.empty())
            parameter->setExchangeStatus(READ_TIMEOUT, error.status == ScantoolError::SE_NOT_CONNECTED
                                             ? "the link to the adapter was lost" : "no answer in time");
        else
            parameter->setExchangeStatus(READ_MALFORMED, "unreadable reply: " + ElmTransport::escaped(text));
        return ER_NO_DATA;
    }
    if (!sorted.errorWord.empty())
        parameter->setExchangeStatus(READ_ADAPTER_ERROR, "adapter error: " + ElmTransport::escaped(sorted.errorWord));

    if (!scantool->isHeadersOn()) {
        std::string joined;
        for (const std::string& line : sorted.frames)
            joined += line;
        std::vector<unsigned char> bytes;
        if (!hexToBytes(joined, bytes)) {
            OBD_ERROR << "Failed to convert response to bytes";
            parameter->setExchangeStatus(READ_MALFORMED, "malformed reply");
            return ER_ERROR;
        }
        return parameter->parse(protocol, 0, bytes) ? ER_OK : ER_ERROR;
    }

    bool parsed = false;
    switch (protocol) {
    case PROTOCOL_ISO9141:
    case PROTOCOL_KWP2000:
    case PROTOCOL_J1850:
        parsed = parseNonCanLines(protocol, sorted.frames, parameter);
        break;
    case PROTOCOL_CAN_11BIT:
    case PROTOCOL_CAN_29BIT:
        parsed = parseCanLines(protocol, sorted.frames, parameter);
        break;
    default:
        return ER_ERROR;
    }
    // ECUs whose lines could not even be told apart have no status of their own.
    if (!parsed && sorted.errorWord.empty())
        parameter->setExchangeStatus(READ_MALFORMED, "unreadable reply");
    return parsed ? ER_OK : ER_ERROR;
}

//  11-bit:  "7E8" ...           -> 0x07E8
//  29-bit:  "18" "DA" "F1" "10" ... -> (0x18 & 0x1F) << 24 | 0xDAF110
//            b0   b1   b2   b3
// The top three bits of b0 are not part of a 29-bit identifier.
bool ObdTransporter::extractEcuId(unsigned int protocol, std::string& text,
                                  unsigned int& ecuId) const
{
    std::vector<unsigned char> bytes;
    if (protocol == PROTOCOL_CAN_11BIT) {
        if (text.size() < 3 || !hexToBytes("0" + text.substr(0, 3), bytes))
            return false;
        ecuId = (static_cast<unsigned int>(bytes[0]) << 8) | bytes[1];
        text.erase(0, 3);
        return true;
    }
    if (protocol == PROTOCOL_CAN_29BIT) {
        if (text.size() < 8 || !hexToBytes(text.substr(0, 8), bytes))
            return false;
        ecuId = (static_cast<unsigned int>(bytes[0] & 0x1F) << 24)
            | (static_cast<unsigned int>(bytes[1]) << 16)
            | (static_cast<unsigned int>(bytes[2]) << 8) | bytes[3];
        text.erase(0, 8);
        return true;
    }
    return false;
}

bool ObdTransporter::addCanFrame(std::string& text, CanResponse& canResponse) const
{
    std::vector<unsigned char> bytes;
    hexPrefixToBytes(text, MAX_FRAME_BYTES, bytes);
    const int used = canResponse.addFrame(bytes);
    if (used < 0) {
        OBD_ERROR << "Failed to parse message payload";
        return false;
    }
    // No line separators: the frame's own length says where the next
    // identifier starts.
    text.erase(0, static_cast<size_t>(used) * 2);
    return true;
}

//  "7E8" "10 14 49 02 01 57 50 30" "7E9" "06 41 00 ..." "7E8" "21 ..."
//   id    frame (1..8 bytes)        id    frame          id    frame
bool ObdTransporter::splitCanResponse(unsigned int protocol, const std::string& text,
                                      CanTable& table) const
{
    std::string rest = text;
    do {
        unsigned int ecuId = 0;
        if (!extractEcuId(protocol, rest, ecuId)) {
            OBD_ERROR << "Failed to extract ECU id";
            return false;
        }
        std::unique_ptr<CanResponse>& response = table[ecuId];
        if (!response)
            response.reset(new CanResponse(protocol));
        if (!addCanFrame(rest, *response)) {
            OBD_ERROR << "Failed to extract message payload";
            return false;
        }
    } while (!rest.empty());
    return true;
}

bool ObdTransporter::parseCanResponse(unsigned int protocol, const std::string& text,
                                      ObdParameter* parameter) const
{
    if (text.find('\r') != std::string::npos)
        return parseCanLines(protocol, sortLines(text).frames, parameter);
    CanTable table;
    if (!splitCanResponse(protocol, text, table))
        return false;
    for (const auto& entry : table) {
        std::vector<unsigned char> payload;
        if (!entry.second->getPayload(payload)) {
            // Later ECUs are not delivered: the reply as a whole is suspect.
            OBD_DEBUG << "Invalid data received for " << entry.first;
            return false;
        }
        deliver(protocol, entry.first, payload, parameter);
    }
    return true;
}

//  +--------+--------+--------+------------------+----------+
//  | format | target | source | data (format&3F) | checksum |
//  | 10LLLLLL        |  = id  |                  |          |
//  +--------+--------+--------+------------------+----------+
bool ObdTransporter::splitKwpResponse(const std::vector<unsigned char>& bytes,
                                      ByteTable& table) const
{
    size_t pos = 0;
    while (pos < bytes.size()) {
        size_t remaining = bytes.size() - pos;
        if (remaining < 3) {
            OBD_ERROR << "Not enough data: " << remaining << " vs " << 3;
            return false;
        }
        const unsigned char format = bytes[pos];
        const unsigned char source = bytes[pos + 2];
        pos += 3;
        remaining -= 3;
        // Tolerated on purpose: the length field still splits the message.
        if ((format & 0xC0) != 0x80)
            OBD_DEBUG << "Invalid header bit: " << static_cast<unsigned int>(format);
        const size_t length = format & 0x3F;
        if (length + 1 > remaining) {
            OBD_ERROR << "Not enough data: " << remaining << " vs " << length + 1;
            return false;
        }
        std::vector<unsigned char>& data = table[source];
        data.insert(data.end(), bytes.begin() + pos, bytes.begin() + pos + length);
        pos += length + 1;
    }
    return true;
}

//  +----+----+--------+-----------------+----------+  +----+----+--------+ ...
//  | h0 | h1 | source | data (?)        | checksum |  | h0 | h1 | source |
//  +----+----+--------+-----------------+----------+  +----+----+--------+ ...
// No length field: a line ends where h0 h1 appear again. A data byte pair
// equal to h0 h1 splits the line there; the guess is only a guess.
bool ObdTransporter::splitGuessedResponse(const std::vector<unsigned char>& bytes,
                                          ByteTable& table) const
{
    size_t pos = 0;
    while (pos < bytes.size()) {
        size_t remaining = bytes.size() - pos;
        if (remaining < 3) {
            OBD_ERROR << "Not enough data: " << remaining << " vs " << 3;
            return false;
        }
        const unsigned char h0 = bytes[pos];
        const unsigned char h1 = bytes[pos + 1];
        const unsigned char source = bytes[pos + 2];
        pos += 3;
        remaining -= 3;

        size_t lineLength = remaining;
        if (remaining >= 3) {
            for (size_t i = 0; i <= remaining - 3; ++i) {
                if (bytes[pos + i] == h0 && bytes[pos + i + 1] == h1) {
                    lineLength = i;
                    if (bytes[pos + i + 2] == source)
                        OBD_DEBUG << "Guessing response to be multiline";
                    else
                        OBD_DEBUG << "Guessing response to be multi ECU";
                    break;
                }
            }
        }
        std::vector<unsigned char>& data = table[source];
        // The last byte of a line is its checksum.
        if (lineLength > 0)
            data.insert(data.end(), bytes.begin() + pos, bytes.begin() + pos + lineLength - 1);
        pos += lineLength;
    }
    return true;
}

bool ObdTransporter::parseNonCanResponse(unsigned int protocol, const std::string& text,
                                         ObdParameter* parameter) const
{
    if (text.find('\r') != std::string::npos)
        return parseNonCanLines(protocol, sortLines(text).frames, parameter);
    std::vector<unsigned char> bytes;
    if (!hexToBytes(text, bytes)) {
        OBD_ERROR << "Failed to convert response to bytes";
        return false;
    }
    ByteTable table;
    bool split = false;
    if (protocol == PROTOCOL_KWP2000)
        split = splitKwpResponse(bytes, table);
    else if (protocol == PROTOCOL_ISO9141 || protocol == PROTOCOL_J1850)
        split = splitGuessedResponse(bytes, table);
    if (!split)
        return false;
    for (const auto& entry : table)
        deliver(protocol, entry.first, entry.second, parameter);
    return true;
}

// One frame per line: a frame is the bytes of its line, whatever follows its
// data (filler of any value, or nothing). A line that cannot be read costs
// only its ECU's answer.
bool ObdTransporter::parseCanLines(unsigned int protocol, const std::vector<std::string>& lines,
                                   ObdParameter* parameter) const
{
    std::vector<unsigned char> signature;
    parameter->getSignature(signature);
    CanTable table;
    std::map<unsigned int, bool> refused;
    std::map<unsigned int, std::vector<unsigned char>> stale; // the first per ECU
    for (const std::string& line : lines) {
        std::string rest = line;
        unsigned int ecuId = 0;
        if (!extractEcuId(protocol, rest, ecuId)) {
            OBD_ERROR << "Failed to extract ECU id, line dropped: " << ElmTransport::escaped(line);
            continue;
        }
        std::vector<unsigned char> frame;
        hexPrefixToBytes(rest, MAX_FRAME_BYTES, frame);
        if (isStaleFrame(frame, signature)) {
            OBD_DEBUG << "Frame of another request dropped: " << ElmTransport::escaped(line);
            stale.emplace(ecuId, frame);
            continue;
        }
        std::unique_ptr<CanResponse>& response = table[ecuId];
        if (!response)
            response.reset(new CanResponse(protocol));
        if (response->addFrame(frame) < 0) {
            OBD_ERROR << "Failed to parse message payload";
            refused[ecuId] = true;
            if (response->getLength() == 0 && response->getReceived() == 0)
                table.erase(ecuId); // nothing of this ECU taken yet
        }
    }
    // An ECU that sent nothing else gets its odd answer judged by the parameter.
    for (const auto& entry : stale) {
        if (table.count(entry.first))
            continue;
        std::unique_ptr<CanResponse> response(new CanResponse(protocol));
        if (response->addFrame(entry.second) >= 0)
            table[entry.first] = std::move(response);
    }
    bool delivered = false;
    for (const auto& entry : table) {
        std::vector<unsigned char> payload;
        if (!entry.second->getPayload(payload)) {
            OBD_DEBUG << "Invalid data received for " << entry.first;
            parameter->setReadStatus(entry.first, READ_MALFORMED, "incomplete reply");
            continue;
        }
        refused.erase(entry.first);
        deliver(protocol, entry.first, payload, parameter);
        delivered = true;
    }
    for (const auto& entry : refused)
        parameter->setReadStatus(entry.first, READ_MALFORMED, "malformed reply");
    return delivered;
}

// One message per line; an ECU's lines are joined in order. A "7F xx 78"
// line only says the answer is coming and is skipped.
bool ObdTransporter::parseNonCanLines(unsigned int protocol, const std::vector<std::string>& lines,
                                      ObdParameter* parameter) const
{
    std::vector<unsigned char> signature;
    parameter->getSignature(signature);
    ByteTable table;
    std::map<unsigned int, std::vector<std::vector<unsigned char>>> seen;
    ByteTable stale; // the first per ECU
    std::map<unsigned int, bool> broken;
    for (const std::string& line : lines) {
        std::vector<unsigned char> bytes;
        if (!hexToBytes(line, bytes)) {
            OBD_ERROR << "Failed to convert response to bytes, line dropped: " << ElmTransport::escaped(line);
            if (bytes.empty() && line.size() >= 6 && hexToBytes(line.substr(0, 6), bytes))
                broken[bytes[2]] = true;
            continue;
        }
        ByteTable lineTable;
        const bool split = protocol == PROTOCOL_KWP2000 ? splitKwpResponse(bytes, lineTable)
                                                        : splitGuessedResponse(bytes, lineTable);
        if (!split) {
            if (bytes.size() >= 3)
                broken[bytes[2]] = true;
            continue;
        }
        for (const auto& entry : lineTable) {
            if (protocol != PROTOCOL_KWP2000 && !table.empty())
                OBD_DEBUG << (table.count(entry.first) ? "Guessing response to be multiline"
                                                       : "Guessing response to be multi ECU");
            if (isResponsePending(entry.second)) {
                OBD_DEBUG << "Response pending from " << entry.first;
                continue;
            }
            if (!signature.empty() && !entry.second.empty() && entry.second[0] != 0x7F
                && !startsWithSignature(entry.second, 0, signature)) {
                OBD_DEBUG << "Line of another request dropped: " << ElmTransport::escaped(line);
                stale.emplace(entry.first, entry.second);
                continue;
            }
            // A line printed twice carries nothing new (an ECU never sends the same line twice).
            std::vector<std::vector<unsigned char>>& earlier = seen[entry.first];
            if (std::find(earlier.begin(), earlier.end(), entry.second) != earlier.end()) {
                OBD_DEBUG << "Repeated line dropped: " << ElmTransport::escaped(line);
                continue;
            }
            earlier.push_back(entry.second);
            std::vector<unsigned char>& data = table[entry.first];
            data.insert(data.end(), entry.second.begin(), entry.second.end());
        }
    }
    // An ECU that sent nothing else gets its odd answer judged by the parameter.
    for (const auto& entry : stale)
        table.emplace(entry.first, entry.second);
    for (const auto& entry : table)
        deliver(protocol, entry.first, entry.second, parameter);
    // A line lost from an ECU may have cost some of its answer.
    for (const auto& entry : broken)
        parameter->setReadStatus(entry.first, READ_MALFORMED, "malformed reply");
    return !table.empty();
}

std::string ObdTransporter::commandText(const std::vector<unsigned char>& bytes)
{
    static const char DIGITS[] = "0123456789abcdef";
    std::string text;
    text.reserve(bytes.size() * 2);
    for (unsigned char b : bytes) {
        text.push_back(DIGITS[b >> 4]);
        text.push_back(DIGITS[b & 0x0F]);
    }
    return text;
}

} // namespace Obd
