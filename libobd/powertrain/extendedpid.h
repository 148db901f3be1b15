#ifndef OBD_EXTENDEDPID_H
#define OBD_EXTENDEDPID_H

#include "numericpid.h"

namespace Obd {

// Any numeric PID of the catalogue from 0x40 on: everything it knows is its
// row, so one class serves them all.
class ExtendedPid : public NumericPid
{
public:
    // pid must have a row with decode formulas (ParameterFactory checks).
    ExtendedPid(unsigned char pid, unsigned char mode = 1);
    ~ExtendedPid() override;
};

} // namespace Obd

#endif
