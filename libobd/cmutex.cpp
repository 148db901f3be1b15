#include "cmutex.h"

namespace Obd {

CMutex::CMutex()
{
}

CMutex::~CMutex()
{
}

void CMutex::lock()
{
    m_mutex.lock();
}

void CMutex::unlock()
{
    m_mutex.unlock();
}

bool CMutex::tryLock()
{
    return m_mutex.tryLock();
}

} // namespace Obd
