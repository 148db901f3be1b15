#ifndef HARMATTAN_VEHICLEINFOVIEWMODEL_H
#define HARMATTAN_VEHICLEINFOVIEWMODEL_H

#include "ecu.h"
#include "iviewmodel.h"

#include <QObject>
#include <QPointer>
#include <QString>

#include <vector>

namespace Obd {
class CalibrationIds;
class CalibrationVerificationNumbers;
class EcuName;
class PerformanceTrackingCompression;
class PerformanceTrackingSpark;
class VehicleIdentificationNumber;
}

namespace Harmattan {

class ConnectionManager;
class NavigationModel;
class ParameterBatch;
class ResultListModel;

// Vehicle information: the VIN with its model year and region, per ECU its
// name, calibration IDs with their verification numbers and the in-use
// performance ratios. Read once per opening of the screen.
class VehicleInfoViewModel : public QObject, public IViewModel
{
    Q_OBJECT

public:
    VehicleInfoViewModel(NavigationModel* navigationModel, ConnectionManager* connectionManager,
                         QObject* parent = nullptr);
    ~VehicleInfoViewModel() override;

    void setView(QObject* view) override;
    void setContext(QQmlContext* context) override;

    ResultListModel* listModel() const;
    QString vin() const { return m_vin; }
    QString modelYear() const { return m_modelYear; }
    QString region() const { return m_region; }
    QString readError() const { return m_readError; }

    // Opens the screen (the information view's row).
    Q_INVOKABLE void open();

    // Completed over encountered, "12/15 (80 %)".
    static QString ratio(unsigned int completed, unsigned int encountered);

public slots:
    void onConnected();
    void onDisconnected();
    void onViewDestroyed();

private slots:
    void compose();

private:
    void read();
    void showState();

    QPointer<QObject> m_view;
    NavigationModel* m_navigationModel;
    ConnectionManager* m_connectionManager;
    ResultListModel* m_listModel;
    ParameterBatch* m_batch;
    // Owned by the batch; null where no ECU offers the item.
    Obd::VehicleIdentificationNumber* m_vinParameter;
    Obd::EcuName* m_names;
    Obd::CalibrationIds* m_calibrations;
    Obd::CalibrationVerificationNumbers* m_cvns;
    Obd::PerformanceTrackingSpark* m_spark;
    Obd::PerformanceTrackingCompression* m_compression;
    std::vector<Obd::Ecu> m_ecus;
    bool m_connected;
    QString m_vin;
    QString m_modelYear;
    QString m_region;
    QString m_readError;
};

} // namespace Harmattan

#endif
