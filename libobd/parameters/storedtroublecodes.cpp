#include "storedtroublecodes.h"

namespace Obd {

StoredTroubleCodes::StoredTroubleCodes()
{
}

StoredTroubleCodes::~StoredTroubleCodes()
{
}

void StoredTroubleCodes::buildRequest(std::vector<unsigned char>& request)
{
    request.clear();
    request.push_back(0x03);
}

void StoredTroubleCodes::getSignature(std::vector<unsigned char>& signature)
{
    signature.clear();
    signature.push_back(0x43);
}

} // namespace Obd
