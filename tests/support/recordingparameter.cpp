#include "recordingparameter.h"

#include <algorithm>

RecordingParameter::RecordingParameter(const std::vector<unsigned char>& request,
                                       const std::vector<unsigned char>& signature,
                                       unsigned int timeoutMs)
    : m_request(request)
    , m_signature(signature)
    , m_timeout(timeoutMs)
    , m_requestCount(0)
{
}

RecordingParameter::~RecordingParameter()
{
}

void RecordingParameter::rejectEcu(unsigned int ecuId)
{
    m_rejected.push_back(ecuId);
}

unsigned int RecordingParameter::getTimeout() const
{
    return m_timeout;
}

void RecordingParameter::buildRequest(std::vector<unsigned char>& request)
{
    ++m_requestCount;
    request = m_request;
}

void RecordingParameter::getSignature(std::vector<unsigned char>& signature)
{
    signature = m_signature;
}

bool RecordingParameter::parse(unsigned int protocol, unsigned int ecuId,
                               const std::vector<unsigned char>& data)
{
    m_parseCalls.push_back(Call{protocol, ecuId, data});
    return ObdParameter::parse(protocol, ecuId, data);
}

bool RecordingParameter::parsePayload(unsigned int ecuId, const std::vector<unsigned char>& data)
{
    m_payloads.push_back(Call{m_protocol, ecuId, data});
    return std::find(m_rejected.begin(), m_rejected.end(), ecuId) == m_rejected.end();
}
