#include "pendingdtcviewmodel.h"

#include "dtcdatamodel.h"

namespace Harmattan {

PendingDtcViewModel::PendingDtcViewModel(ConnectionManager* connectionManager,
                                       Obd::DtcDataModel* dataModel, QObject* parent)
    : DtcCodeListViewModel(connectionManager, dataModel, "pendingDtcListModel", parent)
{
    connect(dataModel, &Obd::DtcDataModel::pendingCodesUpdated, this, &PendingDtcViewModel::onCodesUpdated);
}

std::vector<Obd::Dtc> PendingDtcViewModel::codes() const
{
    return m_dataModel->pendingCodes();
}

QString PendingDtcViewModel::readError() const
{
    return QString::fromStdString(Obd::DtcDataModel::describe(m_dataModel->pendingFailures()));
}

} // namespace Harmattan
