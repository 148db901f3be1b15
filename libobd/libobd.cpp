#include "libobd.h"
#include "trlog.h"

namespace Obd {

bool libInit()
{
    OBD_DEBUG << "Lib init";
    return true;
}

void libCleanup()
{
    OBD_DEBUG << "Lib cleanup done";
}

} // namespace Obd
