#include "infolistviewmodel.h"

#include "connectionmanager.h"
#include "infolistviewdatamodel.h"
#include "iobdproxy.h"

#include <QQmlContext>
#include <QVariant>

namespace Harmattan {

InfoListViewModel::InfoListViewModel(ConnectionManager* connectionManager,
                                     const QString& contextName, QObject* parent)
    : QObject(parent)
    , m_connectionManager(connectionManager)
    , m_listModel(new Obd::InfoListViewDataModel(this))
    , m_contextName(contextName)
{
    connect(m_connectionManager, &ConnectionManager::disconnected, this,
            &InfoListViewModel::onDisconnected);
}

void InfoListViewModel::setContext(QQmlContext* context)
{
    context->setContextProperty(m_contextName, m_listModel);
}

Obd::InfoListViewDataModel* InfoListViewModel::listModel() const
{
    return m_listModel;
}

void InfoListViewModel::setView(QObject* view)
{
    detachView(m_view, this);
    m_view = view;
    if (!m_view)
        return;
    connect(m_view, &QObject::destroyed, this, &InfoListViewModel::onViewDestroyed);
    m_view->setProperty("connectionStatus", m_connectionManager->isConnected() ? 2 : 0);
    updateView();
}

void InfoListViewModel::updateView()
{
    m_listModel->reset();
    Obd::IObdProxy* proxy = m_connectionManager->proxy();
    if (proxy && m_connectionManager->isConnected() && proxy->isInitialized())
        appendRows(proxy, m_listModel);
    if (m_view)
        m_view->setProperty("listModelCount", m_listModel->rowCount());
}

void InfoListViewModel::onViewDestroyed()
{
    m_view = nullptr;
    m_listModel->reset();
}

void InfoListViewModel::onDisconnected()
{
    m_listModel->reset();
    if (m_view) {
        m_view->setProperty("connectionStatus", 0);
        m_view->setProperty("listModelCount", 0);
    }
}

} // namespace Harmattan
