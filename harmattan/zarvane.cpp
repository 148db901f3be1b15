#include "zarvane.h"

#include "connectionmanager.h"
#include "navigationmodel.h"
#include "settingsmodel.h"
#include "trlog.h"
#include "viewmodel/bluetoothsearchviewmodel.h"
#include "viewmodel/mainviewmodel.h"
#include "viewmodel/placeholderviewmodel.h"
#include "viewmodel/settingsviewmodel.h"
#include "zrvinfo.h"
#include "zrvquery.h"

#include <QQmlContext>
#include <QtQml>

namespace Harmattan {

const char* const Zarvane::QML_URI = "org.quillot.zarvane";

void Zarvane::registerQmlTypes()
{
    qmlRegisterModule(QML_URI, 1, 0);
    // Gauge item types join here: qmlRegisterType<...>(QML_URI, 1, 0, "NumericGauge") etc.
}

Zarvane::Zarvane(QObject* rootObject, QQmlContext* rootContext)
    : QObject(nullptr)
    , m_rootContext(rootContext)
    , m_navigationModel(nullptr)
    , m_settingsModel(nullptr)
    , m_connectionManager(nullptr)
    , m_mainViewModel(nullptr)
    , m_settingsViewModel(nullptr)
    , m_bluetoothSearchViewModel(nullptr)
{
    // 1-4: navigation, settings, connection manager, main view model.
    m_navigationModel = new NavigationModel(this);
    m_settingsModel = new Obd::SettingsModel(this);
    m_connectionManager = new ConnectionManager(m_settingsModel, this);
    m_mainViewModel = new MainViewModel(m_navigationModel, m_connectionManager, this);
    m_navigationModel->setMainViewModel(m_mainViewModel);
    publish(m_mainViewModel);

    // 5-8: trouble codes. Until their classes exist, placeholders keep the screens
    // reachable; replace each with the real view model (and its data model).
    // 5. Obd::DtcDataModel(m_connectionManager)
    // 6. DtcViewModel(m_navigationModel, m_connectionManager, dtcDataModel)
    PlaceholderViewModel* dtcViewModel = new PlaceholderViewModel(this);
    m_navigationModel->registerDtcViewModel(dtcViewModel);
    publish(dtcViewModel);
    // 7. StoredDtcViewModel(m_connectionManager, dtcDataModel)
    PlaceholderViewModel* storedDtcViewModel = new PlaceholderViewModel(this);
    m_navigationModel->registerStoredDtcViewModel(storedDtcViewModel);
    publish(storedDtcViewModel);
    // 8. PendingDtcViewModel(m_connectionManager, dtcDataModel)
    PlaceholderViewModel* pendingDtcViewModel = new PlaceholderViewModel(this);
    m_navigationModel->registerPendingDtcViewModel(pendingDtcViewModel);
    publish(pendingDtcViewModel);

    // 9-11: trouble-code database.
    // 9. DtcDatabaseViewModel(m_navigationModel)
    PlaceholderViewModel* dtcDatabaseViewModel = new PlaceholderViewModel(this);
    m_navigationModel->registerDtcDatabaseViewModel(dtcDatabaseViewModel);
    publish(dtcDatabaseViewModel);
    // 10. DtcSearchViewModel
    PlaceholderViewModel* dtcSearchViewModel = new PlaceholderViewModel(this);
    m_navigationModel->registerDtcSearchViewModel(dtcSearchViewModel);
    publish(dtcSearchViewModel);
    // 11. DtcBrowseViewModel
    PlaceholderViewModel* dtcBrowseViewModel = new PlaceholderViewModel(this);
    m_navigationModel->registerDtcBrowseViewModel(dtcBrowseViewModel);
    publish(dtcBrowseViewModel);

    // 12-14: information.
    // 12. InformationViewModel(m_navigationModel, m_connectionManager)
    PlaceholderViewModel* informationViewModel = new PlaceholderViewModel(this);
    m_navigationModel->registerInformationViewModel(informationViewModel);
    publish(informationViewModel);
    // 13. ScantoolInformationViewModel(m_connectionManager)
    PlaceholderViewModel* scantoolInformationViewModel = new PlaceholderViewModel(this);
    m_navigationModel->registerScantoolInformationViewModel(scantoolInformationViewModel);
    publish(scantoolInformationViewModel);
    // 14. EcuInformationViewModel(m_connectionManager)
    PlaceholderViewModel* ecuInformationViewModel = new PlaceholderViewModel(this);
    m_navigationModel->registerEcuInformationViewModel(ecuInformationViewModel);
    publish(ecuInformationViewModel);

    // 15-16: settings and Bluetooth search.
    m_settingsViewModel = new SettingsViewModel(m_settingsModel, m_navigationModel, this);
    m_navigationModel->registerSettingsViewModel(m_settingsViewModel);
    publish(m_settingsViewModel);
    m_bluetoothSearchViewModel = new BluetoothSearchViewModel(m_settingsModel, this);
    m_navigationModel->registerBluetoothSearchViewModel(m_bluetoothSearchViewModel);
    publish(m_bluetoothSearchViewModel);

    // 17. DashboardViewModel(m_connectionManager)
    PlaceholderViewModel* dashboardViewModel = new PlaceholderViewModel(this);
    m_navigationModel->registerDashboardViewModel(dashboardViewModel);
    publish(dashboardViewModel);

    if (m_rootContext) {
        m_rootContext->setContextProperty("mainViewModel", m_mainViewModel);
        m_rootContext->setContextProperty("applicationVersion", QStringLiteral(ZARVANE_VERSION));
    }
    if (rootObject) {
        QObject* mainView = rootObject->findChild<QObject*>("mainView");
        if (mainView)
            m_mainViewModel->setView(mainView);
        else
            OBD_ERROR << "No main view in the root document";
        m_navigationModel->setRootObject(rootObject);
        Obd::ZrvQuery::setView(rootObject->findChild<QObject*>("queryDialog"));
        Obd::ZrvInfo::setView(rootObject->findChild<QObject*>("infoBanner"));
    }
}

Zarvane::~Zarvane()
{
    // Children go in creation order: the settings before the manager that reads them.
    m_connectionManager->shutdown();
    // The shared dialog items outlive us only as long as the view does.
    Obd::ZrvQuery::setView(nullptr);
    Obd::ZrvInfo::setView(nullptr);
}

void Zarvane::publish(IViewModel* viewModel)
{
    if (m_rootContext)
        viewModel->setContext(m_rootContext);
}

NavigationModel* Zarvane::navigationModel() const
{
    return m_navigationModel;
}

Obd::SettingsModel* Zarvane::settingsModel() const
{
    return m_settingsModel;
}

ConnectionManager* Zarvane::connectionManager() const
{
    return m_connectionManager;
}

MainViewModel* Zarvane::mainViewModel() const
{
    return m_mainViewModel;
}

SettingsViewModel* Zarvane::settingsViewModel() const
{
    return m_settingsViewModel;
}

BluetoothSearchViewModel* Zarvane::bluetoothSearchViewModel() const
{
    return m_bluetoothSearchViewModel;
}

} // namespace Harmattan
