#include "numericgauge.h"

namespace Obd {

NumericGauge::NumericGauge(QQuickItem* parent)
    : QQuickItem(parent)
    , m_value(0.0)
{
}

double NumericGauge::value() const
{
    return m_value;
}

void NumericGauge::setValue(double value)
{
    if (value == m_value)
        return;
    m_value = value;
    emit valueChanged();
}

} // namespace Obd
