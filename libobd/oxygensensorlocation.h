#ifndef OBD_OXYGENSENSORLOCATION_H
#define OBD_OXYGENSENSORLOCATION_H

#include <string>

namespace Obd {

// Oxygen sensor positions, bank then sensor. PID 0x13 reports the first
// eight, PID 0x1D a four-bank layout using 0, 1, 4, 5, 8, 9, 10 and 11.
enum OxygenSensorLocation {
    B1S1 = 0,
    B1S2 = 1,
    B1S3 = 2,
    B1S4 = 3,
    B2S1 = 4,
    B2S2 = 5,
    B2S3 = 6,
    B2S4 = 7,
    B3S1 = 8,
    B3S2 = 9,
    B4S1 = 10,
    B4S2 = 11
};

inline std::string oxygenSensorLocationName(int location)
{
    static const char* const NAMES[] = { "B1S1", "B1S2", "B1S3", "B1S4", "B2S1", "B2S2",
                                         "B2S3", "B2S4", "B3S1", "B3S2", "B4S1", "B4S2" };
    if (location < 0 || location > 11)
        return std::string();
    return NAMES[location];
}

} // namespace Obd

#endif
