#include "pendingtroublecodes.h"

namespace Obd {

PendingTroubleCodes::PendingTroubleCodes()
{
}

PendingTroubleCodes::~PendingTroubleCodes()
{
}

void PendingTroubleCodes::buildRequest(std::vector<unsigned char>& request)
{
    request.clear();
    request.push_back(0x07);
}

void PendingTroubleCodes::getSignature(std::vector<unsigned char>& signature)
{
    signature.clear();
    signature.push_back(0x47);
}

} // namespace Obd
