#include "fuelsystem.h"
#include "ecu.h"
#include "trlog.h"

namespace Obd {

namespace {

// The sixth entry is never shown: the bound test is "above 4".
const char* const STATUS_TEXTS[] = {
    "Open loop (0)", "Closed loop (1)", "Open loop (2)", "Open loop (3)", "Closed loop (4)", "Unused"
};

} // namespace

FuelSystem::FuelSystem(unsigned char mode)
    : CataloguePid(0x03, mode)
{
}

FuelSystem::~FuelSystem()
{
}

bool FuelSystem::toIndex(unsigned char byte, unsigned int& index)
{
    if (!PidTable::statusBitIndex(byte, index)) {
        OBD_ERROR << "Invalid bit set: int value " << static_cast<unsigned int>(byte);
        return false;
    }
    return true;
}

bool FuelSystem::decode(unsigned int ecuId, const std::vector<unsigned char>& data)
{
    if (!m_descriptor.acceptsLength(data.size()))
        return false;
    Data status;
    if (!toIndex(data[0], status.system1))
        return false;
    // B = 0: there is no second fuel system.
    if (data[1] != 0 && !toIndex(data[1], status.system2))
        return false;
    m_values[ecuId] = status;
    return true;
}

FuelSystem::Data FuelSystem::getData(const Ecu& ecu) const
{
    auto it = m_values.find(ecu.getId());
    if (it == m_values.end()) {
        OBD_WARN << "invalid ECU id " << ecu.getId();
        return Data();
    }
    return it->second;
}

void FuelSystem::getFormattedValues(const Ecu& ecu, UnitSystem unitSystem,
                                    std::vector<std::string>& list) const
{
    (void)unitSystem;
    auto it = m_values.find(ecu.getId());
    if (it == m_values.end()) {
        OBD_WARN << "invalid ECU id " << ecu.getId();
        return;
    }
    list.push_back(statusText(it->second.system1));
    list.push_back(statusText(it->second.system2));
}

std::string FuelSystem::statusText(unsigned int index)
{
    return index > 4 ? "NA" : STATUS_TEXTS[index];
}

} // namespace Obd
