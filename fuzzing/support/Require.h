// What a target holds to be true of every input.
#pragma once

#include <cstdio>
#include <cstdlib>

// Ends the process, which the fuzzer takes for a finding and keeps the input of.
inline void Require(bool holds, const char* what, const char* file = __builtin_FILE(),
                    int line = __builtin_LINE()) {
    if (holds) return;
    std::fprintf(stderr, "%s:%d: doesn't hold: %s\n", file, line, what);
    std::abort();
}
