#ifndef OBD_LINEAROFFSETSCALING_H
#define OBD_LINEAROFFSETSCALING_H

#include "linearscaling.h"

namespace Obd {

// value = raw * factor + offset (temperatures, signed percentages).
class LinearOffsetScaling : public LinearScaling
{
public:
    LinearOffsetScaling(unsigned char scalingId, float factor, unsigned int decimals,
                        unsigned int unit, float offset, Conversion conversion = nullptr);
    ~LinearOffsetScaling() override;

    float getOffset() const;

protected:
    double valueOf(unsigned int raw) const override;

private:
    float m_offset;
};

} // namespace Obd

#endif
