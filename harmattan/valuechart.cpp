#include "valuechart.h"

#include <QPainter>
#include <QPainterPath>
#include <QVariantMap>

#include <algorithm>
#include <cmath>
#include <limits>

namespace Harmattan {

namespace {

// Amber, sky, green, rose: apart on the dark background and for most eyes.
const char* const COLOURS[ValueChart::MAX_SERIES] = { "#f5a524", "#4fc3f7", "#8bc34a", "#f06292" };

// Live: the first half minute fills the width, then the line compresses.
const double LIVE_MIN_SPAN = 30.0;

QString figure(double value)
{
    return QString::number(value, 'f', std::fabs(value) >= 100 ? 0 : 1);
}

} // namespace

ValueChart::ValueChart(QQuickItem* parent)
    : QQuickPaintedItem(parent)
    , m_window(300.0)
    , m_stale(false)
{
    setAntialiasing(true);
    m_clock.start();
}

int ValueChart::addSeries(const QString& name, const QString& unit)
{
    if (m_series.size() >= MAX_SERIES)
        return -1;
    // The first colour no value has, so a value keeps its colour when another goes.
    int colour = 0;
    while (std::any_of(m_series.cbegin(), m_series.cend(), [&](const Series& s) { return s.colour == colour; }))
        ++colour;
    m_series.append(Series{ name, unit, colour, {} });
    emit seriesChanged();
    emit samplesChanged();
    update();
    return m_series.size() - 1;
}

void ValueChart::removeSeries(int series)
{
    if (series < 0 || series >= m_series.size())
        return;
    m_series.removeAt(series);
    emit seriesChanged();
    emit samplesChanged();
    update();
}

void ValueChart::resetSeries(int series, const QString& name, const QString& unit)
{
    if (series < 0 || series >= m_series.size())
        return;
    Series& s = m_series[series];
    s = Series{ name, unit, s.colour, {} };
    emit samplesChanged();
    update();
}

void ValueChart::clear()
{
    m_series.clear();
    m_clock.restart();
    emit seriesChanged();
    emit samplesChanged();
    update();
}

void ValueChart::addSample(int series, double value)
{
    if (series < 0 || series >= m_series.size())
        return;
    QVector<QPointF>& points = m_series[series].points;
    const bool trimmed = points.size() >= CAPACITY;
    if (trimmed)
        points.removeFirst();
    addPoint(series, m_clock.elapsed() / 1000.0, value);
    if (trimmed)
        recount(m_series[series]);
}

void ValueChart::addPoint(int series, double seconds, double value)
{
    if (series < 0 || series >= m_series.size())
        return;
    Series& s = m_series[series];
    s.points.append(QPointF(seconds, value));
    if (std::isnan(value))
        return;
    s.minimum = s.count ? std::min(s.minimum, value) : value;
    s.maximum = s.count ? std::max(s.maximum, value) : value;
    s.current = value;
    ++s.count;
    emit samplesChanged();
    update();
}

void ValueChart::setPoints(int series, const QVector<QPointF>& points)
{
    if (series < 0 || series >= m_series.size())
        return;
    m_series[series].points = points;
    recount(m_series[series]);
    emit samplesChanged();
    update();
}

void ValueChart::addGap(int series)
{
    addPoint(series, m_clock.elapsed() / 1000.0, std::numeric_limits<double>::quiet_NaN());
}

void ValueChart::recount(Series& series)
{
    series.count = 0;
    for (const QPointF& point : series.points) {
        if (std::isnan(point.y()))
            continue;
        series.minimum = series.count ? std::min(series.minimum, point.y()) : point.y();
        series.maximum = series.count ? std::max(series.maximum, point.y()) : point.y();
        series.current = point.y();
        ++series.count;
    }
}

QVariantList ValueChart::legend() const
{
    QVariantList list;
    for (int i = 0; i < m_series.size(); ++i) {
        const Series& s = m_series[i];
        list.append(QVariantMap{ { "name", s.name }, { "unit", s.unit }, { "colour", colour(i) },
                                 { "count", s.count }, { "current", s.current },
                                 { "minimum", s.minimum }, { "maximum", s.maximum } });
    }
    return list;
}

QColor ValueChart::colour(int series) const
{
    return series >= 0 && series < m_series.size() ? QColor(COLOURS[m_series[series].colour]) : QColor();
}

int ValueChart::sampleCount(int series) const
{
    return series >= 0 && series < m_series.size() ? m_series[series].count : 0;
}

void ValueChart::setStale(bool stale)
{
    if (stale == m_stale)
        return;
    m_stale = stale;
    emit staleChanged();
    update();
}

void ValueChart::setWindowSeconds(double seconds)
{
    m_window = std::max(0.0, seconds);
    emit seriesChanged();
    update();
}

void ValueChart::paint(QPainter* painter)
{
    const QRectF area = boundingRect().adjusted(4, 22, -4, -22);
    painter->setPen(QPen(QColor("#2b333e"), 1));
    for (int i = 0; i <= 4; ++i) {
        const double y = area.top() + area.height() * i / 4;
        painter->drawLine(QPointF(area.left(), y), QPointF(area.right(), y));
    }
    double first = std::numeric_limits<double>::max();
    double last = std::numeric_limits<double>::lowest();
    for (const Series& s : m_series) {
        if (s.count == 0)
            continue;
        first = std::min(first, s.points.first().x());
        last = std::max(last, s.points.last().x());
    }
    if (first > last)
        return;
    if (m_window > 0)
        first = std::max(first, last - m_window);
    const double span = m_window > 0 ? std::max(last - first, LIVE_MIN_SPAN) : std::max(last - first, 1e-3);

    QFont font = painter->font();
    font.setPixelSize(12);
    font.setBold(true);
    painter->setFont(font);
    const double labelWidth = boundingRect().width() / MAX_SERIES;
    for (int i = 0; i < m_series.size(); ++i) {
        const Series& s = m_series[i];
        if (s.count == 0)
            continue;
        const QColor colour = m_stale ? QColor("#8d99a8") : this->colour(i);
        // Each value on its own scale. A flat line has no scale: the flat
        // ones stand one above the other rather than on top of each other.
        const bool flat = s.maximum <= s.minimum;
        const double share = double(i + 1) / (m_series.size() + 1);
        const double low = flat ? s.minimum - share : s.minimum;
        const double range = flat ? 1.0 : s.maximum - s.minimum;
        QPainterPath path;
        bool open = false;
        for (const QPointF& p : s.points) {
            if (std::isnan(p.y()) || p.x() < first) {
                open = false;
                continue;
            }
            const QPointF point(area.left() + area.width() * (p.x() - first) / span,
                                area.bottom() - area.height() * (p.y() - low) / range);
            if (open)
                path.lineTo(point);
            else
                path.moveTo(point);
            open = true;
        }
        painter->setPen(QPen(colour, 3, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
        painter->setBrush(Qt::NoBrush);
        painter->drawPath(path);
        // The scale of this value: its highest reading above, its lowest below.
        painter->setPen(colour);
        const QRectF top(i * labelWidth + 4, 0, labelWidth - 8, 20);
        const QRectF bottom(i * labelWidth + 4, boundingRect().height() - 20, labelWidth - 8, 20);
        painter->drawText(top, Qt::AlignLeft | Qt::AlignVCenter, figure(s.maximum) + QLatin1Char(' ') + s.unit);
        painter->drawText(bottom, Qt::AlignLeft | Qt::AlignVCenter, figure(s.minimum) + QLatin1Char(' ') + s.unit);
    }
}

} // namespace Harmattan
