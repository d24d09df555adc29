// A clock of the test's own: the work process then reports its progress as often as a test wants.
#pragma once

#include <windows.h>

#include <atomic>

#include "tests/support/ImportPatch.h"

namespace obtest {

// As long as it exists, the program's clock goes on by `step` milliseconds whenever any thread asks
// it. Made and ended while no other thread asks it. One at a time.
class SteppedClock {
public:
    explicit SteppedClock(ULONGLONG step) : patch_("kernel32.dll", "GetTickCount64", &Asked) {
        time_ = 0;
        step_ = step;
    }
    // As ImportPatch.
    bool Ok() const { return patch_.Ok(); }
    void StepBy(ULONGLONG step) { step_ = step; }

private:
    static ULONGLONG WINAPI Asked() { return time_ += step_; }

    inline static std::atomic<ULONGLONG> time_ = 0;
    inline static std::atomic<ULONGLONG> step_ = 0;
    const ImportPatch<decltype(&GetTickCount64)> patch_;
};

} // namespace obtest
