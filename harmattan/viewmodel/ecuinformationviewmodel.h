#ifndef HARMATTAN_ECUINFORMATIONVIEWMODEL_H
#define HARMATTAN_ECUINFORMATIONVIEWMODEL_H

#include "infolistviewmodel.h"

namespace Obd {
class ObdParameterUpdater;
class SaeStandard;
}

namespace Harmattan {

// What discovery learnt about the first ECU (the lowest id); only that one.
// A standard that discovery could not read is asked again, and a failure
// shown in words with the adapter's word and the ECU. The car's texts are
// shown with control characters escaped.
class EcuInformationViewModel : public InfoListViewModel
{
    Q_OBJECT

public:
    explicit EcuInformationViewModel(ConnectionManager* connectionManager, QObject* parent = nullptr);
    ~EcuInformationViewModel() override;

protected:
    void appendRows(Obd::IObdProxy* proxy, Obd::InfoListViewDataModel* list) override;

private:
    void onStandardRead(bool success);

    Obd::SaeStandard* m_standard;
    Obd::ObdParameterUpdater* m_updater;
    bool m_inFlight = false;
    // The answer of the last read again, until the link drops.
    bool m_standardRead = false;
};

} // namespace Harmattan

#endif
