#include "metergauge.h"

#include "trlog.h"

#include <QImage>
#include <QPainter>
#include <QPropertyAnimation>
#include <QTimer>

namespace Harmattan {

namespace {

const char* const NEEDLE = ":/needle.svg";
const char* const NEEDLE_SHADOW = ":/needle_shadow.svg";
const char* const OVERLAY = ":/overlay.svg";
// The shadow falls down and to the right of the needle, as from a light
// above the instrument panel; in fractions of the dial's side.
const qreal SHADOW_DX = 0.008;
const qreal SHADOW_DY = 0.016;

} // namespace

MeterGauge::MeterGauge(QQuickItem* parent)
    : QQuickPaintedItem(parent)
    , m_minimum(0)
    , m_maximum(100)
    , m_startAngle(0)
    , m_endAngle(100)
    , m_value(0.0)
    , m_shadowCache(NEEDLE_SHADOW)
    , m_needle(QString(NEEDLE))
    , m_overlayCache(OVERLAY)
    , m_pivotX(0.5)
    , m_pivotY(0.5)
    , m_drawShadow(true)
    , m_calibrating(false)
    , m_animation(new QPropertyAnimation(this, "value", this))
{
    setFlag(QQuickItem::ItemHasContents, true);
    setAntialiasing(true);
    setRenderTarget(QQuickPaintedItem::Image);
    if (!m_needle.isValid())
        OBD_ERROR << "Cannot load SVG " << NEEDLE;
    QTimer::singleShot(CALIBRATION_DELAY_MS, this, &MeterGauge::calibrate);
}

MeterGauge::~MeterGauge()
{
    m_animation->stop();
}

int MeterGauge::minimum() const
{
    return m_minimum;
}

void MeterGauge::setMinimum(int minimum)
{
    if (minimum == m_minimum)
        return;
    m_minimum = minimum;
    emit scaleChanged();
    update();
}

int MeterGauge::maximum() const
{
    return m_maximum;
}

void MeterGauge::setMaximum(int maximum)
{
    if (maximum == m_maximum)
        return;
    m_maximum = maximum;
    emit scaleChanged();
    update();
}

int MeterGauge::startAngle() const
{
    return m_startAngle;
}

void MeterGauge::setStartAngle(int angle)
{
    if (angle == m_startAngle)
        return;
    m_startAngle = angle;
    emit scaleChanged();
    update();
}

int MeterGauge::endAngle() const
{
    return m_endAngle;
}

void MeterGauge::setEndAngle(int angle)
{
    if (angle == m_endAngle)
        return;
    m_endAngle = angle;
    emit scaleChanged();
    update();
}

QString MeterGauge::background() const
{
    return m_background;
}

void MeterGauge::setBackground(const QString& background)
{
    if (background == m_background)
        return;
    m_background = background;
    m_backgroundCache.load(background);
    m_backgroundCache.render(dialRect().size());
    emit backgroundChanged();
    update();
}

qreal MeterGauge::value() const
{
    return m_value;
}

void MeterGauge::setValue(qreal value)
{
    if (value == m_value)
        return;
    m_value = value;
    emit valueChanged();
    update();
}

qreal MeterGauge::angleFor(qreal value) const
{
    const qreal span = m_maximum - m_minimum;
    if (span == 0)
        return m_startAngle;
    return m_startAngle + (value - m_minimum) / span * (m_endAngle - m_startAngle);
}

bool MeterGauge::isAnimating() const
{
    return m_animation->state() == QAbstractAnimation::Running;
}

int MeterGauge::rasterCount() const
{
    return m_backgroundCache.renderCount() + m_shadowCache.renderCount()
           + m_overlayCache.renderCount();
}

void MeterGauge::setValueAnimated(qreal value)
{
    // A reading arriving during the sweep ends the sweep where it is.
    if (m_calibrating) {
        disconnect(m_calibrationConnection);
        m_calibrating = false;
        emit calibrationFinished();
        animateTo(value);
        return;
    }
    // The same reading again leaves a needle on its way (or there) alone.
    const bool running = m_animation->state() == QAbstractAnimation::Running;
    if (running ? m_animation->endValue().toFloat() == static_cast<float>(value)
                : static_cast<float>(m_value) == static_cast<float>(value))
        return;
    animateTo(value);
}

void MeterGauge::animateTo(qreal value)
{
    if (m_animation->state() == QAbstractAnimation::Running)
        m_animation->stop();
    m_animation->setDuration(ANIMATION_MS);
    m_animation->setStartValue(static_cast<float>(m_value));
    m_animation->setEndValue(static_cast<float>(value));
    m_animation->start();
}

void MeterGauge::calibrate()
{
    disconnect(m_calibrationConnection);
    m_calibrationConnection = connect(m_animation, &QPropertyAnimation::finished, this,
                                      &MeterGauge::onCalibrationHalfDone);
    m_calibrating = true;
    animateTo(m_maximum);
}

void MeterGauge::onCalibrationHalfDone()
{
    disconnect(m_calibrationConnection);
    // Back to 0 rather than minimum, as the sweep always did.
    animateTo(0.0);
    m_calibrating = false;
    emit calibrationFinished();
}

QRectF MeterGauge::dialRect() const
{
    const qreal side = qMin(width(), height());
    return QRectF((width() - side) / 2, (height() - side) / 2, side, side);
}

void MeterGauge::rasterise()
{
    const QSizeF size = dialRect().size();
    m_backgroundCache.render(size);
    m_shadowCache.render(size);
    m_overlayCache.render(size);
}

void MeterGauge::geometryChanged(QRectF newGeometry, QRectF oldGeometry)
{
    if (newGeometry.size() != oldGeometry.size())
        rasterise();
}

void MeterGauge::geometryChange(const QRectF& newGeometry, const QRectF& oldGeometry)
{
    QQuickPaintedItem::geometryChange(newGeometry, oldGeometry);
    geometryChanged(newGeometry, oldGeometry);
}

bool MeterGauge::isGreyed() const
{
    return m_greyed;
}

void MeterGauge::setGreyed(bool greyed)
{
    if (greyed == m_greyed)
        return;
    m_greyed = greyed;
    update();
    emit greyedChanged();
}

void MeterGauge::paint(QPainter* painter)
{
    if (!m_greyed) {
        paintDial(painter);
        return;
    }
    const qreal ratio = painter->device()->devicePixelRatioF();
    QImage image((size() * ratio).toSize(), QImage::Format_ARGB32_Premultiplied);
    if (image.isNull())
        return;
    image.setDevicePixelRatio(ratio);
    image.fill(Qt::transparent);
    {
        QPainter offscreen(&image);
        paintDial(&offscreen);
    }
    // Each pixel's lightness, dimmed, its coverage kept: no colour survives.
    for (int y = 0; y < image.height(); ++y) {
        QRgb* line = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < image.width(); ++x) {
            const int grey = qGray(line[x]) * 3 / 5;
            line[x] = qRgba(grey, grey, grey, qAlpha(line[x]));
        }
    }
    painter->drawImage(QPointF(0, 0), image);
}

void MeterGauge::paintDial(QPainter* painter)
{
    const QRectF dial = dialRect();
    if (dial.width() <= 0)
        return;
    painter->setRenderHint(QPainter::Antialiasing);
    painter->setRenderHint(QPainter::SmoothPixmapTransform);
    if (!m_backgroundCache.pixmap().isNull())
        painter->drawImage(dial.topLeft(), m_backgroundCache.pixmap());

    const QPointF pivot(dial.left() + dial.width() * m_pivotX, dial.top() + dial.height() * m_pivotY);
    const qreal angle = angleFor(m_value);
    if (m_drawShadow && !m_shadowCache.pixmap().isNull()) {
        painter->save();
        painter->translate(pivot + QPointF(dial.width() * SHADOW_DX, dial.height() * SHADOW_DY));
        painter->rotate(angle);
        painter->drawImage(QPointF(-dial.width() * m_pivotX, -dial.height() * m_pivotY),
                           m_shadowCache.pixmap());
        painter->restore();
    }
    if (m_needle.isValid()) {
        painter->save();
        painter->translate(pivot);
        painter->rotate(angle);
        m_needle.render(painter, QRectF(-dial.width() * m_pivotX, -dial.height() * m_pivotY,
                                        dial.width(), dial.height()));
        painter->restore();
    }
    if (!m_overlayCache.pixmap().isNull())
        painter->drawImage(dial.topLeft(), m_overlayCache.pixmap());
}

} // namespace Harmattan
