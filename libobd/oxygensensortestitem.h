#ifndef OBD_OXYGENSENSORTESTITEM_H
#define OBD_OXYGENSENSORTESTITEM_H

#include "linearscaling.h"
#include "oxygensensorlocation.h"
#include "unitsystem.h"

#include <string>

namespace Obd {

// One service 05 result: the test value and limits of one oxygen sensor,
// one byte each, scaled by the TID as SAE J1979 defines it.
class OxygenSensorTestItem
{
public:
    OxygenSensorTestItem(unsigned char tid, OxygenSensorLocation location, unsigned char value,
                         unsigned char minimum, unsigned char maximum);
    virtual ~OxygenSensorTestItem();

    unsigned char getTid() const;
    OxygenSensorLocation getLocation() const;
    unsigned char getRawValue() const;
    unsigned char getRawMinimum() const;
    unsigned char getRawMaximum() const;
    float getValue() const;
    float getMinimum() const;
    float getMaximum() const;
    std::string getValueText() const;
    std::string getMinimumText() const;
    std::string getMaximumText() const;
    // UNIT_VOLT, UNIT_SECOND or UNIT_NONE for the TIDs without scaling.
    unsigned int getUnit() const;
    // minimum <= value <= maximum.
    bool isPassed() const;
    // Volts and seconds read the same in both unit systems: a logged no-op.
    void setUnitSystem(UnitSystem system);

    // Scaling of a service 05 TID: 01-04, 07-08 0.005 V; 05-06 0.004 s;
    // 09-0A 0.04 s; any other TID the raw byte.
    static LinearScaling scalingOf(unsigned char tid);

private:
    unsigned char m_tid;
    OxygenSensorLocation m_location;
    unsigned char m_value;
    unsigned char m_minimum;
    unsigned char m_maximum;
    LinearScaling m_scaling;
};

} // namespace Obd

#endif
