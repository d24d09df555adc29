// A seam into a run's workers, which wraps the compressor, and what tests wait on: a gate, and the
// number of threads.
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
