#ifndef OBD_CLOCK_H
#define OBD_CLOCK_H

namespace Obd {

class CMutex;

// Scoped lock: locks in the constructor, unlocks in the destructor.
class CLock
{
public:
    explicit CLock(CMutex& mutex);
    virtual ~CLock();

private:
    CLock(const CLock&) = delete;
    CLock& operator=(const CLock&) = delete;

    CMutex& m_mutex;
};

} // namespace Obd

#endif
