#include "scantoolinformationviewmodel.h"

#include "infolistviewdatamodel.h"
#include "iobdproxy.h"
#include "iscantool.h"

namespace Harmattan {

ScantoolInformationViewModel::ScantoolInformationViewModel(ConnectionManager* connectionManager,
                                                           QObject* parent)
    : InfoListViewModel(connectionManager, "scantoolListModel", parent)
{
}

void ScantoolInformationViewModel::appendRows(Obd::IObdProxy* proxy, Obd::InfoListViewDataModel* list)
{
    Obd::IScantool* scantool = proxy->getScantool();
    if (!scantool)
        return;
    const Obd::DeviceInfo info = scantool->getDeviceInfo();
    list->append("Scantool", QString::fromStdString(info.name));
    list->append("Manufacturer", QString::fromStdString(info.description));
    list->append("Version", QString::fromStdString(info.version));
}

} // namespace Harmattan
