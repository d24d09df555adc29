#include "services/providers/storage/UploadStep.h"

#include <optional>
#include <utility>

#include "ObLib/Src/Win32/Guarded.h"
#include "services/providers/storage/CallbackSlots.h"
#include "services/providers/storage/RecordTexts.h"
#include "services/providers/ui/TextIds.h"
#include "services/providers/ui/Texts.h"

namespace providers {
namespace {

// An upload that throws has failed without a sentence of its own.
UploadResult Upload(const StorageRun& run, const std::wstring& accountKey, const UploadFile& file,
                    const UploadTexts& texts, HWND owner) {
    StorageProvider* const provider = run.ProviderOf(accountKey);
    if (!provider) {
        return {UploadEnd::Failed, {}, FormatOwnText(OB_TEXT_STORAGE_NO_ACCOUNT, {file.name})};
    }
    return ObLib::GuardedElse(
        [&] { return run.Upload()(*provider, accountKey, file, texts, owner, run.Ended()); },
        [] { return UploadResult{}; });
}

// The record of a file that was stored, which the run keeps in mind.
std::optional<obcontract::CloudItem> Note(StorageRun& run, const std::wstring& accountKey,
                                          const std::wstring& name, StoredFile stored) {
    const StorageProvider* const provider = run.ProviderOf(accountKey);
    const std::uint32_t id = provider ? provider->Id() : obcontract::kNoProvider;
    const auto account = run.Book().Account(id, accountKey);
    const std::wstring shown = stored.name.empty() ? name : stored.name;
    const auto upload = run.uploads.Add(accountKey, std::move(stored));
    const auto profile = ProfileOf(id, account.value_or(StorageAccount{accountKey, {}}));
    const auto item = ItemOf(profile, shown, upload->link);
    // The list took a name that fits, so that a file that was stored always has a record.
    return item ? item : ItemOf(profile, name, upload->link);
}

std::wstring SentenceOf(const UploadResult& result, const std::wstring& name) {
    if (result.end == UploadEnd::Cancelled) return OwnText(OB_TEXT_STORAGE_CANCELLED);
    if (result.end == UploadEnd::NameTaken) {
        return FormatOwnText(OB_TEXT_STORAGE_NAME_TAKEN, {name});
    }
    return result.sentence;
}

void Report(ObPVX::ObPvxCallback* callback, UploadEnd end) {
    if (end == UploadEnd::NameTaken) ReportReason(callback, kReasonNameTaken);
    if (end == UploadEnd::Cancelled) ReportCancelled(callback);
}

} // namespace

// By index and with copies: messages are dispatched during an upload, and what they cause may
// change the list.
bool UploadFiles(StorageRun& run, OwnUploadList& list, ObPVX::ObPvxCallback* callback,
                 const UploadTexts& texts, HWND owner) {
    run.owner = owner;
    const std::wstring accountKey = list.accountKey;
    run.errors.SetSentence(accountKey, {}); // until all files are stored
    for (std::size_t index = 0; index < list.entries.size(); ++index) {
        if (list.entries[index].stored) continue;
        const UploadFile file = list.entries[index].file;
        UploadResult result = Upload(run, accountKey, file, texts, owner);
        Report(callback, result.end);
        if (result.end != UploadEnd::Done) {
            run.errors.SetSentence(accountKey, SentenceOf(result, file.name));
            return false;
        }
        list.entries.at(index).stored = Note(run, accountKey, file.name, std::move(result.stored));
    }
    if (list.entries.empty()) return false;
    run.errors.Clear(accountKey);
    return true;
}

} // namespace providers
