#include "services/providers/storage/Deletions.h"

#include <algorithm>
#include <map>
#include <utility>
#include <vector>

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

constexpr DWORD kExpiryLimit = 30'000;        // milliseconds
constexpr std::size_t kMostThreads = 64;      // the registry may have been filled by others
constexpr std::uint64_t kSecond = 10'000'000; // as TimeNow counts
constexpr std::uint64_t kLongestDelay = 365 * 24 * 3600 * kSecond;

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

DeletionEnd Delete(StorageProvider& provider, const ScheduledDeletion& deletion, HANDLE ended) {
    return ObLib::Guarded(DeletionEnd::Unreachable, [&] {
        return provider.Delete(deletion.accountKey, deletion.file, ended);
    });
}

// Stops at a file that can't be reached: a server that is silent takes minutes for each one.
void DeleteInTurn(const StorageRun& run, const std::vector<ScheduledDeletion>& files,
                  std::uint64_t now) {
    for (const ScheduledDeletion& deletion : files) {
        StorageProvider* const provider = run.ProviderWith(deletion.providerId);
        if (!provider || WaitForSingleObject(run.Ended(), 0) == WAIT_OBJECT_0) return;
        const bool isLeft = Delete(*provider, deletion, run.Ended()) == DeletionEnd::Unreachable;
        if (!isLeft || now - deletion.due > kLongestDelay) run.Deletions().Remove(deletion);
        if (isLeft) return;
    }
}

// Runs begin with different files of the account, by the second, so that one that is never reached
// doesn't keep the others. The system's clock moves in steps that may all be even.
void DeleteDue(const Run& run, std::uint64_t now) {
    std::map<std::pair<std::uint32_t, std::wstring>, std::vector<ScheduledDeletion>> accounts;
    for (ScheduledDeletion& deletion : run->Deletions().DueAt(now)) {
        accounts[{deletion.providerId, deletion.accountKey}].push_back(std::move(deletion));
    }
    std::size_t threads = 0;
    for (auto& [account, files] : accounts) {
        if (++threads > kMostThreads) return;
        std::ranges::rotate(files, files.begin() +
                                       static_cast<std::ptrdiff_t>(now / kSecond % files.size()));
        RunDetached([run, now, own = std::move(files)] { DeleteInTurn(*run, own, now); });
    }
}

} // namespace

bool ScheduleDeletion(const Run& run, const obcontract::CloudItem& item, std::int32_t days,
                      std::uint64_t now) {
    if (days < 0 || !IsSound(item)) return false;
    const auto upload = run->uploads.Find(item.profile.accountKey, item.link);
    if (!upload || !upload->isShared || upload->file.version.empty()) return false;
    const std::uint64_t due = EndOfLocalDay(now, static_cast<std::uint32_t>(days));
    // First of all, so that no link ends whose file isn't going to be deleted.
    if (!run->Deletions().Add({item.profile.providerId, upload->accountKey, upload->file, due})) {
        return false;
    }
    EndLink(run, *upload, days);
    return true;
}

void StartDeletions(const Run& run, std::uint64_t now) {
    if (run->Deletions().HasAny()) RunDetached([run, now] { DeleteDue(run, now); });
}

} // namespace providers
