#ifndef OBD_VALUEFORMATER_H
#define OBD_VALUEFORMATER_H

#include "ivalueformater.h"

#include <map>

namespace Obd {

// Formats a value with a fixed number of decimals per unit system.
// Value type 0 truncates to unsigned, 1 to signed, anything else rounds
// half up at the decimals.
class ValueFormater : public IValueFormater
{
public:
    enum ValueType { VT_UNSIGNED = 0, VT_SIGNED = 1, VT_REAL = 2 };

    struct Parameters
    {
        int decimals;
        unsigned int scale;
    };

    ValueFormater(unsigned int valueType, int metricDecimals, int imperialDecimals);
    ~ValueFormater() override;

    std::string format(UnitSystem unitSystem, float value) const override;
    std::string format(UnitSystem unitSystem, int value) const;
    std::string format(UnitSystem unitSystem, unsigned int value) const;

    int getDecimals(UnitSystem unitSystem) const;

private:
    unsigned int m_valueType;
    std::map<UnitSystem, Parameters> m_parameters;
};

} // namespace Obd

#endif
