#include "ccondition.h"
#include "cmutex.h"

namespace Obd {

CCondition::CCondition()
{
}

CCondition::~CCondition()
{
}

bool CCondition::wait(CMutex& mutex, unsigned long timeoutMs)
{
    return m_condition.wait(&mutex.m_mutex, timeoutMs);
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
