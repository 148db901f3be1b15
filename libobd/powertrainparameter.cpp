#include "powertrainparameter.h"
#include "iscantool.h"
#include "trlog.h"

namespace Obd {

PowertrainParameter::PowertrainParameter(unsigned char mode)
    : m_mode(mode)
{
}

PowertrainParameter::~PowertrainParameter()
{
}

unsigned char PowertrainParameter::getMode() const
{
    return m_mode;
}

void PowertrainParameter::setMode(unsigned char mode)
{
    m_mode = mode;
}

void PowertrainParameter::buildRequest(std::vector<unsigned char>& request)
{
    request.clear();
    request.push_back(m_mode);
    request.push_back(getPid());
    if (m_mode == 2)
        request.push_back(0x00); // freeze frame number
}

void PowertrainParameter::getSignature(std::vector<unsigned char>& signature)
{
    signature.clear();
    signature.push_back(static_cast<unsigned char>((m_mode + 0x40) % 256));
    signature.push_back(getPid());
}

bool PowertrainParameter::parsePayload(unsigned int ecuId, const std::vector<unsigned char>& data)
{
    //  mode 2:           [0x42][PID][frame]  data...
    //  mode 6, non-CAN:  [0x46][TID][0xFF]   data...
    //  otherwise:        [mode+0x40][PID]    data...
    size_t header = 2;
    if (m_mode == 2) {
        header = 3;
    } else if (m_mode == 6 && !isCanProtocol(m_protocol)) {
        header = 3;
        if (data.size() > 2 && data[2] != 0xFF)
            OBD_DEBUG << "Invalid filler byte: " << static_cast<unsigned int>(data[2]);
    }
    if (data.size() <= header)
        return false;
    return decode(ecuId, std::vector<unsigned char>(data.begin() + header, data.end()));
}

} // namespace Obd
