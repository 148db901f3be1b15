#include "dtcviewmodel.h"

#include "connectionmanager.h"
#include "dtcdatamodel.h"
#include "navigationmodel.h"
#include "zrvinfo.h"
#include "zrvquery.h"

#include <QVariant>

namespace Harmattan {

const char* const DtcViewModel::MIL_OFF_IMAGE = "qrc:///mil_off.png";
const char* const DtcViewModel::MIL_ON_IMAGE = "qrc:///mil_on.png";

namespace {

const char* const READ_FAILED = "Could not read the trouble codes: ";
const int FAILURE_BANNER_TIMEOUT_MS = 6000;
const char* const CLEARED = "Codes cleared";
const char* const NOT_CLEARED = "Codes not cleared: ";
const char* const PARTLY_CLEARED = "Codes cleared, not by every ECU: ";

const char* const CLEAR_TITLE = "Clear diagnostic info?";
const char* const CLEAR_TEXT
    = "Clearing the diagnostic info will:\n -reset Check Engine Light\n -clear diagnostic trouble codes\n"
      " -erase any diagnostic data\n -erase parameter data\n -erase stored freeze frame data\n"
      " -reset status of test results\n\nIn addition, your vehicle may run poorly while it performs "
      "recalibration.";

} // namespace

DtcViewModel::DtcViewModel(NavigationModel* navigationModel, ConnectionManager* connectionManager,
                           Obd::DtcDataModel* dataModel, QObject* parent)
    : QObject(parent)
    , m_dataModel(dataModel)
    , m_navigationModel(navigationModel)
    , m_connectionManager(connectionManager)
    , m_confirmation(new Obd::ZrvQuery(this))
    , m_viewShown(false)
    , m_connected(connectionManager && connectionManager->isConnected())
    , m_outstanding(0)
{
    m_confirmation->setTitle(CLEAR_TITLE);
    m_confirmation->setText(CLEAR_TEXT);
    m_confirmation->setButtonTexts("Clear Codes", "Cancel");
    connect(m_confirmation, &Obd::ZrvQuery::accepted, this, &DtcViewModel::onClearMilAccepted);
    connect(m_connectionManager, &ConnectionManager::connected, this, &DtcViewModel::onConnected);
    connect(m_connectionManager, &ConnectionManager::disconnected, this, &DtcViewModel::onDisconnected);
    connect(m_dataModel, &Obd::DtcDataModel::storedCodesUpdated, this, &DtcViewModel::onStoredCodesUpdated);
    connect(m_dataModel, &Obd::DtcDataModel::pendingCodesUpdated, this, &DtcViewModel::onPendingCodesUpdated);
    connect(m_dataModel, &Obd::DtcDataModel::milStatusUpdated, this, &DtcViewModel::onMilUpdated);
}

void DtcViewModel::setView(QObject* view)
{
    detachView(m_view, this);
    m_view = view;
    if (!m_view)
        return;
    setViewProperty("engineImage", QString::fromLatin1(MIL_OFF_IMAGE));
    connect(m_view, &QObject::destroyed, this, &DtcViewModel::onViewDestroyed);
    connect(m_view, SIGNAL(showStoredCodes()), this, SLOT(onShowStoredCodes()));
    connect(m_view, SIGNAL(showPendingCodes()), this, SLOT(onShowPendingCodes()));
    connect(m_view, SIGNAL(clearMil()), this, SLOT(onShowMilConfirmation()));
    m_viewShown = true;
    if (m_connected) {
        setViewProperty("connectionStatus", 2);
        refreshData();
    }
}

void DtcViewModel::setContext(QQmlContext*)
{
}

Obd::ZrvQuery* DtcViewModel::confirmationDialog() const
{
    return m_confirmation;
}

void DtcViewModel::setViewProperty(const char* name, const QVariant& value)
{
    if (m_view)
        m_view->setProperty(name, value);
}

void DtcViewModel::refreshData()
{
    setViewProperty("busy", true);
    setViewProperty("milKnown", true);
    setViewProperty("storedReadError", QString());
    setViewProperty("pendingReadError", QString());
    m_outstanding = 2;
    m_dataModel->updateStoredCodes();
    m_dataModel->updatePendingCodes();
}

void DtcViewModel::codesRead(int count, const char* countProperty, const QString& failure,
                             const char* failureProperty)
{
    m_outstanding = m_outstanding > 0 ? m_outstanding - 1 : 0;
    if (m_view && m_viewShown) {
        setViewProperty(countProperty, count);
        setViewProperty(failureProperty, failure);
        if (count > 0)
            setViewProperty("engineImage", QString::fromLatin1(MIL_ON_IMAGE));
        // Codes not read say nothing about the lamp: unknown, never off.
        if (!failure.isEmpty())
            setViewProperty("milKnown", false);
    }
    if (m_outstanding == 0) {
        setViewProperty("busy", false);
        std::vector<Obd::DtcDataModel::ReadFailure> failures = m_dataModel->storedFailures();
        for (const Obd::DtcDataModel::ReadFailure& failure : m_dataModel->pendingFailures())
            failures.push_back(failure);
        // A lost link has its own banner.
        if (!failures.empty() && m_view && m_viewShown && m_connected) {
            Obd::ZrvInfo info(QString::fromLatin1(READ_FAILED)
                              + QString::fromStdString(Obd::DtcDataModel::describe(failures)));
            info.setTimeout(FAILURE_BANNER_TIMEOUT_MS);
            info.show();
        }
    }
}

void DtcViewModel::onStoredCodesUpdated(bool)
{
    codesRead(static_cast<int>(m_dataModel->storedCodes().size()), "storedDtcCount",
              QString::fromStdString(Obd::DtcDataModel::describe(m_dataModel->storedFailures())), "storedReadError");
}

void DtcViewModel::onPendingCodesUpdated(bool)
{
    codesRead(static_cast<int>(m_dataModel->pendingCodes().size()), "pendingDtcCount",
              QString::fromStdString(Obd::DtcDataModel::describe(m_dataModel->pendingFailures())), "pendingReadError");
}

void DtcViewModel::onShowMilConfirmation()
{
    m_confirmation->show();
}

void DtcViewModel::onClearMilAccepted()
{
    m_dataModel->clearCodes();
}

void DtcViewModel::onMilUpdated(bool)
{
    if (!m_viewShown || !m_view || !m_connected)
        return;
    // Says what the car did; the lists read again show the outcome either way.
    const std::vector<Obd::DtcDataModel::ReadFailure> failures = m_dataModel->clearFailures();
    QString text = QString::fromLatin1(CLEARED);
    if (!failures.empty())
        text = QString::fromLatin1(m_dataModel->clearConfirmed() ? PARTLY_CLEARED : NOT_CLEARED)
               + QString::fromStdString(Obd::DtcDataModel::describe(failures));
    Obd::ZrvInfo info(text);
    if (!failures.empty())
        info.setTimeout(FAILURE_BANNER_TIMEOUT_MS);
    info.show();
    if (m_dataModel->clearConfirmed())
        setViewProperty("engineImage", QString::fromLatin1(MIL_OFF_IMAGE));
    refreshData();
}

void DtcViewModel::onConnected()
{
    m_connected = true;
    if (m_viewShown && m_view) {
        setViewProperty("connectionStatus", 2);
        refreshData();
    }
}

void DtcViewModel::onDisconnected()
{
    m_connected = false;
    m_outstanding = 0;
    if (m_view) {
        setViewProperty("connectionStatus", 0);
        setViewProperty("engineImage", QString::fromLatin1(MIL_OFF_IMAGE));
        setViewProperty("storedDtcCount", 0);
        setViewProperty("pendingDtcCount", 0);
        setViewProperty("storedReadError", QString());
        setViewProperty("pendingReadError", QString());
        setViewProperty("milKnown", true);
        setViewProperty("busy", false);
    }
}

void DtcViewModel::onViewDestroyed()
{
    m_view = nullptr;
    m_viewShown = false;
}

void DtcViewModel::onShowStoredCodes()
{
    m_navigationModel->activateView(NavigationModel::StoredDtcView);
}

void DtcViewModel::onShowPendingCodes()
{
    m_navigationModel->activateView(NavigationModel::PendingDtcView);
}

} // namespace Harmattan
