#ifndef OBD_PIDTABLE_H
#define OBD_PIDTABLE_H

#include "unitsystem.h"

#include <string>
#include <vector>

namespace Obd {

// The facts of every service 01/02 PID in one place (pidtable.cpp): name,
// accepted data lengths, per value the decode formula, units and display
// ranges per unit system, and the value-formatter arguments. The PID
// classes read their row; they hold no numbers of their own.

// One decode formula: reads the data bytes after the response header.
// Called only after the row's length check passed.
typedef float (*PidFormula)(const std::vector<unsigned char>& data);
// Metric to imperial; nullptr where both systems show the same number.
typedef double (*PidConversion)(double metric);

struct PidFormat
{
    int valueType; // ValueFormater value type; NO_FORMATTER when the PID has none
    int metricDecimals;
    int imperialDecimals;
};

const int NO_FORMATTER = -1;

struct PidValue
{
    const char* name; // SensorInfo name; nullptr: the PID's name
    PidFormula formula; // nullptr: the class decodes by itself
    unsigned int metricUnit;
    double minimum; // metric display range
    double maximum;
    unsigned int imperialUnit;
    PidConversion toImperial;
    PidFormat format;

    bool hasFormatter() const { return format.valueType != NO_FORMATTER; }
    // The metric value converted for the unit system.
    double convert(UnitSystem unitSystem, double metric) const;
    double rangeMinimum(UnitSystem unitSystem) const;
    double rangeMaximum(UnitSystem unitSystem) const;
    unsigned int unit(UnitSystem unitSystem) const;
};

enum OxygenSensorGroup {
    O2_NONE = 0,
    O2_NARROW = 1, // PIDs 14..1B
    O2_WIDE_VOLTAGE = 2, // PIDs 24..2B
    O2_WIDE_CURRENT = 3 // PIDs 34..3B
};

struct PidRow
{
    unsigned char pid;
    const char* className;
    const char* name; // nullptr for the oxygen sensors: named by layout
    const char* alias; // short name for command-line lookup; nullptr: none
    unsigned char minBytes;
    unsigned char maxBytes;
    OxygenSensorGroup oxygenGroup;
    unsigned int valueCount;
    PidValue values[2];

    bool acceptsLength(size_t length) const { return length >= minBytes && length <= maxBytes; }
    // The display name for an oxygen-sensor layout (0, 1 or 2; Ecu::getOxygenSensorLayout).
    // Other PIDs ignore the layout.
    std::string displayName(unsigned int layout) const;
};

namespace PidTable {

// The row of a PID, or nullptr when the catalogue does not have it.
const PidRow* find(unsigned char pid);
// Every row in ascending PID order.
const std::vector<PidRow>& rows();

// Fuel-system and secondary-air status bytes: exactly one of bits 0..4 set.
// Gives the bit's number; false for any other byte.
bool statusBitIndex(unsigned char byte, unsigned int& index);

} // namespace PidTable
} // namespace Obd

#endif
