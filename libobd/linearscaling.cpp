#include "linearscaling.h"

#include <cmath>
#include <cstdio>

namespace Obd {

LinearScaling::LinearScaling(unsigned char scalingId, float factor, unsigned int decimals,
                             unsigned int unit, Conversion conversion)
    : m_scalingId(scalingId)
    , m_factor(factor)
    , m_decimals(decimals)
    , m_unit(unit)
    , m_conversion(conversion)
{
}

LinearScaling::~LinearScaling()
{
}

std::string LinearScaling::getText(unsigned int raw) const
{
    return textOf(valueOf(raw));
}

float LinearScaling::getValue(unsigned int raw) const
{
    return static_cast<float>(valueOf(raw));
}

std::string LinearScaling::formatValue(float value) const
{
    return textOf(value);
}

unsigned int LinearScaling::getUnit() const
{
    return m_unit;
}

unsigned char LinearScaling::getScalingId() const
{
    return m_scalingId;
}

float LinearScaling::getFactor() const
{
    return m_factor;
}

unsigned int LinearScaling::getDecimals() const
{
    return m_decimals;
}

LinearScaling::Conversion LinearScaling::getConversion() const
{
    return m_conversion;
}

bool LinearScaling::isSignedId(unsigned char scalingId)
{
    return scalingId >= 0x80;
}

int LinearScaling::rawNumber(unsigned char scalingId, unsigned int raw)
{
    const unsigned int bits = raw & 0xFFFF;
    if (isSignedId(scalingId) && bits >= 0x8000)
        return static_cast<int>(bits) - 0x10000;
    return static_cast<int>(bits);
}

std::string LinearScaling::formatNumber(double value, unsigned int decimals)
{
    if (!std::isfinite(value))
        return std::string();
    const double scale = std::pow(10.0, static_cast<double>(decimals));
    double rounded = std::floor(value * scale + 0.5) / scale;
    if (rounded == 0.0)
        rounded = 0.0; // no "-0.00"
    char text[64];
    std::snprintf(text, sizeof(text), "%.*f", static_cast<int>(decimals), rounded);
    return text;
}

double LinearScaling::valueOf(unsigned int raw) const
{
    return rawNumber(m_scalingId, raw) * static_cast<double>(m_factor);
}

std::string LinearScaling::textOf(double value) const
{
    if (m_conversion)
        value = m_conversion(value);
    return formatNumber(value, m_decimals);
}

} // namespace Obd
