#ifndef TEST_RECORDINGPARAMETER_H
#define TEST_RECORDINGPARAMETER_H

#include "obdparameter.h"

#include <vector>

// A parameter that records what the transporter hands it: each parse call
// with its protocol, ECU id and payload, in order. Request and signature are
// given at construction (an empty signature matches anything); parsePayload
// accepts unless told to reject some ECU ids.
class RecordingParameter : public Obd::ObdParameter
{
public:
    struct Call
    {
        unsigned int protocol;
        unsigned int ecuId;
        std::vector<unsigned char> data;
    };

    RecordingParameter(const std::vector<unsigned char>& request,
                       const std::vector<unsigned char>& signature, unsigned int timeoutMs = 1200);
    ~RecordingParameter() override;

    void rejectEcu(unsigned int ecuId);

    unsigned int getTimeout() const override;
    void buildRequest(std::vector<unsigned char>& request) override;
    void getSignature(std::vector<unsigned char>& signature) override;
    bool parsePayload(unsigned int ecuId, const std::vector<unsigned char>& data) override;

    // Every parse() call, whether the signature matched or not.
    const std::vector<Call>& parseCalls() const { return m_parseCalls; }
    // The calls that reached parsePayload (signature matched).
    const std::vector<Call>& payloads() const { return m_payloads; }
    int requestCount() const { return m_requestCount; }

    bool parse(unsigned int protocol, unsigned int ecuId,
               const std::vector<unsigned char>& data) override;

private:
    std::vector<unsigned char> m_request;
    std::vector<unsigned char> m_signature;
    unsigned int m_timeout;
    std::vector<unsigned int> m_rejected;
    std::vector<Call> m_parseCalls;
    std::vector<Call> m_payloads;
    int m_requestCount;
};

#endif
