#ifndef OBD_STOREDTROUBLECODES_H
#define OBD_STOREDTROUBLECODES_H

#include "dtcparameter.h"

namespace Obd {

// Confirmed (stored) trouble codes, service 03: request 03, answer 43.
class StoredTroubleCodes : public DtcParameter
{
public:
    StoredTroubleCodes();
    ~StoredTroubleCodes() override;

    void buildRequest(std::vector<unsigned char>& request) override;
    void getSignature(std::vector<unsigned char>& signature) override;
};

} // namespace Obd

#endif
