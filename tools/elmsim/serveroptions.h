#ifndef ELMSIM_SERVEROPTIONS_H
#define ELMSIM_SERVEROPTIONS_H

#include <cstdint>
#include <string>

namespace ElmSim {

// Start-up settings of one simulated adapter. The fault settings can be
// changed later through ElmSimServer's runtime controls.
struct ServerOptions {
    std::string host = "127.0.0.1";
    unsigned short port = 35000;          // 0: pick a free port (tests)
    std::string profile = "can11";        // vehicle profile name
    unsigned int delayMs = 0;             // fixed extra delay per OBD request
    unsigned int delayJitterMs = 0;       // plus a random 0..jitter ms
    unsigned int resetDelayMs = 500;      // ATZ / ATWS boot time
    unsigned int searchDelayMs = 1000;    // protocol search before data
    int dropAfter = -1;                   // close the link after N requests (-1 never)
    bool silent = false;                  // read everything, answer nothing
    std::string errorWord;                // replaces the next errorCount OBD answers
    int errorCount = 0;
    unsigned int garbageBytes = 0;        // random non-'>' bytes before each prompt
    std::string transcriptPath;           // time-stamped request/reply log
    bool frozen = false;                  // live values fixed at their t=0 values
    uint8_t refuseClear = 0;              // every ECU answers 04 with 7F 04 and this NRC; 0 clears
    std::string banner;                   // identity text; empty: "ELM327 v1.5"
    bool identify = true;                 // false: ATZ/ATI answer "?"
    std::string adapter = "genuine";      // personality, see Personality::names()
    std::string timing = "none";          // timing model, see TimingModel::names()
    bool noise = false;                   // noise bytes and status lines around replies
    std::string replayPath;               // answer from a recorded transcript instead
    int64_t seed = -1;                    // random source of every session; -1: a fresh one
    double timeScale = 1.0;               // scales the modelled waits (0: report, do not wait)
    unsigned int lineSpeed = 0;           // on a terminal: the termios speed (B38400...)
                                          // it must be set to, else noise comes back; 0 any
};

} // namespace ElmSim

#endif
