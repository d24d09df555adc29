// What a target checks for every input.
#pragma once

#include <cstdio>
#include <cstdlib>

// Ends the process, which the fuzzer takes for a finding and keeps the input of.
inline void Require(bool isTrue, const char* what, const char* file = __builtin_FILE(),
                    int line = __builtin_LINE()) {
    if (isTrue) return;
    std::fprintf(stderr, "%s:%d: not true: %s\n", file, line, what);
    std::abort();
}
