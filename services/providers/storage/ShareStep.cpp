#include "services/providers/storage/ShareStep.h"

#include <iterator>
#include <optional>
#include <utility>

#include "ObLib/Src/Win32/Guarded.h"
#include "services/providers/storage/LinkPasswordDialog.h"
#include "services/providers/storage/PickLimits.h"
#include "services/providers/storage/PumpedCall.h"
#include "services/providers/storage/RecordTexts.h"
#include "services/providers/ui/TextIds.h"
#include "services/providers/ui/Texts.h"

namespace providers {
namespace {

using obcontract::CloudItem;
using Run = std::shared_ptr<StorageRun>;

constexpr DWORD kShareLimit = 60'000; // milliseconds; a server that is silent for longer has failed

// Nobody is left to read a message.
bool IsOver(const StorageRun& run) {
    return IsSet(run.Ended()) || (run.owner && !IsWindow(run.owner));
}

// The call that shares one file. It goes on while the user decides whether to try again: its server
// may have made the link, which nobody would know of, and a second call would make another one.
class Sharing {
public:
    Sharing(const Run& run, const RunUpload& upload, const CloudItem& item)
        : run_(run), upload_(upload), item_(item) {}

    // A result that isn't shared when the provider can't be asked, throws or takes too long; in the
    // last case the next call of this function waits for the same result.
    ShareResult Ask() {
        if (IsOver(*run_) || !Begin()) return {};
        const CallWindow window{run_->owner,
                                {OwnText(OB_TEXT_SHARE_TITLE), OwnText(OB_TEXT_SHARE_BODY)},
                                item_.name,
                                run_->windowDelay};
        if (!AwaitAndPump(call_->Done(), run_->Ended(), window, kShareLimit)) return {};
        ShareResult result = call_->Take().value_or(ShareResult{});
        call_.reset();
        return result;
    }

private:
    // False without a provider.
    bool Begin() {
        StorageProvider* const provider = run_->ProviderOf(upload_.accountKey);
        if (call_ || !provider) return call_.has_value();
        call_.emplace([run = run_, provider, key = upload_.accountKey, file = upload_.file](
                          HANDLE stop) { return provider->Share(key, file, stop); });
        return true;
    }

    const Run& run_;
    const RunUpload& upload_;
    const CloudItem& item_;
    std::optional<DetachedCall<ShareResult>> call_; // that runs
};

// Whether the result is a link that the record has room for, and the user has seen its password.
bool TakeLink(const StorageRun& run, RunUpload& upload, CloudItem& item,
              const ShareResult& result) {
    const std::wstring link = EscapedLink(result.link);
    if (!result.isShared || link.empty() || link.size() >= std::size(item.link)) return false;
    if (!result.password.empty() && !ShowLinkPassword(run.owner, item.name, result.password)) {
        return false;
    }
    CopyWhole(link, item.link, std::size(item.link));
    upload.link = link;
    upload.shareId = result.shareId;
    upload.isShared = true;
    return true;
}

// The user logs in again. False without a new login to this account.
bool HasLoggedIn(const StorageRun& run, const std::wstring& accountKey) {
    StorageProvider* const provider = run.ProviderOf(accountKey);
    return provider && ObLib::Guarded(false, [&] {
               const auto account = provider->LogIn(accountKey, run.owner);
               return account && account->key == accountKey;
           });
}

// After a login that doesn't count either, the user decides whether to try again.
ShareResult AskWithLogin(const StorageRun& run, const std::wstring& accountKey, Sharing& sharing) {
    ShareResult result = sharing.Ask();
    if (!result.needsLogin || IsOver(run) || !HasLoggedIn(run, accountKey)) return result;
    return sharing.Ask();
}

std::wstring FailureOf(const CloudItem& item, const ShareResult& result) {
    const bool hasReason = !result.isShared && !result.sentence.empty();
    return FormatOwnText(OB_TEXT_SHARE_FAILED,
                         {item.name, hasReason ? result.sentence : OwnText(OB_TEXT_SHARE_NO_LINK)});
}

bool ShareFile(const Run& run, CloudItem& item) {
    const auto upload = run->uploads.Find(item.profile.accountKey, item.link);
    if (!upload) {
        ShowSentence(run->owner, FailureOf(item, {}));
        return false;
    }
    Sharing sharing(run, *upload, item);
    ShareResult result;
    while (!upload->isShared) {
        // What the provider has shared isn't shared again: there would be two links, and nobody
        // would have seen the password of the first one.
        if (!result.isShared) result = AskWithLogin(*run, upload->accountKey, sharing);
        if (TakeLink(*run, *upload, item, result)) return true;
        if (IsOver(*run) || !AskToTryAgain(run->owner, FailureOf(item, result))) return false;
    }
    return true;
}

} // namespace

// By index: messages are dispatched, and what they cause may change the list.
bool ShareFiles(const Run& run, OwnDownloadList& list) {
    if (list.items.empty()) ShowSentence(run->owner, OwnText(OB_TEXT_SHARE_NOTHING));
    for (std::size_t index = 0; index < list.items.size(); ++index) {
        CloudItem item = list.items[index];
        if (!ShareFile(run, item)) return false;
        list.items.at(index) = item;
    }
    return !list.items.empty();
}

} // namespace providers
