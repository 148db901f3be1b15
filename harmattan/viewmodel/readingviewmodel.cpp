#include "readingviewmodel.h"

#include "connectionmanager.h"
#include "dtcdatamodel.h"
#include "iobdproxy.h"
#include "parameterbatch.h"

#include <QQmlContext>
#include <QVariant>

namespace Harmattan {

ReadingViewModel::ReadingViewModel(NavigationModel* navigationModel, NavigationModel::View screen,
                                   ConnectionManager* connectionManager, QObject* parent)
    : QObject(parent)
    , m_connectionManager(connectionManager)
    , m_connected(connectionManager->isConnected())
    , m_navigationModel(navigationModel)
    , m_screen(screen)
{
    connect(m_connectionManager, &ConnectionManager::connected, this, &ReadingViewModel::onConnected);
    connect(m_connectionManager, &ConnectionManager::disconnected, this, &ReadingViewModel::onDisconnected);
}

void ReadingViewModel::setView(QObject* view)
{
    detachView(m_view, this);
    m_view = view;
    if (!m_view)
        return;
    connect(m_view, &QObject::destroyed, this, &ReadingViewModel::onViewDestroyed);
    m_connected = m_connectionManager->isConnected();
    showState();
    read();
}

void ReadingViewModel::open()
{
    m_navigationModel->activateView(m_screen);
}

QString ReadingViewModel::couldNotRead(const QString& cause)
{
    return QStringLiteral("could not read: ") + cause;
}

QString ReadingViewModel::cause(const Obd::Ecu& ecu, const Obd::ReadStatus& status)
{
    return QString::fromStdString(Obd::DtcDataModel::describe({ Obd::DtcDataModel::failureOf(ecu, status) }));
}

void ReadingViewModel::onConnected()
{
    m_connected = true;
    showState();
    read();
}

void ReadingViewModel::onDisconnected()
{
    m_connected = false;
    stopReading();
    // The last readings stay on screen, greyed.
    showState();
}

void ReadingViewModel::onViewDestroyed()
{
    m_view = nullptr;
    viewClosed();
}

void ReadingViewModel::showState()
{
    if (!m_view)
        return;
    m_view->setProperty("connectionStatus", m_connected ? 2 : 0);
    showReadings();
}

BatchViewModel::BatchViewModel(NavigationModel* navigationModel, NavigationModel::View screen,
                               ConnectionManager* connectionManager, const char* listName,
                               const char* modelName, QObject* parent)
    : ReadingViewModel(navigationModel, screen, connectionManager, parent)
    , m_batch(new ParameterBatch(this))
    , m_listModel(new ResultListModel(this))
    , m_listName(listName)
    , m_modelName(modelName)
{
    connect(m_batch, &ParameterBatch::finished, this, &BatchViewModel::compose);
}

BatchViewModel::~BatchViewModel()
{
    m_batch->clear();
}

void BatchViewModel::setContext(QQmlContext* context)
{
    context->setContextProperty(m_listName, m_listModel);
    context->setContextProperty(m_modelName, this);
}

void BatchViewModel::read()
{
    Obd::IObdProxy* proxy = m_connectionManager->proxy();
    if (!m_view || !m_connected || !proxy || m_batch->running())
        return;
    m_batch->clear();
    m_ecus.clear();
    std::vector<Obd::EcuPtr> ecus;
    proxy->getEcus(ecus);
    for (const Obd::EcuPtr& ecu : ecus) {
        if (ecu)
            m_ecus.push_back(*ecu);
    }
    addRequests(ecus);
    m_batch->start(proxy);
    compose();
}

void BatchViewModel::stopReading()
{
    m_batch->stop();
}

void BatchViewModel::compose()
{
    QVector<Row> rows;
    m_causes.clear();
    collect(rows, m_batch->running());
    m_readError = m_causes.join(QStringLiteral("; "));
    m_listModel->setRows(rows);
    showState();
}

QString BatchViewModel::unread(const Obd::Ecu& ecu, const Obd::ReadStatus& status)
{
    const QString why = cause(ecu, status);
    if (!m_causes.contains(why))
        m_causes << why;
    return couldNotRead(why);
}

QString BatchViewModel::section(const Obd::Ecu& ecu)
{
    return QStringLiteral("%1 (0x%2)").arg(QString::fromStdString(ecu.getShortName()),
                                           QString::number(ecu.getId(), 16).toUpper());
}

} // namespace Harmattan
