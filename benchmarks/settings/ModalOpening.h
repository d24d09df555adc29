// A modal dialog from its call to its last paint, and its end.
#pragma once

#include <windows.h>

#include <functional>
#include <optional>

namespace bench {

struct Opening {
    double milliseconds = 0;     // from the call to the last paint
    double heapKilobytes = 0;    // in use more than before the call
    double privateKilobytes = 0; // of the whole process
};

// Calls `show`, which opens a modal dialog below the window that it is given, and cancels the
// dialog once it is painted and its queue is empty; before that, `use` may try it. Nothing when no
// dialog came. On the calling thread.
std::optional<Opening> OpenOnce(const std::function<void(HWND owner)>& show,
                                const std::function<void(HWND dialog)>& use = {});

} // namespace bench
