#include "vehicleidentificationnumber.h"
#include "ecu.h"
#include "iscantool.h"
#include "trlog.h"
#include "vehicleinfoframes.h"

namespace Obd {

namespace {

const size_t VIN_LENGTH = 17;
// Five frames of four data bytes: three fill bytes, then the VIN.
const size_t FRAMED_LENGTH = 5 * VehicleInfoFrames::FRAME_SIZE;
const size_t FRAMED_FILL = 5 * VehicleInfoFrames::FRAME_DATA - VIN_LENGTH;

} // namespace

VehicleIdentificationNumber::VehicleIdentificationNumber()
{
}

VehicleIdentificationNumber::~VehicleIdentificationNumber()
{
}

void VehicleIdentificationNumber::clear()
{
    m_vins.clear();
}

void VehicleIdentificationNumber::buildRequest(std::vector<unsigned char>& request)
{
    request.clear();
    request.push_back(0x09);
    request.push_back(INFO_TYPE);
}

void VehicleIdentificationNumber::getSignature(std::vector<unsigned char>& signature)
{
    signature.clear();
    signature.push_back(0x49);
    signature.push_back(INFO_TYPE);
}

bool VehicleIdentificationNumber::parsePayload(unsigned int ecuId,
                                               const std::vector<unsigned char>& data)
{
    using namespace VehicleInfoFrames;
    if (isCanProtocol(m_protocol)) {
        if (data.size() < COUNTED_HEADER + VIN_LENGTH) {
            OBD_ERROR << "Invalid number of data bytes: " << data.size();
            return false;
        }
        OBD_DEBUG << "Number of VIN items: " << static_cast<unsigned int>(data[2]);
        m_vins[ecuId] = trimmedText(data, COUNTED_HEADER, VIN_LENGTH);
        return true;
    }

    if (data.size() != FRAMED_LENGTH) {
        OBD_ERROR << "Invalid number of data bytes: " << data.size();
        return false;
    }
    std::vector<unsigned char> buffer;
    if (collectFrames(data, INFO_TYPE, buffer) != OK) {
        OBD_ERROR << "Invalid data received";
        return false;
    }
    m_vins[ecuId] = trimmedText(buffer, FRAMED_FILL, VIN_LENGTH);
    return true;
}

std::string VehicleIdentificationNumber::getVin(const Ecu& ecu) const
{
    auto it = m_vins.find(ecu.getId());
    if (it == m_vins.end()) {
        OBD_WARN << "invalid ECU id " << ecu.getId();
        return std::string();
    }
    return it->second;
}

bool VehicleIdentificationNumber::hasVin(const Ecu& ecu) const
{
    return m_vins.count(ecu.getId()) != 0;
}

void VehicleIdentificationNumber::getEcuIds(std::vector<unsigned int>& ids) const
{
    for (const auto& entry : m_vins)
        ids.push_back(entry.first);
}

} // namespace Obd
