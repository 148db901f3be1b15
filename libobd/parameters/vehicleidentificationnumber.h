#ifndef OBD_VEHICLEIDENTIFICATIONNUMBER_H
#define OBD_VEHICLEIDENTIFICATIONNUMBER_H

#include "obdparameter.h"

#include <map>
#include <string>
#include <vector>

namespace Obd {

class Ecu;

// Service 09 InfoType 02: the 17-character vehicle identification number.
class VehicleIdentificationNumber : public ObdParameter
{
public:
    static constexpr unsigned char INFO_TYPE = 0x02;

    VehicleIdentificationNumber();
    ~VehicleIdentificationNumber() override;

    void clear() override;
    void buildRequest(std::vector<unsigned char>& request) override;
    void getSignature(std::vector<unsigned char>& signature) override;
    bool parsePayload(unsigned int ecuId, const std::vector<unsigned char>& data) override;

    // Empty (and "invalid ECU id " logged) when the ECU has no VIN.
    std::string getVin(const Ecu& ecu) const;
    bool hasVin(const Ecu& ecu) const;
    void getEcuIds(std::vector<unsigned int>& ids) const;

private:
    std::map<unsigned int, std::string> m_vins;
};

} // namespace Obd

#endif
