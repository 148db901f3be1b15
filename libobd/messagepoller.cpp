#include "messagepoller.h"
#include "clock.h"
#include "iobdproxy.h"
#include "ipolllistener.h"
#include "livereader.h"
#include "obdparameter.h"
#include "sensorfactory.h"
#include "trlog.h"

#include <algorithm>

namespace Obd {

MessagePoller::MessagePoller(IObdProxy* proxy, QObject* parent)
    : IMessagePoller(parent)
    , m_proxy(proxy)
    , m_stop(false)
    , m_changed(false)
    , m_averageTime(0)
    , m_count(0)
{
}

MessagePoller::~MessagePoller()
{
    // The owner stops the poller first; a thread still inside an exchange
    // is asked again rather than destroyed under its feet.
    if (!wait(100)) {
        m_stop = true;
        wait();
    }
}

void MessagePoller::stop()
{
    m_stop = true;
}

void MessagePoller::run()
{
    OBD_DEBUG << "Message poller started";
    m_stop = false;
    // Every PID that is due goes in one reading, so that a CAN vehicle is
    // asked for several at once.
    LiveReader reader(m_proxy);
    while (!m_stop) {
        qint64 idleMs = 100;
        bool exchanged = false;
        {
            CLock lock(m_mutex);
            m_changed = false;
            std::vector<Entry*> due;
            std::vector<LiveReader::Item> items;
            for (auto& row : m_table) {
                Entry& entry = *row.second;
                const qint64 left = entry.period - entry.lastRun.elapsed();
                if (left <= 0) {
                    due.push_back(&entry);
                    items.emplace_back(row.first, entry.parameter.get());
                } else {
                    idleMs = std::min(idleMs, left);
                }
            }
            if (!due.empty()) {
                QElapsedTimer timer;
                timer.start();
                const unsigned int before = reader.exchanges();
                const std::vector<bool> good = reader.read(items);
                const unsigned int exchanges = std::max(1u, reader.exchanges() - before);
                const float elapsed = static_cast<float>(timer.elapsed()) / static_cast<float>(exchanges);
                for (size_t i = 0; i < due.size(); ++i) {
                    Entry& entry = *due[i];
                    entry.lastRun.restart();
                    if (!good[i])
                        continue;
                    unsigned int count = m_count + 1;
                    m_count = count;
                    float average = static_cast<float>(m_averageTime);
                    average += (elapsed - average) / static_cast<float>(count);
                    m_averageTime = static_cast<int>(average);
                    for (auto& subscriber : entry.subscribers) {
                        if (subscriber->lastNotification.elapsed() >= subscriber->period) {
                            subscriber->listener->onPolled(IPollListener::CODE_UPDATED,
                                                           entry.parameter.get());
                            subscriber->lastNotification.restart();
                        }
                    }
                }
                exchanged = true;
            }
        }
        if (exchanged) {
            QThread::msleep(10);
            continue;
        }
        if (!m_stop)
            QThread::msleep(static_cast<unsigned long>(std::max<qint64>(idleMs, 1)));
    }
    OBD_DEBUG << "Exiting message poller";
    m_stop = false;
}

void MessagePoller::addPid(unsigned char pid, const SensorFactory& factory, int periodMs,
                           IPollListener* listener)
{
    CLock lock(m_mutex);
    auto it = m_table.find(pid);
    if (it == m_table.end()) {
        ObdParameter* parameter = factory.createParameter(pid);
        if (!parameter) {
            OBD_ERROR << "Unsupported PID: " << static_cast<unsigned int>(pid);
            return;
        }
        std::unique_ptr<Entry> entry(new Entry);
        entry->parameter.reset(parameter);
        entry->lastRun.start();
        entry->period = periodMs;
        it = m_table.emplace(pid, std::move(entry)).first;
        OBD_DEBUG << "Adding PID " << static_cast<unsigned int>(pid) << " to message poller";
    }
    Entry& entry = *it->second;
    std::unique_ptr<Subscriber> subscriber(new Subscriber);
    subscriber->listener = listener;
    subscriber->period = periodMs;
    subscriber->lastNotification.start();
    entry.subscribers.push_back(std::move(subscriber));
    int smallest = entry.period;
    for (const auto& s : entry.subscribers)
        smallest = std::min(smallest, s->period.load());
    entry.period = smallest;
    m_changed = true;
}

void MessagePoller::changePeriod(unsigned char pid, IPollListener* listener, int periodMs)
{
    // Periods are single words: written without the table lock on purpose.
    OBD_DEBUG << "changing period for PID " << static_cast<unsigned int>(pid) << " to " << periodMs;
    auto it = m_table.find(pid);
    if (it == m_table.end())
        return;
    Entry& entry = *it->second;
    for (auto& subscriber : entry.subscribers) {
        if (subscriber->listener == listener)
            subscriber->period = periodMs;
    }
    int period = periodMs;
    for (const auto& subscriber : entry.subscribers)
        period = std::min(period, subscriber->period.load());
    entry.period = period;
    OBD_DEBUG << "sensor period: " << entry.period;
}

void MessagePoller::removePid(unsigned char pid, IPollListener* listener)
{
    CLock lock(m_mutex);
    auto it = m_table.find(pid);
    if (it == m_table.end())
        return;
    auto& subscribers = it->second->subscribers;
    auto found = std::find_if(subscribers.begin(), subscribers.end(),
                              [listener](const std::unique_ptr<Subscriber>& s) {
                                  return s->listener == listener;
                              });
    if (found == subscribers.end())
        return;
    m_changed = true;
    subscribers.erase(found);
    if (subscribers.empty())
        m_table.erase(it);
}

int MessagePoller::getAverageResponseTime() const
{
    return m_averageTime;
}

unsigned int MessagePoller::getExchangeCount() const
{
    return m_count;
}

int MessagePoller::getPeriod(unsigned char pid)
{
    CLock lock(m_mutex);
    auto it = m_table.find(pid);
    return it == m_table.end() ? -1 : it->second->period.load();
}

} // namespace Obd
