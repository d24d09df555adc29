// Asking a server while the thread of the dialogs stays alive.
#pragma once

#include <windows.h>

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include "services/providers/storage/UploadTexts.h"

namespace providers {

// In front of which window the call is made, and what a window shows that comes when it takes
// longer: these texts, a bar without a measure and a cancel button.
struct CallWindow {
    HWND owner; // disabled meanwhile; may be null
    UploadTexts texts;
    std::wstring fileName;
    DWORD delay = 500; // milliseconds until it comes
};

// Runs `work` on a thread of its own and waits for its end, with the calling thread's messages
// dispatched, at most `limit` milliseconds. False when the wait ended first: `ended` was set, the
// owner has gone, the user has cancelled, or the thread is to quit. The event that the work gets is
// set then, and nobody waits for it any more; so it owns what it uses. False also when the work
// throws.
bool RunAndPump(HANDLE ended, const CallWindow& window, DWORD limit,
                std::function<void(HANDLE stop)> work);

// The same with a result; nothing in place of false.
template <class Result, class Work>
std::optional<Result> CallAndPump(HANDLE ended, const CallWindow& window, DWORD limit, Work work) {
    const auto result = std::make_shared<Result>();
    const bool isDone = RunAndPump(ended, window, limit,
                                   [result, work](HANDLE stop) mutable { *result = work(stop); });
    if (!isDone) return {};
    return std::move(*result);
}

} // namespace providers
