#include "secondaryairstatus.h"
#include "ecu.h"
#include "trlog.h"

namespace Obd {

namespace {

// The "Unused" rows are never shown: the bound test is "above 3".
const char* const STATUS_TEXTS[] = {
    "Upstream of first catalytic converter", "Downstream of first catalytic converter inlet",
    "Atmosphere / off", "Pump commanded on for diagnostics", "Unused"
};

} // namespace

SecondaryAirStatus::SecondaryAirStatus(unsigned char mode)
    : CataloguePid(0x12, mode)
{
}

SecondaryAirStatus::~SecondaryAirStatus()
{
}

bool SecondaryAirStatus::decode(unsigned int ecuId, const std::vector<unsigned char>& data)
{
    if (!m_descriptor.acceptsLength(data.size()))
        return false;
    AirStatus air;
    if (!PidTable::statusBitIndex(data[0], air.status)) {
        // The byte goes out as a raw character, not as a number.
        OBD_ERROR << "Invalid bit set: int value " << static_cast<char>(data[0]);
        return false;
    }
    m_values[ecuId] = air;
    return true;
}

unsigned int SecondaryAirStatus::getStatus(const Ecu& ecu) const
{
    auto it = m_values.find(ecu.getId());
    if (it == m_values.end()) {
        OBD_WARN << "invalid ECU id " << ecu.getId();
        return 0;
    }
    return it->second.status;
}

void SecondaryAirStatus::getFormattedValues(const Ecu& ecu, UnitSystem unitSystem,
                                            std::vector<std::string>& list) const
{
    (void)unitSystem;
    auto it = m_values.find(ecu.getId());
    if (it == m_values.end()) {
        OBD_WARN << "invalid ECU id " << ecu.getId();
        return;
    }
    list.push_back(statusText(it->second.status));
}

std::string SecondaryAirStatus::statusText(unsigned int index)
{
    return index > 3 ? "NA" : STATUS_TEXTS[index];
}

} // namespace Obd
