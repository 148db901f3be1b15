#include "valuechart.h"

#include <QPainter>
#include <QPainterPath>

#include <algorithm>

namespace Harmattan {

ValueChart::ValueChart(QQuickItem* parent)
    : QQuickPaintedItem(parent)
    , m_minimum(0.0)
    , m_maximum(0.0)
    , m_stale(false)
{
    setAntialiasing(true);
}

void ValueChart::addSample(double value)
{
    if (m_samples.size() >= CAPACITY)
        m_samples.removeFirst();
    m_samples.append(value);
    const auto range = std::minmax_element(m_samples.cbegin(), m_samples.cend());
    m_minimum = *range.first;
    m_maximum = *range.second;
    emit samplesChanged();
    update();
}

void ValueChart::clear()
{
    m_samples.clear();
    m_minimum = m_maximum = 0.0;
    emit samplesChanged();
    update();
}

void ValueChart::setStale(bool stale)
{
    if (stale == m_stale)
        return;
    m_stale = stale;
    emit staleChanged();
    update();
}

void ValueChart::paint(QPainter* painter)
{
    const QRectF area = boundingRect().adjusted(4, 8, -4, -8);
    painter->setPen(QPen(QColor("#2b333e"), 1));
    for (int i = 0; i <= 4; ++i) {
        const double y = area.top() + area.height() * i / 4;
        painter->drawLine(QPointF(area.left(), y), QPointF(area.right(), y));
    }
    if (m_samples.size() < 2)
        return;
    // A flat line sits in the middle rather than on an edge.
    const double span = m_maximum > m_minimum ? m_maximum - m_minimum : 1.0;
    const double bottom = m_maximum > m_minimum ? m_minimum : m_minimum - 0.5;
    // The first half minute fills the width, then the line compresses.
    const int last = std::max(int(m_samples.size()) - 1, 119);
    QPainterPath path;
    for (int i = 0; i < m_samples.size(); ++i) {
        const QPointF point(area.left() + area.width() * i / last,
                            area.bottom() - area.height() * (m_samples[i] - bottom) / span);
        if (i == 0)
            path.moveTo(point);
        else
            path.lineTo(point);
    }
    painter->setPen(QPen(m_stale ? QColor("#8d99a8") : QColor("#f5a524"), 3, Qt::SolidLine, Qt::RoundCap,
                         Qt::RoundJoin));
    painter->drawPath(path);
}

} // namespace Harmattan
