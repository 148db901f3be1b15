#include "informationviewmodel.h"

#include "connectionmanager.h"
#include "navigationmodel.h"

#include <QVariant>

namespace Harmattan {

InformationViewModel::InformationViewModel(NavigationModel* navigationModel,
                                           ConnectionManager* connectionManager, QObject* parent)
    : QObject(parent)
    , m_navigationModel(navigationModel)
    , m_connectionManager(connectionManager)
{
    connect(m_connectionManager, &ConnectionManager::connected, this, &InformationViewModel::onConnected);
    connect(m_connectionManager, &ConnectionManager::disconnected, this,
            &InformationViewModel::onDisconnected);
}

void InformationViewModel::setView(QObject* view)
{
    detachView(m_view, this);
    m_view = view;
    if (!m_view)
        return;
    m_view->setProperty("image", QStringLiteral("qrc:///information.png"));
    connect(m_view, &QObject::destroyed, this, &InformationViewModel::onViewDestroyed);
    connect(m_view, SIGNAL(showScantooInformation()), this, SLOT(onShowScantooInformation()));
    connect(m_view, SIGNAL(showEcuInformation()), this, SLOT(onShowEcuInformation()));
    m_view->setProperty("connectionStatus", m_connectionManager->isConnected() ? 2 : 0);
}

void InformationViewModel::setContext(QQmlContext*)
{
}

void InformationViewModel::onConnected()
{
    if (m_view)
        m_view->setProperty("connectionStatus", 2);
}

void InformationViewModel::onDisconnected()
{
    if (m_view)
        m_view->setProperty("connectionStatus", 0);
}

void InformationViewModel::onViewDestroyed()
{
    m_view = nullptr;
}

void InformationViewModel::onShowScantooInformation()
{
    m_navigationModel->activateView(NavigationModel::ScantoolInformationView);
}

void InformationViewModel::onShowEcuInformation()
{
    m_navigationModel->activateView(NavigationModel::EcuInformationView);
}

} // namespace Harmattan
