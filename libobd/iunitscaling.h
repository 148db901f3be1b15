#ifndef OBD_IUNITSCALING_H
#define OBD_IUNITSCALING_H

#include <string>

namespace Obd {

// Turns a raw 16-bit test value into an engineering value and its text.
// The texts carry the number only; the unit id names the unit to show.
class IUnitScaling
{
public:
    virtual ~IUnitScaling() {}
    // Text of a raw value, conversion and rounding applied.
    virtual std::string getText(unsigned int raw) const = 0;
    // Engineering value of a raw value (before any unit-system conversion).
    virtual float getValue(unsigned int raw) const = 0;
    // Text of an engineering value, conversion and rounding applied.
    virtual std::string formatValue(float value) const = 0;
    virtual unsigned int getUnit() const = 0;
};

} // namespace Obd

#endif
