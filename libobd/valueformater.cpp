#include "valueformater.h"

#include <cmath>
#include <iomanip>
#include <sstream>

namespace Obd {

namespace {

unsigned int powerOfTen(int decimals)
{
    unsigned int scale = 1;
    for (int i = 0; i < decimals; ++i)
        scale *= 10;
    return scale;
}

// Integers are printed through double so that decimals apply to them too
// (12 with one decimal reads 12.0).
std::string fixed(double value, int decimals)
{
    std::ostringstream out;
    out << std::fixed << std::setprecision(decimals < 0 ? 0 : decimals) << value;
    return out.str();
}

} // namespace

ValueFormater::ValueFormater(unsigned int valueType, int metricDecimals, int imperialDecimals)
    : m_valueType(valueType)
{
    m_parameters[US_METRIC] = Parameters{metricDecimals, powerOfTen(metricDecimals)};
    m_parameters[US_IMPERIAL] = Parameters{imperialDecimals, powerOfTen(imperialDecimals)};
}

ValueFormater::~ValueFormater()
{
}

int ValueFormater::getDecimals(UnitSystem unitSystem) const
{
    auto it = m_parameters.find(unitSystem);
    return it == m_parameters.end() ? 0 : it->second.decimals;
}

std::string ValueFormater::format(UnitSystem unitSystem, float value) const
{
    auto it = m_parameters.find(unitSystem);
    int decimals = it == m_parameters.end() ? 0 : it->second.decimals;
    unsigned int scale = it == m_parameters.end() ? 1 : it->second.scale;
    if (!std::isfinite(value))
        return fixed(0.0, decimals);
    switch (m_valueType) {
    case VT_UNSIGNED:
        // Negative or huge values would be undefined in the cast.
        if (value <= 0.0f)
            return fixed(0u, decimals);
        if (value >= 4294967295.0f)
            return fixed(4294967295u, decimals);
        return fixed(static_cast<unsigned int>(value), decimals);
    case VT_SIGNED:
        if (value <= -2147483648.0f)
            return fixed(-2147483647 - 1, decimals);
        if (value >= 2147483647.0f)
            return fixed(2147483647, decimals);
        return fixed(static_cast<int>(value), decimals);
    default: {
        double rounded = std::floor(0.5 + static_cast<double>(value) * scale) / scale;
        return fixed(rounded, decimals);
    }
    }
}

std::string ValueFormater::format(UnitSystem unitSystem, int value) const
{
    return fixed(value, getDecimals(unitSystem));
}

std::string ValueFormater::format(UnitSystem unitSystem, unsigned int value) const
{
    return fixed(value, getDecimals(unitSystem));
}

} // namespace Obd
