#include "dummyscaling.h"
#include "linearscaling.h"
#include "unittable.h"

namespace Obd {

DummyScaling::DummyScaling()
{
}

DummyScaling::~DummyScaling()
{
}

std::string DummyScaling::getText(unsigned int raw) const
{
    return formatValue(getValue(raw));
}

float DummyScaling::getValue(unsigned int raw) const
{
    return static_cast<float>(raw & 0xFFFF);
}

std::string DummyScaling::formatValue(float value) const
{
    return LinearScaling::formatNumber(value, 0);
}

unsigned int DummyScaling::getUnit() const
{
    return UNIT_NONE;
}

} // namespace Obd
