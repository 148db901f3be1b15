#ifndef OBD_NUMERICPID_H
#define OBD_NUMERICPID_H

#include "measurableparameter.h"
#include "piddescriptor.h"

#include <array>
#include <map>

namespace Obd {

// A PID whose values are numbers with formatters: decoding, storage and
// conversion all follow the PID's catalogue row. The concrete classes only
// name their PID.
class NumericPid : public MeasurableParameter
{
public:
    ~NumericPid() override;

    unsigned char getPid() const override;
    using MeasurableParameter::getName;
    std::string getName() const override;
    void getSensorInfos(std::vector<SensorInfo*>& list) const override;
    void getFormattedValues(const Ecu& ecu, UnitSystem unitSystem,
                            std::vector<std::string>& list) const override;
    bool decode(unsigned int ecuId, const std::vector<unsigned char>& data) override;
    void getValues(const Ecu& ecu, UnitSystem unitSystem, std::vector<float>& list) const override;
    void getFormatters(std::vector<ValueFormaterPtr>& list) const override;

    // Value index of the ECU in the unit system; 0 when the ECU has none.
    float getValue(const Ecu& ecu, UnitSystem unitSystem = US_METRIC, unsigned int index = 0) const;

protected:
    NumericPid(unsigned char pid, unsigned char mode);

    PidDescriptor m_descriptor;

private:
    typedef std::array<float, 2> Values; // metric, one per catalogue value

    const Values* find(const Ecu& ecu) const;

    std::map<unsigned int, Values> m_values;
};

} // namespace Obd

#endif
