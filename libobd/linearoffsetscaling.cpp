#include "linearoffsetscaling.h"

namespace Obd {

LinearOffsetScaling::LinearOffsetScaling(unsigned char scalingId, float factor,
                                         unsigned int decimals, unsigned int unit, float offset,
                                         Conversion conversion)
    : LinearScaling(scalingId, factor, decimals, unit, conversion)
    , m_offset(offset)
{
}

LinearOffsetScaling::~LinearOffsetScaling()
{
}

float LinearOffsetScaling::getOffset() const
{
    return m_offset;
}

double LinearOffsetScaling::valueOf(unsigned int raw) const
{
    return LinearScaling::valueOf(raw) + static_cast<double>(m_offset);
}

} // namespace Obd
