#ifndef ELMSIM_PROFILECATALOG_H
#define ELMSIM_PROFILECATALOG_H

#include "profile.h"

#include <string>
#include <utility>
#include <vector>

namespace ElmSim {

// The built-in vehicles, by name. Each profile's data lives in its own
// file under profiles/.
class ProfileCatalog
{
public:
    static std::vector<std::string> names();
    static bool find(const std::string& name, Profile& profile);

private:
    using Maker = Profile (*)();
    static const std::vector<std::pair<std::string, Maker>>& table();

    static Profile can11();
    static Profile can29();
    static Profile kwp();
    static Profile iso9141();
    static Profile j1850vpw();
    static Profile j1850pwm();
    static Profile diesel();
    static Profile none();
};

} // namespace ElmSim

#endif
