#include "mainviewmodel.h"

#include "connectionmanager.h"
#include "mainviewdatamodel.h"
#include "navigationmodel.h"
#include "trlog.h"
#include "zrvinfo.h"

#include <QQmlContext>
#include <QVariant>

namespace Harmattan {

const char* const MainViewModel::CHECK_SETTINGS = "Check connection settings!";

namespace {

const int FAILURE_BANNER_TIMEOUT_MS = 5000;
const char* const OPEN_CONNECTION = "Open connection";
const char* const CLOSE_CONNECTION = "Close connection";

} // namespace

MainViewModel::MainViewModel(NavigationModel* navigationModel,
                             ConnectionManager* connectionManager, QObject* parent)
    : QObject(parent)
    , m_navigationModel(navigationModel)
    , m_connectionManager(connectionManager)
    , m_dataModel(new MainViewDataModel(this))
{
    connect(m_connectionManager, &ConnectionManager::connected, this, &MainViewModel::onConnected);
    connect(m_connectionManager, &ConnectionManager::failed, this, &MainViewModel::onFailed);
    connect(m_connectionManager, &ConnectionManager::disconnected, this,
            &MainViewModel::onDisconnected);
    connect(m_connectionManager, &ConnectionManager::reconnectingChanged, this,
            [this](bool reconnecting) { setViewProperty("reconnecting", reconnecting); });
    connect(m_connectionManager, &ConnectionManager::vehicleRespondingChanged, this,
            [this](bool responding) { setViewProperty("vehicleResponding", responding); });
}

void MainViewModel::setContext(QQmlContext* context)
{
    context->setContextProperty("mainViewDataModel", m_dataModel);
}

void MainViewModel::setView(QObject* view)
{
    detachView(m_view, this);
    m_view = view;
    if (!m_view)
        return;
    setViewProperty("avatarImage", QStringLiteral("qrc:///avatar.png"));
    setViewProperty("buttonText", QString::fromLatin1(OPEN_CONNECTION));
    setViewProperty("buttonIcon", QStringLiteral("qrc:///link.png"));
    setViewProperty("reconnecting", m_connectionManager->isReconnecting());
    setViewProperty("vehicleResponding", m_connectionManager->isVehicleResponding());
    connect(m_view, SIGNAL(connectionButtonClicked()), this, SLOT(onConnectionButtonClicked()));
    connect(m_view, SIGNAL(cancelButtonClicked()), m_connectionManager, SLOT(cancelOpening()));
    connect(m_view, SIGNAL(settingsButtonClicked()), this, SLOT(onShowSettingsPage()));
    connect(m_view, SIGNAL(aboutButtonClicked()), this, SLOT(onAboutButtonClicked()));
    connect(m_view, SIGNAL(clicked(int)), this, SLOT(onSelected(int)));
}

MainViewDataModel* MainViewModel::dataModel() const
{
    return m_dataModel;
}

void MainViewModel::onConnectionButtonClicked()
{
    if (m_connectionManager->isConnected()) {
        m_connectionManager->closeConnection();
        return;
    }
    if (!m_connectionManager->openConnection()) {
        Obd::ZrvInfo info(CHECK_SETTINGS);
        info.show();
        onShowSettingsPage();
        return;
    }
    setViewProperty("buttonStatus", false);
    setViewProperty("connectionStatus", CS_OPENING);
}

void MainViewModel::onShowSettingsPage()
{
    m_navigationModel->activateView(NavigationModel::SettingsView);
}

void MainViewModel::onAboutButtonClicked()
{
    m_navigationModel->activateView(NavigationModel::AboutView);
}

void MainViewModel::onSelected(int index)
{
    m_navigationModel->activateView(
        static_cast<NavigationModel::View>(MainViewDataModel::viewForRow(index)));
}

void MainViewModel::onConnected()
{
    OBD_DEBUG << "onConnected";
    setViewProperty("connectionStatus", CS_OPEN);
    setViewProperty("vehicleResponding", m_connectionManager->isVehicleResponding());
    setViewProperty("buttonText", QString::fromLatin1(CLOSE_CONNECTION));
    setViewProperty("buttonStatus", true);
}

void MainViewModel::onFailed(QString reason)
{
    OBD_DEBUG << "Connection opening failed: " << reason.toStdString();
    Obd::ZrvInfo info(reason);
    info.setTimeout(FAILURE_BANNER_TIMEOUT_MS);
    info.show();
    onDisconnected();
}

void MainViewModel::onDisconnected()
{
    OBD_DEBUG << "onDisconnected";
    setViewProperty("connectionStatus", CS_CLOSED);
    setViewProperty("buttonText", QString::fromLatin1(OPEN_CONNECTION));
    setViewProperty("buttonStatus", true);
}

void MainViewModel::setViewProperty(const char* name, const QVariant& value)
{
    if (m_view)
        m_view->setProperty(name, value);
}

} // namespace Harmattan
