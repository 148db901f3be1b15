#ifndef OBD_CANMONITORTESTITEM_H
#define OBD_CANMONITORTESTITEM_H

#include "imonitortestitem.h"

#include <memory>

namespace Obd {

class IUnitScaling;

// A service 06 record of the CAN layout: the test value and both limits in
// the unit and scaling named by the record's scaling id.
class CanMonitorTestItem : public IMonitorTestItem
{
public:
    CanMonitorTestItem(unsigned char tid, unsigned char scalingId, unsigned int value,
                       unsigned int minimum, unsigned int maximum,
                       UnitSystem system = US_METRIC);
    ~CanMonitorTestItem() override;

    void setUnitSystem(UnitSystem system) override;
    unsigned char getTid() const override;
    std::string getTidName() const override;
    std::string getValueText() const override;
    std::string getMinimumText() const override;
    std::string getMaximumText() const override;
    // minimum <= value <= maximum, read as signed for the signed ids.
    bool isPassed() const override;
    unsigned int getUnit() const override;
    unsigned char getScalingId() const override;
    float getValue() const override;
    float getMinimum() const override;
    float getMaximum() const override;

    UnitSystem getUnitSystem() const;
    // Null for a scaling id in neither table.
    const IUnitScaling* getScaling() const;

private:
    std::string textOf(float raw) const;

    unsigned char m_tid;
    unsigned char m_scalingId;
    float m_value;
    float m_minimum;
    float m_maximum;
    bool m_passed;
    std::unique_ptr<IUnitScaling> m_scaling;
    UnitSystem m_system;
};

} // namespace Obd

#endif
