#ifndef HARMATTAN_LIVEDATAVIEWMODEL_H
#define HARMATTAN_LIVEDATAVIEWMODEL_H

#include "iviewmodel.h"
#include "unitsystem.h"

#include <QList>
#include <QObject>
#include <QPointer>
#include <QString>

#include <memory>

namespace Obd {
class CsvReader;
class SettingsModel;
}

namespace Harmattan {

class ConnectionManager;
class LiveDataListModel;
class LiveRecorder;
class ValueChart;

// Live data: every supported PID of every ECU; a row is polled while the
// list shows it, charts it or records it, and the values follow the
// metric/imperial setting. Up to four rows share the chart; the rows shown
// can be recorded to CSV, and a recording opened again in a chart of its own.
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
    LiveRecorder* recorder() const;
    Obd::UnitSystem unitSystem() const;
    // Changes the setting, so every screen follows.
    void setUnitSystem(Obd::UnitSystem unitSystem);
    // Where recordings go and are found; the application's data folder by default.
    QString recordingsFolder() const;
    void setRecordingsFolder(const QString& folder);

public slots:
    void onConnected();
    void onDisconnected();
    void onViewDestroyed();
    // The list shows rows first..last (-1: none).
    void onVisibleRows(int first, int last);
    void onUnitToggled();
    // Adds a tapped row to the chart or takes it off; -1 empties the chart.
    void onChartRow(int row);
    void onValueUpdated(int row);
    // Starts recording the charted rows, or the rows shown; stops a recording.
    void onRecordToggled();
    // Lists the recordings, newest first, for the view to pick from.
    void onRecordingsRequested();
    void onFileOpened(const QString& name);
    void onFileColumnToggled(int column);
    void onFileClosed();

private slots:
    void onUnitSystemChanged();
    void onRecorderChanged();

private:
    void showState();
    void showFile();
    void poll();
    int chartedIndex(int row) const;
    void addFileSeries(int column);
    static quint64 key(unsigned int ecuId, unsigned char pid) { return quint64(ecuId) << 8 | pid; }

    QPointer<QObject> m_view;
    ConnectionManager* m_connectionManager;
    Obd::SettingsModel* m_settings;
    LiveDataListModel* m_listModel;
    LiveRecorder* m_recorder;
    bool m_connected;
    int m_first;
    int m_last;
    // The charted rows by ECU and PID, in the chart's order.
    QList<quint64> m_charted;
    QString m_notice;
    QPointer<ValueChart> m_chart;
    QPointer<ValueChart> m_fileChart;
    std::unique_ptr<Obd::CsvReader> m_file;
    QString m_fileTitle;
    QList<int> m_fileCharted;
    QString m_folder;
    Obd::UnitSystem m_unitSystem;
};

} // namespace Harmattan

#endif
