#ifndef ELMSIM_TEST_FASTOPTIONS_H
#define ELMSIM_TEST_FASTOPTIONS_H

#include "serveroptions.h"

#include <string>

// Options for an in-process simulator that answers at once with
// deterministic values: ephemeral port, no boot or search time, frozen car.
inline ElmSim::ServerOptions fastOptions(const std::string& profile)
{
    ElmSim::ServerOptions options;
    options.port = 0;
    options.profile = profile;
    options.resetDelayMs = 0;
    options.searchDelayMs = 0;
    options.frozen = true;
    return options;
}

#endif
