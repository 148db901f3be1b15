#include "dtccodelistviewmodel.h"

#include "connectionmanager.h"
#include "dtcdatamodel.h"
#include "dtcdetailviewmodel.h"
#include "dtclistviewdatamodel.h"

#include <QQmlContext>
#include <QVariant>

namespace Harmattan {

DtcCodeListViewModel::DtcCodeListViewModel(ConnectionManager* connectionManager,
                                           Obd::DtcDataModel* dataModel, const QString& contextName,
                                           QObject* parent)
    : QObject(parent)
    , m_dataModel(dataModel)
    , m_connectionManager(connectionManager)
    , m_viewPresent(false)
    , m_listModel(new Obd::DtcListViewDataModel(this))
    , m_contextName(contextName)
{
    connect(m_connectionManager, &ConnectionManager::disconnected, this,
            &DtcCodeListViewModel::onDisconnected);
}

void DtcCodeListViewModel::setContext(QQmlContext* context)
{
    context->setContextProperty(m_contextName, m_listModel);
}

Obd::DtcListViewDataModel* DtcCodeListViewModel::listModel() const
{
    return m_listModel;
}

void DtcCodeListViewModel::setDetailViewModel(DtcDetailViewModel* detail)
{
    m_detail = detail;
}

void DtcCodeListViewModel::onCodeClicked(int index)
{
    if (m_detail && index >= 0 && static_cast<size_t>(index) < m_shown.size())
        m_detail->showCode(m_shown[static_cast<size_t>(index)]);
}

void DtcCodeListViewModel::setView(QObject* view)
{
    detachView(m_view, this);
    m_view = view;
    if (!m_view)
        return;
    m_viewPresent = true;
    connect(m_view, &QObject::destroyed, this, &DtcCodeListViewModel::onViewDestroyed);
    connect(m_view, SIGNAL(codeClicked(int)), this, SLOT(onCodeClicked(int)));
    // A screen opened over one not yet destroyed must not add to its rows.
    m_listModel->reset();
    m_shown.clear();
    if (m_connectionManager->isConnected())
        m_view->setProperty("connectionStatus", 2);
    updateView();
}

void DtcCodeListViewModel::updateView()
{
    const std::vector<Obd::Dtc> read = codes();
    m_shown.insert(m_shown.end(), read.begin(), read.end());
    for (const Obd::Dtc& dtc : read)
        m_listModel->append(QString::fromStdString(dtc.getCode()),
                            QString::fromStdString(dtc.getDescription()),
                            QString::fromStdString(dtc.getCategory()),
                            QString::fromStdString(dtc.getEcuName()),
                            dtc.getEcuId() ? QStringLiteral("0x%1").arg(QString::number(dtc.getEcuId(), 16).toUpper())
                                           : QString());
    if (m_view) {
        m_view->setProperty("readError", readError());
        m_view->setProperty("listModelCount", m_listModel->rowCount());
    }
}

void DtcCodeListViewModel::onCodesUpdated(bool)
{
    // A failed read shows why, and no stale list.
    if (m_viewPresent && m_view) {
        // A new read replaces what the screen shows rather than adding to it.
        m_listModel->reset();
        m_shown.clear();
        updateView();
    }
}

void DtcCodeListViewModel::onViewDestroyed()
{
    m_view = nullptr;
    m_viewPresent = false;
    m_listModel->reset();
    m_shown.clear();
}

void DtcCodeListViewModel::onDisconnected()
{
    if (m_viewPresent && m_view) {
        m_view->setProperty("connectionStatus", 0);
        m_view->setProperty("readError", QString());
        m_view->setProperty("listModelCount", 0);
    }
    m_listModel->reset();
    m_shown.clear();
}

} // namespace Harmattan
