#ifndef ELMSIM_FRAMEFORMATTER_H
#define ELMSIM_FRAMEFORMATTER_H

#include "obdresponder.h"
#include "profile.h"

#include <cstddef>
#include <functional>
#include <string>
#include <vector>

namespace ElmSim {

// The adapter's display switches that shape a reply.
struct DisplaySettings {
    bool headers = false;
    bool spaces = true;
    bool dlc = false;
    const char* lineEnd = "\r";
    bool fillLastFrame = true;           // last consecutive frame printed with its filler
};

// Turns ECU messages into the text an ELM327 prints for them: CAN frames
// (ISO 15765-2 segmentation) or K-line/J1850 lines with header and check
// byte, honouring headers, spaces and DLC display.
class FrameFormatter
{
public:
    explicit FrameFormatter(const Profile& profile);

    // Appends the lines of at most maxAnswers ECUs (0: all) to out.
    void format(const std::vector<EcuAnswer>& answers, const DisplaySettings& display, size_t maxAnswers,
                std::string& out) const;

    // Asked for every single or consecutive frame (every line on the other
    // buses); true prints it twice, as some clones do.
    void setRepeat(std::function<bool()> repeat) { m_repeat = std::move(repeat); }

    // Check bytes of the non-CAN buses.
    static uint8_t sumChecksum(const uint8_t* bytes, size_t length);
    static uint8_t j1850Crc(const uint8_t* bytes, size_t length);

private:
    void formatCan(const EcuProfile* ecu, uint32_t ecuId, const std::vector<uint8_t>& message,
                   const DisplaySettings& display, std::string& out) const;
    void formatLine(uint32_t ecuId, const std::vector<uint8_t>& message, const DisplaySettings& display,
                    std::string& out) const;
    void appendCanId(uint32_t ecuId, const DisplaySettings& display, std::string& out) const;
    void emitFrame(size_t start, std::string& out) const;

    const Profile& m_profile;
    std::function<bool()> m_repeat;
};

} // namespace ElmSim

#endif
