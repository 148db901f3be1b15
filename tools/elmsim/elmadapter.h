#ifndef ELMSIM_ELMADAPTER_H
#define ELMSIM_ELMADAPTER_H

#include "frameformatter.h"
#include "obdresponder.h"
#include "personality.h"
#include "profile.h"
#include "replay.h"
#include "serveroptions.h"
#include "timingmodel.h"

#include <chrono>
#include <mutex>
#include <random>
#include <string>
#include <vector>

namespace ElmSim {

class AdapterLink;
class RuntimeControl;
class Transcript;

// The ELM327 v1.5 command interpreter of one client session: AT settings,
// protocol search, OBD requests answered by the profile's ECUs, the
// adapter's personality and timing, and the injected faults. Fed one
// command line at a time. With a replay it only plays the recorded replies.
class ElmAdapter
{
public:
    ElmAdapter(const ServerOptions& options, Profile& profile, std::mutex& vehicleMutex, RuntimeControl& control,
               Transcript* transcript, const Replay* replay, AdapterLink& link,
               std::chrono::steady_clock::time_point epoch);

    // Handles one line (without its CR). False: close the link now.
    bool handleLine(const std::string& line);

private:
    void powerUp();
    bool handleAt(const std::string& command);   // false: close the link now
    bool handleObd(const std::string& command);
    bool replayLine(const std::string& line);
    void finish() { send(true); }        // prompt, transcript, send
    void sendPartial() { send(false); }  // text that goes out before a wait
    void send(bool final);
    bool adapterPause(double ms);        // the personality's own slowness; false: interrupted
    bool modelledPause(double ms);
    void addNoise(size_t dataStart);     // the noisy personality's stale frame
    void addLine(const std::string& text);
    double vehicleSeconds() const;
    bool parseRequest(const std::string& command, size_t& maxAnswers);
    bool searchIfNeeded();               // false: no vehicle found

    // Settings (reset by ATZ, ATWS, ATD).
    bool m_echo;
    bool m_lineFeeds;
    DisplaySettings m_display;
    int m_protocol;                      // 0 automatic, 1..9 set
    bool m_automatic;
    bool m_searched;                     // a search found the vehicle
    bool m_busInitDone;
    unsigned int m_baudTimeoutMs;
    bool m_awaitingBaudConfirm;

    const ServerOptions& m_options;
    Personality m_personality;
    Profile& m_profile;
    std::mutex& m_vehicleMutex;
    RuntimeControl& m_control;
    Transcript* m_transcript;
    const Replay* m_replay;
    Replay::Cursor m_replayCursor;
    AdapterLink& m_link;
    std::chrono::steady_clock::time_point m_epoch;
    ObdResponder m_responder;
    FrameFormatter m_formatter;
    std::string m_banner;
    std::string m_lastCommand;
    std::string m_out;                   // reply under construction
    std::string m_sent;                  // parts of it already sent (for the transcript)
    std::vector<uint8_t> m_request;
    std::vector<EcuAnswer> m_answers;
    std::mt19937 m_random;
    TimingModel m_timing;
    ExchangeTiming m_exchange;           // of the reply under construction
    size_t m_bodyStart = 0;              // where the reply starts after the echo
    bool m_replyStarted = false;         // part of it already went out
    std::vector<std::string> m_previousFrames;   // lines of the last OBD answer
};

} // namespace ElmSim

#endif
