#include "replay.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <fstream>

namespace ElmSim {

namespace {

// "12:03:04.512 +1.204 > 010C": seconds since the transcript opened, the
// direction and the escaped text.
bool parseLine(const std::string& line, double& seconds, char& direction, std::string& text)
{
    const size_t plus = line.find(" +");
    if (plus == std::string::npos)
        return false;
    char* end = nullptr;
    seconds = std::strtod(line.c_str() + plus + 2, &end);
    const size_t at = static_cast<size_t>(end - line.c_str());
    if (at + 2 > line.size() || line[at] != ' ' || (line[at + 1] != '>' && line[at + 1] != '<'))
        return false;
    direction = line[at + 1];
    text = at + 3 <= line.size() ? Replay::unescape(line.substr(at + 3)) : std::string();
    return true;
}

} // namespace

std::string Replay::key(const std::string& command)
{
    std::string k;
    for (char c : command) {
        if (c != ' ' && c != '\t')
            k.push_back(static_cast<char>(std::toupper(static_cast<unsigned char>(c))));
    }
    return k;
}

std::string Replay::unescape(const std::string& text)
{
    std::string out;
    for (size_t i = 0; i < text.size(); ++i) {
        if (text[i] != '\\' || i + 1 == text.size()) {
            out.push_back(text[i]);
            continue;
        }
        const char c = text[++i];
        if (c == 'r') {
            out.push_back('\r');
        } else if (c == 'n') {
            out.push_back('\n');
        } else if (c == 'x' && i + 2 < text.size()) {
            out.push_back(static_cast<char>(std::strtol(text.substr(i + 1, 2).c_str(), nullptr, 16)));
            i += 2;
        } else {
            out.push_back(c);
        }
    }
    return out;
}

bool Replay::load(const std::string& path, std::string& error)
{
    std::ifstream file(path);
    if (!file) {
        error = "cannot read replay " + path;
        return false;
    }
    m_replies.clear();
    std::string line;
    std::string pending;                 // the request still waiting for its reply
    double requestSeconds = 0.0;
    bool waiting = false;
    while (std::getline(file, line)) {
        double seconds = 0.0;
        char direction = 0;
        std::string text;
        if (!parseLine(line, seconds, direction, text))
            continue;
        if (direction == '>') {
            if (waiting)
                m_replies[pending].push_back(Reply());      // it got no answer
            pending = key(text);
            requestSeconds = seconds;
            waiting = true;
        } else if (waiting) {
            const double ms = std::max(0.0, (seconds - requestSeconds) * 1000.0);
            m_replies[pending].push_back(Reply{ text, static_cast<unsigned int>(ms + 0.5) });
            waiting = false;
        }
    }
    if (waiting)
        m_replies[pending].push_back(Reply());
    if (m_replies.empty()) {
        error = "no exchanges in replay " + path;
        return false;
    }
    return true;
}

const Replay::Reply* Replay::next(const std::string& command, Cursor& cursor) const
{
    const auto found = m_replies.find(key(command));
    if (found == m_replies.end())
        return nullptr;
    size_t& position = cursor[found->first];
    const Reply* reply = &found->second[std::min(position, found->second.size() - 1)];
    ++position;
    return reply;
}

} // namespace ElmSim
