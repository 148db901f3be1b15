#include "zarvane.h"

#include "connectionmanager.h"
#include "consumptiongauge.h"
#include "dtcdatamodel.h"
#include "metergauge.h"
#include "numericgauge.h"
#include "navigationmodel.h"
#include "settingsmodel.h"
#include "trlog.h"
#include "valuechart.h"
#include "viewmodel/bluetoothsearchviewmodel.h"
#include "viewmodel/dashboardviewmodel.h"
#include "viewmodel/dtcbrowseviewmodel.h"
#include "viewmodel/dtcdatabaseviewmodel.h"
#include "viewmodel/dtcdetailviewmodel.h"
#include "viewmodel/dtcsearchviewmodel.h"
#include "viewmodel/dtcviewmodel.h"
#include "viewmodel/ecuinformationviewmodel.h"
#include "viewmodel/informationviewmodel.h"
#include "viewmodel/livedataviewmodel.h"
#include "viewmodel/readinessviewmodel.h"
#include "viewmodel/reportviewmodel.h"
#include "viewmodel/pendingdtcviewmodel.h"
#include "viewmodel/scantoolinformationviewmodel.h"
#include "viewmodel/storeddtcviewmodel.h"
#include "viewmodel/mainviewmodel.h"
#include "viewmodel/onboardtestsviewmodel.h"
#include "viewmodel/vehicleinfoviewmodel.h"
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
    qmlRegisterType<Obd::NumericGauge>(QML_URI, 1, 0, "NumericGauge");
    qmlRegisterType<MeterGauge>(QML_URI, 1, 0, "MeterGauge");
    qmlRegisterType<Obd::ConsumptionGauge>(QML_URI, 1, 0, "ConsumptionGauge");
    qmlRegisterType<ValueChart>(QML_URI, 1, 0, "ValueChart");
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
    , m_dtcDataModel(nullptr)
    , m_dtcViewModel(nullptr)
    , m_storedDtcViewModel(nullptr)
    , m_pendingDtcViewModel(nullptr)
    , m_dtcDatabaseViewModel(nullptr)
    , m_dtcSearchViewModel(nullptr)
    , m_dtcBrowseViewModel(nullptr)
    , m_informationViewModel(nullptr)
    , m_scantoolInformationViewModel(nullptr)
    , m_ecuInformationViewModel(nullptr)
    , m_dashboardViewModel(nullptr)
    , m_liveDataViewModel(nullptr)
    , m_readinessViewModel(nullptr)
{
    // 1-4: navigation, settings, connection manager, main view model.
    m_navigationModel = new NavigationModel(this);
    m_settingsModel = new Obd::SettingsModel(this);
    m_connectionManager = new ConnectionManager(m_settingsModel, this);
    m_mainViewModel = new MainViewModel(m_navigationModel, m_connectionManager, this);
    m_navigationModel->setMainViewModel(m_mainViewModel);
    publish(m_mainViewModel);

    // 5-8: trouble codes.
    m_dtcDataModel = new Obd::DtcDataModel(m_connectionManager, this);
    m_dtcViewModel = new DtcViewModel(m_navigationModel, m_connectionManager, m_dtcDataModel, this);
    m_navigationModel->registerDtcViewModel(m_dtcViewModel);
    publish(m_dtcViewModel);
    m_storedDtcViewModel = new StoredDtcViewModel(m_connectionManager, m_dtcDataModel, this);
    m_navigationModel->registerStoredDtcViewModel(m_storedDtcViewModel);
    publish(m_storedDtcViewModel);
    m_pendingDtcViewModel = new PendingDtcViewModel(m_connectionManager, m_dtcDataModel, this);
    m_navigationModel->registerPendingDtcViewModel(m_pendingDtcViewModel);
    publish(m_pendingDtcViewModel);
    // A code tapped in either list opens its detail.
    m_dtcDetailViewModel = new DtcDetailViewModel(m_navigationModel, m_connectionManager, m_settingsModel, this);
    m_navigationModel->registerDtcDetailViewModel(m_dtcDetailViewModel);
    m_storedDtcViewModel->setDetailViewModel(m_dtcDetailViewModel);
    m_pendingDtcViewModel->setDetailViewModel(m_dtcDetailViewModel);

    // 9-11: trouble-code database.
    m_dtcDatabaseViewModel = new DtcDatabaseViewModel(m_navigationModel, this);
    m_navigationModel->registerDtcDatabaseViewModel(m_dtcDatabaseViewModel);
    publish(m_dtcDatabaseViewModel);
    m_dtcSearchViewModel = new DtcSearchViewModel(this);
    m_navigationModel->registerDtcSearchViewModel(m_dtcSearchViewModel);
    publish(m_dtcSearchViewModel);
    m_dtcBrowseViewModel = new DtcBrowseViewModel(this);
    m_navigationModel->registerDtcBrowseViewModel(m_dtcBrowseViewModel);
    publish(m_dtcBrowseViewModel);

    // 12-14: information.
    m_informationViewModel = new InformationViewModel(m_navigationModel, m_connectionManager, this);
    m_navigationModel->registerInformationViewModel(m_informationViewModel);
    publish(m_informationViewModel);
    m_scantoolInformationViewModel = new ScantoolInformationViewModel(m_connectionManager, this);
    m_navigationModel->registerScantoolInformationViewModel(m_scantoolInformationViewModel);
    publish(m_scantoolInformationViewModel);
    m_ecuInformationViewModel = new EcuInformationViewModel(m_connectionManager, this);
    m_navigationModel->registerEcuInformationViewModel(m_ecuInformationViewModel);
    publish(m_ecuInformationViewModel);

    // 15-16: settings and Bluetooth search.
    m_settingsViewModel = new SettingsViewModel(m_settingsModel, m_navigationModel, this);
    m_navigationModel->registerSettingsViewModel(m_settingsViewModel);
    publish(m_settingsViewModel);
    m_bluetoothSearchViewModel = new BluetoothSearchViewModel(m_settingsModel, this);
    m_navigationModel->registerBluetoothSearchViewModel(m_bluetoothSearchViewModel);
    publish(m_bluetoothSearchViewModel);

    // 17. dashboard.
    m_dashboardViewModel = new DashboardViewModel(m_connectionManager, m_settingsModel, this);
    m_navigationModel->registerDashboardViewModel(m_dashboardViewModel);
    publish(m_dashboardViewModel);

    // 18-19: live data and readiness, opened from the main view's header.
    m_liveDataViewModel = new LiveDataViewModel(m_connectionManager, m_settingsModel, this);
    m_navigationModel->registerLiveDataViewModel(m_liveDataViewModel);
    publish(m_liveDataViewModel);
    m_readinessViewModel = new ReadinessViewModel(m_connectionManager, m_settingsModel, this);
    m_navigationModel->registerReadinessViewModel(m_readinessViewModel);
    publish(m_readinessViewModel);
    // On-board tests and vehicle information, opened from the information view.
    m_onBoardTestsViewModel = new OnBoardTestsViewModel(m_navigationModel, m_connectionManager, m_settingsModel, this);
    m_navigationModel->registerOnBoardTestsViewModel(m_onBoardTestsViewModel);
    publish(m_onBoardTestsViewModel);
    m_vehicleInfoViewModel = new VehicleInfoViewModel(m_navigationModel, m_connectionManager, this);
    m_navigationModel->registerVehicleInfoViewModel(m_vehicleInfoViewModel);
    publish(m_vehicleInfoViewModel);
    // "Save report" on the information screen; deleted with us, after the manager.
    publish(new ReportViewModel(m_connectionManager, this));

    if (m_rootContext) {
        m_rootContext->setContextProperty("mainViewModel", m_mainViewModel);
        m_rootContext->setContextProperty("applicationVersion", QStringLiteral(ZARVANE_VERSION));
    }
    if (rootObject) {
        QObject* mainView = rootObject->findChild<QObject*>("mainView");
        if (mainView) {
            m_mainViewModel->setView(mainView);
            connect(mainView, SIGNAL(liveDataButtonClicked()), this, SLOT(onShowLiveData()));
            connect(mainView, SIGNAL(readinessButtonClicked()), this, SLOT(onShowReadiness()));
        }
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
    // Whatever holds updaters goes before the manager and its proxy.
    delete m_dashboardViewModel;
    m_dashboardViewModel = nullptr;
    delete m_liveDataViewModel;
    m_liveDataViewModel = nullptr;
    delete m_readinessViewModel;
    m_readinessViewModel = nullptr;
    delete m_onBoardTestsViewModel;
    m_onBoardTestsViewModel = nullptr;
    delete m_vehicleInfoViewModel;
    m_vehicleInfoViewModel = nullptr;
    delete m_dtcDetailViewModel;
    m_dtcDetailViewModel = nullptr;
    delete m_dtcDataModel;
    m_dtcDataModel = nullptr;
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

Obd::DtcDataModel* Zarvane::dtcDataModel() const
{
    return m_dtcDataModel;
}

DtcViewModel* Zarvane::dtcViewModel() const
{
    return m_dtcViewModel;
}

StoredDtcViewModel* Zarvane::storedDtcViewModel() const
{
    return m_storedDtcViewModel;
}

PendingDtcViewModel* Zarvane::pendingDtcViewModel() const
{
    return m_pendingDtcViewModel;
}

DtcDatabaseViewModel* Zarvane::dtcDatabaseViewModel() const
{
    return m_dtcDatabaseViewModel;
}

DtcSearchViewModel* Zarvane::dtcSearchViewModel() const
{
    return m_dtcSearchViewModel;
}

DtcBrowseViewModel* Zarvane::dtcBrowseViewModel() const
{
    return m_dtcBrowseViewModel;
}

InformationViewModel* Zarvane::informationViewModel() const
{
    return m_informationViewModel;
}

ScantoolInformationViewModel* Zarvane::scantoolInformationViewModel() const
{
    return m_scantoolInformationViewModel;
}

EcuInformationViewModel* Zarvane::ecuInformationViewModel() const
{
    return m_ecuInformationViewModel;
}

DashboardViewModel* Zarvane::dashboardViewModel() const
{
    return m_dashboardViewModel;
}

LiveDataViewModel* Zarvane::liveDataViewModel() const
{
    return m_liveDataViewModel;
}

void Zarvane::onShowLiveData()
{
    m_navigationModel->activateView(NavigationModel::LiveDataView);
}

ReadinessViewModel* Zarvane::readinessViewModel() const
{
    return m_readinessViewModel;
}

void Zarvane::onShowReadiness()
{
    m_navigationModel->activateView(NavigationModel::ReadinessView);
}

} // namespace Harmattan
