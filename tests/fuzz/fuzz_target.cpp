// One libFuzzer target per entry of FuzzEntries; the build names the entry
// (FUZZ_ENTRY). Run through scripts/fuzz.sh, or by hand:
//   build-fuzz/tests/fuzz/fuzz_pids -max_total_time=60 tests/fuzz/corpus/pids

#include "fuzzentries.h"

#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size)
{
    if (!FuzzEntries::FUZZ_ENTRY(data, size))
        std::abort();
    return 0;
}
