#ifndef OBD_CTHREAD_H
#define OBD_CTHREAD_H

namespace Obd {

// A native thread running a plain function. A running thread must be
// joined before the object is destroyed.
class CThread
{
public:
    typedef void (*Entry)(void* argument);

    CThread();
    virtual ~CThread();

    void start(Entry entry, void* argument);
    void join();

    // Below one second only: the whole count goes into the nanosecond field.
    static void sleep(unsigned int microseconds);

    struct Record;

private:
    CThread(const CThread&) = delete;
    CThread& operator=(const CThread&) = delete;

    Record* m_record;
};

} // namespace Obd

#endif
