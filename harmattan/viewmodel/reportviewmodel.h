#ifndef HARMATTAN_REPORTVIEWMODEL_H
#define HARMATTAN_REPORTVIEWMODEL_H

#include "iviewmodel.h"

#include <QObject>
#include <QString>

#include <atomic>

namespace Obd {
class IObdProxy;
}

namespace Harmattan {

class ConnectionManager;

// Lives on the worker thread, where every exchange runs: reads the report
// and writes the page.
class ReportWriter : public QObject
{
    Q_OBJECT

public:
    // Worker thread.
    void write(Obd::IObdProxy* proxy, const QString& path);
    // Any thread: the read ends before its next exchange.
    std::atomic<bool> stop{false};

signals:
    // error empty: written, partly (the page says what could not be read
    // and readable false says none of the codes or readiness could).
    void written(QString path, QString error, bool readable);
};

// "Save report": reads the vehicle on the worker thread, writes one HTML
// page to the reports folder and says where in the banner. Published as
// reportViewModel for the information screen.
class ReportViewModel : public QObject, public IViewModel
{
    Q_OBJECT
    Q_PROPERTY(bool connected READ isConnected NOTIFY stateChanged)
    Q_PROPERTY(bool busy READ isBusy NOTIFY stateChanged)
    Q_PROPERTY(QString status READ status NOTIFY stateChanged)

public:
    explicit ReportViewModel(ConnectionManager* connectionManager, QObject* parent = nullptr);
    ~ReportViewModel() override;

    void setView(QObject*) override {}
    void setContext(QQmlContext* context) override;

    bool isConnected() const { return m_connected; }
    bool isBusy() const { return m_busy; }
    QString status() const;
    // Documents/Zarvane reports, or the application's data folder/reports.
    QString folder() const;
    void setFolder(const QString& folder) { m_folder = folder; }
    // The page the last save wrote (empty until one did).
    QString lastPath() const { return m_lastPath; }

    Q_INVOKABLE void save();

signals:
    void stateChanged();
    // After each save, written or not, once the banner shows it.
    void saved(QString path, QString error);

private:
    void onWritten(const QString& path, const QString& error, bool readable);
    void setConnected(bool connected);

    ConnectionManager* m_connectionManager;
    ReportWriter* m_writer;
    QString m_folder;
    QString m_lastPath;
    bool m_connected;
    bool m_busy;
};

} // namespace Harmattan

#endif
