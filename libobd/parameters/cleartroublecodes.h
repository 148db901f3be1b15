#ifndef OBD_CLEARTROUBLECODES_H
#define OBD_CLEARTROUBLECODES_H

#include "obdparameter.h"

#include <map>

namespace Obd {

class Ecu;

// Service 04: clears the trouble codes and the diagnostic data. An ECU
// confirms with the single byte 44.
class ClearTroubleCodes : public ObdParameter
{
public:
    ClearTroubleCodes();
    ~ClearTroubleCodes() override;

    void buildRequest(std::vector<unsigned char>& request) override;
    void getSignature(std::vector<unsigned char>& signature) override;
    bool parsePayload(unsigned int ecuId, const std::vector<unsigned char>& data) override;

    // False (and a warning) for an ECU that did not answer.
    bool isCleared(const Ecu& ecu) const;

private:
    std::map<unsigned int, bool> m_cleared;
};

} // namespace Obd

#endif
