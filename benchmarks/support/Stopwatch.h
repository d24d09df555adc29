// The clock of the benchmarks.
#pragma once

#include <windows.h>

namespace bench {

// Runs from construction on. One tick of the counter is 100 ns under Wine, so anything shorter than
// some microseconds is measured in batches.
class Stopwatch {
public:
    Stopwatch() noexcept : began_(Now()) {}

    [[nodiscard]] double Nanoseconds() const noexcept {
        return static_cast<double>(Now() - began_) * 1e9 / static_cast<double>(Frequency());
    }
    [[nodiscard]] double Milliseconds() const noexcept { return Nanoseconds() / 1e6; }

private:
    static LONGLONG Now() noexcept {
        LARGE_INTEGER now;
        QueryPerformanceCounter(&now);
        return now.QuadPart;
    }
    static LONGLONG Frequency() noexcept {
        LARGE_INTEGER frequency;
        QueryPerformanceFrequency(&frequency);
        return frequency.QuadPart;
    }

    LONGLONG began_;
};

} // namespace bench
