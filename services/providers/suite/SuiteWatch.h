// Decides when a suite that works on a document counts as hung.
#pragma once

#include <windows.h>

#include <cstdint>

namespace providers {

// When a suite counts as hung. Milliseconds.
struct SuiteLimits {
    DWORD silence = 180000; // without any use of a processor by the suite
    DWORD whole = 900000;   // for one document
};

// A suite reports no progress, so its use of the processors is taken for it. One that shows a
// question or waits for something uses next to none.
class SuiteWatch {
public:
    // `now` is the time of GetTickCount64 as for all calls.
    SuiteWatch(const SuiteLimits& limits, std::uint64_t now) noexcept
        : limits_(limits), start_(now), lastProgressAt_(now) {}

    // `used` is the processor time of the suite so far, in units of 100 nanoseconds. True when it
    // counts as hung.
    bool IsHung(std::uint64_t used, std::uint64_t now) noexcept;

private:
    SuiteLimits limits_;
    std::uint64_t start_;
    std::uint64_t lastProgressAt_;
    std::uint64_t cpuTimeThen_ = 0; // of the suite at that time
};

} // namespace providers
