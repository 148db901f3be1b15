#include "consumptiongauge.h"

#include "consumption.h"

#include <QCoreApplication>
#include <QFont>
#include <QPainter>

#include <algorithm>
#include <cmath>

namespace Obd {

namespace {

qreal finiteOrZero(double value)
{
    return std::isfinite(value) ? value : 0.0;
}

} // namespace

ConsumptionGauge::ConsumptionGauge(QQuickItem* parent)
    : QQuickPaintedItem(parent)
    , m_consumption(new Consumption(this))
    , m_unitSystem(US_METRIC)
{
    setAntialiasing(true);
    setImplicitWidth(200);
    setImplicitHeight(100);
    connect(m_consumption, &Consumption::changed, this, &ConsumptionGauge::onConsumptionChanged);
}

ConsumptionGauge::~ConsumptionGauge()
{
}

Consumption* ConsumptionGauge::consumption() const
{
    return m_consumption;
}

qreal ConsumptionGauge::value() const
{
    return finiteOrZero(m_consumption->consumption(static_cast<UnitSystem>(m_unitSystem)));
}

qreal ConsumptionGauge::average() const
{
    return finiteOrZero(m_consumption->averageConsumption(static_cast<UnitSystem>(m_unitSystem)));
}

qreal ConsumptionGauge::peak() const
{
    return finiteOrZero(m_consumption->peakConsumption(static_cast<UnitSystem>(m_unitSystem)));
}

QString ConsumptionGauge::text() const
{
    return QString::number(value(), 'f', 1);
}

QString ConsumptionGauge::unit() const
{
    return m_unitSystem == US_IMPERIAL
               ? QCoreApplication::translate("Obd::ConsumptionGauge", "MPG")
               : QCoreApplication::translate("Obd::ConsumptionGauge", "l/100km");
}

int ConsumptionGauge::unitSystem() const
{
    return m_unitSystem;
}

void ConsumptionGauge::setUnitSystem(int unitSystem)
{
    if (unitSystem != US_METRIC && unitSystem != US_IMPERIAL)
        return;
    if (unitSystem == m_unitSystem)
        return;
    m_unitSystem = unitSystem;
    emit unitSystemChanged();
    emit valueChanged();
    update();
}

qreal ConsumptionGauge::scaleMaximum() const
{
    return m_unitSystem == US_IMPERIAL ? 60.0 : 30.0;
}

void ConsumptionGauge::start()
{
    m_consumption->start();
}

void ConsumptionGauge::stop()
{
    m_consumption->stop();
}

void ConsumptionGauge::onConsumptionChanged()
{
    emit valueChanged();
    update();
}

void ConsumptionGauge::paint(QPainter* painter)
{
    const QRectF area(0.0, 0.0, width(), height());
    if (area.width() < 1.0 || area.height() < 1.0)
        return;
    const qreal unitSize = std::min(area.width() / 2.0, area.height());
    const qreal margin = unitSize * 0.08;
    const QRectF inner = area.adjusted(margin, margin, -margin, -margin);

    painter->setRenderHint(QPainter::Antialiasing, true);
    painter->setPen(Qt::NoPen);
    painter->setBrush(QColor(0x20, 0x24, 0x2a));
    painter->drawRoundedRect(area, unitSize * 0.1, unitSize * 0.1);

    // Readout above, bar along the bottom.
    const qreal barHeight = inner.height() * 0.12;
    const QRectF textArea(inner.left(), inner.top(), inner.width(), inner.height() - 2 * barHeight);

    QFont valueFont = painter->font();
    valueFont.setPixelSize(std::max(1, int(textArea.height() * 0.7)));
    valueFont.setBold(true);
    QFont unitFont = painter->font();
    unitFont.setPixelSize(std::max(1, int(textArea.height() * 0.28)));

    const QRectF valueRect(textArea.left(), textArea.top(), textArea.width() * 0.68,
                           textArea.height());
    const QRectF unitRect(valueRect.right() + margin * 0.5, textArea.top(),
                          textArea.right() - valueRect.right() - margin * 0.5, textArea.height());
    painter->setPen(QColor(0xf0, 0xf0, 0xf0));
    painter->setFont(valueFont);
    painter->drawText(valueRect, Qt::AlignRight | Qt::AlignVCenter, text());
    painter->setPen(QColor(0xa0, 0xa8, 0xb0));
    painter->setFont(unitFont);
    painter->drawText(unitRect, Qt::AlignLeft | Qt::AlignVCenter, unit());

    const QRectF track(inner.left(), inner.bottom() - barHeight, inner.width(), barHeight);
    const qreal fraction = std::clamp(value() / scaleMaximum(), 0.0, 1.0);
    painter->setPen(Qt::NoPen);
    painter->setBrush(QColor(0x3a, 0x40, 0x48));
    painter->drawRoundedRect(track, barHeight / 2, barHeight / 2);
    if (fraction > 0.0) {
        painter->setBrush(QColor(0x4c, 0xaf, 0x50));
        painter->drawRoundedRect(QRectF(track.left(), track.top(), track.width() * fraction,
                                        track.height()),
                                 barHeight / 2, barHeight / 2);
    }
}

} // namespace Obd
