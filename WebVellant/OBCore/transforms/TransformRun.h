// One run of the transforms: what the dialog's thread and the worker thread share.
#pragma once

#include <windows.h>

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

#include "OBCore/modules/ManagerCalls.h"
#include "OBCore/options/OBAttachJob.h"
#include "contracts/ProviderManager.h"

namespace obcore {

// Results of a run, with which its dialog ends.
inline constexpr std::int64_t kTransformsGoOn = 1;
inline constexpr std::int64_t kTransformsStop = 2;

using PathList = std::vector<std::wstring>;

// Shared, as nobody joins the worker: after a cancel the worker may be inside a call of the manager
// long after RunTransforms has returned.
struct TransformRun : std::enable_shared_from_this<TransformRun> {
    TransformRun(const OBAttachJob& job, PathList files, std::wstring folder);
    TransformRun(const TransformRun&) = delete;
    TransformRun& operator=(const TransformRun&) = delete;

    const obcontract::ProviderManagerHandle Manager;
    const std::wstring Folder; // temporary folder of the run; empty: there is none
    HWND Dialog; // owner of all that the providers show: ParentWindow at first, the progress dialog
                 // from its WM_INITDIALOG on, which is before the worker starts
    const bool BeforeArchive; // a zip follows
    std::atomic<std::int64_t> Result = kTransformsGoOn;

    // The mode argument of the three execute calls.
    std::uint32_t Mode() const noexcept { return BeforeArchive ? 1 : 3; }

    // Makes `call`, one call of the manager, on the calling thread unless the dialog has ended.
    // True when the dialog is still open after the call. False when it has ended: the caller
    // discards what the call gave and makes no other call. The check of the dialog and the entry
    // into the list of running calls are one step under the lock; the lock is free during the call.
    // The manager isn't deleted before the call has ended.
    template <class Call>
    [[nodiscard]] bool WhileOpen(Call call) {
        std::optional<ManagerCall> inside = EnterCall();
        if (!inside) return false;
        call();
        inside.reset();
        return IsOpen();
    }

    // The list of the last finished step.
    PathList Files() const;

    // Each finishes a step: FinishStep replaces the list; FinishFile replaces the path of the file
    // at `index`, or drops that file when `path` is empty. False, with the list unchanged, when the
    // dialog has ended or no file is at `index`: RunTransforms then gives back the list of the last
    // finished step.
    [[nodiscard]] bool FinishStep(PathList files);
    [[nodiscard]] bool FinishFile(std::size_t index, const std::wstring& path);

    // The user has cancelled, and the dialog is about to end: no call of the manager begins from
    // here on.
    void Cancel();

    // Marks the end of the dialog: no call of the manager begins from here on, and the list doesn't
    // change any more. Returns whether the user had cancelled.
    bool MarkEnd();

private:
    std::optional<ManagerCall> EnterCall() const; // nothing once the dialog has ended
    bool IsOpen() const;
    bool HasEnded() const noexcept { return cancelled_ || ended_; } // under the lock

    mutable std::mutex lock_; // of all that follows
    PathList files_;          // what is to be transformed
    bool cancelled_ = false;
    bool ended_ = false;
};

} // namespace obcore
