#ifndef OBD_OBDPARAMETER_H
#define OBD_OBDPARAMETER_H

#include <vector>

namespace Obd {

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

protected:
    unsigned int m_protocol;

private:
    ObdParameter(const ObdParameter&) = delete;
    ObdParameter& operator=(const ObdParameter&) = delete;
};

} // namespace Obd

#endif
