#ifndef OBD_SENSORINFO_H
#define OBD_SENSORINFO_H

#include "unitsystem.h"

#include <map>
#include <string>

namespace Obd {

// Describes one decoded value: its name, and per unit system the unit id
// and the display range.
class SensorInfo
{
public:
    struct Info
    {
        unsigned int unit;
        double minimum;
        double maximum;
    };

    SensorInfo(const std::string& name, unsigned int kind);
    virtual ~SensorInfo();

    void addInfo(UnitSystem unitSystem, unsigned int unit, double minimum, double maximum);
    std::string getName() const;
    unsigned int getKind() const;
    // 0 when the unit system has no entry.
    unsigned int getUnit(UnitSystem unitSystem) const;
    double getMinimum(UnitSystem unitSystem) const;
    double getMaximum(UnitSystem unitSystem) const;

private:
    std::string m_name;
    unsigned int m_kind;
    std::map<UnitSystem, Info> m_infos;
};

} // namespace Obd

#endif
