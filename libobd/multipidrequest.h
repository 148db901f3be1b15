#ifndef OBD_MULTIPIDREQUEST_H
#define OBD_MULTIPIDREQUEST_H

#include "obdparameter.h"

#include <map>
#include <set>
#include <utility>
#include <vector>

namespace Obd {

// Up to six service 01 PIDs in one CAN request. Each ECU answers once with
// every PID it supports followed by its data; the answer is split per PID
// and handed to each PID's own parameter, which decodes it as if it had
// been asked alone.
class MultiPidRequest : public ObdParameter
{
public:
    static constexpr size_t MAX_PIDS = 6;
    typedef std::pair<unsigned char, ObdParameter*> Item;

    // Only PIDs of a fixed length can be split out of a joint answer.
    static bool canShare(unsigned char pid);

    explicit MultiPidRequest(const std::vector<Item>& items);

    void buildRequest(std::vector<unsigned char>& request) override;
    void getSignature(std::vector<unsigned char>& signature) override;
    bool parse(unsigned int protocol, unsigned int ecuId,
               const std::vector<unsigned char>& data) override;
    bool parsePayload(unsigned int ecuId, const std::vector<unsigned char>& data) override;

    // The PIDs an ECU answered with data its parameter took.
    std::set<unsigned char> answered(unsigned int ecuId) const;
    // True when the ECU's answer was negative or could not be split.
    bool malformed(unsigned int ecuId) const;

private:
    std::vector<Item> m_items;
    std::map<unsigned int, std::set<unsigned char>> m_answered;
    std::set<unsigned int> m_malformed;
};

} // namespace Obd

#endif
