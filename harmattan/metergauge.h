#ifndef HARMATTAN_METERGAUGE_H
#define HARMATTAN_METERGAUGE_H

#include "svgpixmapcache.h"

#include <QMetaObject>
#include <QQuickPaintedItem>
#include <QString>
#include <QSvgRenderer>

class QPropertyAnimation;

namespace Harmattan {

// A round meter drawn from SVG parts: dial, needle shadow, needle, glass.
// Dial, shadow and glass are rasterised once per size; the needle is drawn
// as vectors, so it stays crisp at every angle. The needle's angle follows
// value linearly from startAngle at minimum to endAngle at maximum, in
// degrees clockwise from twelve o'clock.
class MeterGauge : public QQuickPaintedItem
{
    Q_OBJECT
    Q_PROPERTY(int minimum READ minimum WRITE setMinimum NOTIFY scaleChanged)
    Q_PROPERTY(int maximum READ maximum WRITE setMaximum NOTIFY scaleChanged)
    Q_PROPERTY(int startAngle READ startAngle WRITE setStartAngle NOTIFY scaleChanged)
    Q_PROPERTY(int endAngle READ endAngle WRITE setEndAngle NOTIFY scaleChanged)
    Q_PROPERTY(QString background READ background WRITE setBackground NOTIFY backgroundChanged)
    Q_PROPERTY(qreal value READ value WRITE setValue NOTIFY valueChanged)
    // Drawn in dimmed greys: the value shown is stale.
    Q_PROPERTY(bool greyed READ isGreyed WRITE setGreyed NOTIFY greyedChanged)

public:
    static constexpr int ANIMATION_MS = 250;
    static constexpr int CALIBRATION_DELAY_MS = 800;

    explicit MeterGauge(QQuickItem* parent = nullptr);
    ~MeterGauge() override;

    int minimum() const;
    void setMinimum(int minimum);
    int maximum() const;
    void setMaximum(int maximum);
    int startAngle() const;
    void setStartAngle(int angle);
    int endAngle() const;
    void setEndAngle(int angle);
    QString background() const;
    void setBackground(const QString& background);
    qreal value() const;
    bool isGreyed() const;
    void setGreyed(bool greyed);

    // The needle's angle for a value, in degrees.
    qreal angleFor(qreal value) const;
    bool isAnimating() const;
    // How often the rasterised parts were rendered (for tests).
    int rasterCount() const;

    void paint(QPainter* painter) override;

public slots:
    Q_INVOKABLE void setValue(qreal value);
    // Moves the needle to value in 250 ms from where it is now; a running
    // move (or the calibration sweep) stops there.
    Q_INVOKABLE void setValueAnimated(qreal value);
    // The start-up sweep: to maximum and back to 0.
    Q_INVOKABLE void calibrate();
    Q_INVOKABLE void geometryChanged(QRectF newGeometry, QRectF oldGeometry);
    void onCalibrationHalfDone();

signals:
    void scaleChanged();
    void backgroundChanged();
    void valueChanged();
    void greyedChanged();
    void calibrationFinished();

protected:
    void geometryChange(const QRectF& newGeometry, const QRectF& oldGeometry) override;

private:
    void animateTo(qreal value);
    void paintDial(QPainter* painter);
    void rasterise();
    QRectF dialRect() const;

    int m_minimum;
    int m_maximum;
    int m_startAngle;
    int m_endAngle;
    QString m_background;
    qreal m_value;
    SvgPixmapCache m_backgroundCache;
    SvgPixmapCache m_shadowCache;
    QSvgRenderer m_needle;
    SvgPixmapCache m_overlayCache;
    // The needle's pivot as fractions of the dial.
    qreal m_pivotX;
    qreal m_pivotY;
    bool m_drawShadow;
    bool m_calibrating;
    bool m_greyed = false;
    QPropertyAnimation* m_animation;
    QMetaObject::Connection m_calibrationConnection;
};

} // namespace Harmattan

#endif
