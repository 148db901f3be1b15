#ifndef HARMATTAN_DASHBOARDVIEWMODEL_H
#define HARMATTAN_DASHBOARDVIEWMODEL_H

#include "ecu.h"
#include "iviewmodel.h"

#include <QObject>
#include <QPointer>

class QTimer;

namespace Obd {
class ConsumptionGauge;
class EngineRpm;
class NumericGauge;
class SettingsModel;
class ObdParameterUpdater;
class VehicleSpeed;
class WorkerThread;
}

namespace Harmattan {

class ConnectionManager;
class MeterGauge;

// The dashboard: engine speed and vehicle speed four times a second on the
// two meters, and the fuel-consumption estimate; the readouts follow the
// metric/imperial setting, the speed dial is printed in km/h.
class DashboardViewModel : public QObject, public IViewModel
{
    Q_OBJECT

public:
    static constexpr int REFRESH_MS = 250;
    // Leaves the meters time for their calibration sweep.
    static constexpr int START_DELAY_MS = 1000;

    DashboardViewModel(ConnectionManager* connectionManager, Obd::SettingsModel* settings,
                       QObject* parent = nullptr);
    ~DashboardViewModel() override;

    void setView(QObject* view) override;
    void setContext(QQmlContext* context) override;

    bool isRefreshing() const;
    // Requests sent to either updater so far (for tests).
    int requestCount() const;

signals:
    // With every engine-speed reading; feeds the NumericGauge "rpmReadout".
    void engineRpmChanged(qreal rpm);

public slots:
    void onConnected();
    void onDisconnected();
    void onViewDestroyed();
    void onStartUpdate();
    void onRpmUpdated(bool success);
    void onSpeedUpdated(bool success);

private slots:
    void startRefresh();
    void showUnits();

private:
    void stopRefresh();

    QPointer<QObject> m_view;
    ConnectionManager* m_connectionManager;
    Obd::SettingsModel* m_settings;
    QTimer* m_timer;
    Obd::Ecu m_ecu;
    bool m_hasEcu;
    Obd::WorkerThread* m_workerThread;
    bool m_connected;
    QPointer<MeterGauge> m_rpmGauge;
    Obd::EngineRpm* m_rpmParameter;
    Obd::ObdParameterUpdater* m_rpmUpdater;
    // At most one request per meter in flight: a slow link is not flooded
    // and a parameter is never read while the worker writes it.
    bool m_rpmInFlight;
    QPointer<MeterGauge> m_speedGauge;
    Obd::VehicleSpeed* m_speedParameter;
    Obd::ObdParameterUpdater* m_speedUpdater;
    bool m_speedInFlight;
    QPointer<Obd::ConsumptionGauge> m_consumptionGauge;
    int m_requestCount;
};

} // namespace Harmattan

#endif
