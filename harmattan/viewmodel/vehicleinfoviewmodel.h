#ifndef HARMATTAN_VEHICLEINFOVIEWMODEL_H
#define HARMATTAN_VEHICLEINFOVIEWMODEL_H

#include "readingviewmodel.h"

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

// Vehicle information: the VIN with its model year and region, per ECU its
// name, calibration IDs with their verification numbers and the in-use
// performance ratios. Read once per opening of the screen.
class VehicleInfoViewModel : public BatchViewModel
{
    Q_OBJECT

public:
    VehicleInfoViewModel(NavigationModel* navigationModel, ConnectionManager* connectionManager,
                         QObject* parent = nullptr);

    QString vin() const { return m_vin; }
    QString modelYear() const { return m_modelYear; }
    QString region() const { return m_region; }

    // Completed over encountered, "12/15 (80 %)".
    static QString ratio(unsigned int completed, unsigned int encountered);

private:
    void addRequests(const std::vector<Obd::EcuPtr>& ecus) override;
    void collect(QVector<Row>& rows, bool running) override;
    void showReadings() override;

    // Owned by the batch; null where no ECU offers the item.
    Obd::VehicleIdentificationNumber* m_vinParameter;
    Obd::EcuName* m_names;
    Obd::CalibrationIds* m_calibrations;
    Obd::CalibrationVerificationNumbers* m_cvns;
    Obd::PerformanceTrackingSpark* m_spark;
    Obd::PerformanceTrackingCompression* m_compression;
    QString m_vin;
    QString m_modelYear;
    QString m_region;
};

} // namespace Harmattan

#endif
