#ifndef OBD_SUPPORTEDVEHICLEINFOS_H
#define OBD_SUPPORTEDVEHICLEINFOS_H

#include "obdparameter.h"
#include "supportedlists.h"

#include <map>
#include <vector>

namespace Obd {

class Ecu;

// Service 09 support bitmap of info types: infoType is the range start
// (0x00). Entries list offsets 1..32 in the range.
class SupportedVehicleInfos : public ObdParameter
{
public:
    explicit SupportedVehicleInfos(unsigned char infoType);
    ~SupportedVehicleInfos() override;

    unsigned int getTimeout() const override;
    void buildRequest(std::vector<unsigned char>& request) override;
    void getSignature(std::vector<unsigned char>& signature) override;
    bool parsePayload(unsigned int ecuId, const std::vector<unsigned char>& data) override;

    bool getSupported(const Ecu& ecu, std::vector<unsigned char>& list) const;
    void getEcuIds(std::vector<unsigned int>& list) const;

    unsigned char getInfoType() const;

private:
    unsigned char m_infoType;
    SupportedLists m_supported;
};

} // namespace Obd

#endif
