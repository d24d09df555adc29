// Seams into a run's workers: what they allocate, and each call of the compressor that they make.
// Linked into a test program, they take the place of the heap's operators and wrap the compressor.
#pragma once

#include <windows.h>

#include <cstddef>
#include <functional>

#include "ObLib/Src/Win32/UniqueHandle.h"

namespace obtest {

// Called on every thread but the one that made it, before each call of the compressor. It may block
// and may throw what a task may throw. One at a time; made and ended while no run goes on.
class CompressorSeam {
public:
    explicit CompressorSeam(std::function<void()> before);
    ~CompressorSeam();
    CompressorSeam(const CompressorSeam&) = delete;
    CompressorSeam& operator=(const CompressorSeam&) = delete;

    // How often it was called.
    std::size_t Calls() const;
};

// Which allocations fail, from the one behind `succeeding` others on.
struct AllocationPlan {
    std::size_t succeeding = 0;
    std::size_t smallest = 0; // smaller ones neither fail nor count
    bool othersOnly = false;  // only on other threads than the one that made the seam
    bool once = false;        // only that one; otherwise all that follow too
};

// Lets allocations fail for a scope. One at a time.
class FailingAllocations {
public:
    explicit FailingAllocations(const AllocationPlan& plan);
    ~FailingAllocations() { End(); }
    FailingAllocations(const FailingAllocations&) = delete;
    FailingAllocations& operator=(const FailingAllocations&) = delete;

    // From here on none fails.
    void End();

    // Whether it ever came to a failure.
    bool Failed() const;
};

// Bytes that are allocated beyond those that were when it was made, at most.
class HeapPeak {
public:
    HeapPeak();
    std::size_t Bytes() const;

private:
    std::size_t before_;
};

// Closed until it is opened. Whoever waits too long goes on, so that no test hangs.
class Gate {
public:
    Gate() : event_(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {}
    void Open() const { SetEvent(event_.Get()); }
    bool Wait(DWORD milliseconds = 30'000) const {
        return WaitForSingleObject(event_.Get(), milliseconds) == WAIT_OBJECT_0;
    }

private:
    ObLib::UniqueKernelHandle event_;
};

// Threads of this process.
std::size_t ThreadCount();

// True when there are no more than `count`, at once or within some seconds.
bool AwaitThreads(std::size_t count);

} // namespace obtest
