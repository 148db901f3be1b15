#ifndef HARMATTAN_VALUECHART_H
#define HARMATTAN_VALUECHART_H

#include <QColor>
#include <QElapsedTimer>
#include <QPointF>
#include <QQuickPaintedItem>
#include <QVariantList>
#include <QVector>

namespace Harmattan {

// Up to four values over time, painted, each in its own colour and scaled to
// its own range so that rpm and °C are both readable; keeps per value the
// lowest, highest and latest reading. Live values are timed by the chart,
// recorded ones bring their own times.
class ValueChart : public QQuickPaintedItem
{
    Q_OBJECT
    Q_PROPERTY(int seriesCount READ seriesCount NOTIFY seriesChanged)
    // Per value: name, unit, colour, count, current, minimum, maximum.
    Q_PROPERTY(QVariantList legend READ legend NOTIFY samplesChanged)
    Q_PROPERTY(bool stale READ isStale WRITE setStale NOTIFY staleChanged)
    // The time shown, in seconds; 0 shows everything.
    Q_PROPERTY(double windowSeconds READ windowSeconds WRITE setWindowSeconds NOTIFY seriesChanged)

public:
    static constexpr int MAX_SERIES = 4;
    // Four readings a second for five minutes, per value.
    static constexpr int CAPACITY = 1200;

    explicit ValueChart(QQuickItem* parent = nullptr);

    void paint(QPainter* painter) override;

    // The new value's index, -1 when four are shown already.
    int addSeries(const QString& name, const QString& unit);
    void removeSeries(int series);
    // Drops the readings and renames; the colour stays.
    void resetSeries(int series, const QString& name, const QString& unit);
    // Every value goes.
    Q_INVOKABLE void clear();
    // A reading now.
    void addSample(int series, double value);
    // A reading at a time of its own; NaN breaks the line.
    void addPoint(int series, double seconds, double value);
    // A recording's readings at once.
    void setPoints(int series, const QVector<QPointF>& points);
    // Breaks the line now (the link went).
    void addGap(int series);

    int seriesCount() const { return m_series.size(); }
    QVariantList legend() const;
    QColor colour(int series) const;
    int sampleCount(int series) const;
    bool isStale() const { return m_stale; }
    void setStale(bool stale);
    double windowSeconds() const { return m_window; }
    void setWindowSeconds(double seconds);

signals:
    void seriesChanged();
    void samplesChanged();
    void staleChanged();

private:
    struct Series
    {
        QString name;
        QString unit;
        int colour;
        QVector<QPointF> points; // seconds, value (NaN: a gap)
        int count = 0;
        double minimum = 0.0;
        double maximum = 0.0;
        double current = 0.0;
    };
    static void recount(Series& series);

    QVector<Series> m_series;
    QElapsedTimer m_clock;
    double m_window;
    bool m_stale;
};

} // namespace Harmattan

#endif
