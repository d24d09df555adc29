// Sees the shell's dialog of another process come up, and cancels it.
#pragma once

#include <windows.h>

#include <atomic>
#include <thread>

#include "benchmarks/support/Stopwatch.h"

namespace bench {

// Watches on a thread of its own from construction on, looking every millisecond; one dialog a
// watch. The clock starts with the watch, so it is made right before what is measured.
class DialogWatch {
public:
    DialogWatch();
    DialogWatch(const DialogWatch&) = delete;
    DialogWatch& operator=(const DialogWatch&) = delete;
    ~DialogWatch();

    // Until the dialog was visible, once what it belongs to has ended; negative when none came.
    [[nodiscard]] double Milliseconds();

private:
    void Run();

    Stopwatch clock_;
    std::atomic<bool> ended_ = false;
    double visibleAfter_ = -1;
    std::thread thread_;
};

} // namespace bench
