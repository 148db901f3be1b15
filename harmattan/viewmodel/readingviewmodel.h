#ifndef HARMATTAN_READINGVIEWMODEL_H
#define HARMATTAN_READINGVIEWMODEL_H

#include "ecu.h"
#include "iviewmodel.h"
#include "navigationmodel.h"
#include "resultlistmodel.h"

#include <QObject>
#include <QPointer>
#include <QString>
#include <QStringList>

#include <vector>

namespace Obd {
struct ReadStatus;
}

namespace Harmattan {

class ConnectionManager;
class ParameterBatch;

// A screen that reads the car each time it is shown: what it read stays on
// screen, greyed, when the link goes, and is read again when it comes back.
class ReadingViewModel : public QObject, public IViewModel
{
    Q_OBJECT

public:
    void setView(QObject* view) override;

    // Opens the screen.
    Q_INVOKABLE void open();

    // "could not read: NO DATA (ECM 0x7E8)", in the trouble-code screens' words.
    static QString couldNotRead(const QString& cause);
    // "NO DATA (ECM 0x7E8)": the adapter's word, else the reason, and the ECU.
    static QString cause(const Obd::Ecu& ecu, const Obd::ReadStatus& status);

public slots:
    void onConnected();
    void onDisconnected();
    void onViewDestroyed();

protected:
    ReadingViewModel(NavigationModel* navigationModel, NavigationModel::View screen,
                     ConnectionManager* connectionManager, QObject* parent);

    // Reads when the screen is shown and the link is up.
    virtual void read() = 0;
    // The link is going: requests still queued return without an exchange.
    virtual void stopReading() = 0;
    // The screen's own properties; m_view is set.
    virtual void showReadings() = 0;
    virtual void viewClosed() {}
    // connectionStatus, then the screen's own properties.
    void showState();

    QPointer<QObject> m_view;
    ConnectionManager* m_connectionManager;
    bool m_connected;

private:
    NavigationModel* m_navigationModel;
    NavigationModel::View m_screen;
};

// A reading screen whose requests go out as one batch; the results are
// listed per ECU once the last one is back.
class BatchViewModel : public ReadingViewModel
{
    Q_OBJECT

public:
    ~BatchViewModel() override;

    void setContext(QQmlContext* context) override;

    ResultListModel* listModel() const { return m_listModel; }
    QString readError() const { return m_readError; }

protected:
    using Row = ResultListModel::Row;

    // listName and modelName: what the screen binds to.
    BatchViewModel(NavigationModel* navigationModel, NavigationModel::View screen,
                   ConnectionManager* connectionManager, const char* listName, const char* modelName,
                   QObject* parent);

    // The requests for these ECUs, added to m_batch.
    virtual void addRequests(const std::vector<Obd::EcuPtr>& ecus) = 0;
    // The rows from the results; none of the ECUs' while the batch runs.
    virtual void collect(QVector<Row>& rows, bool running) = 0;
    // The results to the list, readError and the view.
    void compose();
    // The value of a row whose answer is missing; its cause joins readError.
    QString unread(const Obd::Ecu& ecu, const Obd::ReadStatus& status);
    bool hasUnread() const { return !m_causes.isEmpty(); }
    // "ECM (0x7E8)": the heading of an ECU's rows.
    static QString section(const Obd::Ecu& ecu);

    ParameterBatch* m_batch;
    std::vector<Obd::Ecu> m_ecus;

private:
    void read() final;
    void stopReading() final;

    ResultListModel* m_listModel;
    const char* m_listName;
    const char* m_modelName;
    QStringList m_causes;
    QString m_readError;
};

} // namespace Harmattan

#endif
