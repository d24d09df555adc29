#include "benchmarks/support/Series.h"

#include <windows.h>

#include <cstdio>

namespace bench {

void PrintSeries(const char* name, const std::vector<double>& samples) {
    std::printf("%s\t", name);
    for (const double sample : samples) std::printf("%.4f ", sample);
    std::printf("\n");
    std::fflush(stdout);
}

int Fail(const char* what) {
    std::fprintf(stderr, "bench: %s (error %lu)\n", what, GetLastError());
    return 1;
}

} // namespace bench
