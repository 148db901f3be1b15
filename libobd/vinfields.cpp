#include "vinfields.h"

#include <cstring>

namespace Obd {
namespace VinFields {

namespace {

// Position 10 in the order of the years from 1980; then the cycle repeats.
const char YEAR_CODES[] = "ABCDEFGHJKLMNPRSTVWXY123456789";
const int FIRST_YEAR = 1980;
const int CYCLE = 30;

} // namespace

int modelYear(const std::string& vin, int latestYear)
{
    if (vin.size() < 10 || vin[9] == 0)
        return 0;
    const char* at = std::strchr(YEAR_CODES, vin[9]);
    if (!at)
        return 0;
    int year = FIRST_YEAR + static_cast<int>(at - YEAR_CODES);
    while (year + CYCLE <= latestYear)
        year += CYCLE;
    return year;
}

std::string region(const std::string& vin)
{
    const char c = vin.empty() ? '\0' : vin[0];
    if (c == 'I' || c == 'O' || c == 'Q')
        return std::string();
    if (c >= 'A' && c <= 'H')
        return "Africa";
    if (c >= 'J' && c <= 'R')
        return "Asia";
    if (c >= 'S' && c <= 'Z')
        return "Europe";
    if (c >= '1' && c <= '5')
        return "North America";
    if (c >= '6' && c <= '7')
        return "Oceania";
    if (c >= '8' && c <= '9')
        return "South America";
    return std::string();
}

} // namespace VinFields
} // namespace Obd
