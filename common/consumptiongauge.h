#ifndef OBD_CONSUMPTIONGAUGE_H
#define OBD_CONSUMPTIONGAUGE_H

#include <QQuickPaintedItem>
#include <QString>

namespace Obd {

class Consumption;

// A QML item that owns one Consumption and paints its current reading as a
// compact digital readout with its unit and a small bar. Shows 0 rather
// than inf or nan.
class ConsumptionGauge : public QQuickPaintedItem
{
    Q_OBJECT
    Q_PROPERTY(qreal value READ value NOTIFY valueChanged)
    Q_PROPERTY(qreal average READ average NOTIFY valueChanged)
    Q_PROPERTY(qreal peak READ peak NOTIFY valueChanged)
    Q_PROPERTY(QString text READ text NOTIFY valueChanged)
    Q_PROPERTY(QString unit READ unit NOTIFY unitSystemChanged)
    Q_PROPERTY(int unitSystem READ unitSystem WRITE setUnitSystem NOTIFY unitSystemChanged)
    Q_PROPERTY(qreal scaleMaximum READ scaleMaximum NOTIFY unitSystemChanged)

public:
    explicit ConsumptionGauge(QQuickItem* parent = nullptr);
    ~ConsumptionGauge() override;

    // Owned by the gauge; for the application to give it a proxy and start it.
    Consumption* consumption() const;

    // In the gauge's unit system.
    qreal value() const;
    qreal average() const;
    qreal peak() const;
    // The value with one decimal.
    QString text() const;
    // "l/100km" or "MPG".
    QString unit() const;
    int unitSystem() const;
    // 0 (metric) or 1 (imperial); anything else is ignored.
    void setUnitSystem(int unitSystem);
    // The value at which the bar is full.
    qreal scaleMaximum() const;

    Q_INVOKABLE void start();
    Q_INVOKABLE void stop();

    void paint(QPainter* painter) override;

signals:
    void valueChanged();
    void unitSystemChanged();

private slots:
    void onConsumptionChanged();

private:
    Consumption* m_consumption;
    int m_unitSystem;
};

} // namespace Obd

#endif
