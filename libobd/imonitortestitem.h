#ifndef OBD_IMONITORTESTITEM_H
#define OBD_IMONITORTESTITEM_H

#include "unitsystem.h"

#include <string>

namespace Obd {

// One service 06 test result: a test value and its limits.
class IMonitorTestItem
{
public:
    virtual ~IMonitorTestItem() {}
    virtual void setUnitSystem(UnitSystem system) = 0;
    virtual unsigned char getTid() const = 0;
    virtual std::string getTidName() const = 0;
    // Texts through the item's scaling; empty without one.
    virtual std::string getValueText() const = 0;
    virtual std::string getMinimumText() const = 0;
    virtual std::string getMaximumText() const = 0;
    virtual bool isPassed() const = 0;
    virtual unsigned int getUnit() const = 0;
    // 0 where the value has no standard scaling.
    virtual unsigned char getScalingId() const = 0;
    // Raw unsigned 16-bit numbers as sent.
    virtual float getValue() const = 0;
    virtual float getMinimum() const = 0;
    virtual float getMaximum() const = 0;
};

} // namespace Obd

#endif
