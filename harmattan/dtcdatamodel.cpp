#include "dtcdatamodel.h"

#include "connectionmanager.h"
#include "iobdproxy.h"
#include "iscantool.h"
#include "obdparameterupdater.h"
#include "parameters/cleartroublecodes.h"
#include "parameters/pendingtroublecodes.h"
#include "parameters/storedtroublecodes.h"
#include "trlog.h"
#include "workerthread.h"

#include <QMetaObject>

#include <algorithm>
#include <sstream>

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

void DtcDataModel::readCodes(const DtcParameter* parameter, std::vector<Dtc>& list,
                             std::vector<ReadFailure>& failures) const
{
    list.clear();
    failures.clear();
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
        if (!ecu)
            continue;
        const ReadStatus status = parameter->readStatus(ecu->getId());
        if (!status.ok()) {
            // Silence from one ECU while others answered is no failure: it
            // may simply not keep codes.
            if (status.state != READ_NOT_ANSWERED)
                failures.push_back(failureOf(*ecu, status));
            continue;
        }
        if (std::find(answered.begin(), answered.end(), ecu->getId()) == answered.end())
            continue;
        const size_t first = list.size();
        parameter->getDtcs(*ecu, list);
        for (size_t i = first; i < list.size(); ++i)
            list[i].setEcu(ecu->getShortName(), ecu->getId());
    }
}

DtcDataModel::ReadFailure DtcDataModel::failureOf(const Ecu& ecu, const ReadStatus& status)
{
    const std::string errorWordPrefix = std::string(ScantoolError::statusName(ScantoolError::SE_ERROR_WORD)) + ": ";
    ReadFailure failure;
    std::ostringstream name;
    name << ecu.getShortName() << " 0x" << std::hex << std::uppercase << ecu.getId();
    failure.ecu = name.str();
    failure.reason = status.reason;
    if (status.state == READ_ADAPTER_ERROR && status.reason.rfind(errorWordPrefix, 0) == 0)
        failure.word = status.reason.substr(errorWordPrefix.size());
    return failure;
}

void DtcDataModel::notRead(std::vector<Dtc>& list, std::vector<ReadFailure>& failures)
{
    // No exchange at all leaves the last one's statuses behind.
    list.clear();
    if (failures.empty())
        failures.push_back({ std::string(), "not read", std::string() });
}

std::string DtcDataModel::describe(const std::vector<ReadFailure>& failures)
{
    // ECUs that failed alike share one cause, each named once.
    std::vector<std::pair<std::string, std::vector<std::string>>> causes;
    for (const ReadFailure& failure : failures) {
        const std::string& cause = failure.word.empty() ? failure.reason : failure.word;
        auto it = std::find_if(causes.begin(), causes.end(), [&](const auto& c) { return c.first == cause; });
        if (it == causes.end())
            it = causes.insert(causes.end(), { cause, {} });
        if (!failure.ecu.empty() && std::find(it->second.begin(), it->second.end(), failure.ecu) == it->second.end())
            it->second.push_back(failure.ecu);
    }
    std::string text;
    for (const auto& cause : causes) {
        std::string ecus;
        for (const std::string& ecu : cause.second)
            ecus += (ecus.empty() ? "" : ", ") + ecu;
        text += (text.empty() ? "" : "; ") + cause.first + (ecus.empty() ? "" : " (" + ecus + ")");
    }
    return text;
}

void DtcDataModel::onStoredCodesUpdated(bool success)
{
    ObdParameterUpdater::resultReceived(m_stored.updater);
    // Read before a queued repeat can start writing the parameter again.
    // A failed read leaves no list behind: it says why instead.
    readCodes(m_storedParameter, m_storedCodes, m_storedFailures);
    if (!success)
        notRead(m_storedCodes, m_storedFailures);
    finished(m_stored);
    OBD_DEBUG << "stored codes read: " << success << ", " << m_storedCodes.size() << " codes";
    emit storedCodesUpdated(success);
}

void DtcDataModel::onPendingCodesUpdated(bool success)
{
    ObdParameterUpdater::resultReceived(m_pending.updater);
    readCodes(m_pendingParameter, m_pendingCodes, m_pendingFailures);
    if (!success)
        notRead(m_pendingCodes, m_pendingFailures);
    finished(m_pending);
    OBD_DEBUG << "pending codes read: " << success << ", " << m_pendingCodes.size() << " codes";
    emit pendingCodesUpdated(success);
}

void DtcDataModel::onMilUpdated(bool success)
{
    ObdParameterUpdater::resultReceived(m_clear.updater);
    // A refusal in the words a driver acts on.
    static const struct { unsigned char nrc; const char* words; } REFUSALS[] = {
        { 0x22, "the engine must be off" },
        { 0x11, "not supported" },
        { 0x12, "not supported" },
        { 0x31, "not supported" },
    };
    m_clearConfirmed = false;
    m_clearFailures.clear();
    std::vector<EcuPtr> ecus;
    if (IObdProxy* proxy = m_connectionManager ? m_connectionManager->proxy() : nullptr)
        proxy->getEcus(ecus);
    for (const EcuPtr& ecu : ecus) {
        if (!ecu)
            continue;
        const ReadStatus status = m_clearParameter->readStatus(ecu->getId());
        m_clearConfirmed = m_clearConfirmed || status.ok();
        if (status.ok() || status.state == READ_NOT_ANSWERED)
            continue;
        ReadFailure failure = failureOf(*ecu, status);
        for (const auto& refusal : REFUSALS) {
            if (status.state == READ_NEGATIVE
                && status.reason.find(ObdParameter::negativeResponseText(refusal.nrc)) != std::string::npos)
                failure.word = refusal.words;
        }
        m_clearFailures.push_back(failure);
    }
    if (!m_clearConfirmed && m_clearFailures.empty())
        m_clearFailures.push_back({ std::string(), "no answer", std::string() });
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
    m_storedFailures.clear();
    m_pendingFailures.clear();
}

} // namespace Obd
