#ifndef OBD_PENDINGTROUBLECODES_H
#define OBD_PENDINGTROUBLECODES_H

#include "dtcparameter.h"

namespace Obd {

// Pending trouble codes, service 07: request 07, answer 47.
class PendingTroubleCodes : public DtcParameter
{
public:
    PendingTroubleCodes();
    ~PendingTroubleCodes() override;

    void buildRequest(std::vector<unsigned char>& request) override;
    void getSignature(std::vector<unsigned char>& signature) override;
};

} // namespace Obd

#endif
