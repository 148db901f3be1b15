#ifndef HARMATTAN_ONBOARDTESTSVIEWMODEL_H
#define HARMATTAN_ONBOARDTESTSVIEWMODEL_H

#include "readingviewmodel.h"

#include <QString>

#include <vector>

namespace Obd {
class MonitorTestResult;
class OxygenSensorTestResult;
class SettingsModel;
}

namespace Harmattan {

class ConnectionManager;

// On-board tests: per ECU every service 06 result (05 as well on the buses
// other than CAN) with its limits and verdict, grouped by monitor, the
// failures first. Read once per opening of the screen.
class OnBoardTestsViewModel : public BatchViewModel
{
    Q_OBJECT

public:
    OnBoardTestsViewModel(NavigationModel* navigationModel, ConnectionManager* connectionManager,
                          Obd::SettingsModel* settings, QObject* parent = nullptr);

    QString summary() const { return m_summary; }

private slots:
    void onUnitSystemChanged();

private:
    void addRequests(const std::vector<Obd::EcuPtr>& ecus) override;
    void collect(QVector<Row>& rows, bool running) override;
    void showReadings() override;

    Obd::SettingsModel* m_settings;
    // Owned by the batch.
    std::vector<Obd::MonitorTestResult*> m_monitorTests;
    std::vector<Obd::OxygenSensorTestResult*> m_oxygenTests;
    QString m_summary;
};

} // namespace Harmattan

#endif
