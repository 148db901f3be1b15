#ifndef HARMATTAN_ECUINFORMATIONVIEWMODEL_H
#define HARMATTAN_ECUINFORMATIONVIEWMODEL_H

#include "infolistviewmodel.h"

namespace Harmattan {

// What discovery learnt about the first ECU (the lowest id); only that one.
class EcuInformationViewModel : public InfoListViewModel
{
    Q_OBJECT

public:
    explicit EcuInformationViewModel(ConnectionManager* connectionManager, QObject* parent = nullptr);

protected:
    void appendRows(Obd::IObdProxy* proxy, Obd::InfoListViewDataModel* list) override;
};

} // namespace Harmattan

#endif
