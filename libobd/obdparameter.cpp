#include "obdparameter.h"
#include "trlog.h"

#include <cstdio>

namespace Obd {

ObdParameter::ObdParameter()
    : m_protocol(0)
{
}

ObdParameter::~ObdParameter()
{
}

void ObdParameter::getRequest(unsigned int protocol, std::vector<unsigned char>& request)
{
    m_protocol = protocol;
    buildRequest(request);
}

bool ObdParameter::parse(unsigned int protocol, unsigned int ecuId,
                         const std::vector<unsigned char>& data)
{
    m_protocol = protocol;
    std::vector<unsigned char> signature;
    getSignature(signature);
    bool match = true;
    if (!signature.empty()) {
        if (data.empty() || data.size() < signature.size()) {
            match = false;
        } else {
            for (size_t i = 0; i < signature.size(); ++i) {
                if (data[i] != signature[i]) {
                    match = false;
                    break;
                }
            }
        }
    }
    if (!match) {
        // 7F SID NRC: the ECU refused; its words, never a decoded value.
        if (data.size() >= 3 && data[0] == 0x7F) {
            setReadStatus(ecuId, READ_NEGATIVE, "negative response: " + negativeResponseText(data[2]));
        } else {
            setReadStatus(ecuId, READ_MALFORMED, "malformed reply");
        }
        OBD_ERROR << "Signature mismatch";
        return false;
    }
    const bool decoded = parsePayload(ecuId, data);
    if (decoded)
        setReadStatus(ecuId, READ_OK, std::string());
    else
        setReadStatus(ecuId, READ_MALFORMED, "malformed reply");
    return decoded;
}

void ObdParameter::beginExchange()
{
    m_readStatus.clear();
    m_exchangeStatus = ReadStatus();
}

void ObdParameter::setExchangeStatus(ReadState state, const std::string& reason)
{
    m_exchangeStatus.state = state;
    m_exchangeStatus.reason = reason;
}

void ObdParameter::setReadStatus(unsigned int ecuId, ReadState state, const std::string& reason)
{
    ReadStatus& status = m_readStatus[ecuId];
    status.state = state;
    status.reason = reason;
}

ReadStatus ObdParameter::readStatus(unsigned int ecuId) const
{
    auto it = m_readStatus.find(ecuId);
    if (it != m_readStatus.end())
        return it->second;
    if (m_exchangeStatus.state != READ_NOT_ANSWERED)
        return m_exchangeStatus;
    ReadStatus none;
    none.reason = "no answer from this ECU";
    return none;
}

bool ObdParameter::anyRead() const
{
    for (const auto& entry : m_readStatus) {
        if (entry.second.ok())
            return true;
    }
    return false;
}

std::string ObdParameter::negativeResponseText(unsigned char nrc)
{
    const char* words = "refused";
    switch (nrc) {
    case 0x10: words = "general reject"; break;
    case 0x11: words = "not supported"; break;
    case 0x12: words = "sub-function not supported"; break;
    case 0x13: words = "incorrect message length"; break;
    case 0x21: words = "busy, repeat request"; break;
    case 0x22: words = "conditions not correct"; break;
    case 0x31: words = "request out of range"; break;
    case 0x33: words = "security access denied"; break;
    case 0x78: words = "response pending"; break;
    default: break;
    }
    char code[16];
    std::snprintf(code, sizeof(code), " (NRC %02X)", static_cast<unsigned int>(nrc));
    return words + std::string(code);
}

unsigned int ObdParameter::getTimeout() const
{
    return 1200;
}

void ObdParameter::clear()
{
    OBD_DEBUG << "Clear not implemented";
}

unsigned int ObdParameter::getProtocol() const
{
    return m_protocol;
}

} // namespace Obd
