#ifndef HARMATTAN_PARAMETERBATCH_H
#define HARMATTAN_PARAMETERBATCH_H

#include <QObject>

#include <vector>

namespace Obd {
class IObdProxy;
class ObdParameter;
class ObdParameterUpdater;
}

namespace Harmattan {

// Parameters read once each on the worker thread, one updater apiece; the
// screens that read many requests at a time (tests, vehicle information)
// look at the results when the last one has come back.
class ParameterBatch : public QObject
{
    Q_OBJECT

public:
    explicit ParameterBatch(QObject* parent = nullptr);
    ~ParameterBatch() override;

    // Takes the parameter; it lives until clear().
    void add(Obd::ObdParameter* parameter);
    void start(Obd::IObdProxy* proxy);
    // The link went: requests still queued return without an exchange.
    void stop();
    // Disposes every parameter, even one still being read.
    void clear();
    bool running() const { return m_pending > 0; }
    bool isEmpty() const { return m_entries.empty(); }

signals:
    void finished();

private slots:
    void onUpdateDone();

private:
    struct Entry
    {
        Obd::ObdParameter* parameter;
        Obd::ObdParameterUpdater* updater;
    };

    std::vector<Entry> m_entries;
    int m_pending;
};

} // namespace Harmattan

#endif
