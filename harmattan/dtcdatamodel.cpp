#include "dtcdatamodel.h"

#include "connectionmanager.h"
#include "iobdproxy.h"
#include "obdparameterupdater.h"
#include "parameters/cleartroublecodes.h"
#include "parameters/pendingtroublecodes.h"
#include "parameters/storedtroublecodes.h"
#include "trlog.h"
#include "workerthread.h"

#include <QMetaObject>

#include <algorithm>

namespace Obd {

DtcDataModel::DtcDataModel(Harmattan::ConnectionManager* connectionManager, QObject* parent)
    : QObject(parent)
    , m_connectionManager(connectionManager)
    , m_workerThread(WorkerThread::instance())
    , m_storedParameter(new StoredTroubleCodes())
    , m_pendingParameter(new PendingTroubleCodes())
    , m_clearParameter(new ClearTroubleCodes())
{
    m_stored.updater = new ObdParameterUpdater(m_storedParameter);
    m_pending.updater = new ObdParameterUpdater(m_pendingParameter);
    m_clear.updater = new ObdParameterUpdater(m_clearParameter);
    for (Channel* channel : {&m_stored, &m_pending, &m_clear}) {
        // Each request hands the updater the current proxy (request()).
        channel->updater->moveToThread(m_workerThread);
    }
    connect(m_stored.updater, &ObdParameterUpdater::updateDone, this, &DtcDataModel::onStoredCodesUpdated);
    connect(m_pending.updater, &ObdParameterUpdater::updateDone, this, &DtcDataModel::onPendingCodesUpdated);
    connect(m_clear.updater, &ObdParameterUpdater::updateDone, this, &DtcDataModel::onMilUpdated);
    if (m_connectionManager)
        connect(m_connectionManager, &Harmattan::ConnectionManager::disconnected, this,
                &DtcDataModel::onDisconnected);
}

DtcDataModel::~DtcDataModel()
{
    ObdParameterUpdater::dispose(m_stored.updater, m_storedParameter);
    ObdParameterUpdater::dispose(m_pending.updater, m_pendingParameter);
    ObdParameterUpdater::dispose(m_clear.updater, m_clearParameter);
}

void DtcDataModel::updateStoredCodes()
{
    request(m_stored);
}

void DtcDataModel::updatePendingCodes()
{
    request(m_pending);
}

void DtcDataModel::clearCodes()
{
    request(m_clear);
}

std::vector<Dtc> DtcDataModel::storedCodes() const
{
    return m_storedCodes;
}

std::vector<Dtc> DtcDataModel::pendingCodes() const
{
    return m_pendingCodes;
}

void DtcDataModel::request(Channel& channel)
{
    if (channel.inFlight) {
        channel.again = true;
        return;
    }
    channel.inFlight = true;
    channel.updater->setProxy(m_connectionManager ? m_connectionManager->proxy() : nullptr);
    ObdParameterUpdater::requestUpdate(channel.updater);
}

void DtcDataModel::finished(Channel& channel)
{
    channel.inFlight = false;
    if (channel.again) {
        channel.again = false;
        request(channel);
    }
}

void DtcDataModel::readCodes(const DtcParameter* parameter, std::vector<Dtc>& list) const
{
    list.clear();
    IObdProxy* proxy = m_connectionManager ? m_connectionManager->proxy() : nullptr;
    if (!proxy)
        return;
    std::vector<unsigned int> answered;
    parameter->getEcuIds(answered);
    std::vector<EcuPtr> ecus;
    proxy->getEcus(ecus);
    const EcuPtr first = proxy->getFirstEcu();
    if (first)
        std::stable_partition(ecus.begin(), ecus.end(),
                              [&](const EcuPtr& ecu) { return ecu && ecu->getId() == first->getId(); });
    for (const EcuPtr& ecu : ecus) {
        if (!ecu || std::find(answered.begin(), answered.end(), ecu->getId()) == answered.end())
            continue;
        const size_t first = list.size();
        parameter->getDtcs(*ecu, list);
        for (size_t i = first; i < list.size(); ++i)
            list[i].setEcu(ecu->getShortName(), ecu->getId());
    }
}

void DtcDataModel::onStoredCodesUpdated(bool success)
{
    ObdParameterUpdater::resultReceived(m_stored.updater);
    // Read before a queued repeat can start writing the parameter again.
    if (success)
        readCodes(m_storedParameter, m_storedCodes);
    finished(m_stored);
    OBD_DEBUG << "stored codes read: " << success << ", " << m_storedCodes.size() << " codes";
    emit storedCodesUpdated(success);
}

void DtcDataModel::onPendingCodesUpdated(bool success)
{
    ObdParameterUpdater::resultReceived(m_pending.updater);
    if (success)
        readCodes(m_pendingParameter, m_pendingCodes);
    finished(m_pending);
    OBD_DEBUG << "pending codes read: " << success << ", " << m_pendingCodes.size() << " codes";
    emit pendingCodesUpdated(success);
}

void DtcDataModel::onMilUpdated(bool success)
{
    ObdParameterUpdater::resultReceived(m_clear.updater);
    finished(m_clear);
    emit milStatusUpdated(success);
}

void DtcDataModel::onDisconnected()
{
    // Requests still queued on the worker end without an exchange.
    for (Channel* channel : {&m_stored, &m_pending, &m_clear})
        channel->updater->setProxy(nullptr);
    m_storedCodes.clear();
    m_pendingCodes.clear();
}

} // namespace Obd
