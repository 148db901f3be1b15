#ifndef OBD_CALIBRATIONVERIFICATIONNUMBERS_H
#define OBD_CALIBRATIONVERIFICATIONNUMBERS_H

#include "obdparameter.h"

#include <map>
#include <string>
#include <vector>

namespace Obd {

class Ecu;

// Service 09 InfoType 06: one 4-byte verification number per calibration.
class CalibrationVerificationNumbers : public ObdParameter
{
public:
    static constexpr unsigned char INFO_TYPE = 0x06;

    CalibrationVerificationNumbers();
    ~CalibrationVerificationNumbers() override;

    void clear() override;
    void buildRequest(std::vector<unsigned char>& request) override;
    void getSignature(std::vector<unsigned char>& signature) override;
    bool parsePayload(unsigned int ecuId, const std::vector<unsigned char>& data) override;

    // The numbers read big-endian. Empty (and "invalid ECU id " logged) when
    // the ECU has no result.
    std::vector<unsigned int> getVerificationNumbers(const Ecu& ecu) const;
    // The same as eight upper-case hexadecimal digits each, e.g. "1A2B3C4D".
    std::vector<std::string> getVerificationNumberTexts(const Ecu& ecu) const;
    void getEcuIds(std::vector<unsigned int>& ids) const;

private:
    std::map<unsigned int, std::vector<unsigned int>> m_numbers;
};

} // namespace Obd

#endif
