#include "cmutex.h"
#include "tsanannotations.h"

namespace Obd {

CMutex::CMutex()
{
    OBD_TSAN_MUTEX_CREATE(this);
}

CMutex::~CMutex()
{
    OBD_TSAN_MUTEX_DESTROY(this);
}

void CMutex::lock()
{
    OBD_TSAN_PRE_LOCK(this, 0);
    m_mutex.lock();
    OBD_TSAN_POST_LOCK(this, 0);
}

void CMutex::unlock()
{
    OBD_TSAN_PRE_UNLOCK(this);
    m_mutex.unlock();
    OBD_TSAN_POST_UNLOCK(this);
}

bool CMutex::tryLock()
{
    OBD_TSAN_PRE_LOCK(this, OBD_TSAN_TRY_LOCK);
    const bool locked = m_mutex.tryLock();
    OBD_TSAN_POST_LOCK(this, OBD_TSAN_TRY_LOCK | (locked ? 0 : OBD_TSAN_TRY_LOCK_FAILED));
    return locked;
}

} // namespace Obd
