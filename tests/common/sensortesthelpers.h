#ifndef TEST_SENSORTESTHELPERS_H
#define TEST_SENSORTESTHELPERS_H

#include "powertrain/numericpid.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QThread>

#include <atomic>
#include <cstdio>
#include <string>
#include <vector>

// Runs this thread's event loop until pred() holds; false after timeoutMs.
template <class Pred>
bool waitFor(Pred pred, int timeoutMs = 10000)
{
    QElapsedTimer timer;
    timer.start();
    while (!pred()) {
        if (timer.elapsed() > timeoutMs)
            return false;
        QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
        QThread::msleep(1);
    }
    return true;
}

// A catalogue PID (real decoding and units) that counts its live instances,
// so tests see that a parameter was freed. Without all formatters it hands
// out one formatter too few.
class CountedPid : public Obd::NumericPid
{
public:
    explicit CountedPid(unsigned char pid, bool allFormatters = true)
        : Obd::NumericPid(pid, 1)
        , m_allFormatters(allFormatters)
    {
        ++liveCount();
    }
    ~CountedPid() override { --liveCount(); }

    static std::atomic<int>& liveCount()
    {
        static std::atomic<int> count(0);
        return count;
    }

    void getFormatters(std::vector<Obd::ValueFormaterPtr>& list) const override
    {
        Obd::NumericPid::getFormatters(list);
        if (!m_allFormatters)
            list.pop_back();
    }

private:
    bool m_allFormatters;
};

// The adapter's reply to mode 01 PID pid carrying one byte, headers off.
inline std::string replyFor(unsigned char pid, unsigned char value)
{
    char text[32];
    std::snprintf(text, sizeof(text), "41 %02X %02X\r\r>", pid, value);
    return text;
}

#endif
