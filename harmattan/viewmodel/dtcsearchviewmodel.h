#ifndef HARMATTAN_DTCSEARCHVIEWMODEL_H
#define HARMATTAN_DTCSEARCHVIEWMODEL_H

#include "dtcfilterviewmodel.h"

namespace Harmattan {

// Searching the database: a typed text in the code, description or
// category field, ignoring case.
class DtcSearchViewModel : public DtcFilterViewModel
{
    Q_OBJECT

public:
    explicit DtcSearchViewModel(QObject* parent = nullptr);

public slots:
    void onFilterChanged(QString filter);
    // 0 code, 1 description, 2 category; other numbers change nothing.
    void onFieldChanged(int field);

protected:
    void bindView(QObject* view) override;
    void applyFilter() override;
};

} // namespace Harmattan

#endif
