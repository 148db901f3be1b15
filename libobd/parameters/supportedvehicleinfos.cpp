#include "supportedvehicleinfos.h"
#include "ecu.h"
#include "iscantool.h"
#include "trlog.h"

namespace Obd {

SupportedVehicleInfos::SupportedVehicleInfos(unsigned char infoType)
    : m_infoType(infoType)
{
}

SupportedVehicleInfos::~SupportedVehicleInfos()
{
}

unsigned int SupportedVehicleInfos::getTimeout() const
{
    return 3000;
}

unsigned char SupportedVehicleInfos::getInfoType() const
{
    return m_infoType;
}

void SupportedVehicleInfos::buildRequest(std::vector<unsigned char>& request)
{
    request.clear();
    request.push_back(0x09);
    request.push_back(m_infoType);
}

void SupportedVehicleInfos::getSignature(std::vector<unsigned char>& signature)
{
    signature.clear();
    signature.push_back(0x49);
    signature.push_back(m_infoType);
}

//  CAN:      [49][type][A][B][C][D]
//  non-CAN:  [49][type][count][A][B][C][D]   (legacy buses add a message count)
bool SupportedVehicleInfos::parsePayload(unsigned int ecuId, const std::vector<unsigned char>& data)
{
    const size_t expected = isCanProtocol(m_protocol) ? 6 : 7;
    if (data.size() != expected) {
        OBD_ERROR << "Invalid length";
        return false;
    }
    const size_t n = data.size();
    m_supported.store(ecuId, data[n - 4], data[n - 3], data[n - 2], data[n - 1]);
    return true;
}

bool SupportedVehicleInfos::getSupported(const Ecu& ecu, std::vector<unsigned char>& list) const
{
    return m_supported.get(ecu, list);
}

void SupportedVehicleInfos::getEcuIds(std::vector<unsigned int>& list) const
{
    m_supported.getEcuIds(list);
}

} // namespace Obd
