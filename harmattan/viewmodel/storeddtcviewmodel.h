#ifndef HARMATTAN_STOREDDTCVIEWMODEL_H
#define HARMATTAN_STOREDDTCVIEWMODEL_H

#include "dtccodelistviewmodel.h"

namespace Harmattan {

// The stored-code list screen.
class StoredDtcViewModel : public DtcCodeListViewModel
{
    Q_OBJECT

public:
    StoredDtcViewModel(ConnectionManager* connectionManager, Obd::DtcDataModel* dataModel,
                       QObject* parent = nullptr);

protected:
    std::vector<Obd::Dtc> codes() const override;
    QString readError() const override;
};

} // namespace Harmattan

#endif
