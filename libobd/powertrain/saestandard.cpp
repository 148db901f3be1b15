#include "saestandard.h"

namespace Obd {

namespace {

const unsigned int LAST_STANDARD = 13;

const char* const STANDARD_TEXTS[LAST_STANDARD + 1] = {
    "Invalid OBD standard",
    "OBDII (California ARB)",
    "OBD (US Federal EPA)",
    "OBD and OBD II",
    "OBD I",
    "Not OBD compliant",
    "EOBD (Euro OBD)",
    "EOBD and OBD II",
    "EOBD and OBD",
    "EOBD, OBD, and OBD II",
    "JOBD (Japan OBD)",
    "JOBD and OBD II",
    "JOBD and EOBD",
    "JOBD, EOBD, and OBD II"
};

} // namespace

SaeStandard::SaeStandard(unsigned char mode)
    : EnumeratedPid(0x1C, mode)
{
}

SaeStandard::~SaeStandard()
{
}

unsigned int SaeStandard::codeOf(unsigned char byte) const
{
    return byte <= LAST_STANDARD ? byte : 0;
}

unsigned int SaeStandard::getStandard(const Ecu& ecu) const
{
    return code(ecu);
}

std::string SaeStandard::standardText(unsigned int code)
{
    return STANDARD_TEXTS[code <= LAST_STANDARD ? code : 0];
}

} // namespace Obd
