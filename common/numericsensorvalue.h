#ifndef OBD_NUMERICSENSORVALUE_H
#define OBD_NUMERICSENSORVALUE_H

#include "ivalueformater.h"
#include "sensorvalue.h"

namespace Obd {

// A sensor value that also keeps the numbers: per unit system the display
// range, the current value, and the peaks and running mean of every sample
// since construction. Both unit systems are fed on every refresh.
class NumericSensorValue : public SensorValue
{
public:
    struct Data
    {
        float rangeMinimum;
        float rangeMaximum;
        float value;
        float peakMaximum;
        float peakMinimum;
        float average;
        unsigned int count;
    };

    // formatter may be empty: the value text is then the number with six
    // significant digits.
    NumericSensorValue(const QString& ecuName, const QString& pid, const QString& description,
                       const QString& metricUnit, const QString& imperialUnit,
                       float metricMinimum, float metricMaximum,
                       float imperialMinimum, float imperialMaximum,
                       const ValueFormaterPtr& formatter);
    ~NumericSensorValue() override;

    void setUnitSystem(UnitSystem unitSystem) override;
    QString getValue() const override;

    // Feeds one sample to the record of that unit system (not necessarily
    // the current one); any other unit system is ignored.
    void addSample(float value, UnitSystem unitSystem);

    // Of the current unit system.
    float getRangeMinimum() const;
    float getRangeMaximum() const;
    float getNumericValue() const;
    float getPeakMaximum() const;
    float getPeakMinimum() const;
    float getAverage() const;
    unsigned int getSampleCount() const;

protected:
    const Data& getData() const;

private:
    UnitSystem m_unitSystem;
    ValueFormaterPtr m_formatter;
    Data m_metric;
    Data m_imperial;
};

} // namespace Obd

#endif
