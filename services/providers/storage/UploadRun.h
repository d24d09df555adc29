// An upload under a window with its progress.
#pragma once

#include <windows.h>

#include <string>

#include "services/providers/storage/StorageProvider.h"

namespace providers {

// What the progress window shows besides its bar.
struct UploadTexts {
    std::wstring title;
    std::wstring body;
};

// Runs the upload of one file on a thread of its own, and shows bar, speed, time left and a cancel
// button meanwhile. The window comes after a moment, so that a short upload shows none. Returns
// when the upload has ended; it ends early after the cancel button, when the owner no longer
// exists, and once `ended` is set. On the thread that owns the dialogs, whose messages are
// dispatched meanwhile; the owner, which may be null, is disabled.
UploadResult RunUploadInWindow(StorageProvider& provider, const std::wstring& accountKey,
                               const UploadFile& file, const UploadTexts& texts, HWND owner,
                               HANDLE ended);

} // namespace providers
