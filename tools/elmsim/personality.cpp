#include "personality.h"

namespace ElmSim {

namespace {

std::vector<Personality> table()
{
    Personality genuine;
    genuine.name = "genuine";
    genuine.banner = "ELM327 v1.5";

    Personality cloneV15 = genuine;
    cloneV15.name = "clone-v15";
    cloneV15.rejected = { "@1", "AT", "ST" };
    cloneV15.fillLastFrame = false;
    cloneV15.trailingSpaces = true;

    Personality cloneV21 = cloneV15;
    cloneV21.name = "clone-v21";
    cloneV21.banner = "ELM327 v2.1";
    cloneV21.rejected.insert(cloneV21.rejected.end(),
                             { "@2", "@3", "IGN", "BRD", "BRT", "CRA", "KW", "PC", "D0", "D1", "CS" });
    cloneV21.dropOnReset = true;

    Personality slowBt = genuine;
    slowBt.name = "slow-bt";
    slowBt.resetMs = 1500;
    slowBt.atReplyMs = 600;
    slowBt.obdMinMs = 40;
    slowBt.obdMaxMs = 80;

    Personality stn = genuine;
    stn.name = "stn";
    stn.banner = "ELM327 v1.4b";
    stn.answersSti = true;
    stn.resetMs = 100;

    Personality noisy = genuine;
    noisy.name = "noisy";
    noisy.noisy = true;

    return { genuine, cloneV15, cloneV21, slowBt, stn, noisy };
}

} // namespace

bool Personality::rejects(const std::string& atCommand) const
{
    for (const std::string& prefix : rejected) {
        if (atCommand.compare(0, prefix.size(), prefix) == 0)
            return true;
    }
    return false;
}

bool Personality::find(const std::string& name, Personality& personality)
{
    for (const Personality& p : table()) {
        if (p.name == name) {
            personality = p;
            return true;
        }
    }
    return false;
}

std::vector<std::string> Personality::names()
{
    std::vector<std::string> list;
    for (const Personality& p : table())
        list.push_back(p.name);
    return list;
}

} // namespace ElmSim
