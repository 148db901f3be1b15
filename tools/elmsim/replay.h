#ifndef ELMSIM_REPLAY_H
#define ELMSIM_REPLAY_H

#include <map>
#include <string>
#include <vector>

namespace ElmSim {

// A session recorded with --transcript, played back: every command gets the
// next reply recorded for the same command text (the last one again once
// they run out), after the time it took then. Commands never recorded get
// nothing from here; the adapter answers them "?".
class Replay
{
public:
    struct Reply {
        std::string text;                // exactly as sent, prompt included; empty: no answer
        unsigned int delayMs = 0;
    };
    using Cursor = std::map<std::string, size_t>;   // one per client session

    bool load(const std::string& path, std::string& error);
    bool isLoaded() const { return !m_replies.empty(); }
    const Reply* next(const std::string& command, Cursor& cursor) const;

    static std::string key(const std::string& command);     // upper case, no blanks
    static std::string unescape(const std::string& text);

private:
    std::map<std::string, std::vector<Reply>> m_replies;
};

} // namespace ElmSim

#endif
