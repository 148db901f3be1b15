#include "fueltype.h"

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
    : EnumeratedPid(0x51, mode)
{
}

FuelType::~FuelType()
{
}

std::string FuelType::typeText(unsigned int code)
{
    return code < TYPE_COUNT ? TYPE_TEXTS[code] : "ISO/SAE reserved (" + std::to_string(code) + ")";
}

} // namespace Obd
