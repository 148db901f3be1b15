#ifndef OBD_MONITORTESTNAMES_H
#define OBD_MONITORTESTNAMES_H

#include <string>

namespace Obd {

// Display names of the service 06 monitor ids (MIDs) and test ids (TIDs).
namespace MonitorTestNames {

// Table name below E1, "ISO/SAE reserved" for a gap, and
// "Vehicle manufacturer defined monitor $XX" for E1..FF.
std::string midName(unsigned char mid);
// Service 06 TIDs: 00..0C and FF named, 0D..7F "NA", 80..FE
// "Manufacturer Defined Test".
std::string tidName(unsigned char tid);
// "$" and the id in two upper-case hexadecimal digits, e.g. "$0A".
std::string hexId(unsigned int id);
unsigned int midTableSize();

} // namespace MonitorTestNames
} // namespace Obd

#endif
