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
        : limits_(limits), start_(now), moved_(now) {}

    // `used` is the processor time of the suite so far, in units of 100 nanoseconds. True when it
    // counts as hung.
    bool IsHung(std::uint64_t used, std::uint64_t now) noexcept;

private:
    SuiteLimits limits_;
    std::uint64_t start_;
    std::uint64_t moved_;    // when it was last seen to work
    std::uint64_t used_ = 0; // by then
};

} // namespace providers
