#include "fueltype.h"
#include "ecu.h"
#include "trlog.h"

namespace Obd {

namespace {

const char* const TYPE_TEXTS[] = {
    "Not available", "Gasoline", "Methanol", "Ethanol", "Diesel", "LPG", "CNG", "Propane",
    "Electric", "Bifuel running Gasoline", "Bifuel running Methanol", "Bifuel running Ethanol",
    "Bifuel running LPG", "Bifuel running CNG", "Bifuel running Propane",
    "Bifuel running Electricity", "Bifuel running electric and combustion engine",
    "Hybrid gasoline", "Hybrid Ethanol", "Hybrid Diesel", "Hybrid Electric",
    "Hybrid running electric and combustion engine", "Hybrid Regenerative",
    "Bifuel running diesel"
};

const unsigned int TYPE_COUNT = sizeof(TYPE_TEXTS) / sizeof(TYPE_TEXTS[0]);

} // namespace

FuelType::FuelType(unsigned char mode)
    : CataloguePid(0x51, mode)
{
}

FuelType::~FuelType()
{
}

bool FuelType::decode(unsigned int ecuId, const std::vector<unsigned char>& data)
{
    if (!m_descriptor.acceptsLength(data.size()))
        return false;
    m_values[ecuId] = data[0];
    return true;
}

void FuelType::getFormattedValues(const Ecu& ecu, UnitSystem unitSystem,
                                  std::vector<std::string>& list) const
{
    (void)unitSystem;
    auto it = m_values.find(ecu.getId());
    if (it == m_values.end()) {
        OBD_WARN << "invalid ECU id " << ecu.getId();
        return;
    }
    list.push_back(typeText(it->second));
}

std::string FuelType::typeText(unsigned int code)
{
    return code < TYPE_COUNT ? TYPE_TEXTS[code] : "ISO/SAE reserved (" + std::to_string(code) + ")";
}

} // namespace Obd
