#ifndef HARMATTAN_DTCVIEWMODEL_H
#define HARMATTAN_DTCVIEWMODEL_H

#include "iviewmodel.h"

#include <QObject>
#include <QPointer>
#include <QVariant>

namespace Obd {
class DtcDataModel;
class ZrvQuery;
}

namespace Harmattan {

class ConnectionManager;
class NavigationModel;

// The trouble-code screen: lamp picture, the two counts, and clearing the
// codes after the user has confirmed it.
class DtcViewModel : public QObject, public IViewModel
{
    Q_OBJECT

public:
    static const char* const MIL_OFF_IMAGE;
    static const char* const MIL_ON_IMAGE;

    DtcViewModel(NavigationModel* navigationModel, ConnectionManager* connectionManager,
                 Obd::DtcDataModel* dataModel, QObject* parent = nullptr);

    void setView(QObject* view) override;
    void setContext(QQmlContext* context) override;

    Obd::ZrvQuery* confirmationDialog() const;

public slots:
    void onConnected();
    void onDisconnected();
    void onViewDestroyed();
    void onShowStoredCodes();
    void onShowPendingCodes();
    void onShowMilConfirmation();
    void onClearMilAccepted();
    void refreshData();
    void onPendingCodesUpdated(bool success);
    void onStoredCodesUpdated(bool success);
    void onMilUpdated(bool success);

private:
    void setViewProperty(const char* name, const QVariant& value);
    // failure: why the list could not be read, empty when it was.
    void codesRead(int count, const char* countProperty, const QString& failure, const char* failureProperty);

    QPointer<QObject> m_view;
    Obd::DtcDataModel* m_dataModel;
    NavigationModel* m_navigationModel;
    ConnectionManager* m_connectionManager;
    Obd::ZrvQuery* m_confirmation;
    bool m_viewShown;
    bool m_connected;
    int m_outstanding;
};

} // namespace Harmattan

#endif
