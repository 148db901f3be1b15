#include "canresponse.h"
#include "trlog.h"

#include <algorithm>
#include <cstdint>

namespace Obd {

namespace {

enum FrameType { FT_SINGLE = 0, FT_FIRST = 1, FT_CONSECUTIVE = 2 };

// Classic CAN: 8 bytes per frame, PCI byte included.
const size_t FRAME_SIZE = 8;
// Data bytes after the PCI byte of a consecutive frame.
const size_t CF_DATA = 7;
// Data bytes carried by a first frame.
const size_t FF_DATA = 6;

bool isFiller(unsigned char byte)
{
    return byte == 0x00 || byte == 0xAA || byte == 0xFF;
}

} // namespace

CanResponse::CanResponse(unsigned int protocol)
    : m_protocol(protocol)
    , m_frameType(0)
    , m_length(0)
    , m_received(0)
{
}

CanResponse::~CanResponse()
{
}

int CanResponse::addFrame(const std::vector<unsigned char>& bytes)
{
    if (bytes.empty()) {
        OBD_DEBUG << "Failed to get CAN frame type";
        return -1;
    }
    m_frameType = bytes[0] >> 4;
    switch (m_frameType) {
    case FT_SINGLE:
        return addSingleFrame(bytes);
    case FT_FIRST:
        return addFirstFrame(bytes);
    case FT_CONSECUTIVE:
        return addConsecutiveFrame(bytes);
    default:
        // Flow control (3) and reserved types are not part of a response.
        return -1;
    }
}

//  +------+------+-----+------+--------------------+
//  | 0x0L | d1   | ... | dL   | filler (optional)  |   L = 0..7
//  +------+------+-----+------+--------------------+
int CanResponse::addSingleFrame(const std::vector<unsigned char>& bytes)
{
    if (bytes.empty()) {
        OBD_DEBUG << "Not enough data";
        return -1;
    }
    const size_t length = bytes[0] & 0x0F;
    if (length > bytes.size() - 1) {
        OBD_DEBUG << "Not enough data";
        return -1;
    }
    // Nothing longer fits into the 8 bytes a frame may occupy.
    if (length > FRAME_SIZE - 1) {
        OBD_DEBUG << "Invalid single frame length: " << length;
        return -1;
    }
    m_payload.assign(bytes.begin() + 1, bytes.begin() + 1 + length);
    m_length = static_cast<unsigned int>(length);
    m_received = m_length;
    m_sequences.clear();

    // No separators: padding is told from the next identifier by value only,
    // so an identifier starting with a filler value is swallowed (accepted).
    size_t frameSize = length + 1;
    while (frameSize <= FRAME_SIZE - 1 && frameSize < bytes.size()) {
        if (!isFiller(bytes[frameSize]))
            break;
        ++frameSize;
    }
    return static_cast<int>(frameSize);
}

//  +------+------+----+----+----+----+----+----+
//  | 0x1H | LL   | d1 | d2 | d3 | d4 | d5 | d6 |   length = H*256 + LL
//  +------+------+----+----+----+----+----+----+
int CanResponse::addFirstFrame(const std::vector<unsigned char>& bytes)
{
    if (bytes.size() < FRAME_SIZE) {
        OBD_DEBUG << "Not enough data";
        return -1;
    }
    const unsigned int length = (bytes[0] & 0x0Fu) * 256u + bytes[1];
    // A shorter message would have been a single frame; the six bytes
    // below would not fit.
    if (length < FF_DATA) {
        OBD_DEBUG << "Invalid first frame length: " << length;
        return -1;
    }
    // An earlier message of this identifier is cut or extended, not cleared.
    m_payload.resize(length, 0);
    for (size_t i = 0; i < FF_DATA; ++i)
        m_payload[i] = bytes[2 + i];
    m_length = length;
    m_received = static_cast<unsigned int>(FF_DATA);
    m_sequences.clear();
    return static_cast<int>(FRAME_SIZE);
}

//  +------+----+----+----+----+----+----+----+
//  | 0x2N | d1 | d2 | d3 | d4 | d5 | d6 | d7 |   N = sequence number 0..15
//  +------+----+----+----+----+----+----+----+
//  Frame N lands at payload offset N*7 - 1; the last one may be padded.
int CanResponse::addConsecutiveFrame(const std::vector<unsigned char>& bytes)
{
    if (m_payload.empty()) {
        OBD_DEBUG << "Consecutive frame received before FF";
        return -1;
    }
    if (bytes.empty()) {
        OBD_DEBUG << "Not enough data";
        return -1;
    }
    const uint32_t sequence = bytes[0] & 0x0Fu;
    // Unsigned on purpose: sequence 0 (a wrap past 15) lands past any
    // payload, so messages above 6 + 15 * 7 bytes are refused.
    const uint32_t offset = sequence * static_cast<uint32_t>(CF_DATA) - 1u;
    const size_t size = m_payload.size();
    if (offset > size) {
        OBD_DEBUG << "Not enough data";
        return -1;
    }
    size_t count = CF_DATA;
    if (offset + CF_DATA > size)
        count = size - offset;
    // The last frame may come with or without its filler, of any value.
    if (bytes.size() < 1 + count) {
        OBD_DEBUG << "Not enough data";
        return -1;
    }
    const int used = static_cast<int>(std::min(bytes.size(), FRAME_SIZE));
    if (m_sequences.size() <= sequence)
        m_sequences.resize(sequence + 1, false);
    if (m_sequences[sequence]) {
        // A repeated frame: the same bytes change nothing; other bytes are logged
        // and the first copy stays.
        if (!std::equal(bytes.begin() + 1, bytes.begin() + 1 + count, m_payload.begin() + offset))
            OBD_DEBUG << "Repeated consecutive frame with other bytes: " << sequence;
        return used;
    }
    m_sequences[sequence] = true;
    for (size_t i = 0; i < count; ++i)
        m_payload[offset + i] = bytes[1 + i];
    m_received += static_cast<unsigned int>(count);
    return used;
}

bool CanResponse::getPayload(std::vector<unsigned char>& out) const
{
    if (m_received != m_length)
        return false;
    out = m_payload;
    return true;
}

} // namespace Obd
