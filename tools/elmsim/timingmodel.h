#ifndef ELMSIM_TIMINGMODEL_H
#define ELMSIM_TIMINGMODEL_H

#include <cstddef>
#include <random>
#include <string>
#include <vector>

namespace ElmSim {

struct EcuAnswer;
struct Profile;

// When one ECU's answer is on the bus, counted from the end of the request.
struct Arrival {
    double firstMs = 0.0;                // its first frame complete
    double lastMs = 0.0;                 // its last frame complete
};

// Where the time of one exchange goes, as modelled, in milliseconds.
struct ExchangeTiming {
    double adapterMs = 0.0;              // the adapter's own slowness (its personality)
    double linkMs = 0.0;                 // the host link, both ways
    double busMs = 0.0;                  // until the last answer taken
    double waitMs = 0.0;                 // listening after it, until the prompt
    size_t received = 0;                 // answers taken before the time-out
    double totalMs() const { return adapterMs + linkMs + busMs + waitMs; }
};

// An adapter's timing: ECU latency and bus time per profile, the host link,
// and the time-out after the last answer (AT ST, adaptive timing AT AT0/1/2,
// cut short by the responses-expected digit). Kind None answers at once.
class TimingModel
{
public:
    enum class Kind { None, Genuine, BtClone, Wifi, Stn };
    static bool find(const std::string& name, Kind& kind);
    static std::vector<std::string> names();

    TimingModel(Kind kind, std::mt19937& random);

    void reset();                        // power-up: AT ST 32, AT AT1, nothing learned
    void setTimeout(unsigned int hh);    // AT ST hh; 00 restores the default
    void setAdaptive(unsigned int mode); // AT AT0/1/2
    // The time-out applied now: AT ST, or shorter once adaptive timing learned.
    double timeoutMs() const;

    std::vector<Arrival> arrivals(const Profile& profile, size_t requestBytes,
                                  const std::vector<EcuAnswer>& answers);
    // Takes the answers that come in time, stops at the expected count
    // (0: not given) or after the time-out, and learns the response time.
    ExchangeTiming exchange(const std::vector<Arrival>& arrivals, size_t expected);

private:
    double uniform(double low, double high);

    Kind m_kind;
    std::mt19937& m_random;
    unsigned int m_timeout = 0;
    unsigned int m_adaptive = 1;
    double m_learnedMs = 0.0;            // 0: nothing learned yet
    double m_requestMs = 0.0;            // bus time of the last request
};

} // namespace ElmSim

#endif
