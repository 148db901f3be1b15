#include "ccondition.h"
#include "cmutex.h"
#include "tsanannotations.h"

namespace Obd {

CCondition::CCondition()
{
}

CCondition::~CCondition()
{
}

bool CCondition::wait(CMutex& mutex, unsigned long timeoutMs)
{
    // The wait releases the mutex and takes it again inside Qt's library,
    // where QMutex's own sanitizer annotations are not compiled in.
    OBD_TSAN_PRE_UNLOCK(&mutex.m_mutex);
    OBD_TSAN_POST_UNLOCK(&mutex.m_mutex);
    const bool woken = m_condition.wait(&mutex.m_mutex, timeoutMs);
    OBD_TSAN_PRE_LOCK(&mutex.m_mutex, 0);
    OBD_TSAN_POST_LOCK(&mutex.m_mutex, 0);
    return woken;
}

void CCondition::wakeOne()
{
    m_condition.wakeOne();
}

void CCondition::wakeAll()
{
    m_condition.wakeAll();
}

} // namespace Obd
