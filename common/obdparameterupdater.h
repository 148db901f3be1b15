#ifndef OBD_OBDPARAMETERUPDATER_H
#define OBD_OBDPARAMETERUPDATER_H

#include <QObject>

#include <atomic>
#include <mutex>

namespace Obd {

class IObdProxy;
class ObdParameter;

// Runs the exchange of one parameter on the worker thread and keeps the
// running mean of the exchange times. update() is only invoked as a queued
// call on the worker thread; updateDone() is emitted once per update().
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
    // Called first by a receiver of updateDone() on another thread, before it
    // reads the parameter. Qt's event queue orders the exchange's writes
    // before the call, but ThreadSanitizer cannot see inside Qt; this tells
    // it. Nothing in other builds.
    static void resultReceived(const ObdParameterUpdater* updater);

    // One step of the running mean: average + (elapsed - average) / count in
    // single precision, truncated toward zero.
    static int nextAverage(int average, qint64 elapsedMs, unsigned int count);

public slots:
    void update();

signals:
    void updateDone(bool success);

protected:
    bool event(QEvent* event) override;

private:
    mutable std::mutex m_mutex;
    std::atomic<IObdProxy*> m_proxy;
    ObdParameter* m_parameter;
    int m_averageUpdateTime;
    unsigned int m_updateCount;
    std::atomic<bool> m_cancelled;
};

} // namespace Obd

#endif
