#include "cleartroublecodes.h"
#include "ecu.h"
#include "trlog.h"

namespace Obd {

ClearTroubleCodes::ClearTroubleCodes()
{
}

ClearTroubleCodes::~ClearTroubleCodes()
{
}

void ClearTroubleCodes::buildRequest(std::vector<unsigned char>& request)
{
    request.clear();
    request.push_back(0x04);
}

void ClearTroubleCodes::getSignature(std::vector<unsigned char>& signature)
{
    signature.clear();
    signature.push_back(0x44);
}

bool ClearTroubleCodes::parsePayload(unsigned int ecuId, const std::vector<unsigned char>& data)
{
    const bool confirmed = data.size() == 1;
    if (!confirmed)
        OBD_ERROR << "Failed to parse response";
    m_cleared[ecuId] = confirmed;
    return confirmed;
}

bool ClearTroubleCodes::isCleared(const Ecu& ecu) const
{
    auto it = m_cleared.find(ecu.getId());
    if (it == m_cleared.end()) {
        OBD_WARN << "invalid ECU id " << ecu.getId();
        return false;
    }
    return it->second;
}

} // namespace Obd
