#ifndef OBD_BOOLSCALING_H
#define OBD_BOOLSCALING_H

#include "iunitscaling.h"

namespace Obd {

// Scaling id 0x2E: zero is "false", anything else "true".
class BoolScaling : public IUnitScaling
{
public:
    BoolScaling();
    ~BoolScaling() override;

    std::string getText(unsigned int raw) const override;
    float getValue(unsigned int raw) const override;
    std::string formatValue(float value) const override;
    unsigned int getUnit() const override;
};

} // namespace Obd

#endif
