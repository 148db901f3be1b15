#include "navigationmodel.h"

#include "trlog.h"
#include "viewmodel/iviewmodel.h"

#include <QMetaObject>
#include <QVariant>

namespace Harmattan {

namespace {

const char* const DOCUMENTS[] = {
    "MainView.qml",
    "DtcView.qml",
    "DtcDatabaseView.qml",
    "DashboardView.qml",
    "InformationView.qml",
    "StoredDtcView.qml",
    "PendingDtcView.qml",
    "ScantoolInformationView.qml",
    "EcuInformationView.qml",
    "AboutView.qml",
    "SettingsView.qml",
    "BluetoothSearchView.qml",
    "DtcSearchView.qml",
    "DtcBrowseView.qml",
    "LiveDataView.qml",
    "ReadinessView.qml",
    "DtcDetailView.qml",
    "OnBoardTestsView.qml",
    "VehicleInfoView.qml",
};
const int VIEW_COUNT = sizeof(DOCUMENTS) / sizeof(DOCUMENTS[0]);

} // namespace

NavigationModel::NavigationModel(QObject* parent)
    : QObject(parent)
    , m_rootObject(nullptr)
    , m_mainViewModel(nullptr)
    , m_dtcViewModel(nullptr)
    , m_dtcDatabaseViewModel(nullptr)
    , m_dashboardViewModel(nullptr)
    , m_informationViewModel(nullptr)
    , m_storedDtcViewModel(nullptr)
    , m_pendingDtcViewModel(nullptr)
    , m_scantoolInformationViewModel(nullptr)
    , m_ecuInformationViewModel(nullptr)
    , m_settingsViewModel(nullptr)
    , m_bluetoothSearchViewModel(nullptr)
    , m_dtcSearchViewModel(nullptr)
    , m_dtcBrowseViewModel(nullptr)
    , m_liveDataViewModel(nullptr)
    , m_readinessViewModel(nullptr)
    , m_dtcDetailViewModel(nullptr)
{
}

void NavigationModel::setRootObject(QObject* rootObject)
{
    m_rootObject = rootObject;
}

void NavigationModel::setMainViewModel(IViewModel* viewModel)
{
    m_mainViewModel = viewModel;
}

void NavigationModel::registerDtcViewModel(IViewModel* viewModel)
{
    m_dtcViewModel = viewModel;
}

void NavigationModel::registerDtcDatabaseViewModel(IViewModel* viewModel)
{
    m_dtcDatabaseViewModel = viewModel;
}

void NavigationModel::registerDashboardViewModel(IViewModel* viewModel)
{
    m_dashboardViewModel = viewModel;
}

void NavigationModel::registerInformationViewModel(IViewModel* viewModel)
{
    m_informationViewModel = viewModel;
}

void NavigationModel::registerStoredDtcViewModel(IViewModel* viewModel)
{
    m_storedDtcViewModel = viewModel;
}

void NavigationModel::registerPendingDtcViewModel(IViewModel* viewModel)
{
    m_pendingDtcViewModel = viewModel;
}

void NavigationModel::registerScantoolInformationViewModel(IViewModel* viewModel)
{
    m_scantoolInformationViewModel = viewModel;
}

void NavigationModel::registerEcuInformationViewModel(IViewModel* viewModel)
{
    m_ecuInformationViewModel = viewModel;
}

void NavigationModel::registerSettingsViewModel(IViewModel* viewModel)
{
    m_settingsViewModel = viewModel;
}

void NavigationModel::registerBluetoothSearchViewModel(IViewModel* viewModel)
{
    m_bluetoothSearchViewModel = viewModel;
}

void NavigationModel::registerDtcSearchViewModel(IViewModel* viewModel)
{
    m_dtcSearchViewModel = viewModel;
}

void NavigationModel::registerDtcBrowseViewModel(IViewModel* viewModel)
{
    m_dtcBrowseViewModel = viewModel;
}

void NavigationModel::registerLiveDataViewModel(IViewModel* viewModel)
{
    m_liveDataViewModel = viewModel;
}

void NavigationModel::registerReadinessViewModel(IViewModel* viewModel)
{
    m_readinessViewModel = viewModel;
}

void NavigationModel::registerDtcDetailViewModel(IViewModel* viewModel)
{
    m_dtcDetailViewModel = viewModel;
}

void NavigationModel::registerOnBoardTestsViewModel(IViewModel* viewModel)
{
    m_onBoardTestsViewModel = viewModel;
}

void NavigationModel::registerVehicleInfoViewModel(IViewModel* viewModel)
{
    m_vehicleInfoViewModel = viewModel;
}

QString NavigationModel::document(View view)
{
    if (view < 0 || view >= VIEW_COUNT)
        return QString();
    return QString::fromLatin1(DOCUMENTS[view]);
}

void NavigationModel::buildTable()
{
    // The main view model is bound at start-up, not on activation.
    IViewModel* const viewModels[] = {
        nullptr,
        m_dtcViewModel,
        m_dtcDatabaseViewModel,
        m_dashboardViewModel,
        m_informationViewModel,
        m_storedDtcViewModel,
        m_pendingDtcViewModel,
        m_scantoolInformationViewModel,
        m_ecuInformationViewModel,
        nullptr,
        m_settingsViewModel,
        m_bluetoothSearchViewModel,
        m_dtcSearchViewModel,
        m_dtcBrowseViewModel,
        m_liveDataViewModel,
        m_readinessViewModel,
        m_dtcDetailViewModel,
        m_onBoardTestsViewModel,
        m_vehicleInfoViewModel,
    };
    static_assert(sizeof(viewModels) / sizeof(viewModels[0]) == VIEW_COUNT, "one view model per view");
    for (int i = 0; i < VIEW_COUNT; ++i)
        m_table.append(Entry { QString::fromLatin1(DOCUMENTS[i]), viewModels[i] });
}

void NavigationModel::activateView(Harmattan::NavigationModel::View view)
{
    if (m_table.isEmpty())
        buildTable();

    QObject* page = nullptr;
    const bool known = view >= 0 && view < m_table.size();
    if (known && m_rootObject) {
        QVariant result;
        QMetaObject::invokeMethod(m_rootObject, "loadView", Q_RETURN_ARG(QVariant, result),
                                  Q_ARG(QVariant, QVariant(m_table[view].document)));
        page = qvariant_cast<QObject*>(result);
    }
    if (!page) {
        OBD_ERROR << "Failed to create a view: " << static_cast<int>(view);
        return;
    }
    if (m_table[view].viewModel)
        m_table[view].viewModel->setView(page);
}

} // namespace Harmattan
