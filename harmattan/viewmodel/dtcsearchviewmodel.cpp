#include "dtcsearchviewmodel.h"

#include <QSortFilterProxyModel>

namespace Harmattan {

DtcSearchViewModel::DtcSearchViewModel(QObject* parent)
    : DtcFilterViewModel("dtcSearchListModel", parent)
{
}

void DtcSearchViewModel::bindView(QObject* view)
{
    connect(view, SIGNAL(filterChanged(QString)), this, SLOT(onFilterChanged(QString)));
    connect(view, SIGNAL(fieldChanged(int)), this, SLOT(onFieldChanged(int)));
}

void DtcSearchViewModel::applyFilter()
{
    // A new screen starts with an empty text field set to the code.
    filterModel()->setFilterRole(CODE_ROLE);
    filterModel()->setFilterFixedString(QString());
}

void DtcSearchViewModel::onFilterChanged(QString filter)
{
    filterModel()->setFilterFixedString(filter);
}

void DtcSearchViewModel::onFieldChanged(int field)
{
    static const int roles[] = {CODE_ROLE, DESCRIPTION_ROLE, SYSTEM_ROLE};
    if (field < 0 || field > 2)
        return;
    filterModel()->setFilterRole(roles[field]);
}

} // namespace Harmattan
