#ifndef HARMATTAN_SCANTOOLINFORMATIONVIEWMODEL_H
#define HARMATTAN_SCANTOOLINFORMATIONVIEWMODEL_H

#include "infolistviewmodel.h"

namespace Harmattan {

// What the adapter said about itself: name, the AT@1 text and version.
class ScantoolInformationViewModel : public InfoListViewModel
{
    Q_OBJECT

public:
    explicit ScantoolInformationViewModel(ConnectionManager* connectionManager,
                                          QObject* parent = nullptr);

protected:
    void appendRows(Obd::IObdProxy* proxy, Obd::InfoListViewDataModel* list) override;
};

} // namespace Harmattan

#endif
