#ifndef HARMATTAN_ONBOARDTESTSVIEWMODEL_H
#define HARMATTAN_ONBOARDTESTSVIEWMODEL_H

#include "ecu.h"
#include "iviewmodel.h"

#include <QObject>
#include <QPointer>
#include <QString>

#include <vector>

namespace Obd {
class MonitorTestResult;
class OxygenSensorTestResult;
class SettingsModel;
}

namespace Harmattan {

class ConnectionManager;
class NavigationModel;
class ParameterBatch;
class ResultListModel;

// On-board tests: per ECU every service 06 result (05 as well on the buses
// other than CAN) with its limits and verdict, grouped by monitor, the
// failures first. Read once per opening of the screen.
class OnBoardTestsViewModel : public QObject, public IViewModel
{
    Q_OBJECT

public:
    OnBoardTestsViewModel(NavigationModel* navigationModel, ConnectionManager* connectionManager,
                          Obd::SettingsModel* settings, QObject* parent = nullptr);
    ~OnBoardTestsViewModel() override;

    void setView(QObject* view) override;
    void setContext(QQmlContext* context) override;

    ResultListModel* listModel() const;
    QString summary() const;
    QString readError() const;

    // Opens the screen (the information view's row).
    Q_INVOKABLE void open();

public slots:
    void onConnected();
    void onDisconnected();
    void onViewDestroyed();

private slots:
    void onRead();
    void onUnitSystemChanged();

private:
    void read();
    void compose();
    void showState();

    QPointer<QObject> m_view;
    NavigationModel* m_navigationModel;
    ConnectionManager* m_connectionManager;
    Obd::SettingsModel* m_settings;
    ResultListModel* m_listModel;
    ParameterBatch* m_batch;
    // Owned by the batch.
    std::vector<Obd::MonitorTestResult*> m_monitorTests;
    std::vector<Obd::OxygenSensorTestResult*> m_oxygenTests;
    std::vector<Obd::Ecu> m_ecus;
    bool m_connected;
    QString m_summary;
    QString m_readError;
};

} // namespace Harmattan

#endif
