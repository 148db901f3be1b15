#ifndef HARMATTAN_DTCDETAILVIEWMODEL_H
#define HARMATTAN_DTCDETAILVIEWMODEL_H

#include "dtc.h"
#include "ecu.h"
#include "readingviewmodel.h"

#include <QString>

#include <vector>

namespace Obd {
class ObdParameterUpdater;
class PowertrainParameter;
class SettingsModel;
}

namespace Harmattan {

class ConnectionManager;

// One trouble code in detail: what it means, the ECU that reported it and
// that ECU's freeze frame 0 (service 02), read once per opening of the
// screen and shown in the unit system of the settings.
class DtcDetailViewModel : public ReadingViewModel
{
    Q_OBJECT

public:
    static const char* const NO_FRAME;

    DtcDetailViewModel(NavigationModel* navigationModel, ConnectionManager* connectionManager,
                       Obd::SettingsModel* settings, QObject* parent = nullptr);
    ~DtcDetailViewModel() override;

    void setContext(QQmlContext*) override {}

    // Opens the screen on a code read from the car.
    void showCode(const Obd::Dtc& dtc);

private:
    // One freeze-frame PID; the first is PID 02, the code that stored the frame.
    struct Entry
    {
        Obd::PowertrainParameter* parameter;
        Obd::ObdParameterUpdater* updater;
        bool done;
    };

    void read() override;
    void stopReading() override;
    void showReadings() override;
    void viewClosed() override { release(); }
    void release();
    void onRead(size_t index);
    // The code that stored the frame; empty until read, or when none is stored.
    QString storingCode() const;

    Obd::SettingsModel* m_settings;
    Obd::Dtc m_dtc;
    // The reporting ECU as the link found it; hasFrame: it lists service 02 PID 02.
    Obd::Ecu m_ecu;
    bool m_ecuFound;
    bool m_hasFrame;
    std::vector<Entry> m_entries;
    // Tells the replies of the current reading from those queued before it.
    unsigned int m_generation;
};

} // namespace Harmattan

#endif
