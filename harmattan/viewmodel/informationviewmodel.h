#ifndef HARMATTAN_INFORMATIONVIEWMODEL_H
#define HARMATTAN_INFORMATIONVIEWMODEL_H

#include "iviewmodel.h"

#include <QObject>
#include <QPointer>

namespace Harmattan {

class ConnectionManager;
class NavigationModel;

// The information chooser: scan tool or ECU.
class InformationViewModel : public QObject, public IViewModel
{
    Q_OBJECT

public:
    InformationViewModel(NavigationModel* navigationModel, ConnectionManager* connectionManager,
                         QObject* parent = nullptr);

    void setView(QObject* view) override;
    void setContext(QQmlContext* context) override;

public slots:
    void onConnected();
    void onDisconnected();
    void onViewDestroyed();
    // The name is shared with the screen's signal, as it stands.
    void onShowScantooInformation();
    void onShowEcuInformation();

private:
    QPointer<QObject> m_view;
    NavigationModel* m_navigationModel;
    ConnectionManager* m_connectionManager;
};

} // namespace Harmattan

#endif
