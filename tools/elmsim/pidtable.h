#ifndef ELMSIM_PIDTABLE_H
#define ELMSIM_PIDTABLE_H

#include <cstdint>

namespace ElmSim {

struct EcuProfile;
struct VehicleState;

// One service 01/02 PID: where its physical values come from and how
// SAE J1979 packs them into bytes.
struct PidRow {
    uint8_t pid;
    uint8_t length;                        // data bytes after 41 PID
    uint8_t valueCount;                    // physical values (1, 2, or raw bytes)
    // Physical values of this PID for one ECU; NaN marks "not used" (0xFF).
    void (*values)(uint8_t pid, const VehicleState& state, const EcuProfile& ecu, double* out);
    // Physical values to bytes; out holds length bytes.
    void (*encode)(const double* in, uint8_t* out);
};

class PidTable
{
public:
    static const PidRow* find(uint8_t pid);
    static int maxValueCount() { return 4; }
};

} // namespace ElmSim

#endif
