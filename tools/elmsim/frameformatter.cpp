#include "frameformatter.h"

#include <algorithm>

namespace ElmSim {

namespace {

const char HEX_DIGITS[] = "0123456789ABCDEF";

void appendByte(std::string& out, uint8_t byte, bool space)
{
    out.push_back(HEX_DIGITS[byte >> 4]);
    out.push_back(HEX_DIGITS[byte & 0x0F]);
    if (space)
        out.push_back(' ');
}

void appendBytes(std::string& out, const uint8_t* bytes, size_t count, bool space)
{
    for (size_t i = 0; i < count; ++i)
        appendByte(out, bytes[i], space);
}

} // namespace

FrameFormatter::FrameFormatter(const Profile& profile)
    : m_profile(profile)
{
}

uint8_t FrameFormatter::sumChecksum(const uint8_t* bytes, size_t length)
{
    unsigned int sum = 0;
    for (size_t i = 0; i < length; ++i)
        sum += bytes[i];
    return static_cast<uint8_t>(sum);
}

uint8_t FrameFormatter::j1850Crc(const uint8_t* bytes, size_t length)
{
    // SAE J1850 CRC-8: polynomial 0x1D, initial 0xFF, result inverted.
    uint8_t crc = 0xFF;
    for (size_t i = 0; i < length; ++i) {
        crc ^= bytes[i];
        for (int bit = 0; bit < 8; ++bit)
            crc = (crc & 0x80) ? static_cast<uint8_t>((crc << 1) ^ 0x1D) : static_cast<uint8_t>(crc << 1);
    }
    return static_cast<uint8_t>(~crc);
}

void FrameFormatter::format(const std::vector<EcuAnswer>& answers, const DisplaySettings& display,
                            size_t maxAnswers, std::string& out) const
{
    size_t count = 0;
    for (const EcuAnswer& answer : answers) {
        if (maxAnswers != 0 && count == maxAnswers)
            break;
        ++count;
        const EcuProfile* ecu = m_profile.ecu(answer.ecuId);
        for (const std::vector<uint8_t>& message : answer.messages) {
            if (m_profile.isCan())
                formatCan(ecu, answer.ecuId, message, display, out);
            else
                formatLine(answer.ecuId, message, display, out);
        }
    }
}

void FrameFormatter::appendCanId(uint32_t ecuId, const DisplaySettings& display, std::string& out) const
{
    if (m_profile.isCan29()) {
        for (int shift = 24; shift >= 0; shift -= 8)
            appendByte(out, static_cast<uint8_t>(ecuId >> shift), display.spaces);
    } else {
        out.push_back(HEX_DIGITS[(ecuId >> 8) & 0x07]);
        out.push_back(HEX_DIGITS[(ecuId >> 4) & 0x0F]);
        out.push_back(HEX_DIGITS[ecuId & 0x0F]);
        if (display.spaces)
            out.push_back(' ');
    }
    if (display.dlc) {
        out.push_back('8');              // OBD ECUs always send 8-byte frames
        if (display.spaces)
            out.push_back(' ');
    }
}

void FrameFormatter::formatCan(const EcuProfile* ecu, uint32_t ecuId, const std::vector<uint8_t>& message,
                               const DisplaySettings& display, std::string& out) const
{
    const uint8_t pad = ecu ? ecu->padByte : 0x00;
    const bool printPadding = ecu ? ecu->printPadding : true;
    const size_t length = message.size();

    if (length <= 7) {
        // Single frame: PCI 0L, data, filler up to 8 bytes.
        const size_t start = out.size();
        if (display.headers) {
            appendCanId(ecuId, display, out);
            appendByte(out, static_cast<uint8_t>(length), display.spaces);
        }
        appendBytes(out, message.data(), length, display.spaces);
        if (display.headers && printPadding) {
            for (size_t i = length + 1; i < 8; ++i)
                appendByte(out, pad, display.spaces);
        }
        out += display.lineEnd;
        emitFrame(start, out);
        return;
    }

    if (!display.headers) {
        // The ELM327's own layout: byte count, then numbered lines of the
        // payload (6 bytes on line 0, 7 after), without PCI or filler.
        out.push_back(HEX_DIGITS[(length >> 8) & 0x0F]);
        out.push_back(HEX_DIGITS[(length >> 4) & 0x0F]);
        out.push_back(HEX_DIGITS[length & 0x0F]);
        out += display.lineEnd;
        size_t offset = 0;
        for (unsigned int line = 0; offset < length; ++line) {
            const size_t take = std::min<size_t>(line == 0 ? 6 : 7, length - offset);
            const size_t start = out.size();
            out.push_back(HEX_DIGITS[line & 0x0F]);
            out.push_back(':');
            if (display.spaces)
                out.push_back(' ');
            appendBytes(out, message.data() + offset, take, display.spaces);
            out += display.lineEnd;
            if (line > 0)
                emitFrame(start, out);
            offset += take;
        }
        return;
    }

    //  First frame:        1L LL d0 d1 d2 d3 d4 d5
    //  Consecutive frames: 2N d. d. d. d. d. d. d.  (last one filled to 8, or not)
    appendCanId(ecuId, display, out);
    appendByte(out, static_cast<uint8_t>(0x10 | ((length >> 8) & 0x0F)), display.spaces);
    appendByte(out, static_cast<uint8_t>(length & 0xFF), display.spaces);
    appendBytes(out, message.data(), 6, display.spaces);
    out += display.lineEnd;
    size_t offset = 6;
    for (unsigned int sequence = 1; offset < length; ++sequence) {
        const size_t start = out.size();
        appendCanId(ecuId, display, out);
        appendByte(out, static_cast<uint8_t>(0x20 | (sequence & 0x0F)), display.spaces);
        for (size_t i = 0; i < 7 && (offset < length || display.fillLastFrame); ++i, ++offset)
            appendByte(out, offset < length ? message[offset] : pad, display.spaces);
        out += display.lineEnd;
        emitFrame(start, out);
    }
}

void FrameFormatter::formatLine(uint32_t ecuId, const std::vector<uint8_t>& message, const DisplaySettings& display,
                                std::string& out) const
{
    const size_t start = out.size();
    if (!display.headers) {
        appendBytes(out, message.data(), message.size(), display.spaces);
        out += display.lineEnd;
        emitFrame(start, out);
        return;
    }
    //  KWP:      8L F1 SA data.. sum
    //  ISO 9141: 48 6B SA data.. sum
    //  J1850:    48 6B SA data.. crc (VPW), 41 6B SA data.. crc (PWM)
    uint8_t frame[3 + 64];
    size_t length = 0;
    const uint8_t source = static_cast<uint8_t>(ecuId);
    const size_t dataLength = std::min<size_t>(message.size(), 63);
    switch (m_profile.protocol) {
    case 4:
    case 5:
        frame[0] = static_cast<uint8_t>(0x80 | dataLength);
        frame[1] = 0xF1;
        break;
    case 1:
        frame[0] = 0x41;
        frame[1] = 0x6B;
        break;
    default:
        frame[0] = 0x48;
        frame[1] = 0x6B;
        break;
    }
    frame[2] = source;
    length = 3;
    for (size_t i = 0; i < dataLength; ++i)
        frame[length++] = message[i];
    const bool j1850 = m_profile.protocol == 1 || m_profile.protocol == 2;
    frame[length] = j1850 ? j1850Crc(frame, length) : sumChecksum(frame, length);
    ++length;
    appendBytes(out, frame, length, display.spaces);
    out += display.lineEnd;
    emitFrame(start, out);
}

void FrameFormatter::emitFrame(size_t start, std::string& out) const
{
    if (m_repeat && m_repeat())
        out += out.substr(start);
}

} // namespace ElmSim
