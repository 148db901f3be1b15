#ifndef OBD_CALIBRATIONIDS_H
#define OBD_CALIBRATIONIDS_H

#include "obdparameter.h"

#include <map>
#include <string>
#include <vector>

namespace Obd {

class Ecu;

// Service 09 InfoType 04: the ECU's calibration IDs, 16 characters each.
class CalibrationIds : public ObdParameter
{
public:
    static constexpr unsigned char INFO_TYPE = 0x04;

    CalibrationIds();
    ~CalibrationIds() override;

    void clear() override;
    void buildRequest(std::vector<unsigned char>& request) override;
    void getSignature(std::vector<unsigned char>& signature) override;
    bool parsePayload(unsigned int ecuId, const std::vector<unsigned char>& data) override;

    // Empty (and "invalid ECU id " logged) when the ECU has no result.
    std::vector<std::string> getCalibrationIds(const Ecu& ecu) const;
    void getEcuIds(std::vector<unsigned int>& ids) const;

private:
    std::map<unsigned int, std::vector<std::string>> m_ids;
};

} // namespace Obd

#endif
