#include "monitortestnames.h"

#include <cstdio>

namespace Obd {
namespace MonitorTestNames {

namespace {

struct Name
{
    unsigned char id;
    const char* name;
};

// MIDs below E1 (SAE J1979 appendix D). The typographic quotation marks
// after the EVAP leak sizes, mixed as they are, are the texts as shown.
const Name MIDS[] = {
    { 0x00, "OBD Monitor IDs supported ($01 - $20)" },
    { 0x01, "Exhaust Gas Sensor Monitor Bank 1 - Sensor 1" },
    { 0x02, "Exhaust Gas Sensor Monitor Bank 1 - Sensor 2" },
    { 0x03, "Exhaust Gas Sensor Monitor Bank 1 - Sensor 3" },
    { 0x04, "Exhaust Gas Sensor Monitor Bank 1 - Sensor 4" },
    { 0x05, "Exhaust Gas Sensor Monitor Bank 2 - Sensor 1" },
    { 0x06, "Exhaust Gas Sensor Monitor Bank 2 - Sensor 2" },
    { 0x07, "Exhaust Gas Sensor Monitor Bank 2 - Sensor 3" },
    { 0x08, "Exhaust Gas Sensor Monitor Bank 2 - Sensor 4" },
    { 0x09, "Exhaust Gas Sensor Monitor Bank 3 - Sensor 1" },
    { 0x0A, "Exhaust Gas Sensor Monitor Bank 3 - Sensor 2" },
    { 0x0B, "Exhaust Gas Sensor Monitor Bank 3 - Sensor 3" },
    { 0x0C, "Exhaust Gas Sensor Monitor Bank 3 - Sensor 4" },
    { 0x0D, "Exhaust Gas Sensor Monitor Bank 4 - Sensor 1" },
    { 0x0E, "Exhaust Gas Sensor Monitor Bank 4 - Sensor 2" },
    { 0x0F, "Exhaust Gas Sensor Monitor Bank 4 - Sensor 3" },
    { 0x10, "Exhaust Gas Sensor Monitor Bank 4 - Sensor 4" },
    { 0x20, "OBD Monitor IDs supported ($21 - $40)" },
    { 0x21, "Catalyst Monitor Bank 1" },
    { 0x22, "Catalyst Monitor Bank 2" },
    { 0x23, "Catalyst Monitor Bank 3" },
    { 0x24, "Catalyst Monitor Bank 4" },
    { 0x31, "EGR Monitor Bank 1" },
    { 0x32, "EGR Monitor Bank 2" },
    { 0x33, "EGR Monitor Bank 3" },
    { 0x34, "EGR Monitor Bank 4" },
    { 0x35, "VVT Monitor Bank 1" },
    { 0x36, "VVT Monitor Bank 2" },
    { 0x37, "VVT Monitor Bank 3" },
    { 0x38, "VVT Monitor Bank 4" },
    { 0x39, "EVAP Monitor (Cap Off / 0.150\u201d)" },
    { 0x3A, "EVAP Monitor (0.090\u201c)" },
    { 0x3B, "EVAP Monitor (0.040\u201d)" },
    { 0x3C, "EVAP Monitor (0.020\u201c)" },
    { 0x3D, "Purge Flow Monitor" },
    { 0x40, "OBD Monitor IDs supported ($41 - $60)" },
    { 0x41, "Exhaust Gas Sensor Heater Monitor Bank 1 - Sensor 1" },
    { 0x42, "Exhaust Gas Sensor Heater Monitor Bank 1 - Sensor 2" },
    { 0x43, "Exhaust Gas Sensor Heater Monitor Bank 1 - Sensor 3" },
    { 0x44, "Exhaust Gas Sensor Heater Monitor Bank 1 - Sensor 4" },
    { 0x45, "Exhaust Gas Sensor Heater Monitor Bank 2 - Sensor 1" },
    { 0x46, "Exhaust Gas Sensor Heater Monitor Bank 2 - Sensor 2" },
    { 0x47, "Exhaust Gas Sensor Heater Monitor Bank 2 - Sensor 3" },
    { 0x48, "Exhaust Gas Sensor Heater Monitor Bank 2 - Sensor 4" },
    { 0x49, "Exhaust Gas Sensor Heater Monitor Bank 3 - Sensor 1" },
    { 0x4A, "Exhaust Gas Sensor Heater Monitor Bank 3 - Sensor 2" },
    { 0x4B, "Exhaust Gas Sensor Heater Monitor Bank 3 - Sensor 3" },
    { 0x4C, "Exhaust Gas Sensor Heater Monitor Bank 3 - Sensor 4" },
    { 0x4D, "Exhaust Gas Sensor Heater Monitor Bank 4 - Sensor 1" },
    { 0x4E, "Exhaust Gas Sensor Heater Monitor Bank 4 - Sensor 2" },
    { 0x4F, "Exhaust Gas Sensor Heater Monitor Bank 4 - Sensor 3" },
    { 0x50, "Exhaust Gas Sensor Heater Monitor Bank 4 - Sensor 4" },
    { 0x60, "OBD Monitor IDs supported ($61 - $80)" },
    { 0x61, "Heated Catalyst Monitor Bank 1" },
    { 0x62, "Heated Catalyst Monitor Bank 2" },
    { 0x63, "Heated Catalyst Monitor Bank 3" },
    { 0x64, "Heated Catalyst Monitor Bank 4" },
    { 0x71, "Secondary Air Monitor 1" },
    { 0x72, "Secondary Air Monitor 2" },
    { 0x73, "Secondary Air Monitor 3" },
    { 0x74, "Secondary Air Monitor 4" },
    { 0x80, "OBD Monitor IDs supported ($81 - $A0)" },
    { 0x81, "Fuel System Monitor Bank 1" },
    { 0x82, "Fuel System Monitor Bank 2" },
    { 0x83, "Fuel System Monitor Bank 3" },
    { 0x84, "Fuel System Monitor Bank 4" },
    { 0x85, "Boost Pressure Control Monitor Bank 1" },
    { 0x86, "Boost Pressure Control Monitor Bank 2" },
    { 0x90, "NOx Adsorber Monitor Bank 1" },
    { 0x91, "NOx Adsorber Monitor Bank 2" },
    { 0x98, "NOx/SCR Catalyst Monitor Bank 1" },
    { 0x99, "NOx/SCR Catalyst Monitor Bank 2" },
    { 0xA0, "OBD Monitor IDs supported ($A1 - $C0)" },
    { 0xA1, "Misfire Monitor General Data" },
    { 0xA2, "Misfire Cylinder 1 Data" },
    { 0xA3, "Misfire Cylinder 2 Data" },
    { 0xA4, "Misfire Cylinder 3 Data" },
    { 0xA5, "Misfire Cylinder 4 Data" },
    { 0xA6, "Misfire Cylinder 5 Data" },
    { 0xA7, "Misfire Cylinder 6 Data" },
    { 0xA8, "Misfire Cylinder 7 Data" },
    { 0xA9, "Misfire Cylinder 8 Data" },
    { 0xAA, "Misfire Cylinder 9 Data" },
    { 0xAB, "Misfire Cylinder 10 Data" },
    { 0xAC, "Misfire Cylinder 11 Data" },
    { 0xAD, "Misfire Cylinder 12 Data" },
    { 0xAE, "Misfire Cylinder 13 Data" },
    { 0xAF, "Misfire Cylinder 14 Data" },
    { 0xB0, "Misfire Cylinder 15 Data" },
    { 0xB1, "Misfire Cylinder 16 Data" },
    { 0xB2, "PM Filter Monitor Bank 1" },
    { 0xB3, "PM Filter Monitor Bank 2" },
    { 0xC0, "OBD Monitor IDs supported ($C1 - $E0)" },
    { 0xE0, "OBD Monitor IDs supported ($E1 - $FF)" },
};
static_assert(sizeof(MIDS) / sizeof(MIDS[0]) == 94, "94 named MIDs");

// Service 06 TIDs with a standard name; 0D..FE are ranges, see tidName().
const Name TIDS[] = {
    { 0x00, "ISO/SAE reserved" },
    { 0x01, "Rich to lean sensor threshold voltage (constant)" },
    { 0x02, "Lean to rich sensor threshold voltage (constant)" },
    { 0x03, "Low sensor voltage for switch time calculation (constant)" },
    { 0x04, "High sensor voltage for switch time calculation (constant)" },
    { 0x05, "Rich to lean sensor switch time (calculated)" },
    { 0x06, "Lean to rich sensor switch time (calculated)" },
    { 0x07, "Minimum sensor voltage for test cycle (calculated)" },
    { 0x08, "Maximum sensor voltage for test cycle (calculated)" },
    { 0x09, "Time between sensor transitions (calculated)" },
    { 0x0A, "Sensor period (calculated)" },
    { 0x0B, "Exponential Weighted Moving Average misfire counts for previous driving cycles (calculated)" },
    { 0x0C, "Misfire counts for last/current driving cycles (calculated)" },
    { 0xFF, "ISO/SAE reserved" },
};

const unsigned char FIRST_MANUFACTURER_MID = 0xE1;

} // namespace

std::string hexId(unsigned int id)
{
    char text[16];
    std::snprintf(text, sizeof(text), "$%02X", id);
    return text;
}

std::string midName(unsigned char mid)
{
    if (mid >= FIRST_MANUFACTURER_MID)
        return "Vehicle manufacturer defined monitor " + hexId(mid);
    for (const Name& row : MIDS) {
        if (row.id == mid)
            return row.name;
    }
    return "ISO/SAE reserved";
}

std::string tidName(unsigned char tid)
{
    for (const Name& row : TIDS) {
        if (row.id == tid)
            return row.name;
    }
    if (tid >= 0x80)
        return "Manufacturer Defined Test";
    return "NA";
}

unsigned int midTableSize()
{
    return sizeof(MIDS) / sizeof(MIDS[0]);
}

} // namespace MonitorTestNames
} // namespace Obd
