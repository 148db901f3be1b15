#include "timingmodel.h"

#include "obdresponder.h"
#include "profile.h"

#include <algorithm>
#include <cmath>

namespace ElmSim {

namespace {

const unsigned int DEFAULT_TIMEOUT = 0x32;      // x 4 ms = 200 ms
const double TIMEOUT_STEP_MS = 4.0;
const double DEFAULT_ECU_LATENCY_MS = 20.0;
const double ECU_JITTER = 0.1;                  // +-10 % around the profile's figure
const double KLINE_IDLE_MS = 55.0;              // ISO 9141 / KWP: bus idle before a request (P3)

struct Named {
    const char* name;
    TimingModel::Kind kind;
};

const Named KINDS[] = { { "none", TimingModel::Kind::None },     { "genuine", TimingModel::Kind::Genuine },
                        { "bt-clone", TimingModel::Kind::BtClone }, { "wifi", TimingModel::Kind::Wifi },
                        { "stn", TimingModel::Kind::Stn } };

size_t canFrames(size_t length)
{
    return length <= 7 ? 1 : 1 + (length - 6 + 6) / 7;
}

} // namespace

bool TimingModel::find(const std::string& name, Kind& kind)
{
    for (const Named& n : KINDS) {
        if (name == n.name) {
            kind = n.kind;
            return true;
        }
    }
    return false;
}

std::vector<std::string> TimingModel::names()
{
    std::vector<std::string> list;
    for (const Named& n : KINDS)
        list.push_back(n.name);
    return list;
}

TimingModel::TimingModel(Kind kind, std::mt19937& random)
    : m_kind(kind)
    , m_random(random)
{
    reset();
}

void TimingModel::reset()
{
    m_timeout = DEFAULT_TIMEOUT;
    m_adaptive = 1;
    m_learnedMs = 0.0;
}

void TimingModel::setTimeout(unsigned int hh)
{
    m_timeout = hh == 0 ? DEFAULT_TIMEOUT : hh;
}

void TimingModel::setAdaptive(unsigned int mode)
{
    m_adaptive = std::min(mode, 2u);
}

double TimingModel::timeoutMs() const
{
    const double set = m_timeout * TIMEOUT_STEP_MS;
    // Bluetooth clones keep the set time-out whatever they are told.
    if (m_kind == Kind::BtClone || m_adaptive == 0 || m_learnedMs <= 0.0)
        return set;
    const bool aggressive = m_adaptive == 2 || m_kind == Kind::Stn;
    const double learned = aggressive ? m_learnedMs * 1.25 + 4.0 : m_learnedMs * 1.5 + 16.0;
    return std::min(set, learned);
}

double TimingModel::uniform(double low, double high)
{
    return std::uniform_real_distribution<double>(low, high)(m_random);
}

std::vector<Arrival> TimingModel::arrivals(const Profile& profile, size_t requestBytes,
                                           const std::vector<EcuAnswer>& answers)
{
    std::vector<Arrival> result(answers.size());
    if (m_kind == Kind::None)
        return result;
    const bool can = profile.isCan();
    const double frameMs = profile.protocol >= 8 ? 0.5 : 0.25;    // CAN 250 / 500 kbit/s
    const double byteMs = profile.protocol == 1 ? 0.2 : profile.protocol == 2 ? 0.8 : 0.96;
    const bool kLine = profile.protocol >= 3 && profile.protocol <= 5;
    // The request on the bus: one CAN frame, or header, data and check byte.
    // Answers are timed from its end, as the adapter's time-out is.
    m_requestMs = can ? frameMs : (kLine ? KLINE_IDLE_MS : 0.0) + (requestBytes + 4) * byteMs;
    double previous = 0.0;
    for (size_t i = 0; i < answers.size(); ++i) {
        const EcuProfile* ecu = profile.ecu(answers[i].ecuId);
        const double base = ecu && ecu->latencyMs > 0 ? ecu->latencyMs : DEFAULT_ECU_LATENCY_MS;
        const double latency = base * uniform(1.0 - ECU_JITTER, 1.0 + ECU_JITTER);
        Arrival& a = result[i];
        if (can) {
            // Every ECU hears the functional request at once; the bus shows
            // their answers in the order printed.
            size_t frames = 0;
            for (const auto& message : answers[i].messages)
                frames += canFrames(message.size());
            a.firstMs = std::max(previous, latency + frameMs);
            a.lastMs = std::max(a.firstMs, latency + frames * frameMs);
        } else {
            // One ECU after the other; further lines of one answer come
            // sooner than the first.
            double t = previous;
            for (size_t m = 0; m < answers[i].messages.size(); ++m) {
                t += (m == 0 ? latency : latency / 4) + (answers[i].messages[m].size() + 4) * byteMs;
                if (m == 0)
                    a.firstMs = t;
            }
            a.lastMs = t;
        }
        previous = a.lastMs;
    }
    return result;
}

ExchangeTiming TimingModel::exchange(const std::vector<Arrival>& arrivals, size_t expected)
{
    ExchangeTiming timing;
    if (m_kind == Kind::None) {
        timing.received = arrivals.size();
        return timing;
    }
    if (m_kind == Kind::BtClone)
        timing.linkMs = uniform(10.0, 40.0);
    else if (m_kind == Kind::Wifi)
        timing.linkMs = uniform(2.0, 20.0);
    else if (m_kind == Kind::Stn)
        timing.linkMs = 1.0;

    // The time-out runs from the request and again from every answer.
    const double timeout = timeoutMs();
    double last = 0.0;
    double slowest = 0.0;
    for (const Arrival& a : arrivals) {
        if (a.firstMs - last > timeout)
            break;
        slowest = std::max(slowest, a.firstMs - last);
        last = a.lastMs;
        if (++timing.received == expected)
            break;
    }
    timing.busMs = m_requestMs + last;
    timing.waitMs = expected != 0 && timing.received == expected ? 0.0 : timeout;
    if (timing.received > 0)
        m_learnedMs = m_learnedMs <= 0.0 ? slowest : std::max(slowest, 0.75 * m_learnedMs + 0.25 * slowest);
    return timing;
}

} // namespace ElmSim
