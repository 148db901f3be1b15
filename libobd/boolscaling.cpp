#include "boolscaling.h"
#include "unittable.h"

namespace Obd {

BoolScaling::BoolScaling()
{
}

BoolScaling::~BoolScaling()
{
}

std::string BoolScaling::getText(unsigned int raw) const
{
    return formatValue(getValue(raw));
}

float BoolScaling::getValue(unsigned int raw) const
{
    return (raw & 0xFFFF) != 0 ? 1.0f : 0.0f;
}

std::string BoolScaling::formatValue(float value) const
{
    return value != 0.0f ? "true" : "false";
}

unsigned int BoolScaling::getUnit() const
{
    return UNIT_NONE;
}

} // namespace Obd
