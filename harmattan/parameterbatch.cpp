#include "parameterbatch.h"

#include "obdparameter.h"
#include "obdparameterupdater.h"
#include "workerthread.h"

namespace Harmattan {

ParameterBatch::ParameterBatch(QObject* parent)
    : QObject(parent)
    , m_pending(0)
{
}

ParameterBatch::~ParameterBatch()
{
    clear();
}

void ParameterBatch::add(Obd::ObdParameter* parameter)
{
    Obd::ObdParameterUpdater* updater = new Obd::ObdParameterUpdater(parameter);
    updater->moveToThread(Obd::WorkerThread::instance());
    connect(updater, &Obd::ObdParameterUpdater::updateDone, this, &ParameterBatch::onUpdateDone);
    m_entries.push_back({ parameter, updater });
}

void ParameterBatch::start(Obd::IObdProxy* proxy)
{
    // Queued one after the other on the one worker thread: the link sees
    // one request at a time.
    for (const Entry& entry : m_entries) {
        entry.updater->setProxy(proxy);
        Obd::ObdParameterUpdater::requestUpdate(entry.updater);
        ++m_pending;
    }
    if (m_pending == 0)
        emit finished();
}

void ParameterBatch::stop()
{
    for (const Entry& entry : m_entries)
        entry.updater->setProxy(nullptr);
}

void ParameterBatch::clear()
{
    for (const Entry& entry : m_entries)
        Obd::ObdParameterUpdater::dispose(entry.updater, entry.parameter);
    m_entries.clear();
    m_pending = 0;
}

void ParameterBatch::onUpdateDone()
{
    Obd::ObdParameterUpdater::resultReceived(qobject_cast<Obd::ObdParameterUpdater*>(sender()));
    if (m_pending > 0 && --m_pending == 0)
        emit finished();
}

} // namespace Harmattan
