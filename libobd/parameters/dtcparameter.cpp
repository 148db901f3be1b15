#include "dtcparameter.h"
#include "ecu.h"
#include "iscantool.h"
#include "trlog.h"

namespace Obd {

namespace {

const size_t FRAME_LENGTH = 7;

} // namespace

DtcParameter::DtcParameter()
{
}

DtcParameter::~DtcParameter()
{
}

bool DtcParameter::parsePayload(unsigned int ecuId, const std::vector<unsigned char>& data)
{
    std::vector<Dtc>& list = m_dtcs[ecuId];
    if (isCanProtocol(m_protocol))
        return parseCounted(data, list);
    return parseFrames(data, list);
}

//  [mode][N][A1 B1][A2 B2]...[AN BN]
bool DtcParameter::parseCounted(const std::vector<unsigned char>& data, std::vector<Dtc>& list)
{
    if (data.size() < 2)
        return false;
    list.clear();
    const size_t count = data[1];
    OBD_DEBUG << "DTC count " << count;
    if (count == 0)
        return true;
    if (data.size() - 2 != 2 * count) {
        // Accepted with no codes.
        OBD_ERROR << "Invalid length: " << data.size();
        return true;
    }
    for (size_t i = 2; i + 1 < data.size(); i += 2)
        addCode(data[i], data[i + 1], list);
    return true;
}

//  frame: [mode][A1 B1][A2 B2][A3 B3], one per adapter line, frames end to end
bool DtcParameter::parseFrames(const std::vector<unsigned char>& data, std::vector<Dtc>& list)
{
    if (data.size() % FRAME_LENGTH != 0) {
        OBD_ERROR << "Invalid length: " << data.size();
        return false;
    }
    list.clear();
    std::vector<unsigned char> signature;
    getSignature(signature);
    for (size_t frame = 0; frame < data.size(); frame += FRAME_LENGTH) {
        for (size_t i = 0; i < signature.size(); ++i) {
            if (i >= FRAME_LENGTH || data[frame + i] != signature[i]) {
                // Codes of the frames before stay.
                OBD_ERROR << "Invalid data received";
                return false;
            }
        }
        for (size_t i = frame + signature.size(); i + 1 < frame + FRAME_LENGTH; i += 2)
            addCode(data[i], data[i + 1], list);
    }
    return true;
}

void DtcParameter::addCode(unsigned char a, unsigned char b, std::vector<Dtc>& list)
{
    std::string code = Dtc::codeFromBytes(a, b);
    if (!code.empty())
        list.push_back(Dtc::describe(code));
}

bool DtcParameter::getDtcs(const Ecu& ecu, std::vector<Dtc>& list) const
{
    auto it = m_dtcs.find(ecu.getId());
    if (it == m_dtcs.end()) {
        OBD_WARN << "invalid ECU id " << ecu.getId();
        return false;
    }
    list.insert(list.end(), it->second.begin(), it->second.end());
    return true;
}

void DtcParameter::getEcuIds(std::vector<unsigned int>& list) const
{
    for (const auto& entry : m_dtcs)
        list.push_back(entry.first);
}

} // namespace Obd
