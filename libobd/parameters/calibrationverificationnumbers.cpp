#include "calibrationverificationnumbers.h"
#include "ecu.h"
#include "iscantool.h"
#include "trlog.h"
#include "vehicleinfoframes.h"

#include <cstdio>

namespace Obd {

namespace {

const size_t NUMBER_LENGTH = 4;

} // namespace

CalibrationVerificationNumbers::CalibrationVerificationNumbers()
{
}

CalibrationVerificationNumbers::~CalibrationVerificationNumbers()
{
}

void CalibrationVerificationNumbers::clear()
{
    m_numbers.clear();
}

void CalibrationVerificationNumbers::buildRequest(std::vector<unsigned char>& request)
{
    request.clear();
    request.push_back(0x09);
    request.push_back(INFO_TYPE);
}

void CalibrationVerificationNumbers::getSignature(std::vector<unsigned char>& signature)
{
    signature.clear();
    signature.push_back(0x49);
    signature.push_back(INFO_TYPE);
}

// Counted: whole 4-byte numbers after the header. Framed: one number per
// frame, ordered by message number.
bool CalibrationVerificationNumbers::parsePayload(unsigned int ecuId,
                                                  const std::vector<unsigned char>& data)
{
    using namespace VehicleInfoFrames;
    std::vector<unsigned char> bytes;
    size_t offset = 0;
    if (isCanProtocol(m_protocol)) {
        if (data.size() < COUNTED_HEADER + NUMBER_LENGTH
            || (data.size() - COUNTED_HEADER) % NUMBER_LENGTH != 0) {
            OBD_ERROR << "Invalid number of data bytes: " << data.size();
            return false;
        }
        OBD_DEBUG << "Number of verification items: " << static_cast<unsigned int>(data[2]);
        bytes = data;
        offset = COUNTED_HEADER;
    } else {
        if (data.empty() || data.size() % FRAME_SIZE != 0) {
            OBD_ERROR << "Invalid number of data bytes: " << data.size();
            return false;
        }
        if (collectFrames(data, INFO_TYPE, bytes) != OK) {
            OBD_ERROR << "Invalid data received";
            return false;
        }
    }
    std::vector<unsigned int> numbers;
    for (size_t at = offset; at + NUMBER_LENGTH <= bytes.size(); at += NUMBER_LENGTH)
        numbers.push_back(bigEndian(bytes, at, NUMBER_LENGTH));
    m_numbers[ecuId] = numbers;
    return true;
}

std::vector<unsigned int> CalibrationVerificationNumbers::getVerificationNumbers(
    const Ecu& ecu) const
{
    auto it = m_numbers.find(ecu.getId());
    if (it == m_numbers.end()) {
        OBD_WARN << "invalid ECU id " << ecu.getId();
        return std::vector<unsigned int>();
    }
    return it->second;
}

std::vector<std::string> CalibrationVerificationNumbers::getVerificationNumberTexts(
    const Ecu& ecu) const
{
    std::vector<std::string> texts;
    for (unsigned int number : getVerificationNumbers(ecu)) {
        char text[12];
        std::snprintf(text, sizeof(text), "%08X", number);
        texts.push_back(text);
    }
    return texts;
}

void CalibrationVerificationNumbers::getEcuIds(std::vector<unsigned int>& ids) const
{
    for (const auto& entry : m_numbers)
        ids.push_back(entry.first);
}

} // namespace Obd
