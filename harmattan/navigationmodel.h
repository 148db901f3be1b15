#ifndef HARMATTAN_NAVIGATIONMODEL_H
#define HARMATTAN_NAVIGATIONMODEL_H

#include <QObject>
#include <QString>
#include <QVector>

namespace Harmattan {

class IViewModel;

// Maps each screen to its QML document and view model; the root QML
// document creates and stacks the screens.
class NavigationModel : public QObject
{
    Q_OBJECT

public:
    enum View {
        MainView = 0,
        DtcView = 1,
        DtcDatabaseView = 2,
        DashboardView = 3,
        InformationView = 4,
        StoredDtcView = 5,
        PendingDtcView = 6,
        ScantoolInformationView = 7,
        EcuInformationView = 8,
        AboutView = 9,
        SettingsView = 10,
        BluetoothSearchView = 11,
        DtcSearchView = 12,
        DtcBrowseView = 13,
        LiveDataView = 14,
        ReadinessView = 15,
        DtcDetailView = 16,
        OnBoardTestsView = 17,
        VehicleInfoView = 18
    };
    Q_ENUM(View)

    explicit NavigationModel(QObject* parent = nullptr);

    void setRootObject(QObject* rootObject);
    void setMainViewModel(IViewModel* viewModel);

    void registerDtcViewModel(IViewModel* viewModel);
    void registerDtcDatabaseViewModel(IViewModel* viewModel);
    void registerDashboardViewModel(IViewModel* viewModel);
    void registerInformationViewModel(IViewModel* viewModel);
    void registerStoredDtcViewModel(IViewModel* viewModel);
    void registerPendingDtcViewModel(IViewModel* viewModel);
    void registerScantoolInformationViewModel(IViewModel* viewModel);
    void registerEcuInformationViewModel(IViewModel* viewModel);
    void registerSettingsViewModel(IViewModel* viewModel);
    void registerBluetoothSearchViewModel(IViewModel* viewModel);
    void registerDtcSearchViewModel(IViewModel* viewModel);
    void registerDtcBrowseViewModel(IViewModel* viewModel);
    void registerLiveDataViewModel(IViewModel* viewModel);
    void registerReadinessViewModel(IViewModel* viewModel);
    void registerDtcDetailViewModel(IViewModel* viewModel);
    void registerOnBoardTestsViewModel(IViewModel* viewModel);
    void registerVehicleInfoViewModel(IViewModel* viewModel);

    // The QML document of a view; empty for a number outside the table.
    static QString document(View view);

    Q_INVOKABLE void activateView(Harmattan::NavigationModel::View view);

private:
    struct Entry
    {
        QString document;
        IViewModel* viewModel;
    };

    void buildTable();

    QObject* m_rootObject;
    IViewModel* m_mainViewModel;
    IViewModel* m_dtcViewModel;
    IViewModel* m_dtcDatabaseViewModel;
    IViewModel* m_dashboardViewModel;
    IViewModel* m_informationViewModel;
    IViewModel* m_storedDtcViewModel;
    IViewModel* m_pendingDtcViewModel;
    IViewModel* m_scantoolInformationViewModel;
    IViewModel* m_ecuInformationViewModel;
    IViewModel* m_settingsViewModel;
    IViewModel* m_bluetoothSearchViewModel;
    IViewModel* m_dtcSearchViewModel;
    IViewModel* m_dtcBrowseViewModel;
    IViewModel* m_liveDataViewModel;
    IViewModel* m_readinessViewModel;
    IViewModel* m_dtcDetailViewModel;
    IViewModel* m_onBoardTestsViewModel = nullptr;
    IViewModel* m_vehicleInfoViewModel = nullptr;
    QVector<Entry> m_table;
};

} // namespace Harmattan

#endif
