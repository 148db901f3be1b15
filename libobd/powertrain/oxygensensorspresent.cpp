#include "oxygensensorspresent.h"
#include "ecu.h"
#include "trlog.h"

namespace Obd {

namespace {

const OxygenSensorLocation TWO_BANKS_OF_FOUR[8] = { B1S1, B1S2, B1S3, B1S4, B2S1, B2S2, B2S3, B2S4 };
const OxygenSensorLocation FOUR_BANKS_OF_TWO[8] = { B1S1, B1S2, B2S1, B2S2, B3S1, B3S2, B4S1, B4S2 };

} // namespace

OxygenSensorsPresent::OxygenSensorsPresent(unsigned char pid, unsigned char mode,
                                           const OxygenSensorLocation* bitLocations)
    : CataloguePid(pid, mode)
    , m_bitLocations(bitLocations)
{
}

OxygenSensorsPresent::~OxygenSensorsPresent()
{
}

bool OxygenSensorsPresent::decode(unsigned int ecuId, const std::vector<unsigned char>& data)
{
    if (!m_descriptor.acceptsLength(data.size()))
        return false;
    std::vector<OxygenSensorLocation> locations;
    for (unsigned int bit = 0; bit < 8; ++bit) {
        if (data[0] & (1u << bit))
            locations.push_back(m_bitLocations[bit]);
    }
    m_values[ecuId] = locations;
    return true;
}

bool OxygenSensorsPresent::getLocations(const Ecu& ecu, std::vector<OxygenSensorLocation>& list) const
{
    auto it = m_values.find(ecu.getId());
    if (it == m_values.end()) {
        OBD_WARN << "invalid ECU id " << ecu.getId();
        return false;
    }
    list.insert(list.end(), it->second.begin(), it->second.end());
    return true;
}

void OxygenSensorsPresent::getFormattedValues(const Ecu& ecu, UnitSystem unitSystem,
                                              std::vector<std::string>& list) const
{
    (void)unitSystem;
    std::vector<OxygenSensorLocation> locations;
    if (!getLocations(ecu, locations))
        return;
    std::string text;
    for (OxygenSensorLocation location : locations) {
        if (!text.empty())
            text += ", ";
        text += oxygenSensorLocationName(location);
    }
    list.push_back(text);
}

OxygenSensorsPresent13::OxygenSensorsPresent13(unsigned char mode)
    : OxygenSensorsPresent(0x13, mode, TWO_BANKS_OF_FOUR)
{
}

OxygenSensorsPresent1d::OxygenSensorsPresent1d(unsigned char mode)
    : OxygenSensorsPresent(0x1D, mode, FOUR_BANKS_OF_TWO)
{
}

} // namespace Obd
