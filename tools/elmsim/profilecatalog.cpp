#include "profilecatalog.h"

namespace ElmSim {

const std::vector<std::pair<std::string, ProfileCatalog::Maker>>& ProfileCatalog::table()
{
    static const std::vector<std::pair<std::string, Maker>> TABLE = {
        { "can11", &ProfileCatalog::can11 },
        { "can29", &ProfileCatalog::can29 },
        { "kwp", &ProfileCatalog::kwp },
        { "iso9141", &ProfileCatalog::iso9141 },
        { "j1850vpw", &ProfileCatalog::j1850vpw },
        { "j1850pwm", &ProfileCatalog::j1850pwm },
        { "diesel", &ProfileCatalog::diesel },
        { "none", &ProfileCatalog::none },
    };
    return TABLE;
}

std::vector<std::string> ProfileCatalog::names()
{
    std::vector<std::string> list;
    for (const auto& entry : table())
        list.push_back(entry.first);
    return list;
}

bool ProfileCatalog::find(const std::string& name, Profile& profile)
{
    for (const auto& entry : table()) {
        if (entry.first == name) {
            profile = entry.second();
            return true;
        }
    }
    return false;
}

} // namespace ElmSim
