#include "ecuinformationviewmodel.h"

#include "infolistviewdatamodel.h"
#include "iobdproxy.h"

namespace Harmattan {

EcuInformationViewModel::EcuInformationViewModel(ConnectionManager* connectionManager, QObject* parent)
    : InfoListViewModel(connectionManager, "ecuListModel", parent)
{
}

void EcuInformationViewModel::appendRows(Obd::IObdProxy* proxy, Obd::InfoListViewDataModel* list)
{
    const Obd::EcuPtr ecu = proxy->getFirstEcu();
    if (!ecu)
        return;
    list->append("OBD Standard", QString::fromStdString(ecu->getObdStandardText()));
    list->append("Protocol", QString::fromStdString(ecu->getProtocolName()));
    list->append("Name", QString::fromStdString(ecu->getShortName()));
    list->append("Description", QString::fromStdString(ecu->getLongName()));
}

} // namespace Harmattan
