// Asking a server while the thread of the dialogs stays alive.
#pragma once

#include <windows.h>

#include <functional>
#include <optional>
#include <string>
#include <utility>

#include "services/providers/storage/UploadTexts.h"
#include "services/providers/worker/DetachedCall.h"

namespace providers {

// In front of which window the call is made, and what a window shows that comes when it takes
// longer: these texts, a bar without a measure and a cancel button.
struct CallWindow {
    HWND owner; // disabled meanwhile; may be null
    UploadTexts texts;
    std::wstring fileName;
    DWORD delay = 500; // milliseconds until it comes
};

// Waits until `done` is set, with the calling thread's messages dispatched, at most `limit`
// milliseconds. False when the wait ended first: `ended` was set, the owner has gone, the user has
// cancelled, or the thread is to quit.
bool AwaitAndPump(HANDLE done, HANDLE ended, const CallWindow& window, DWORD limit);

// Runs `work` on a thread of its own and waits for it as above. Nothing when the wait ended first:
// the event that the work gets is set then, and nobody waits for it any more. Nothing also when the
// work throws.
template <class Result>
std::optional<Result> CallAndPump(HANDLE ended, const CallWindow& window, DWORD limit,
                                  std::function<Result(HANDLE stop)> work) {
    if (window.owner && !IsWindow(window.owner)) return {};
    DetachedCall<Result> call(std::move(work));
    if (!AwaitAndPump(call.Done(), ended, window, limit)) return {};
    return call.Take();
}

} // namespace providers
