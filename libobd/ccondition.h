#ifndef OBD_CCONDITION_H
#define OBD_CCONDITION_H

#include <QWaitCondition>

namespace Obd {

class CMutex;

class CCondition
{
public:
    CCondition();
    virtual ~CCondition();

    // False when the time ran out. The mutex must be locked by the caller.
    bool wait(CMutex& mutex, unsigned long timeoutMs);
    void wakeOne();
    void wakeAll();

private:
    CCondition(const CCondition&) = delete;
    CCondition& operator=(const CCondition&) = delete;

    QWaitCondition m_condition;
};

} // namespace Obd

#endif
