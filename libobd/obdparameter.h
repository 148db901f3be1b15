#ifndef OBD_OBDPARAMETER_H
#define OBD_OBDPARAMETER_H

#include <map>
#include <string>
#include <vector>

namespace Obd {

// Whether one ECU's answer to the last exchange could be read, and why not.
enum ReadState {
    READ_NOT_ANSWERED = 0, // no answer from this ECU (others answered)
    READ_OK,
    READ_TIMEOUT,          // nothing came back in time, or the link went
    READ_ADAPTER_ERROR,    // the adapter printed an error word instead of data
    READ_NEGATIVE,         // the ECU answered 7F SID NRC
    READ_MALFORMED         // an answer came but could not be decoded
};

struct ReadStatus
{
    ReadState state = READ_NOT_ANSWERED;
    std::string reason; // in words, for the user
    bool ok() const { return state == READ_OK; }
};

// One kind of OBD request: builds its request bytes, knows the signature a
// valid answer starts with, and decodes each ECU's answer into results kept
// per ECU id.
class ObdParameter
{
public:
    ObdParameter();
    virtual ~ObdParameter();

    virtual void getRequest(unsigned int protocol, std::vector<unsigned char>& request);
    virtual bool parse(unsigned int protocol, unsigned int ecuId,
                       const std::vector<unsigned char>& data);
    virtual unsigned int getTimeout() const;
    virtual void clear();
    virtual void buildRequest(std::vector<unsigned char>& request) = 0;
    virtual void getSignature(std::vector<unsigned char>& signature) = 0;
    // data is the whole message of one ECU, signature included.
    virtual bool parsePayload(unsigned int ecuId, const std::vector<unsigned char>& data) = 0;

    unsigned int getProtocol() const;

    // Read status of the last exchange. An ECU without its own status has
    // the exchange's (time-out, error word) or, when others answered, none.
    void beginExchange();
    void setExchangeStatus(ReadState state, const std::string& reason);
    void setReadStatus(unsigned int ecuId, ReadState state, const std::string& reason);
    ReadStatus readStatus(unsigned int ecuId) const;
    bool isRead(unsigned int ecuId) const { return readStatus(ecuId).ok(); }
    bool anyRead() const;
    // "conditions not correct (NRC 22)"
    static std::string negativeResponseText(unsigned char nrc);

protected:
    unsigned int m_protocol;

private:
    std::map<unsigned int, ReadStatus> m_readStatus;
    ReadStatus m_exchangeStatus;

    ObdParameter(const ObdParameter&) = delete;
    ObdParameter& operator=(const ObdParameter&) = delete;
};

} // namespace Obd

#endif
