#include "services/providers/storage/UploadRun.h"

#include "ObLib/Src/Win32/Guarded.h"
#include "services/providers/storage/SharedUpload.h"
#include "services/providers/storage/UploadWait.h"

namespace providers {
namespace {

std::uint64_t SystemClock() { return GetTickCount64(); }

} // namespace

UploadResult RunUploadInWindow(StorageProvider& provider, const std::wstring& accountKey,
                               const UploadFile& file, const UploadTexts& texts, HWND owner,
                               HANDLE ended, UploadClock clock) {
    if (owner && !IsWindow(owner)) return {UploadEnd::Cancelled, {}, {}};
    SharedUpload upload(provider, accountKey, file, ended);
    bool wasWatched = false;
    {
        // Ends before the wait does, which re-enables the owner.
        UploadWait wait(upload, texts, file.name, owner ? GetAncestor(owner, GA_ROOT) : nullptr,
                        clock ? clock : &SystemClock);
        const UploadThread thread(upload);
        if (!thread.Get()) return {};
        wasWatched = ObLib::RanGuarded([&] { wait.Until(thread.Get(), ended); });
    }
    UploadResult result = upload.Result();
    // Where the memory ran out here, the upload was ended, but not by the user. A file that was
    // stored all the same is done.
    if (!wasWatched && result.end == UploadEnd::Cancelled) return {};
    return result;
}

} // namespace providers
