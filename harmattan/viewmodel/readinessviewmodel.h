#ifndef HARMATTAN_READINESSVIEWMODEL_H
#define HARMATTAN_READINESSVIEWMODEL_H

#include "ecu.h"
#include "iviewmodel.h"
#include "resultlistmodel.h"

#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>
#include <QVector>

#include <vector>

namespace Obd {
class DriveCycleMonitorStatus;
class MonitorStatus;
class ObdParameterUpdater;
class Sensor;
}

namespace Obd {
class SettingsModel;
}

namespace Harmattan {

class ConnectionManager;

// Readiness: per ECU the lamp, the confirmed codes, every monitor since the
// codes were cleared and this drive cycle, and the distance and time
// counters, read once per opening of the screen, and whether the car would
// pass an emissions inspection.
class ReadinessViewModel : public QObject, public IViewModel
{
    Q_OBJECT

public:
    static const char* const READY;

    ReadinessViewModel(ConnectionManager* connectionManager, Obd::SettingsModel* settings,
                       QObject* parent = nullptr);
    ~ReadinessViewModel() override;

    void setView(QObject* view) override;
    void setContext(QQmlContext* context) override;

    ResultListModel* listModel() const;
    QString verdict() const;

public slots:
    void onConnected();
    void onDisconnected();
    void onViewDestroyed();
    void onStatusRead(bool success);
    void onCycleRead(bool success);

private slots:
    void onUnitSystemChanged();

private:
    void read();
    void compose();
    void showState();
    void composeCycle(const Obd::Ecu& ecu, const QString& header, QVector<ResultListModel::Row>& rows) const;

    QPointer<QObject> m_view;
    ConnectionManager* m_connectionManager;
    Obd::SettingsModel* m_settings;
    ResultListModel* m_listModel;
    Obd::MonitorStatus* m_status;
    Obd::ObdParameterUpdater* m_updater;
    bool m_inFlight;
    bool m_haveStatus;
    // The last read of the monitors came back, well or not.
    bool m_statusDone = false;
    // PID 41, read with PID 01 when any ECU has it; it never sways the verdict.
    Obd::DriveCycleMonitorStatus* m_cycle;
    Obd::ObdParameterUpdater* m_cycleUpdater;
    bool m_cycleInFlight = false;
    bool m_cycleDone = false;
    bool m_haveCycle = false;
    bool m_connected;
    std::vector<Obd::Ecu> m_ecus;
    QList<Obd::Sensor*> m_counters;
    QString m_verdict;
};

} // namespace Harmattan

#endif
