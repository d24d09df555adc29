// File calls that a cancel breaks off: a share that no longer responds blocks a call for a minute.
#pragma once

#include <windows.h>

#include <mutex>

#include "ObLib/Src/Win32/UniqueHandle.h"

namespace providers {

// Belongs to the thread that makes it, which runs its calls through it. A thread of its own waits
// for the cancel.
class BreakableCalls {
public:
    // `cancelled` is an event and outlives this object. Without memory for the thread no call is
    // broken off.
    explicit BreakableCalls(HANDLE cancelled);
    ~BreakableCalls();
    BreakableCalls(const BreakableCalls&) = delete;
    BreakableCalls& operator=(const BreakableCalls&) = delete;

    // Runs one call, which fails with ERROR_OPERATION_ABORTED when it is broken off. The last error
    // of the call stays. Calls outside of this, as those that clean up, are never broken off.
    template <class Call>
    auto Run(Call call) {
        SetInside(true);
        auto result = call();
        SetInside(false);
        return result;
    }

private:
    static DWORD WINAPI Entry(void* self) noexcept;
    void Watch() noexcept;
    void SetInside(bool isInside) noexcept;

    HANDLE cancelled_;
    ObLib::UniqueKernelHandle caller_; // the thread that makes the calls
    ObLib::UniqueKernelHandle over_;   // an event that ends the watching thread
    std::mutex lock_;                  // of the next one, and around a call that breaks one off
    bool isInside_ = false;
    ObLib::UniqueKernelHandle watcher_;
};

} // namespace providers
