#ifndef OBD_SENSOR_H
#define OBD_SENSOR_H

#include "ecu.h"
#include "obdparameter.h"
#include "unitsystem.h"

#include <QList>
#include <QObject>
#include <QString>

class QTimer;

namespace Obd {

class IObdProxy;
class ObdParameterUpdater;
class PowertrainParameter;
class SensorValue;

// The screens' handle on one live-data PID of one ECU. Owns the parameter
// and its updater; refreshes on the shared worker thread, at most one
// refresh in flight, and keeps every value as text in both unit systems.
// Lives on the user-interface thread.
class Sensor : public QObject
{
    Q_OBJECT

public:
    // Takes ownership of parameter (not null).
    Sensor(const Ecu& ecu, PowertrainParameter* parameter, QObject* parent = nullptr);
    ~Sensor() override;

    virtual void setProxy(IObdProxy* proxy);
    // Emits unitChanged(). A value other than the two is ignored.
    virtual void setUnitSystem(UnitSystem unitSystem);
    virtual void setIndex(int index);
    virtual unsigned int getEcuId() const;
    virtual unsigned char getPid() const;
    virtual QString getName() const;
    virtual QString getTitle() const;
    virtual void setUpdateInterval(int ms);
    // One refresh at once, then one per interval.
    virtual void start();
    // One refresh from the event loop.
    virtual void updateNow();
    // A refresh already queued still completes and is delivered.
    virtual void stop();
    // The records stay owned by the sensor.
    virtual QList<SensorValue*> getValues() const;
    // Called after every refresh, before the changed signals.
    virtual void updated(bool success);

    int getIndex() const;
    const Ecu& getEcu() const { return m_ecu; }
    // Whether the last refresh read this sensor's ECU, and why not; state
    // READ_NOT_ANSWERED with no reason before the first refresh came back.
    ReadStatus getReadStatus() const { return m_readStatus; }
    bool wasRefreshed() const { return m_refreshed; }
    bool isQueued() const;
    bool isActive() const;
    int getUpdateInterval() const;

signals:
    void unitChanged();
    void changed();
    void changed(int index);
    void changed(int ecuId, int pid);

public slots:
    void runUpdate();
    void onUpdated(bool success);

protected:
    Ecu m_ecu;
    PowertrainParameter* m_parameter;

private:
    QString m_name;
    QString m_title;
    QList<SensorValue*> m_values;
    ObdParameterUpdater* m_updater;
    QTimer* m_timer;
    int m_index;
    int m_queued;
    ReadStatus m_readStatus;
    bool m_refreshed = false;
};

} // namespace Obd

#endif
