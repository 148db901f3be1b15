#ifndef HARMATTAN_ZARVANE_H
#define HARMATTAN_ZARVANE_H

#include <QObject>

class QQmlContext;

namespace Obd {
class DtcDataModel;
class SettingsModel;
}

namespace Harmattan {

class BluetoothSearchViewModel;
class ConnectionManager;
class DashboardViewModel;
class DtcBrowseViewModel;
class DtcDatabaseViewModel;
class DtcDetailViewModel;
class DtcSearchViewModel;
class DtcViewModel;
class EcuInformationViewModel;
class InformationViewModel;
class IViewModel;
class LiveDataViewModel;
class ReadinessViewModel;
class OnBoardTestsViewModel;
class VehicleInfoViewModel;
class MainViewModel;
class NavigationModel;
class PendingDtcViewModel;
class ScantoolInformationViewModel;
class SettingsViewModel;
class StoredDtcViewModel;

// The application object: builds the user interface's object graph over
// the loaded root QML document and owns all of it.
class Zarvane : public QObject
{
    Q_OBJECT

public:
    static const char* const QML_URI;

    Zarvane(QObject* rootObject, QQmlContext* rootContext);
    ~Zarvane() override;

    // The application's QML types, before the root document is loaded.
    static void registerQmlTypes();

    NavigationModel* navigationModel() const;
    Obd::SettingsModel* settingsModel() const;
    ConnectionManager* connectionManager() const;
    MainViewModel* mainViewModel() const;
    SettingsViewModel* settingsViewModel() const;
    BluetoothSearchViewModel* bluetoothSearchViewModel() const;
    Obd::DtcDataModel* dtcDataModel() const;
    DtcViewModel* dtcViewModel() const;
    StoredDtcViewModel* storedDtcViewModel() const;
    PendingDtcViewModel* pendingDtcViewModel() const;
    DtcDatabaseViewModel* dtcDatabaseViewModel() const;
    DtcSearchViewModel* dtcSearchViewModel() const;
    DtcBrowseViewModel* dtcBrowseViewModel() const;
    InformationViewModel* informationViewModel() const;
    ScantoolInformationViewModel* scantoolInformationViewModel() const;
    EcuInformationViewModel* ecuInformationViewModel() const;
    DashboardViewModel* dashboardViewModel() const;
    LiveDataViewModel* liveDataViewModel() const;
    ReadinessViewModel* readinessViewModel() const;
    OnBoardTestsViewModel* onBoardTestsViewModel() const { return m_onBoardTestsViewModel; }
    VehicleInfoViewModel* vehicleInfoViewModel() const { return m_vehicleInfoViewModel; }

private slots:
    void onShowLiveData();
    void onShowReadiness();

private:
    // Publishes a new view model's data before the next one is created.
    void publish(IViewModel* viewModel);

    QQmlContext* m_rootContext;
    NavigationModel* m_navigationModel;
    Obd::SettingsModel* m_settingsModel;
    ConnectionManager* m_connectionManager;
    MainViewModel* m_mainViewModel;
    SettingsViewModel* m_settingsViewModel;
    BluetoothSearchViewModel* m_bluetoothSearchViewModel;
    Obd::DtcDataModel* m_dtcDataModel;
    DtcViewModel* m_dtcViewModel;
    StoredDtcViewModel* m_storedDtcViewModel;
    PendingDtcViewModel* m_pendingDtcViewModel;
    DtcDatabaseViewModel* m_dtcDatabaseViewModel;
    DtcSearchViewModel* m_dtcSearchViewModel;
    DtcBrowseViewModel* m_dtcBrowseViewModel;
    InformationViewModel* m_informationViewModel;
    ScantoolInformationViewModel* m_scantoolInformationViewModel;
    EcuInformationViewModel* m_ecuInformationViewModel;
    DashboardViewModel* m_dashboardViewModel;
    LiveDataViewModel* m_liveDataViewModel;
    ReadinessViewModel* m_readinessViewModel;
    DtcDetailViewModel* m_dtcDetailViewModel = nullptr;
    OnBoardTestsViewModel* m_onBoardTestsViewModel = nullptr;
    VehicleInfoViewModel* m_vehicleInfoViewModel = nullptr;
};

} // namespace Harmattan

#endif
