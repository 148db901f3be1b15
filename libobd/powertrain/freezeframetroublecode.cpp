#include "freezeframetroublecode.h"
#include "dtc.h"
#include "ecu.h"
#include "trlog.h"

namespace Obd {

FreezeFrameTroubleCode::FreezeFrameTroubleCode(unsigned char mode)
    : CataloguePid(0x02, mode)
{
}

FreezeFrameTroubleCode::~FreezeFrameTroubleCode()
{
}

bool FreezeFrameTroubleCode::decode(unsigned int ecuId, const std::vector<unsigned char>& data)
{
    if (!m_descriptor.acceptsLength(data.size()))
        return false;
    // No code: the ECU holds no freeze frame now, an older code is gone.
    if (Dtc::isEmptyPair(data[0], data[1]))
        m_codes.erase(ecuId);
    else
        m_codes[ecuId] = std::make_pair(data[0], data[1]);
    return true;
}

bool FreezeFrameTroubleCode::findCode(const Ecu& ecu, std::string& code) const
{
    auto it = m_codes.find(ecu.getId());
    if (it == m_codes.end()) {
        OBD_WARN << "invalid ECU id or no DTC detected " << ecu.getId();
        return false;
    }
    code = Dtc::codeFromBytes(it->second.first, it->second.second);
    return true;
}

std::string FreezeFrameTroubleCode::getCode(const Ecu& ecu) const
{
    std::string code;
    findCode(ecu, code);
    return code;
}

std::string FreezeFrameTroubleCode::getCategory(const Ecu& ecu) const
{
    std::string code;
    return findCode(ecu, code) ? Dtc::categoryOf(code) : std::string();
}

std::string FreezeFrameTroubleCode::getDescription(const Ecu& ecu) const
{
    std::string code;
    return findCode(ecu, code) ? Dtc::describe(code).getDescription() : std::string();
}

void FreezeFrameTroubleCode::getFormattedValues(const Ecu& ecu, UnitSystem unitSystem,
                                                std::vector<std::string>& list) const
{
    (void)unitSystem;
    std::string code;
    if (findCode(ecu, code))
        list.push_back(code);
}

} // namespace Obd
