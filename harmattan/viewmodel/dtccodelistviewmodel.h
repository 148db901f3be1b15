#ifndef HARMATTAN_DTCCODELISTVIEWMODEL_H
#define HARMATTAN_DTCCODELISTVIEWMODEL_H

#include "dtc.h"
#include "iviewmodel.h"

#include <QObject>
#include <QPointer>
#include <QString>

#include <vector>

namespace Obd {
class DtcDataModel;
class DtcListViewDataModel;
}

namespace Harmattan {

class ConnectionManager;
class DtcDetailViewModel;

// What the stored- and pending-code screens share: a list model filled from
// one of the data model's lists, emptied when the screen closes or the link
// drops so that a reopened screen never shows a code twice.
class DtcCodeListViewModel : public QObject, public IViewModel
{
    Q_OBJECT

public:
    void setView(QObject* view) override;
    void setContext(QQmlContext* context) override;

    Obd::DtcListViewDataModel* listModel() const;
    // Where a tapped code opens.
    void setDetailViewModel(DtcDetailViewModel* detail);

public slots:
    void onDisconnected();
    void updateView();
    void onViewDestroyed();
    void onCodesUpdated(bool success);
    void onCodeClicked(int index);

protected:
    // contextName: the list model's name in the root context.
    DtcCodeListViewModel(ConnectionManager* connectionManager, Obd::DtcDataModel* dataModel,
                         const QString& contextName, QObject* parent);

    // The data model's list this screen shows.
    virtual std::vector<Obd::Dtc> codes() const = 0;
    // Why it, or part of it, could not be read; empty when it was.
    virtual QString readError() const = 0;

    Obd::DtcDataModel* m_dataModel;

private:
    QPointer<QObject> m_view;
    ConnectionManager* m_connectionManager;
    bool m_viewPresent;
    Obd::DtcListViewDataModel* m_listModel;
    // The codes in the list's rows, in their order.
    std::vector<Obd::Dtc> m_shown;
    DtcDetailViewModel* m_detail = nullptr;
    QString m_contextName;
};

} // namespace Harmattan

#endif
