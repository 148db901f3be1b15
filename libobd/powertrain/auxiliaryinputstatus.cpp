#include "auxiliaryinputstatus.h"
#include "ecu.h"
#include "trlog.h"

namespace Obd {

AuxiliaryInputStatus::AuxiliaryInputStatus(unsigned char mode)
    : CataloguePid(0x1E, mode)
{
}

AuxiliaryInputStatus::~AuxiliaryInputStatus()
{
}

bool AuxiliaryInputStatus::decode(unsigned int ecuId, const std::vector<unsigned char>& data)
{
    if (!m_descriptor.acceptsLength(data.size()))
        return false;
    Status status;
    status.powerTakeOff = (data[0] & 0x01) != 0;
    m_values[ecuId] = status;
    return true;
}

bool AuxiliaryInputStatus::isPowerTakeOffActive(const Ecu& ecu) const
{
    auto it = m_values.find(ecu.getId());
    if (it == m_values.end()) {
        OBD_WARN << "invalid ECU id " << ecu.getId();
        return false;
    }
    return it->second.powerTakeOff;
}

void AuxiliaryInputStatus::getFormattedValues(const Ecu& ecu, UnitSystem unitSystem,
                                              std::vector<std::string>& list) const
{
    (void)unitSystem;
    auto it = m_values.find(ecu.getId());
    if (it == m_values.end()) {
        OBD_WARN << "invalid ECU id " << ecu.getId();
        return;
    }
    list.push_back(statusText(it->second.powerTakeOff));
}

std::string AuxiliaryInputStatus::statusText(bool powerTakeOff)
{
    return std::string("Power Take Off: ") + (powerTakeOff ? "Active" : "Not active");
}

} // namespace Obd
