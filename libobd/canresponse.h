#ifndef OBD_CANRESPONSE_H
#define OBD_CANRESPONSE_H

#include <vector>

namespace Obd {

// Reassembles one ECU's ISO 15765-2 message from the frames the adapter
// prints with headers on (identifier already removed by the transporter).
// Frames arrive end to end without separators, so addFrame() reports how
// many bytes the frame at the front occupied.
class CanResponse
{
public:
    explicit CanResponse(unsigned int protocol);
    virtual ~CanResponse();

    // Bytes the frame at the front of bytes occupied (1 to 8), or -1 when it
    // cannot be taken; a refused frame leaves the state unchanged. A repeated
    // consecutive frame is taken and counted once.
    int addFrame(const std::vector<unsigned char>& bytes);
    // False until every announced byte was received.
    bool getPayload(std::vector<unsigned char>& out) const;

    unsigned int getProtocol() const { return m_protocol; }
    unsigned int getFrameType() const { return m_frameType; }
    unsigned int getLength() const { return m_length; }
    unsigned int getReceived() const { return m_received; }

private:
    CanResponse(const CanResponse&) = delete;
    CanResponse& operator=(const CanResponse&) = delete;

    int addSingleFrame(const std::vector<unsigned char>& bytes);
    int addFirstFrame(const std::vector<unsigned char>& bytes);
    int addConsecutiveFrame(const std::vector<unsigned char>& bytes);

    unsigned int m_protocol;
    unsigned int m_frameType;
    unsigned int m_length;
    unsigned int m_received;
    std::vector<unsigned char> m_payload;
    std::vector<bool> m_sequences; // consecutive frames received, by sequence number
};

} // namespace Obd

#endif
