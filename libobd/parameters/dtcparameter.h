#ifndef OBD_DTCPARAMETER_H
#define OBD_DTCPARAMETER_H

#include "dtc.h"
#include "obdparameter.h"

#include <map>
#include <vector>

namespace Obd {

class Ecu;

// Trouble codes of services 03 and 07, per ECU. Each answer of an ECU
// replaces that ECU's list.
class DtcParameter : public ObdParameter
{
public:
    ~DtcParameter() override;

    // data: the ECU's whole message, mode byte included. CAN answers carry
    // a count; the others are 7-byte frames of three code pairs each.
    bool parsePayload(unsigned int ecuId, const std::vector<unsigned char>& data) override;

    // Appends the ECU's codes; false (and a warning) for an unknown ECU.
    bool getDtcs(const Ecu& ecu, std::vector<Dtc>& list) const;
    void getEcuIds(std::vector<unsigned int>& list) const;

protected:
    DtcParameter();

private:
    bool parseCounted(const std::vector<unsigned char>& data, std::vector<Dtc>& list);
    bool parseFrames(const std::vector<unsigned char>& data, std::vector<Dtc>& list);
    static void addCode(unsigned char a, unsigned char b, std::vector<Dtc>& list);

    std::map<unsigned int, std::vector<Dtc>> m_dtcs;
};

} // namespace Obd

#endif
