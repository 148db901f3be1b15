#ifndef OBD_PARAMETERFACTORY_H
#define OBD_PARAMETERFACTORY_H

#include <string>
#include <vector>

namespace Obd {

class PowertrainParameter;

// Makes the service 01/02 parameter of a PID.
class ParameterFactory
{
public:
    // A new parameter (the caller owns it) for PIDs 00..3F of the catalogue,
    // in mode 1 or 2; nullptr for any other PID or mode. 00 and 20 are the
    // supported-PID bitmaps.
    static PowertrainParameter* create(unsigned char pid, unsigned char mode = 1);
    // Every PID create() knows, ascending.
    static std::vector<unsigned char> knownPids();
    // Case-insensitive: the name text (oxygen sensors: the two-banks-of-four
    // name), a short alias such as "rpm", "speed", "coolant", "maf", "load",
    // "throttle", or "0x" and the PID in hexadecimal. -1 when unknown.
    static int pidByName(const std::string& name);
};

} // namespace Obd

#endif
