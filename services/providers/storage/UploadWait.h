// The thread of the dialogs while a file is uploaded.
#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>
#include <string>

#include "services/providers/storage/OwnerWindow.h"
#include "services/providers/storage/SharedUpload.h"
#include "services/providers/storage/TransferRate.h"
#include "services/providers/storage/UploadDialog.h"
#include "services/providers/storage/UploadTexts.h"
#include "services/providers/worker/ThreadMessages.h"

namespace providers {

// Shows the upload's window once it takes longer, dispatches messages and answers questions. The
// owner, a top-level window or null, is disabled until this object goes.
class UploadWait {
public:
    // All outlive this object.
    UploadWait(SharedUpload& upload, const UploadTexts& texts, const std::wstring& fileName,
               HWND owner, UploadClock clock);
    UploadWait(const UploadWait&) = delete;
    UploadWait& operator=(const UploadWait&) = delete;

    // Until the thread has ended, which is asked to end once `ended` is set, the owner has gone,
    // the user has cancelled or the calling thread is to quit. May throw.
    void Until(HANDLE thread, HANDLE ended);

private:
    void DispatchMessages();
    void Answer();
    void OpenWindow();
    void ShowProgress();
    std::wstring TimeText(const UploadView& view, std::uint64_t now) const;

    SharedUpload& upload_;
    const UploadTexts& texts_;
    const std::wstring& fileName_;
    HWND owner_; // a top-level window, or null
    UploadClock clock_;
    std::uint64_t start_;
    TransferRate rate_;
    // Destroyed from the last one to the first one.
    KeptQuit quit_;
    KeptFocus focus_;
    std::optional<UploadWindow> window_;
    DisabledOwner disabled_;
};

} // namespace providers
