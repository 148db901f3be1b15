#ifndef OBD_OXYGENSENSORSPRESENT_H
#define OBD_OXYGENSENSORSPRESENT_H

#include "cataloguepid.h"
#include "oxygensensorlocation.h"

#include <map>
#include <vector>

namespace Obd {

// PIDs 13 and 1D: which oxygen sensors are fitted, one bit per location.
// The two PIDs differ only in the bank layout their bits describe.
class OxygenSensorsPresent : public CataloguePid
{
public:
    ~OxygenSensorsPresent() override;

    // The locations joined by ", ", e.g. "B1S1, B2S1".
    void getFormattedValues(const Ecu& ecu, UnitSystem unitSystem,
                            std::vector<std::string>& list) const override;
    bool decode(unsigned int ecuId, const std::vector<unsigned char>& data) override;

    // False (and nothing appended) for an unknown ECU.
    bool getLocations(const Ecu& ecu, std::vector<OxygenSensorLocation>& list) const;

protected:
    // bitLocations: the location of bits 0..7.
    OxygenSensorsPresent(unsigned char pid, unsigned char mode, const OxygenSensorLocation* bitLocations);

private:
    const OxygenSensorLocation* m_bitLocations;
    std::map<unsigned int, std::vector<OxygenSensorLocation>> m_values;
};

// Two banks of four sensors.
class OxygenSensorsPresent13 : public OxygenSensorsPresent
{
public:
    explicit OxygenSensorsPresent13(unsigned char mode = 1);
};

// Four banks of two sensors.
class OxygenSensorsPresent1d : public OxygenSensorsPresent
{
public:
    explicit OxygenSensorsPresent1d(unsigned char mode = 1);
};

} // namespace Obd

#endif
