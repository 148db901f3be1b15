// An adapter plugged into nothing: every search fails.
#include "profilecatalog.h"

namespace ElmSim {

Profile ProfileCatalog::none()
{
    Profile p;
    p.name = "none";
    p.summary = "no vehicle: every OBD request ends in UNABLE TO CONNECT";
    p.protocol = 0;
    return p;
}

} // namespace ElmSim
