#ifndef HARMATTAN_DTCDATABASEVIEWMODEL_H
#define HARMATTAN_DTCDATABASEVIEWMODEL_H

#include "iviewmodel.h"

#include <QObject>
#include <QPointer>

namespace Harmattan {

class NavigationModel;

// The database chooser: search or browse.
class DtcDatabaseViewModel : public QObject, public IViewModel
{
    Q_OBJECT

public:
    explicit DtcDatabaseViewModel(NavigationModel* navigationModel, QObject* parent = nullptr);

    void setView(QObject* view) override;
    void setContext(QQmlContext* context) override;

public slots:
    void onViewDestroyed();
    void onShowSearchView();
    void onShowBrowseView();

private:
    QPointer<QObject> m_view;
    NavigationModel* m_navigationModel;
};

} // namespace Harmattan

#endif
