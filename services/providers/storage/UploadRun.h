// An upload under a window with its progress.
#pragma once

#include <windows.h>

#include <cstdint>
#include <string>

#include "services/providers/storage/StorageProvider.h"
#include "services/providers/storage/TransferRate.h"
#include "services/providers/storage/UploadTexts.h"

namespace providers {

// Runs the upload of one file on a thread of its own, and shows bar, speed, time left and a cancel
// button meanwhile. The window comes after half a second, so that a short upload shows none, or
// with the first question of the provider. Returns when the upload has ended; it ends early after
// the cancel button, when the owner no longer exists, when the thread is to quit (the quit message
// is posted again at the end) and once `ended` is set. After any of these the result is Cancelled,
// unless the file was stored before the provider noticed. On the thread that owns the dialogs,
// whose messages are dispatched meanwhile; the owner, which may be null, is disabled.
//
// A provider that throws, an upload that can't be begun, and one that is ended because its progress
// can't be shown give Failed without a sentence; a file that was stored is Done in any case. May
// throw std::bad_alloc before the upload begins. `clock` null: that of the system.
UploadResult RunUploadInWindow(StorageProvider& provider, const std::wstring& accountKey,
                               const UploadFile& file, const UploadTexts& texts, HWND owner,
                               HANDLE ended, UploadClock clock = nullptr);

} // namespace providers
