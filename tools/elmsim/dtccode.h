#ifndef ELMSIM_DTCCODE_H
#define ELMSIM_DTCCODE_H

#include <cstdint>
#include <string>

namespace ElmSim {

// Trouble-code text ("P0133") to the two bytes of SAE J1979.
class DtcCode
{
public:
    static bool toBytes(const std::string& code, uint8_t bytes[2]);
};

} // namespace ElmSim

#endif
