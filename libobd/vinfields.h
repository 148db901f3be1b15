#ifndef OBD_VINFIELDS_H
#define OBD_VINFIELDS_H

#include <string>

namespace Obd {

// What the fixed positions of a vehicle identification number say.
namespace VinFields {

// The model year coded at position 10. The code repeats every 30 years, so
// the latest year not after latestYear is taken (pass next year: a car can
// be sold as next year's model). 0 for a VIN too short or a code that is
// no year (I, O, Q, U, Z and 0 are never used).
int modelYear(const std::string& vin, int latestYear);

// The continent of the manufacturer from position 1 (the start of the
// manufacturer identifier); empty when the character names none.
std::string region(const std::string& vin);

} // namespace VinFields
} // namespace Obd

#endif
