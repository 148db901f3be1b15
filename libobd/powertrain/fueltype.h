#ifndef OBD_FUELTYPE_H
#define OBD_FUELTYPE_H

#include "enumeratedpid.h"

namespace Obd {

// PID 51: the fuel the vehicle runs on, one SAE J1979 code per byte.
class FuelType : public EnumeratedPid
{
public:
    explicit FuelType(unsigned char mode = 1);
    ~FuelType() override;

    // The text of a fuel-type code; codes the standard reserves say so.
    static std::string typeText(unsigned int code);

protected:
    std::string textOf(unsigned int code) const override { return typeText(code); }
};

} // namespace Obd

#endif
