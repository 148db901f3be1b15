#ifndef HARMATTAN_DASHBOARDVIEWMODEL_H
#define HARMATTAN_DASHBOARDVIEWMODEL_H

#include "ecu.h"
#include "iviewmodel.h"

#include <QObject>
#include <QPointer>
#include <QString>

class QTimer;

namespace Obd {
class ConsumptionGauge;
class MeasurableParameter;
class SettingsModel;
class ObdParameterUpdater;
class WorkerThread;
}

namespace Harmattan {

class ConnectionManager;
class MeterGauge;

// The dashboard: two gauges, engine speed and vehicle speed on their round
// meters unless the settings chose other PIDs (shown as value, unit and a
// bar over the PID's range), read as fast as the adapter answers, and the
// fuel-consumption estimate. Readouts follow the metric/imperial setting;
// the meters are printed in rpm and km/h. A gauge whose value is not fresh
// (link lost, read failed) is greyed.
class DashboardViewModel : public QObject, public IViewModel
{
    Q_OBJECT

public:
    static constexpr int GAUGES = 2;
    // Each gauge has at most one request in flight, so this only bounds a
    // fast adapter.
    static constexpr int REFRESH_MS = 100;
    // Leaves the meters time for their calibration sweep.
    static constexpr int START_DELAY_MS = 1000;

    DashboardViewModel(ConnectionManager* connectionManager, Obd::SettingsModel* settings,
                       QObject* parent = nullptr);
    ~DashboardViewModel() override;

    void setView(QObject* view) override;
    void setContext(QQmlContext* context) override;

    bool isRefreshing() const;
    // Requests sent to the gauges' updaters so far, and readings that came.
    int requestCount() const;
    int valueCount() const;
    int gaugePid(int gauge) const;

signals:
    // With every engine-speed reading; feeds the NumericGauge "rpmReadout".
    void engineRpmChanged(qreal rpm);

public slots:
    void onConnected();
    void onDisconnected();
    void onViewDestroyed();
    void onStartUpdate();

private slots:
    void startRefresh();
    void showUnits();
    void choosePids();

private:
    struct Gauge
    {
        int pid = 0;
        Obd::MeasurableParameter* parameter = nullptr;
        Obd::ObdParameterUpdater* updater = nullptr;
        // At most one request in flight: a slow link is not flooded and the
        // parameter is never read while the worker writes it.
        bool inFlight = false;
        bool fresh = false;
        QPointer<QObject> item;
        QPointer<MeterGauge> meter;
    };

    void stopRefresh();
    void setPid(int gauge, int pid);
    void showGauge(int gauge);
    void showFresh(int gauge, bool fresh);
    void onGaugeUpdated(int gauge, bool success);

    QPointer<QObject> m_view;
    ConnectionManager* m_connectionManager;
    Obd::SettingsModel* m_settings;
    QTimer* m_timer;
    Obd::Ecu m_ecu;
    bool m_hasEcu;
    Obd::WorkerThread* m_workerThread;
    bool m_connected;
    Gauge m_gauges[GAUGES];
    QPointer<Obd::ConsumptionGauge> m_consumptionGauge;
    int m_requestCount;
    int m_valueCount;
};

} // namespace Harmattan

#endif
