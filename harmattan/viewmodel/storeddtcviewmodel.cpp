#include "storeddtcviewmodel.h"

#include "dtcdatamodel.h"

namespace Harmattan {

StoredDtcViewModel::StoredDtcViewModel(ConnectionManager* connectionManager,
                                       Obd::DtcDataModel* dataModel, QObject* parent)
    : DtcCodeListViewModel(connectionManager, dataModel, "storedDtcListModel", parent)
{
    connect(dataModel, &Obd::DtcDataModel::storedCodesUpdated, this, &StoredDtcViewModel::onCodesUpdated);
}

std::vector<Obd::Dtc> StoredDtcViewModel::codes() const
{
    return m_dataModel->storedCodes();
}

QString StoredDtcViewModel::readError() const
{
    return QString::fromStdString(Obd::DtcDataModel::describe(m_dataModel->storedFailures()));
}

} // namespace Harmattan
