#ifndef OBD_LINEARSCALING_H
#define OBD_LINEARSCALING_H

#include "iunitscaling.h"

namespace Obd {

// value = raw * factor, raw read as signed 16-bit for the scaling ids 0x80
// and above. The optional conversion turns the metric value into the
// imperial one before the text is made.
class LinearScaling : public IUnitScaling
{
public:
    typedef double (*Conversion)(double);

    LinearScaling(unsigned char scalingId, float factor, unsigned int decimals, unsigned int unit,
                  Conversion conversion = nullptr);
    ~LinearScaling() override;

    std::string getText(unsigned int raw) const override;
    float getValue(unsigned int raw) const override;
    std::string formatValue(float value) const override;
    unsigned int getUnit() const override;

    unsigned char getScalingId() const;
    float getFactor() const;
    unsigned int getDecimals() const;
    Conversion getConversion() const;

    static bool isSignedId(unsigned char scalingId);
    // The low 16 bits of raw, as signed for the signed ids.
    static int rawNumber(unsigned char scalingId, unsigned int raw);
    // Rounds half up at decimals and writes exactly that many decimals.
    static std::string formatNumber(double value, unsigned int decimals);

protected:
    virtual double valueOf(unsigned int raw) const;
    std::string textOf(double value) const;

private:
    unsigned char m_scalingId;
    float m_factor;
    unsigned int m_decimals;
    unsigned int m_unit;
    Conversion m_conversion;
};

} // namespace Obd

#endif
