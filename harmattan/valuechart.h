#ifndef HARMATTAN_VALUECHART_H
#define HARMATTAN_VALUECHART_H

#include <QColor>
#include <QQuickPaintedItem>
#include <QVector>

namespace Harmattan {

// A line of one value over the last minutes, painted; keeps the lowest,
// highest and latest value of what it shows.
class ValueChart : public QQuickPaintedItem
{
    Q_OBJECT
    Q_PROPERTY(int sampleCount READ sampleCount NOTIFY samplesChanged)
    Q_PROPERTY(double minimum READ minimum NOTIFY samplesChanged)
    Q_PROPERTY(double maximum READ maximum NOTIFY samplesChanged)
    Q_PROPERTY(double current READ current NOTIFY samplesChanged)
    Q_PROPERTY(bool stale READ isStale WRITE setStale NOTIFY staleChanged)

public:
    // Four readings a second for five minutes.
    static constexpr int CAPACITY = 1200;

    explicit ValueChart(QQuickItem* parent = nullptr);

    void paint(QPainter* painter) override;

    Q_INVOKABLE void addSample(double value);
    Q_INVOKABLE void clear();
    int sampleCount() const { return m_samples.size(); }
    double minimum() const { return m_minimum; }
    double maximum() const { return m_maximum; }
    double current() const { return m_samples.isEmpty() ? 0.0 : m_samples.last(); }
    bool isStale() const { return m_stale; }
    void setStale(bool stale);

signals:
    void samplesChanged();
    void staleChanged();

private:
    QVector<double> m_samples;
    double m_minimum;
    double m_maximum;
    bool m_stale;
};

} // namespace Harmattan

#endif
