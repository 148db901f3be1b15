#ifndef HARMATTAN_MAINVIEWMODEL_H
#define HARMATTAN_MAINVIEWMODEL_H

#include "iviewmodel.h"

#include <QObject>
#include <QPointer>
#include <QString>

namespace Harmattan {

class ConnectionManager;
class MainViewDataModel;
class NavigationModel;

// Drives the start screen: the menu rows and the connection button.
class MainViewModel : public QObject, public IViewModel
{
    Q_OBJECT

public:
    enum ConnectionStatus { CS_CLOSED = 0, CS_OPENING = 1, CS_OPEN = 2 };

    static const char* const CHECK_SETTINGS;

    MainViewModel(NavigationModel* navigationModel, ConnectionManager* connectionManager,
                  QObject* parent = nullptr);

    void setContext(QQmlContext* context) override;
    void setView(QObject* view) override;

    MainViewDataModel* dataModel() const;

public slots:
    void onConnectionButtonClicked();
    void onShowSettingsPage();
    void onAboutButtonClicked();
    void onSelected(int index);
    void onConnected();
    void onFailed(QString reason);
    void onDisconnected();

private:
    void setViewProperty(const char* name, const QVariant& value);

    NavigationModel* m_navigationModel;
    ConnectionManager* m_connectionManager;
    QPointer<QObject> m_view;
    MainViewDataModel* m_dataModel;
};

} // namespace Harmattan

#endif
