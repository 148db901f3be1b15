#ifndef HARMATTAN_DTCFILTERVIEWMODEL_H
#define HARMATTAN_DTCFILTERVIEWMODEL_H

#include "iviewmodel.h"

#include <QObject>
#include <QPointer>
#include <QString>

class QSortFilterProxyModel;

namespace Obd {
class DtcListViewDataModel;
}

namespace Harmattan {

// What the search and browse screens share: the whole database in a list
// model behind a filter model, filled each time a screen is bound and
// emptied when it closes, so a reopened screen never lists a code twice.
class DtcFilterViewModel : public QObject, public IViewModel
{
    Q_OBJECT

public:
    static const int CODE_ROLE;
    static const int DESCRIPTION_ROLE;
    static const int SYSTEM_ROLE;
    // A role that carries no data: nothing matches.
    static const int EMPTY_ROLE;

    void setView(QObject* view) override;
    void setContext(QQmlContext* context) override;

    Obd::DtcListViewDataModel* listModel() const;
    QSortFilterProxyModel* filterModel() const;

public slots:
    void onViewShown();
    void onViewDestroyed();
    void onProxyDataChanged();

protected:
    DtcFilterViewModel(const QString& contextName, QObject* parent);

    // Connects the screen's own signals; runs before the list is filled.
    virtual void bindView(QObject* view) = 0;
    // The filter a fresh screen starts with; runs after filling.
    virtual void applyFilter() = 0;

    QPointer<QObject> m_view;

private:
    void fill();

    Obd::DtcListViewDataModel* m_listModel;
    QSortFilterProxyModel* m_filterModel;
    QString m_contextName;
};

} // namespace Harmattan

#endif
