#ifndef OBD_SUPPORTEDPIDS_H
#define OBD_SUPPORTEDPIDS_H

#include "powertrainparameter.h"
#include "supportedlists.h"

#include <map>
#include <memory>
#include <vector>

namespace Obd {

// Service 01/02 (and 06 monitor id) support bitmap of one range of 32:
// pid is the range start (0x00, 0x20, ...). Each ECU's entry lists offsets
// 1..32 within the range; the caller adds the range start. Offset 32 means
// the next range is supported.
class SupportedPids : public PowertrainParameter
{
public:
    SupportedPids(unsigned char mode, unsigned char pid);
    ~SupportedPids() override;

    unsigned int getTimeout() const override;
    unsigned char getPid() const override;
    using PowertrainParameter::getName;
    std::string getName() const override;
    void getSensorInfos(std::vector<SensorInfo*>& list) const override;
    void getFormattedValues(const Ecu& ecu, UnitSystem unitSystem,
                            std::vector<std::string>& list) const override;
    bool decode(unsigned int ecuId, const std::vector<unsigned char>& data) override;

    bool getSupported(const Ecu& ecu, std::vector<unsigned char>& list) const;
    void getEcuIds(std::vector<unsigned int>& list) const;

    // Offsets n (1..32) whose bit 32 - n is set in the big-endian value of
    // four bytes; shared by every support bitmap of the library.

private:
    unsigned char m_pid;
    std::unique_ptr<SensorInfo> m_sensorInfo;
    SupportedLists m_supported;
};

} // namespace Obd

#endif
