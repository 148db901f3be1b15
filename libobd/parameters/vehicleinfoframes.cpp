#include "vehicleinfoframes.h"

namespace Obd {
namespace VehicleInfoFrames {

Status collectFrames(const std::vector<unsigned char>& data, unsigned char infoType,
                     std::vector<unsigned char>& buffer)
{
    buffer.clear();
    if (data.empty() || data.size() % FRAME_SIZE != 0)
        return BAD_LENGTH;
    const size_t frames = data.size() / FRAME_SIZE;
    std::vector<bool> seen(frames, false);
    buffer.assign(frames * FRAME_DATA, 0);
    for (size_t f = 0; f < frames; ++f) {
        const unsigned char* frame = &data[f * FRAME_SIZE];
        if (frame[0] != 0x49 || frame[1] != infoType)
            return BAD_HEADER;
        const size_t number = frame[2];
        if (number == 0 || number > frames || seen[number - 1])
            return BAD_HEADER;
        seen[number - 1] = true;
        for (size_t i = 0; i < FRAME_DATA; ++i)
            buffer[(number - 1) * FRAME_DATA + i] = frame[3 + i];
    }
    return OK;
}

std::string trimmedText(const std::vector<unsigned char>& bytes, size_t offset, size_t length)
{
    if (offset >= bytes.size())
        return std::string();
    size_t end = offset + length;
    if (end > bytes.size() || end < offset)
        end = bytes.size();
    auto isPadding = [](unsigned char c) { return c == 0x00 || c == ' '; };
    while (offset < end && isPadding(bytes[offset]))
        ++offset;
    while (end > offset && isPadding(bytes[end - 1]))
        --end;
    return std::string(bytes.begin() + offset, bytes.begin() + end);
}

unsigned int bigEndian(const std::vector<unsigned char>& bytes, size_t offset, size_t length)
{
    unsigned int value = 0;
    for (size_t i = 0; i < length; ++i) {
        value <<= 8;
        if (offset + i < bytes.size())
            value |= bytes[offset + i];
    }
    return value;
}

Status decodeCounters(const std::vector<unsigned char>& data, unsigned char infoType,
                      bool counted, size_t tableSize, std::map<unsigned int, unsigned int>& counters)
{
    const size_t COUNTER_LENGTH = 2;
    const size_t COUNTED_MINIMUM = COUNTED_HEADER + 16 * COUNTER_LENGTH;
    std::vector<unsigned char> bytes;
    size_t offset = 0;
    if (counted) {
        if (data.size() < COUNTED_MINIMUM)
            return BAD_LENGTH;
        bytes = data;
        offset = COUNTED_HEADER;
    } else {
        const Status status = collectFrames(data, infoType, bytes);
        if (status != OK)
            return status;
    }
    counters.clear();
    unsigned int id = 0;
    for (size_t at = offset; at + COUNTER_LENGTH <= bytes.size() && id < tableSize;
         at += COUNTER_LENGTH, ++id)
        counters[id] = bigEndian(bytes, at, COUNTER_LENGTH);
    return OK;
}

} // namespace VehicleInfoFrames
} // namespace Obd
