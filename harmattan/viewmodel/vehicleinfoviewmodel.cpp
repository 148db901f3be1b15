#include "vehicleinfoviewmodel.h"

#include "elmtransport.h"
#include "parameterbatch.h"
#include "parameters/calibrationids.h"
#include "parameters/calibrationverificationnumbers.h"
#include "parameters/ecuname.h"
#include "parameters/performancetrackingcompression.h"
#include "parameters/performancetrackingspark.h"
#include "parameters/vehicleidentificationnumber.h"
#include "vinfields.h"

#include <QDate>
#include <QVariant>

#include <algorithm>

namespace Harmattan {

namespace {

using Row = ResultListModel::Row;

// Text from the car: control characters and the like shown as \xHH.
QString fromCar(const std::string& value)
{
    return QString::fromStdString(Obd::ElmTransport::escaped(value));
}

template <typename T>
T* offered(const std::vector<Obd::EcuPtr>& ecus, unsigned char type)
{
    const bool any = std::any_of(ecus.begin(), ecus.end(),
                                 [type](const Obd::EcuPtr& ecu) { return ecu && ecu->isSupported(9, type); });
    return any ? new T() : nullptr;
}

} // namespace

VehicleInfoViewModel::VehicleInfoViewModel(NavigationModel* navigationModel, ConnectionManager* connectionManager,
                                           QObject* parent)
    : BatchViewModel(navigationModel, NavigationModel::VehicleInfoView, connectionManager, "vehicleInfoListModel",
                     "vehicleInfoViewModel", parent)
    , m_vinParameter(nullptr)
    , m_names(nullptr)
    , m_calibrations(nullptr)
    , m_cvns(nullptr)
    , m_spark(nullptr)
    , m_compression(nullptr)
{
}

QString VehicleInfoViewModel::ratio(unsigned int completed, unsigned int encountered)
{
    const QString counts = QStringLiteral("%1/%2").arg(completed).arg(encountered);
    if (encountered == 0)
        return counts + QStringLiteral(" (not encountered yet)");
    return counts + QStringLiteral(" (%1 %)").arg(static_cast<int>(100.0 * completed / encountered + 0.5));
}

void VehicleInfoViewModel::addRequests(const std::vector<Obd::EcuPtr>& ecus)
{
    // Asked only where some ECU says it has the item.
    m_vinParameter = offered<Obd::VehicleIdentificationNumber>(ecus, Obd::VehicleIdentificationNumber::INFO_TYPE);
    m_names = offered<Obd::EcuName>(ecus, Obd::EcuName::INFO_TYPE);
    m_calibrations = offered<Obd::CalibrationIds>(ecus, Obd::CalibrationIds::INFO_TYPE);
    m_cvns = offered<Obd::CalibrationVerificationNumbers>(ecus, Obd::CalibrationVerificationNumbers::INFO_TYPE);
    m_spark = offered<Obd::PerformanceTrackingSpark>(ecus, Obd::PerformanceTrackingSpark::INFO_TYPE);
    m_compression = offered<Obd::PerformanceTrackingCompression>(ecus, Obd::PerformanceTrackingCompression::INFO_TYPE);
    Obd::ObdParameter* const parameters[] = { m_vinParameter, m_names, m_calibrations, m_cvns, m_spark, m_compression };
    for (Obd::ObdParameter* parameter : parameters) {
        if (parameter)
            m_batch->add(parameter);
    }
}

void VehicleInfoViewModel::collect(QVector<Row>& rows, bool running)
{
    m_vin.clear();
    m_modelYear.clear();
    m_region.clear();
    for (const Obd::Ecu& ecu : m_ecus) {
        if (running)
            break;
        const QString header = section(ecu);
        auto add = [&](const QString& title, const QString& value, int state = ResultListModel::Reading) {
            rows.append({ header, title, value, QString(), QString(), QString(), state });
        };
        // False, and a row saying why, when the ECU has the item but its answer is missing.
        auto readable = [&](const Obd::ObdParameter* parameter, unsigned char type, const QString& title) {
            if (!parameter || !ecu.isSupported(9, type))
                return false;
            Obd::ReadStatus status = parameter->readStatus(ecu.getId());
            if (status.ok() && parameter == m_vinParameter && !m_vinParameter->hasVin(ecu)) {
                status.state = Obd::READ_MALFORMED;
                status.reason = "empty VIN";
            }
            if (status.ok())
                return true;
            add(title, unread(ecu, status), ResultListModel::Unread);
            return false;
        };
        if (readable(m_names, Obd::EcuName::INFO_TYPE, QStringLiteral("ECU name"))) {
            const QString abbreviation = fromCar(m_names->getAbbreviation(ecu));
            const QString name = fromCar(m_names->getText(ecu));
            add(QStringLiteral("ECU name"), abbreviation.isEmpty() ? name : abbreviation + QStringLiteral(" - ") + name);
        }
        if (readable(m_vinParameter, Obd::VehicleIdentificationNumber::INFO_TYPE, QStringLiteral("VIN"))) {
            const std::string vin = m_vinParameter->getVin(ecu);
            const int year = Obd::VinFields::modelYear(vin, QDate::currentDate().year() + 1);
            const QString region = QString::fromStdString(Obd::VinFields::region(vin));
            add(QStringLiteral("VIN"), fromCar(vin));
            add(QStringLiteral("Model year"), year ? QString::number(year) : QStringLiteral("unknown"));
            add(QStringLiteral("Region"), region.isEmpty() ? QStringLiteral("unknown") : region);
            if (m_vin.isEmpty()) {
                m_vin = fromCar(vin);
                m_modelYear = rows[rows.size() - 2].value;
                m_region = rows.last().value;
            }
        }
        std::vector<std::string> ids;
        std::vector<std::string> cvns;
        if (readable(m_calibrations, Obd::CalibrationIds::INFO_TYPE, QStringLiteral("Calibration IDs")))
            ids = m_calibrations->getCalibrationIds(ecu);
        if (readable(m_cvns, Obd::CalibrationVerificationNumbers::INFO_TYPE,
                     QStringLiteral("Calibration verification numbers")))
            cvns = m_cvns->getVerificationNumberTexts(ecu);
        // Each calibration with the number that verifies it, in the order sent.
        for (size_t i = 0; i < std::max(ids.size(), cvns.size()); ++i)
            add(i < ids.size() ? QStringLiteral("Calibration ") + fromCar(ids[i]) : QStringLiteral("Calibration"),
                i < cvns.size() ? QStringLiteral("CVN ") + QString::fromStdString(cvns[i]) : QStringLiteral("no CVN"));

        auto ratios = [&](const std::map<unsigned int, unsigned int>& counters, std::string (*nameOf)(unsigned int)) {
            // Two general counters, then per monitor: completed, then conditions encountered.
            for (const auto& counter : counters) {
                const unsigned int id = counter.first;
                const auto encountered = counters.find(id + 1);
                QString name = QString::fromStdString(nameOf(id));
                if (id >= 2 && id % 2 == 0 && encountered != counters.end()) {
                    // "Catalyst Monitor Completion Counts Bank 1": the monitor and its bank.
                    const int from = name.indexOf(QStringLiteral(" Completion"));
                    const int to = name.indexOf(QStringLiteral("Counts"), from);
                    if (from >= 0 && to >= 0)
                        name.remove(from, to + 6 - from);
                    add(name, ratio(counter.second, encountered->second));
                } else if (id < 2 || id % 2 == 0 || !counters.count(id - 1)) {
                    add(name, QString::number(counter.second));
                }
            }
        };
        if (readable(m_spark, Obd::PerformanceTrackingSpark::INFO_TYPE, QStringLiteral("Performance tracking")))
            ratios(m_spark->getCounters(ecu), &Obd::PerformanceTrackingSpark::getCounterName);
        if (readable(m_compression, Obd::PerformanceTrackingCompression::INFO_TYPE,
                     QStringLiteral("Performance tracking")))
            ratios(m_compression->getCounters(ecu), &Obd::PerformanceTrackingCompression::getCounterName);
    }
}

void VehicleInfoViewModel::showReadings()
{
    m_view->setProperty("busy", m_batch->running());
    m_view->setProperty("vin", m_vin);
    m_view->setProperty("modelYear", m_modelYear);
    m_view->setProperty("region", m_region);
    m_view->setProperty("readError", readError());
}

} // namespace Harmattan
