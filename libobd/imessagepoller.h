#ifndef OBD_IMESSAGEPOLLER_H
#define OBD_IMESSAGEPOLLER_H

#include <QThread>

namespace Obd {

class IPollListener;
class SensorFactory;

// Keeps subscribed live-data PIDs fresh on a thread of its own.
class IMessagePoller : public QThread
{
    Q_OBJECT

public:
    explicit IMessagePoller(QObject* parent = nullptr)
        : QThread(parent)
    {
    }

    virtual void stop() = 0;
    virtual void addPid(unsigned char pid, const SensorFactory& factory, int periodMs,
                        IPollListener* listener) = 0;
    virtual void changePeriod(unsigned char pid, IPollListener* listener, int periodMs) = 0;
};

} // namespace Obd

#endif
