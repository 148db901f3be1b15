#include "elmadapter.h"

#include "adapterlink.h"
#include "replynoise.h"
#include "runtimecontrol.h"
#include "transcript.h"

#include <algorithm>
#include <cctype>
#include <cstdio>

namespace ElmSim {

namespace {

const char* const STN_IDENTITY = "STN1110 v4.2.0";
const char* const DESCRIPTION = "OBDII to RS232 Interpreter";
const unsigned int DEFAULT_BAUD_TIMEOUT_MS = 75;   // ATBRT default 0F x 5 ms

int hexValue(char c)
{
    if (c >= '0' && c <= '9')
        return c - '0';
    if (c >= 'A' && c <= 'F')
        return c - 'A' + 10;
    return -1;
}

// Reads a hex argument of exactly `digits` digits after `prefix`.
bool hexArgument(const std::string& command, const char* prefix, size_t digits, unsigned int& value)
{
    const std::string p(prefix);
    if (command.size() != p.size() + digits || command.compare(0, p.size(), p) != 0)
        return false;
    value = 0;
    for (size_t i = p.size(); i < command.size(); ++i) {
        const int v = hexValue(command[i]);
        if (v < 0)
            return false;
        value = value * 16 + static_cast<unsigned int>(v);
    }
    return true;
}

bool startsWith(const std::string& text, const char* prefix)
{
    return text.rfind(prefix, 0) == 0;
}

unsigned int sessionSeed(int64_t seed)
{
    return seed >= 0 ? static_cast<unsigned int>(seed) : std::random_device{}();
}

TimingModel::Kind timingKind(const std::string& name)
{
    TimingModel::Kind kind = TimingModel::Kind::None;
    TimingModel::find(name, kind);
    return kind;
}

} // namespace

ElmAdapter::ElmAdapter(const ServerOptions& options, Profile& profile, std::mutex& vehicleMutex,
                       RuntimeControl& control, Transcript* transcript, const Replay* replay, AdapterLink& link,
                       std::chrono::steady_clock::time_point epoch)
    : m_options(options)
    , m_profile(profile)
    , m_vehicleMutex(vehicleMutex)
    , m_control(control)
    , m_transcript(transcript)
    , m_replay(replay)
    , m_link(link)
    , m_epoch(epoch)
    , m_responder(profile)
    , m_formatter(profile)
    , m_random(sessionSeed(options.seed))
    , m_timing(timingKind(options.timing), m_random)
{
    Personality::find(options.adapter, m_personality);   // the server checked the name
    m_banner = options.banner.empty() ? m_personality.banner : options.banner;
    if (m_personality.noisy)
        m_formatter.setRepeat([this] { return ReplyNoise::chance(m_random, 4); });
    m_out.reserve(512);
    m_request.reserve(8);
    powerUp();
}

void ElmAdapter::powerUp()
{
    m_echo = true;
    m_lineFeeds = false;               // TCP adapters start with line feeds off
    m_display = DisplaySettings();
    m_protocol = 0;
    m_automatic = true;
    m_searched = false;
    m_busInitDone = false;
    m_baudTimeoutMs = DEFAULT_BAUD_TIMEOUT_MS;
    m_awaitingBaudConfirm = false;
    m_display.fillLastFrame = m_personality.fillLastFrame;
    m_timing.reset();
}

double ElmAdapter::vehicleSeconds() const
{
    if (m_options.frozen)
        return 0.0;
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - m_epoch).count();
}

void ElmAdapter::addLine(const std::string& text)
{
    m_out += text;
    m_out += m_display.lineEnd;
}

void ElmAdapter::send(bool final)
{
    if (m_personality.trailingSpaces)
        ReplyNoise::addTrailingSpaces(m_out, m_bodyStart);
    if (!m_replyStarted) {
        // Noise comes before the answer, a status line after the echo.
        const bool statusLine = (m_options.noise && ReplyNoise::chance(m_random, 4))
                                || (m_personality.noisy && ReplyNoise::chance(m_random, 8));
        if (statusLine)
            m_out.insert(m_bodyStart, ReplyNoise::statusLine(m_random) + m_display.lineEnd);
        if (m_options.noise && ReplyNoise::chance(m_random, 2))
            m_out.insert(0, ReplyNoise::bytes(m_random));
    }
    if (final) {
        if (m_options.noise && ReplyNoise::chance(m_random, 4))
            m_out += ReplyNoise::bytes(m_random);
        m_out += m_display.lineEnd;
        for (unsigned int i = m_control.garbage(); i > 0; --i) {
            char c = static_cast<char>(m_random() & 0xFF);
            if (c == '>')
                c = '.';
            m_out.push_back(c);
        }
        m_out.push_back('>');
    }
    if (m_transcript) {
        m_sent += m_out;
        if (final)
            m_transcript->reply(m_sent);
    }
    if (final) {
        m_sent.clear();
        m_control.setLastExchange(m_exchange);
    }
    m_link.send(m_out);
    m_out.clear();
    m_bodyStart = 0;
    m_replyStarted = !final;
}

bool ElmAdapter::modelledPause(double ms)
{
    const double scaled = ms * m_options.timeScale;
    return scaled < 0.5 || m_link.pause(static_cast<unsigned int>(scaled + 0.5));
}

bool ElmAdapter::adapterPause(double ms)
{
    m_exchange.adapterMs += ms;
    return modelledPause(ms);
}

bool ElmAdapter::replayLine(const std::string& line)
{
    const Replay::Reply* reply = m_replay->next(line, m_replayCursor);
    const std::string text = reply ? reply->text : "?\r\r>";
    if (reply && !modelledPause(reply->delayMs))
        return true;
    if (m_transcript && !text.empty())
        m_transcript->reply(text);
    m_link.send(text);
    return true;
}

bool ElmAdapter::handleLine(const std::string& line)
{
    m_control.logLine(line);
    if (m_transcript)
        m_transcript->request(line);
    if (m_control.silent())
        return true;
    if (m_replay)
        return replayLine(line);

    std::string command;
    command.reserve(line.size());
    for (char c : line) {
        if (c != ' ' && c != '\t')
            command.push_back(static_cast<char>(std::toupper(static_cast<unsigned char>(c))));
    }

    m_out.clear();
    m_sent.clear();
    m_exchange = ExchangeTiming();
    m_replyStarted = false;
    if (m_echo) {
        m_out += line;
        m_out += m_display.lineEnd;
    }
    m_bodyStart = m_out.size();

    if (m_awaitingBaudConfirm) {
        // After ATBRD the adapter waits for a bare CR at the new rate.
        m_awaitingBaudConfirm = false;
        if (command.empty()) {
            addLine("OK");
            finish();
            return true;
        }
    }

    if (command.empty()) {
        // A bare CR repeats the previous command.
        if (m_lastCommand.empty()) {
            finish();
            return true;
        }
        command = m_lastCommand;
    }
    m_lastCommand = command;

    if (startsWith(command, "AT"))
        return handleAt(command.substr(2));
    if (command == "STI" && m_personality.answersSti) {
        addLine(STN_IDENTITY);
        finish();
        return true;
    }
    return handleObd(command);
}

bool ElmAdapter::handleAt(const std::string& c)
{
    unsigned int value = 0;
    const bool reset = c == "Z" || c == "WS";
    if (reset && c == "Z" && m_personality.dropOnReset)
        return false;                    // the Bluetooth link goes down with the reset
    if (!reset && !adapterPause(m_personality.atReplyMs))
        return true;
    if (m_personality.rejects(c)) {
        addLine("?");
    } else if (reset) {
        powerUp();
        const bool paused = m_personality.resetMs >= 0 ? adapterPause(m_personality.resetMs)
                                                        : m_link.pause(m_options.resetDelayMs);
        if (!paused)
            return true;
        if (m_personality.noisy)
            m_out += std::string("\0\xFC", 2);   // the reset shakes the line
        if (!m_options.identify) {
            addLine("?");
        } else {
            m_out += "\r\r";
            addLine(m_banner);
        }
        if (m_personality.noisy)
            m_out += "\xFC";
    } else if (c == "D") {
        powerUp();
        addLine("OK");
    } else if (c == "I") {
        addLine(m_options.identify ? m_banner : "?");
    } else if (c == "@1") {
        addLine(DESCRIPTION);
    } else if (c == "E0" || c == "E1") {
        m_echo = c[1] == '1';
        addLine("OK");
    } else if (c == "L0" || c == "L1") {
        m_lineFeeds = c[1] == '1';
        m_display.lineEnd = m_lineFeeds ? "\r\n" : "\r";
        addLine("OK");
    } else if (c == "H0" || c == "H1") {
        m_display.headers = c[1] == '1';
        addLine("OK");
    } else if (c == "S0" || c == "S1") {
        m_display.spaces = c[1] == '1';
        addLine("OK");
    } else if (c == "D0" || c == "D1") {
        m_display.dlc = c[1] == '1';
        addLine("OK");
    } else if (c == "DP") {
        std::string text;
        if (!m_automatic)
            text = Profile::protocolDescription(m_protocol);
        else if (m_searched)
            text = "AUTO, " + m_profile.protocolDescription();
        else if (m_protocol != 0)
            text = "AUTO, " + Profile::protocolDescription(m_protocol);
        else
            text = "AUTO";
        addLine(text);
    } else if (c == "DPN") {
        const int number = m_automatic && m_searched ? m_profile.protocol : m_protocol;
        std::string text = m_automatic ? "A" : "";
        text.push_back(static_cast<char>('0' + number));
        addLine(text);
    } else if (hexArgument(c, "SPA", 1, value) || hexArgument(c, "TPA", 1, value)) {
        if (value > 9) {
            addLine("?");
        } else {
            m_protocol = static_cast<int>(value);
            m_automatic = true;
            m_searched = false;
            addLine("OK");
        }
    } else if (hexArgument(c, "SP", 1, value) || hexArgument(c, "TP", 1, value)) {
        if (value > 9) {
            addLine("?");
        } else {
            m_protocol = static_cast<int>(value);
            m_automatic = value == 0;
            m_searched = false;
            m_busInitDone = false;
            addLine("OK");
        }
    } else if (hexArgument(c, "ST", 2, value)) {
        m_timing.setTimeout(value);
        addLine("OK");
    } else if (hexArgument(c, "AT", 1, value)) {
        m_timing.setAdaptive(value);
        addLine("OK");
    } else if (hexArgument(c, "BRT", 2, value)) {
        m_baudTimeoutMs = value == 0 ? 256 * 5 : value * 5;
        addLine("OK");
    } else if (hexArgument(c, "BRD", 2, value)) {
        if (value < 8) {
            addLine("?");
        } else {
            // On TCP the rate never really changes: the adapter still shows
            // its identity after the switch and waits for the CR.
            addLine("OK");
            sendPartial();
            if (!m_link.pause(m_baudTimeoutMs))
                return true;
            addLine(m_banner);
            sendPartial();
            m_awaitingBaudConfirm = true;
            return true;
        }
    } else if (c == "RV") {
        char text[16];
        std::snprintf(text, sizeof(text), "%.1fV", m_profile.ecus.empty() ? 12.6 : 13.9);
        addLine(text);
    } else if (c == "IGN") {
        addLine("ON");
    } else if (c == "CAF0" || c == "CAF1" || c == "CFC0" || c == "CFC1" || c == "AL" || c == "NL" || c == "PC"
               || c == "M0" || c == "M1" || c == "AR" || c == "KW0" || c == "KW1"
               || hexArgument(c, "SH", 3, value) || hexArgument(c, "SH", 6, value)
               || hexArgument(c, "CRA", 3, value)) {
        // Accepted and without effect here: the simulated ECUs answer
        // functional requests only.
        addLine("OK");
    } else {
        addLine("?");
    }
    finish();
    return true;
}

bool ElmAdapter::parseRequest(const std::string& command, size_t& maxAnswers)
{
    //  hex pairs, optionally one more digit: how many answers to wait for
    m_request.clear();
    maxAnswers = 0;
    size_t digits = command.size();
    if (digits % 2 == 1) {
        if (digits < 3)
            return false;
        const int count = hexValue(command.back());
        if (count < 0)
            return false;
        maxAnswers = static_cast<size_t>(count);
        --digits;
    }
    if (digits == 0 || digits > 14)
        return false;
    for (size_t i = 0; i < digits; i += 2) {
        const int high = hexValue(command[i]);
        const int low = hexValue(command[i + 1]);
        if (high < 0 || low < 0)
            return false;
        m_request.push_back(static_cast<uint8_t>(high * 16 + low));
    }
    return true;
}

bool ElmAdapter::searchIfNeeded()
{
    const bool can = m_profile.isCan();
    if (m_automatic && !m_searched) {
        // The search prints its word at once, the outcome when it is done.
        addLine("SEARCHING...");
        sendPartial();
        if (!m_link.pause(m_options.searchDelayMs))
            return false;
        if (m_profile.protocol == 0) {
            addLine("UNABLE TO CONNECT");
            return false;
        }
        m_searched = true;
        return true;
    }
    if (m_automatic)
        return true;
    if (m_protocol != m_profile.protocol) {
        const bool setCan = m_protocol >= 6;
        addLine(setCan ? "CAN ERROR" : "UNABLE TO CONNECT");
        return false;
    }
    if (!can && m_profile.busInitMessage && !m_busInitDone && m_protocol >= 3 && m_protocol <= 5) {
        addLine("BUS INIT: ...OK");
        m_busInitDone = true;
    }
    return true;
}

bool ElmAdapter::handleObd(const std::string& command)
{
    size_t maxAnswers = 0;
    if (!parseRequest(command, maxAnswers)) {
        addLine("?");
        finish();
        return true;
    }
    if (m_control.dropBeforeRequest())
        return false;

    const unsigned int jitter = m_control.jitterMs();
    const unsigned int delay = m_control.delayMs() + (jitter > 0 ? m_random() % (jitter + 1) : 0);
    if (delay > 0 && !m_link.pause(delay))
        return true;
    if (m_personality.obdMaxMs > 0) {
        std::uniform_real_distribution<double> ms(m_personality.obdMinMs, m_personality.obdMaxMs);
        if (!adapterPause(ms(m_random)))
            return true;
    }
    m_control.countRequest();

    std::string word;
    if (m_control.takeError(word)) {
        addLine(word);
        finish();
        return true;
    }
    if (!searchIfNeeded()) {
        finish();
        return true;
    }
    {
        std::lock_guard<std::mutex> lock(m_vehicleMutex);
        m_responder.respond(m_request.data(), m_request.size(), vehicleSeconds(), m_answers);
        const ExchangeTiming timing
            = m_timing.exchange(m_timing.arrivals(m_profile, m_request.size(), m_answers), maxAnswers);
        m_exchange.linkMs = timing.linkMs;
        m_exchange.busMs = timing.busMs;
        m_exchange.waitMs = timing.waitMs;
        m_answers.resize(std::min(m_answers.size(), timing.received));
    }
    // The answers print as they come; the prompt waits for the time-out.
    if (!modelledPause(m_exchange.linkMs / 2 + m_exchange.busMs))
        return true;
    const size_t dataStart = m_out.size();
    {
        std::lock_guard<std::mutex> lock(m_vehicleMutex);
        const bool kLine = m_profile.protocol >= 3 && m_profile.protocol <= 5;
        if (m_personality.noisy && kLine && !m_answers.empty() && ReplyNoise::chance(m_random, 2))
            m_answers.front().messages.insert(m_answers.front().messages.begin(), { 0x7F, m_request[0], 0x78 });
        if (m_answers.empty())
            addLine("NO DATA");
        else
            m_formatter.format(m_answers, m_display, maxAnswers, m_out);
    }
    if (m_personality.noisy && !m_answers.empty())
        addNoise(dataStart);
    if (m_exchange.waitMs > 0) {
        sendPartial();
        if (!modelledPause(m_exchange.waitMs + m_exchange.linkMs / 2))
            return true;
    }
    finish();
    return true;
}

void ElmAdapter::addNoise(size_t dataStart)
{
    // A frame left over from the previous request shows up after the first
    // line of this answer.
    std::vector<std::string> lines;
    const std::string end = m_display.lineEnd;
    for (size_t at = dataStart; at < m_out.size();) {
        const size_t next = m_out.find(end, at);
        if (next == std::string::npos)
            break;
        lines.push_back(m_out.substr(at, next + end.size() - at));
        at = next + end.size();
    }
    if (!m_previousFrames.empty() && !lines.empty() && ReplyNoise::chance(m_random, 4)) {
        const size_t pick = m_random() % m_previousFrames.size();
        m_out.insert(dataStart + lines.front().size(), m_previousFrames[pick]);
    }
    m_previousFrames = std::move(lines);
}

} // namespace ElmSim
