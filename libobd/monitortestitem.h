#ifndef OBD_MONITORTESTITEM_H
#define OBD_MONITORTESTITEM_H

#include "dummyscaling.h"
#include "imonitortestitem.h"

namespace Obd {

// A service 06 result of the legacy (non-CAN) layout: one test value of a
// manufacturer-specified component against one limit, either a maximum or a
// minimum. The values have no standard scaling and are shown as numbers.
class MonitorTestItem : public IMonitorTestItem
{
public:
    enum LimitType { LIMIT_MAXIMUM = 0, LIMIT_MINIMUM = 1 };

    MonitorTestItem(unsigned char tid, unsigned char componentId, LimitType limitType,
                    unsigned int value, unsigned int limit);
    ~MonitorTestItem() override;

    // Nothing to convert: the values are unscaled.
    void setUnitSystem(UnitSystem system) override;
    unsigned char getTid() const override;
    std::string getTidName() const override;
    std::string getValueText() const override;
    // The limit on its side; the open side has an empty text.
    std::string getMinimumText() const override;
    std::string getMaximumText() const override;
    // value <= limit for a maximum, value >= limit for a minimum.
    bool isPassed() const override;
    unsigned int getUnit() const override;
    unsigned char getScalingId() const override;
    float getValue() const override;
    // The open side reads 0 (minimum) or 65535 (maximum), so that
    // minimum <= value <= maximum holds exactly when the test passed.
    float getMinimum() const override;
    float getMaximum() const override;

    unsigned char getComponentId() const;
    // "Manufacturer specified component $XX".
    std::string getComponentName() const;
    LimitType getLimitType() const;
    float getLimit() const;

private:
    unsigned char m_tid;
    unsigned char m_componentId;
    LimitType m_limitType;
    unsigned int m_value;
    unsigned int m_limit;
    DummyScaling m_scaling;
};

} // namespace Obd

#endif
