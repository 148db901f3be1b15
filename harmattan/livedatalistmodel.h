#ifndef HARMATTAN_LIVEDATALISTMODEL_H
#define HARMATTAN_LIVEDATALISTMODEL_H

#include "unitsystem.h"

#include <QAbstractListModel>
#include <QList>

namespace Obd {
class IObdProxy;
class Sensor;
}

namespace Harmattan {

// Every supported live-data PID of every ECU, one row per PID, each row
// backed by a sensor that polls only while its row is shown.
class LiveDataListModel : public QAbstractListModel
{
    Q_OBJECT

public:
    enum Roles {
        NameRole = Qt::UserRole + 1,
        ValueRole,
        UnitRole,
        EcuRole,
        PolledRole,
        // A number that can be charted, not a text.
        NumericRole
    };

    explicit LiveDataListModel(QObject* parent = nullptr);
    ~LiveDataListModel() override;

    int rowCount(const QModelIndex& parent = QModelIndex()) const override;
    QVariant data(const QModelIndex& index, int role) const override;
    QHash<int, QByteArray> roleNames() const override;

    // Sensors for the supported PIDs of the proxy's ECUs, none polling yet.
    void build(Obd::IObdProxy* proxy, Obd::UnitSystem unitSystem, int intervalMs);
    void clear();
    // Stops every sensor and cuts it off the link; the last values stay.
    void detach();
    void setPolled(int row, bool polled);
    void setUnitSystem(Obd::UnitSystem unitSystem);
    int polledCount() const;
    Obd::Sensor* sensor(int row) const;
    bool isNumeric(int row) const;
    // The row of a PID of an ECU; -1 when the list has none.
    int rowOf(unsigned int ecuId, unsigned char pid) const;

signals:
    // A sensor came back with a reading.
    void valueUpdated(int row);

private:
    void onSensorChanged(int row);

    QList<Obd::Sensor*> m_sensors;
    QList<bool> m_numeric;
    Obd::IObdProxy* m_proxy;
};

} // namespace Harmattan

#endif
