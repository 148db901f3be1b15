#ifndef OBD_OBDPARAMETERUPDATER_H
#define OBD_OBDPARAMETERUPDATER_H

#include <QObject>

#include <atomic>
#include <mutex>
#include <vector>

namespace Obd {

class IObdProxy;
class ObdParameter;

// Runs the exchange of one parameter on the worker thread and keeps the
// running mean of the exchange times. update() is only invoked as a queued
// call on the worker thread; updateDone() is emitted once per update().
//
// Service 01 parameters whose updates wait on the same thread for the same
// link are read together: the first update() to run takes the others along
// (one PID each) through the link's LiveReader, which asks a CAN vehicle for
// up to six PIDs per request; their own update() then only reports.
//
// Deleting: an updater that has been moved to the worker thread must not be
// deleted from another thread while an update() may still be queued for it.
// Use dispose(), which also deletes the parameter once no exchange can use it.
class ObdParameterUpdater : public QObject
{
    Q_OBJECT

public:
    // The parameter is not owned.
    explicit ObdParameterUpdater(ObdParameter* parameter);
    ~ObdParameterUpdater() override;

    // Not owned. May be changed while an exchange runs; the next update()
    // uses the new proxy.
    void setProxy(IObdProxy* proxy);
    IObdProxy* getProxy() const;

    int getAverageUpdateTime() const;
    unsigned int getUpdateCount() const;

    // Requests still queued then return without an exchange.
    void cancel();

    // Disconnects every receiver of the updater and waits for an exchange in
    // progress (the mutex makes destruction wait), then deletes updater and
    // parameter on the updater's own thread after every update() queued
    // before this call (those return without an exchange); directly when
    // that thread is not running. Both may be null.
    static void dispose(ObdParameterUpdater* updater, ObdParameter* parameter);

    // Queues update() on the updater's thread (AutoConnection runs it at once
    // when that thread is the caller's).
    static void requestUpdate(ObdParameterUpdater* updater,
                              Qt::ConnectionType type = Qt::QueuedConnection);
    // Queues several at once: none runs before all wait, so the first to
    // run can take the others along.
    static void requestUpdates(const std::vector<ObdParameterUpdater*>& updaters);
    // Called first by a receiver of updateDone() on another thread, before it
    // reads the parameter. Qt's event queue orders the exchange's writes
    // before the call, but ThreadSanitizer cannot see inside Qt; this tells
    // it. Nothing in other builds.
    static void resultReceived(const ObdParameterUpdater* updater);

    // One step of the running mean: average + (elapsed - average) / count in
    // single precision, truncated toward zero.
    static int nextAverage(int average, qint64 elapsedMs, unsigned int count);

    // Drops what was learnt about a link (which ECUs answer multi-PID
    // requests, the adapter's timing); call when it closes.
    static void forgetProxy(IObdProxy* proxy);

public slots:
    void update();

signals:
    void updateDone(bool success);

protected:
    bool event(QEvent* event) override;

private:
    // Locked updaters waiting for the same link, one per PID; empty when
    // this updater's parameter is not a shareable service 01 PID.
    std::vector<ObdParameterUpdater*> claimPeers(IObdProxy* proxy);
    void readTogether(IObdProxy* proxy, const std::vector<ObdParameterUpdater*>& peers,
                      bool& success);
    void counted(qint64 elapsedMs);

    mutable std::mutex m_mutex;
    std::atomic<IObdProxy*> m_proxy;
    ObdParameter* m_parameter;
    int m_averageUpdateTime;
    unsigned int m_updateCount;
    std::atomic<bool> m_cancelled;
    // Read by another updater's exchange; update() only reports it.
    bool m_prepared = false;
    bool m_preparedResult = false;
};

} // namespace Obd

#endif
