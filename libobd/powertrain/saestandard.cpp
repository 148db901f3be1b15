#include "saestandard.h"
#include "ecu.h"
#include "trlog.h"

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
    : CataloguePid(0x1C, mode)
{
}

SaeStandard::~SaeStandard()
{
}

bool SaeStandard::decode(unsigned int ecuId, const std::vector<unsigned char>& data)
{
    if (!m_descriptor.acceptsLength(data.size()))
        return false;
    m_values[ecuId] = data[0] <= LAST_STANDARD ? data[0] : 0;
    return true;
}

unsigned int SaeStandard::getStandard(const Ecu& ecu) const
{
    auto it = m_values.find(ecu.getId());
    if (it == m_values.end()) {
        OBD_WARN << "invalid ECU id " << ecu.getId();
        return 0;
    }
    return it->second;
}

void SaeStandard::getFormattedValues(const Ecu& ecu, UnitSystem unitSystem,
                                     std::vector<std::string>& list) const
{
    (void)unitSystem;
    auto it = m_values.find(ecu.getId());
    if (it == m_values.end()) {
        OBD_WARN << "invalid ECU id " << ecu.getId();
        return;
    }
    list.push_back(standardText(it->second));
}

std::string SaeStandard::standardText(unsigned int code)
{
    return STANDARD_TEXTS[code <= LAST_STANDARD ? code : 0];
}

} // namespace Obd
