#ifndef OBD_NUMERICGAUGE_H
#define OBD_NUMERICGAUGE_H

#include <QQuickItem>

namespace Obd {

// A QML item that carries one numeric reading for bindings (the dashboard
// feeds the engine speed into the one named "rpmReadout").
class NumericGauge : public QQuickItem
{
    Q_OBJECT
    Q_PROPERTY(double value READ value WRITE setValue NOTIFY valueChanged)

public:
    explicit NumericGauge(QQuickItem* parent = nullptr);

    double value() const;

public slots:
    void setValue(double value);

signals:
    void valueChanged();

private:
    double m_value;
};

} // namespace Obd

#endif
