#ifndef OBD_CMUTEX_H
#define OBD_CMUTEX_H

#include <QMutex>

namespace Obd {

class CCondition;

// A non-recursive mutex.
class CMutex
{
public:
    CMutex();
    virtual ~CMutex();

    void lock();
    void unlock();
    bool tryLock();

private:
    friend class CCondition;
    CMutex(const CMutex&) = delete;
    CMutex& operator=(const CMutex&) = delete;

    QMutex m_mutex;
};

} // namespace Obd

#endif
