// Asking a server while the thread of the dialogs stays alive.
#pragma once

#include <windows.h>

#include <functional>
#include <memory>
#include <optional>
#include <utility>

namespace providers {

// Runs `work` on a thread of its own and waits for its end, with the calling thread's messages
// dispatched, at most `limit` milliseconds. False when the wait ended first: `ended` was set, the
// owner has gone or got the command IDCANCEL, or the thread is to quit. The event that the work
// gets is set then, and nobody waits for it any more; so it owns what it uses. False also when the
// work throws.
bool RunAndPump(HANDLE ended, HWND owner, DWORD limit, std::function<void(HANDLE stop)> work);

// The same with a result; nothing in place of false.
template <class Result, class Work>
std::optional<Result> CallAndPump(HANDLE ended, HWND owner, DWORD limit, Work work) {
    const auto result = std::make_shared<Result>();
    const bool isDone = RunAndPump(ended, owner, limit,
                                   [result, work](HANDLE stop) mutable { *result = work(stop); });
    if (!isDone) return {};
    return std::move(*result);
}

} // namespace providers
