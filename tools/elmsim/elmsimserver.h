#ifndef ELMSIM_ELMSIMSERVER_H
#define ELMSIM_ELMSIMSERVER_H

#include "profile.h"
#include "serveroptions.h"
#include "timingmodel.h"

#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>
#include <string>
#include <thread>
#include <vector>

namespace ElmSim {

class Replay;
class RuntimeControl;
class Transcript;

// An ELM327 adapter on TCP with a simulated car behind it. Serves one
// client at a time on its own thread; every new client meets a freshly
// powered adapter (the car keeps its state: cleared codes stay cleared).
class ElmSimServer
{
public:
    explicit ElmSimServer(const ServerOptions& options);
    ~ElmSimServer();

    bool start();
    // Serves the master side of a pseudo-terminal instead of listening; the
    // descriptor stays the caller's and must outlive stop().
    bool startOnTerminal(int fd);
    void stop();
    unsigned short port() const;
    std::string errorString() const;

    // Runtime fault control, safe from any thread.
    void setDelay(unsigned int ms);
    void setSilent(bool silent);
    void injectError(const std::string& word, int count);
    void setDropAfter(int requests);
    void dropNow();
    void setGarbage(unsigned int bytes);
    int requestCount() const;
    std::vector<std::string> requestLog() const;
    // The modelled time of the last reply (personality and timing model).
    ExchangeTiming lastExchange() const;

    // The vehicle data; read it while no request is being answered.
    const Profile& profile() const;
    void resetVehicle();

private:
    bool prepare();                     // options that can fail, checked once
    void run();
    void serveClient(int fd);
    void wake();
    void drainWake();
    bool waitReadable(int fd, int timeoutMs);   // false: woken or error

    ServerOptions m_options;
    Profile m_profile;
    Profile m_original;
    bool m_profileValid;
    std::mutex m_vehicleMutex;
    std::unique_ptr<RuntimeControl> m_control;
    std::unique_ptr<Transcript> m_transcript;
    std::unique_ptr<Replay> m_replay;
    std::chrono::steady_clock::time_point m_epoch;

    int m_listenFd;
    int m_terminalFd = -1;
    int m_wakePipe[2];
    unsigned short m_port;
    std::string m_error;
    std::thread m_thread;
    std::atomic<bool> m_stopping;
    std::atomic<bool> m_dropRequested;
};

} // namespace ElmSim

#endif
