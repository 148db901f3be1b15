#include "scantoolinformationviewmodel.h"

#include "elmtransport.h"
#include "infolistviewdatamodel.h"
#include "iobdproxy.h"
#include "iscantool.h"

namespace Harmattan {

namespace {

// The adapter's own words, control characters escaped; never an empty row.
QString shown(const std::string& text)
{
    return text.empty() ? QStringLiteral("could not read: the adapter did not say")
                        : QString::fromStdString(Obd::ElmTransport::escaped(text));
}

} // namespace

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
    list->append("Scantool", shown(info.name));
    list->append("Manufacturer", shown(info.description));
    list->append("Version", shown(info.version));
}

} // namespace Harmattan
