#ifndef OBD_VEHICLEINFOFRAMES_H
#define OBD_VEHICLEINFOFRAMES_H

#include <map>
#include <string>
#include <vector>

namespace Obd {

// Byte-level helpers shared by the service 09 decoders. They never log: each
// decoder logs its own failures so the log names the decoder's source file.
namespace VehicleInfoFrames {

// Framed (non-CAN) layout: the ECU sends one 7-byte line per message.
//
//   0    1    2     3    4    5    6
//   +----+----+-----+----+----+----+----+
//   | 49 | IT | MSG | d1 | d2 | d3 | d4 |
//   +----+----+-----+----+----+----+----+
//   IT: the InfoType, MSG: the message number, counting from 1.
//
// The data bytes of message n go to offset (n - 1) * 4 of the buffer.
const size_t FRAME_SIZE = 7;
const size_t FRAME_DATA = 4;

// Counted (CAN) layout: one message, a 3-byte header then the items.
//
//   0    1    2     3 ...
//   +----+----+-----+--------------------+
//   | 49 | IT | NOD | item bytes         |
//   +----+----+-----+--------------------+
//   NOD: the number of data items.
const size_t COUNTED_HEADER = 3;

enum Status { OK, BAD_LENGTH, BAD_HEADER };

// Collects the data bytes of a framed message. BAD_LENGTH unless the data is
// a non-zero multiple of 7 bytes; BAD_HEADER when a frame does not begin with
// 49 IT or its message number is 0, beyond the frame count or repeated.
Status collectFrames(const std::vector<unsigned char>& data, unsigned char infoType,
                     std::vector<unsigned char>& buffer);

// The bytes [offset, offset + length) as text without NUL and space padding
// at either end. Clipped to the data; never reads out of range.
std::string trimmedText(const std::vector<unsigned char>& bytes, size_t offset, size_t length);

// Big-endian number of length bytes at offset (0 for bytes out of range).
unsigned int bigEndian(const std::vector<unsigned char>& bytes, size_t offset, size_t length);

// In-use performance tracking counters, 16-bit big-endian each, stored under
// their position (counter id). Counted: at least 35 bytes (16 counters); the
// counters that fit are read up to tableSize, a trailing odd byte is ignored.
// Framed: frame n carries the counters 2(n-1) and 2(n-1)+1; ids at or beyond
// tableSize are dropped.
Status decodeCounters(const std::vector<unsigned char>& data, unsigned char infoType,
                      bool counted, size_t tableSize, std::map<unsigned int, unsigned int>& counters);

} // namespace VehicleInfoFrames
} // namespace Obd

#endif
