#ifndef ELMSIM_PERSONALITY_H
#define ELMSIM_PERSONALITY_H

#include <string>
#include <vector>

namespace ElmSim {

// How one kind of adapter deviates from a genuine ELM327 v1.5: identity,
// the AT commands it does not know, how it prints frames, how slow it is
// and what noise it adds. Plain data; the adapter applies it.
struct Personality {
    std::string name;
    std::string banner;                  // ATZ / ATI identity
    std::vector<std::string> rejected;   // AT command prefixes (after "AT") answered "?"
    bool fillLastFrame = true;           // last consecutive frame printed with its filler
    bool trailingSpaces = false;         // every reply line ends with a space
    bool dropOnReset = false;            // ATZ closes the link instead of answering
    bool answersSti = false;             // STI prints an STN identification
    bool noisy = false;                  // duplicated and stale frames, status lines, 7F 78
    int resetMs = -1;                    // ATZ / ATWS time; -1: the server's reset delay
    unsigned int atReplyMs = 0;          // every other AT reply
    unsigned int obdMinMs = 0;           // OBD replies: uniform in [min, max]
    unsigned int obdMaxMs = 0;

    bool rejects(const std::string& atCommand) const;

    static bool find(const std::string& name, Personality& personality);
    static std::vector<std::string> names();
};

} // namespace ElmSim

#endif
