#include "services/providers/storage/Deletions.h"

#include <algorithm>
#include <functional>
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
#include "services/providers/worker/Event.h"

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
    CallAndPump<bool>(run->Ended(), window, kExpiryLimit,
                      [run, provider, key = upload.accountKey, id = upload.shareId,
                       days](HANDLE stop) { return provider->SetExpiry(key, id, days, stop); });
}

// Something to delete: a file that is due, or a part that was left.
struct Task {
    std::uint32_t providerId;
    std::wstring accountKey;
    std::uint64_t since; // as TimeNow counts
    std::function<DeletionEnd(StorageProvider& provider, HANDLE ended)> run;
    std::function<void()> forget;
};

Task TaskOf(const Run& run, ScheduledDeletion deletion) {
    return {deletion.providerId, deletion.accountKey, deletion.due,
            [deletion](StorageProvider& provider, HANDLE ended) {
                return provider.Delete(deletion.accountKey, deletion.file, ended);
            },
            [run, deletion] { run->Deletions().Remove(deletion); }};
}

Task TaskOf(const Run& run, NotedPart part) {
    return {part.providerId, part.accountKey, part.noted,
            [part](StorageProvider& provider, HANDLE ended) {
                return provider.RemovePart(part.accountKey, part.path, ended);
            },
            [run, id = part.id] { run->Parts().Remove(id); }};
}

// Stops at a file that can't be reached: a server that is silent takes minutes for each one.
void DeleteInTurn(const StorageRun& run, const std::vector<Task>& tasks, std::uint64_t now) {
    for (const Task& task : tasks) {
        StorageProvider* const provider = run.ProviderWith(task.providerId);
        if (!provider || IsSet(run.Ended())) return;
        const bool isLeft = ObLib::Guarded(DeletionEnd::Unreachable, [&] {
                                return task.run(*provider, run.Ended());
                            }) == DeletionEnd::Unreachable;
        if (!isLeft || now - task.since > kLongestDelay) task.forget();
        if (isLeft) return;
    }
}

using Account = std::pair<std::uint32_t, std::wstring>; // the provider's id, and the key

std::map<Account, std::vector<Task>> TasksAt(const Run& run, std::uint64_t now) {
    std::map<Account, std::vector<Task>> accounts;
    const auto add = [&](Task task) {
        accounts[{task.providerId, task.accountKey}].push_back(std::move(task));
    };
    for (ScheduledDeletion& deletion : run->Deletions().DueAt(now)) {
        add(TaskOf(run, std::move(deletion)));
    }
    for (NotedPart& part : run->Parts().OldAt(now)) add(TaskOf(run, std::move(part)));
    return accounts;
}

// Runs begin with different files of the account, by the second, so that one that is never reached
// doesn't keep the others. The system's clock moves in steps that may all be even.
void DeleteDue(const Run& run, std::uint64_t now) {
    const std::uint64_t yesterday = now - kOldPart;
    run->Book().RemoveUnfinished(yesterday);
    run->Deletions().RemoveUnfinished(yesterday);
    std::size_t threads = 0;
    for (auto& [account, tasks] : TasksAt(run, now)) {
        if (++threads > kMostThreads) return;
        std::ranges::rotate(tasks, tasks.begin() +
                                       static_cast<std::ptrdiff_t>(now / kSecond % tasks.size()));
        RunDetached([run, now, own = std::move(tasks)] { DeleteInTurn(*run, own, now); });
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
    const bool hasAny = run->Deletions().HasAny() || run->Parts().HasAny() ||
                        run->Book().HasUnfinished(now - kOldPart);
    if (hasAny) RunDetached([run, now] { DeleteDue(run, now); });
}

} // namespace providers
