#include "calibrationids.h"
#include "ecu.h"
#include "iscantool.h"
#include "trlog.h"
#include "vehicleinfoframes.h"

namespace Obd {

namespace {

const size_t ID_LENGTH = 16;
// Four frames carry one ID.
const size_t FRAMED_PER_ID = 4 * VehicleInfoFrames::FRAME_SIZE;

} // namespace

CalibrationIds::CalibrationIds()
{
}

CalibrationIds::~CalibrationIds()
{
}

void CalibrationIds::clear()
{
    m_ids.clear();
}

void CalibrationIds::buildRequest(std::vector<unsigned char>& request)
{
    request.clear();
    request.push_back(0x09);
    request.push_back(INFO_TYPE);
}

void CalibrationIds::getSignature(std::vector<unsigned char>& signature)
{
    signature.clear();
    signature.push_back(0x49);
    signature.push_back(INFO_TYPE);
}

// Counted: the items must fill whole IDs; a trailing partial ID is refused
// rather than shown cut off. Framed: the IDs run across the message numbers.
bool CalibrationIds::parsePayload(unsigned int ecuId, const std::vector<unsigned char>& data)
{
    using namespace VehicleInfoFrames;
    std::vector<unsigned char> text;
    size_t offset = 0;
    if (isCanProtocol(m_protocol)) {
        if (data.size() < COUNTED_HEADER + ID_LENGTH
            || (data.size() - COUNTED_HEADER) % ID_LENGTH != 0) {
            OBD_ERROR << "Invalid number of data bytes: " << data.size();
            return false;
        }
        OBD_DEBUG << "Number of CALID items: " << static_cast<unsigned int>(data[2]);
        text = data;
        offset = COUNTED_HEADER;
    } else {
        if (data.empty() || data.size() % FRAMED_PER_ID != 0) {
            OBD_ERROR << "Invalid number of data bytes: " << data.size();
            return false;
        }
        if (collectFrames(data, INFO_TYPE, text) != OK) {
            OBD_ERROR << "Invalid data received";
            return false;
        }
    }
    std::vector<std::string> ids;
    for (size_t at = offset; at + ID_LENGTH <= text.size(); at += ID_LENGTH)
        ids.push_back(trimmedText(text, at, ID_LENGTH));
    m_ids[ecuId] = ids;
    return true;
}

std::vector<std::string> CalibrationIds::getCalibrationIds(const Ecu& ecu) const
{
    auto it = m_ids.find(ecu.getId());
    if (it == m_ids.end()) {
        OBD_WARN << "invalid ECU id " << ecu.getId();
        return std::vector<std::string>();
    }
    return it->second;
}

void CalibrationIds::getEcuIds(std::vector<unsigned int>& ids) const
{
    for (const auto& entry : m_ids)
        ids.push_back(entry.first);
}

} // namespace Obd
