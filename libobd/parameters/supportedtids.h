#ifndef OBD_SUPPORTEDTIDS_H
#define OBD_SUPPORTEDTIDS_H

#include "obdparameter.h"
#include "supportedlists.h"

#include <map>
#include <vector>

namespace Obd {

class Ecu;

// Service 05 support bitmap of test ids for one oxygen sensor: tid is the
// range start (0x00, 0x20, ...). Entries list offsets 1..32 in the range.
class SupportedTids : public ObdParameter
{
public:
    // sensor: an oxygen sensor location 0..11.
    SupportedTids(unsigned char tid, unsigned int sensor);
    ~SupportedTids() override;

    void clear() override;
    void buildRequest(std::vector<unsigned char>& request) override;
    void getSignature(std::vector<unsigned char>& signature) override;
    bool parsePayload(unsigned int ecuId, const std::vector<unsigned char>& data) override;

    bool getSupported(const Ecu& ecu, std::vector<unsigned char>& list) const;
    void getEcuIds(std::vector<unsigned int>& list) const;

    unsigned char getTid() const;
    unsigned char getSensorByte() const;
    // The service 05 sensor byte of a location; 0x00 outside 0..11.
    static unsigned char sensorByte(unsigned int sensor);

private:
    unsigned char m_tid;
    unsigned char m_sensor;
    SupportedLists m_supported;
};

} // namespace Obd

#endif
