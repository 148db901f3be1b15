#ifndef OBD_MESSAGEPOLLER_H
#define OBD_MESSAGEPOLLER_H

#include "cmutex.h"
#include "imessagepoller.h"

#include <QElapsedTimer>

#include <atomic>
#include <map>
#include <memory>
#include <vector>

namespace Obd {

class IObdProxy;
class ObdParameter;

class MessagePoller : public IMessagePoller
{
    Q_OBJECT

public:
    explicit MessagePoller(IObdProxy* proxy, QObject* parent = nullptr);
    ~MessagePoller() override;

    void stop() override;
    void addPid(unsigned char pid, const SensorFactory& factory, int periodMs,
                IPollListener* listener) override;
    void changePeriod(unsigned char pid, IPollListener* listener, int periodMs) override;
    void removePid(unsigned char pid, IPollListener* listener);
    int getAverageResponseTime() const;
    unsigned int getExchangeCount() const;
    // The polling period of a PID's entry, or -1 when it is not polled.
    int getPeriod(unsigned char pid);

protected:
    void run() override;

private:
    struct Subscriber
    {
        IPollListener* listener;
        std::atomic<int> period;
        QElapsedTimer lastNotification;
    };
    struct Entry
    {
        std::unique_ptr<ObdParameter> parameter;
        QElapsedTimer lastRun;
        std::atomic<int> period;
        std::vector<std::unique_ptr<Subscriber>> subscribers;
    };

    IObdProxy* m_proxy;
    std::atomic<bool> m_stop;
    std::map<unsigned char, std::unique_ptr<Entry>> m_table;
    CMutex m_mutex;
    bool m_changed;
    std::atomic<int> m_averageTime;
    std::atomic<unsigned int> m_count;
};

} // namespace Obd

#endif
