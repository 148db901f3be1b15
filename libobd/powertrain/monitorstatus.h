#ifndef OBD_MONITORSTATUS_H
#define OBD_MONITORSTATUS_H

#include "cataloguepid.h"

#include <cstdint>
#include <map>

namespace Obd {

// PID 01: malfunction lamp, DTC count and readiness monitors, kept per ECU
// as the word W = A<<24 | B<<16 | C<<8 | D.
class MonitorStatus : public CataloguePid
{
public:
    enum MonitorKind { CONTINUOUS = 0, NON_CONTINUOUS = 1 };
    // Monitor ids 0..15 have names; 16 stands for the ignition-type bits.
    static constexpr unsigned int IGNITION_TYPE = 16;

    explicit MonitorStatus(unsigned char mode = 1);
    ~MonitorStatus() override;

    // "MIL on, 2 codes, 6/7 ready": the record's short form for value lists;
    // the monitors themselves are read one by one.
    void getFormattedValues(const Ecu& ecu, UnitSystem unitSystem,
                            std::vector<std::string>& list) const override;
    bool decode(unsigned int ecuId, const std::vector<unsigned char>& data) override;

    // Each yields false / 0 (and a warning) for an unknown ECU.
    bool isMilOn(const Ecu& ecu) const;
    unsigned int getDtcCount(const Ecu& ecu) const;
    bool isCompressionIgnition(const Ecu& ecu) const;
    bool isSupported(const Ecu& ecu, unsigned int monitorId) const;
    // Supported and its incomplete bit clear.
    bool isComplete(const Ecu& ecu, unsigned int monitorId) const;

    // Ids of the monitors the ECU supports, of its ignition type (spark:
    // 0..9, compression: 0..2 and 10..15), in table order.
    std::vector<unsigned int> supportedMonitors(const Ecu& ecu) const;

    // "NA" for an id without a name.
    static std::string getMonitorName(unsigned int monitorId);
    static MonitorKind getMonitorKind(unsigned int monitorId);

protected:
    MonitorStatus(unsigned char pid, unsigned char mode);

    bool hasValue(const Ecu& ecu) const;
    // "5/7 ready": complete of supported monitors of the ECU's ignition type.
    std::string readinessSummary(const Ecu& ecu) const;

private:
    bool find(const Ecu& ecu, uint32_t& word) const;
    static bool bit(uint32_t word, unsigned int number) { return (word >> number) & 1u; }

    std::map<unsigned int, uint32_t> m_values;
};

} // namespace Obd

#endif
