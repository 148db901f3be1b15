#include "clock.h"
#include "cmutex.h"

namespace Obd {

CLock::CLock(CMutex& mutex)
    : m_mutex(mutex)
{
    m_mutex.lock();
}

CLock::~CLock()
{
    m_mutex.unlock();
}

} // namespace Obd
