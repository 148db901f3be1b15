#ifndef HARMATTAN_PENDINGDTCVIEWMODEL_H
#define HARMATTAN_PENDINGDTCVIEWMODEL_H

#include "dtccodelistviewmodel.h"

namespace Harmattan {

// The pending-code list screen.
class PendingDtcViewModel : public DtcCodeListViewModel
{
    Q_OBJECT

public:
    PendingDtcViewModel(ConnectionManager* connectionManager, Obd::DtcDataModel* dataModel,
                       QObject* parent = nullptr);

protected:
    std::vector<Obd::Dtc> codes() const override;
    QString readError() const override;
};

} // namespace Harmattan

#endif
