#include "multipidrequest.h"
#include "powertrain/pidtable.h"
#include "trlog.h"

namespace Obd {

bool MultiPidRequest::canShare(unsigned char pid)
{
    const PidRow* row = PidTable::find(pid);
    return row && row->minBytes == row->maxBytes && pid % 0x20 != 0;
}

MultiPidRequest::MultiPidRequest(const std::vector<Item>& items)
    : m_items(items)
{
}

void MultiPidRequest::buildRequest(std::vector<unsigned char>& request)
{
    request.assign(1, 0x01);
    for (const Item& item : m_items)
        request.push_back(item.first);
}

void MultiPidRequest::getSignature(std::vector<unsigned char>& signature)
{
    signature.assign(1, 0x41);
}

bool MultiPidRequest::parse(unsigned int protocol, unsigned int ecuId,
                            const std::vector<unsigned char>& data)
{
    m_protocol = protocol;
    if (data.size() < 2 || data[0] != 0x41) {
        OBD_DEBUG << "ECU " << ecuId << " refused a multi-PID request";
        m_malformed.insert(ecuId);
        return false;
    }
    return parsePayload(ecuId, data);
}

//  41 | 0C A B | 0D A | 05 A ...   one PID number, then its fixed-length data
bool MultiPidRequest::parsePayload(unsigned int ecuId, const std::vector<unsigned char>& data)
{
    size_t at = 1;
    while (at < data.size()) {
        const unsigned char pid = data[at];
        ObdParameter* parameter = nullptr;
        for (const Item& item : m_items)
            parameter = item.first == pid ? item.second : parameter;
        const PidRow* row = PidTable::find(pid);
        if (!parameter || !row || at + 1 + row->maxBytes > data.size()) {
            OBD_DEBUG << "ECU " << ecuId << " answered PID " << static_cast<unsigned int>(pid)
                      << " out of shape";
            m_malformed.insert(ecuId);
            return false;
        }
        std::vector<unsigned char> single;
        single.reserve(2 + row->maxBytes);
        single.push_back(0x41);
        single.push_back(pid);
        single.insert(single.end(), data.begin() + at + 1, data.begin() + at + 1 + row->maxBytes);
        if (parameter->parse(m_protocol, ecuId, single))
            m_answered[ecuId].insert(pid);
        at += 1 + row->maxBytes;
    }
    return true;
}

std::set<unsigned char> MultiPidRequest::answered(unsigned int ecuId) const
{
    auto it = m_answered.find(ecuId);
    return it == m_answered.end() ? std::set<unsigned char>() : it->second;
}

bool MultiPidRequest::malformed(unsigned int ecuId) const
{
    return m_malformed.count(ecuId) > 0;
}

} // namespace Obd
