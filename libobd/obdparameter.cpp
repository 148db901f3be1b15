#include "obdparameter.h"
#include "trlog.h"

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
        OBD_ERROR << "Signature mismatch";
        return false;
    }
    return parsePayload(ecuId, data);
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
