#ifndef OBD_DUMMYSCALING_H
#define OBD_DUMMYSCALING_H

#include "iunitscaling.h"

namespace Obd {

// A value without standard scaling (manufacturer-defined): the raw unsigned
// 16-bit number, shown as a whole number without unit.
class DummyScaling : public IUnitScaling
{
public:
    DummyScaling();
    ~DummyScaling() override;

    std::string getText(unsigned int raw) const override;
    float getValue(unsigned int raw) const override;
    std::string formatValue(float value) const override;
    unsigned int getUnit() const override;
};

} // namespace Obd

#endif
