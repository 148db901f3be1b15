#ifndef HARMATTAN_INFOLISTVIEWMODEL_H
#define HARMATTAN_INFOLISTVIEWMODEL_H

#include "iviewmodel.h"

#include <QObject>
#include <QPointer>
#include <QString>

namespace Obd {
class IObdProxy;
class InfoListViewDataModel;
}

namespace Harmattan {

class ConnectionManager;

// What the scan-tool and ECU screens share: a title/subtitle list filled
// when a screen is bound and emptied when it closes or the link drops, so
// that nothing is shown twice.
class InfoListViewModel : public QObject, public IViewModel
{
    Q_OBJECT

public:
    void setView(QObject* view) override;
    void setContext(QQmlContext* context) override;

    Obd::InfoListViewDataModel* listModel() const;

public slots:
    void onDisconnected();
    void updateView();
    void onViewDestroyed();

protected:
    InfoListViewModel(ConnectionManager* connectionManager, const QString& contextName,
                      QObject* parent);

    // Appends the rows of an initialised proxy.
    virtual void appendRows(Obd::IObdProxy* proxy, Obd::InfoListViewDataModel* list) = 0;

private:
    QPointer<QObject> m_view;
    ConnectionManager* m_connectionManager;
    Obd::InfoListViewDataModel* m_listModel;
    QString m_contextName;
};

} // namespace Harmattan

#endif
