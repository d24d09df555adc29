#include "services/providers/storage/Deletions.h"

#include "ObLib/Src/Win32/Guarded.h"
#include "services/providers/storage/LocalDays.h"
#include "services/providers/storage/PumpedCall.h"
#include "services/providers/storage/RecordTexts.h"
#include "services/providers/ui/TextIds.h"
#include "services/providers/ui/Texts.h"
#include "services/providers/worker/DetachedThread.h"

namespace providers {
namespace {

using Run = std::shared_ptr<StorageRun>;

constexpr DWORD kExpiryLimit = 30'000; // milliseconds

// Whatever comes of it, the file itself is deleted by the schedule.
void EndLink(const Run& run, const RunUpload& upload, std::int32_t days) {
    StorageProvider* const provider = run->ProviderOf(upload.accountKey);
    if (!provider || days == 0 || upload.shareId.empty()) return;
    const CallWindow window{run->owner,
                            {OwnText(OB_TEXT_SHARE_TITLE), OwnText(OB_TEXT_SHARE_BODY)},
                            upload.file.name,
                            run->windowDelay};
    RunAndPump(run->Ended(), window, kExpiryLimit,
               [run, provider, key = upload.accountKey, id = upload.shareId, days](HANDLE stop) {
                   provider->SetExpiry(key, id, days, stop);
               });
}

// Whether nothing is left to do.
bool Delete(const StorageRun& run, const ScheduledDeletion& deletion) {
    StorageProvider* const provider = run.ProviderOf(deletion.accountKey);
    if (!provider) return true;
    return ObLib::Guarded(false, [&] {
        return provider->Delete(deletion.accountKey, deletion.file, run.Ended()) !=
               DeletionEnd::Unreachable;
    });
}

void DeleteDue(const StorageRun& run, std::uint64_t now) {
    for (const ScheduledDeletion& deletion : run.Deletions().DueAt(now)) {
        if (WaitForSingleObject(run.Ended(), 0) == WAIT_OBJECT_0) return;
        if (Delete(run, deletion)) run.Deletions().Remove(deletion);
    }
}

} // namespace

bool ScheduleDeletion(const Run& run, const obcontract::CloudItem& item, std::int32_t days,
                      std::uint64_t now) {
    if (days < 0 || !IsSound(item)) return false;
    const auto upload = run->uploads.Find(item.profile.accountKey, item.link);
    if (!upload || !upload->isShared || upload->file.version.empty()) return false;
    EndLink(run, *upload, days);
    return run->Deletions().Add(
        {upload->accountKey, upload->file, EndOfLocalDay(now, static_cast<std::uint32_t>(days))});
}

void StartDeletions(const Run& run, std::uint64_t now) {
    if (run->Deletions().HasAny()) RunDetached([run, now] { DeleteDue(*run, now); });
}

} // namespace providers
