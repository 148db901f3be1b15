#ifndef HARMATTAN_LIVEDATAVIEWMODEL_H
#define HARMATTAN_LIVEDATAVIEWMODEL_H

#include "iviewmodel.h"
#include "unitsystem.h"

#include <QObject>
#include <QPointer>

namespace Obd {
class SettingsModel;
}

namespace Harmattan {

class ConnectionManager;
class LiveDataListModel;
class ValueChart;

// Live data: every supported PID of every ECU; a row is polled while the
// list shows it, and the values follow the metric/imperial setting.
class LiveDataViewModel : public QObject, public IViewModel
{
    Q_OBJECT

public:
    // As fast as the adapter answers: a sensor never has two requests queued.
    static constexpr int REFRESH_MS = 250;

    LiveDataViewModel(ConnectionManager* connectionManager, Obd::SettingsModel* settings,
                      QObject* parent = nullptr);
    ~LiveDataViewModel() override;

    void setView(QObject* view) override;
    void setContext(QQmlContext* context) override;

    LiveDataListModel* listModel() const;
    Obd::UnitSystem unitSystem() const;
    // Changes the setting, so every screen follows.
    void setUnitSystem(Obd::UnitSystem unitSystem);

public slots:
    void onConnected();
    void onDisconnected();
    void onViewDestroyed();
    // The list shows rows first..last (-1: none).
    void onVisibleRows(int first, int last);
    void onUnitToggled();
    // A tapped row's value is drawn over time; -1 closes the chart.
    void onChartRow(int row);
    void onValueUpdated(int row);

private slots:
    void onUnitSystemChanged();

private:
    void showState();
    void poll();

    QPointer<QObject> m_view;
    ConnectionManager* m_connectionManager;
    Obd::SettingsModel* m_settings;
    LiveDataListModel* m_listModel;
    bool m_connected;
    int m_first;
    int m_chartRow;
    QPointer<ValueChart> m_chart;
    int m_last;
    Obd::UnitSystem m_unitSystem;
};

} // namespace Harmattan

#endif
