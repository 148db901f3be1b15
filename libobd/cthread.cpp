#include "cthread.h"

#include <exception>
#include <pthread.h>
#include <time.h>

namespace Obd {

struct CThread::Record
{
    pthread_t handle;
    pthread_mutex_t mutex;
    bool finished;
    bool joined;
};

namespace {

struct StartBlock
{
    CThread::Entry entry;
    void* argument;
    CThread::Record* record;
};

void* trampoline(void* data)
{
    StartBlock* block = static_cast<StartBlock*>(data);
    try {
        block->entry(block->argument);
    } catch (...) {
        std::terminate();
    }
    CThread::Record* record = block->record;
    pthread_mutex_lock(&record->mutex);
    record->finished = true;
    delete block;
    pthread_mutex_unlock(&record->mutex);
    return nullptr;
}

} // namespace

CThread::CThread()
    : m_record(nullptr)
{
}

CThread::~CThread()
{
    if (!m_record)
        return;
    pthread_mutex_lock(&m_record->mutex);
    bool finished = m_record->finished;
    pthread_mutex_unlock(&m_record->mutex);
    if (!finished)
        std::terminate(); // a running thread must be joined first
    if (!m_record->joined && m_record->handle)
        pthread_join(m_record->handle, nullptr); // reap the finished thread
    pthread_mutex_destroy(&m_record->mutex);
    delete m_record;
}

void CThread::start(Entry entry, void* argument)
{
    if (m_record) {
        // Restarting: the previous thread has to be over.
        join();
        pthread_mutex_destroy(&m_record->mutex);
        delete m_record;
    }
    m_record = new Record;
    m_record->handle = 0;
    m_record->joined = false;
    pthread_mutex_init(&m_record->mutex, nullptr);
    pthread_mutex_lock(&m_record->mutex);
    StartBlock* block = new StartBlock{entry, argument, m_record};
    m_record->finished = false;
    if (pthread_create(&m_record->handle, nullptr, trampoline, block) != 0) {
        m_record->handle = 0;
        m_record->finished = true;
        m_record->joined = true;
        delete block;
    }
    pthread_mutex_unlock(&m_record->mutex);
}

void CThread::join()
{
    if (!m_record || m_record->joined)
        return;
    pthread_join(m_record->handle, nullptr);
    m_record->joined = true;
}

void CThread::sleep(unsigned int microseconds)
{
    struct timespec ts;
    ts.tv_sec = 0;
    ts.tv_nsec = static_cast<long>(microseconds) * 1000;
    nanosleep(&ts, nullptr);
}

} // namespace Obd
