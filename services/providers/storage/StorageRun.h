// What all storage providers of one manager share, from Init to Deinit.
#pragma once

#include <windows.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <vector>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "services/providers/storage/AccountBook.h"
#include "services/providers/storage/AccountErrors.h"
#include "services/providers/storage/DeletionSchedule.h"
#include "services/providers/storage/PartNotes.h"
#include "services/providers/storage/RunUploads.h"
#include "services/providers/storage/StorageProvider.h"
#include "services/providers/storage/UploadTexts.h"

namespace providers {

// Uploads one file under a window: RunUploadInWindow, or what a test puts in its place.
using UploadRunner = std::function<UploadResult(
    StorageProvider& provider, const std::wstring& accountKey, const UploadFile& file,
    const UploadTexts& texts, HWND owner, HANDLE ended)>;

// What a manager begins a session with.
struct StorageParts {
    std::vector<std::unique_ptr<StorageProvider>> providers; // in the order of the walk
    UploadRunner upload;
};

// Shared by the manager and by each thread that asks a provider something. A thread that hangs
// keeps it beyond Deinit, and with it the providers; so it may be destroyed on any thread.
class StorageRun {
public:
    // The hive and key that Init was given. Throws std::bad_alloc, also when the system has no
    // event left.
    StorageRun(HKEY hive, const std::wstring& key, StorageParts parts);

    // On any thread.
    const AccountBook& Book() const noexcept { return book_; }
    const DeletionSchedule& Deletions() const noexcept { return deletions_; }
    const PartNotes& Parts() const noexcept { return parts_; }
    const std::vector<std::unique_ptr<StorageProvider>>& Providers() const noexcept {
        return given_.providers;
    }
    // The provider that an account belongs to; null when there is no such account.
    StorageProvider* ProviderOf(const std::wstring& accountKey) const;
    // The provider with this id; null when this build has none.
    StorageProvider* ProviderWith(std::uint32_t id) const noexcept;
    // An event that Deinit sets.
    HANDLE Ended() const noexcept { return ended_.Get(); }
    void End() noexcept { SetEvent(ended_.Get()); }

    const UploadRunner& Upload() const noexcept { return given_.upload; }

    // On the thread that owns the dialogs.
    RunUploads uploads;
    AccountErrors errors;
    HWND owner = nullptr;    // the window of the last upload
    DWORD windowDelay = 500; // milliseconds until a call to a server shows a window

private:
    AccountBook book_;
    DeletionSchedule deletions_;
    PartNotes parts_;
    StorageParts given_;
    ObLib::UniqueKernelHandle ended_;
};

} // namespace providers
