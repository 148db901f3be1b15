#include "extendedpid.h"

namespace Obd {

ExtendedPid::ExtendedPid(unsigned char pid, unsigned char mode)
    : NumericPid(pid, mode)
{
}

ExtendedPid::~ExtendedPid()
{
}

} // namespace Obd
