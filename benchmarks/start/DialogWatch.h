// Waits until the shell's dialog of another process is visible, and cancels it.
#pragma once

#include <windows.h>

#include <atomic>
#include <thread>

#include "benchmarks/support/Stopwatch.h"

namespace bench {

// Watches on a thread of its own from construction on, looking every millisecond; each watch sees
// one dialog. Its clock starts at construction, so construct it right before what is measured.
class DialogWatch {
public:
    DialogWatch();
    DialogWatch(const DialogWatch&) = delete;
    DialogWatch& operator=(const DialogWatch&) = delete;
    ~DialogWatch();

    // The time until the dialog was visible; negative when none came. To be called after the
    // dialog's process has ended.
    [[nodiscard]] double Milliseconds();

private:
    void Run();

    Stopwatch clock_;
    std::atomic<bool> ended_ = false;
    double visibleAfter_ = -1;
    std::thread thread_;
};

} // namespace bench
