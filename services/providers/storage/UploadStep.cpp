#include "services/providers/storage/UploadStep.h"

#include <iterator>
#include <memory>
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

// The record of a file, made before its upload: once the file is stored, nothing may fail any more,
// or it would be in the cloud and count as failed. What isn't stored is taken back.
class PreparedRecord {
public:
    PreparedRecord(StorageRun& run, const std::wstring& accountKey, const std::wstring& name)
        : run_(run), upload_(run.uploads.Add(accountKey, {})) {
        const StorageProvider* const provider = run.ProviderOf(accountKey);
        const std::uint32_t id = provider ? provider->Id() : obcontract::kNoProvider;
        const auto account = run.Book().Account(id, accountKey);
        const auto profile = ProfileOf(id, account.value_or(StorageAccount{accountKey, {}}));
        item_ = ItemOf(profile, name, upload_->link); // the list took a name that fits
    }
    ~PreparedRecord() {
        if (!isStored_) run_.uploads.Drop(upload_);
    }
    PreparedRecord(const PreparedRecord&) = delete;
    PreparedRecord& operator=(const PreparedRecord&) = delete;

    // The record of the file as it was stored, which the run keeps in mind.
    const std::optional<obcontract::CloudItem>& Keep(StoredFile stored) noexcept {
        isStored_ = true;
        const bool hasName =
            item_ && !stored.name.empty() && stored.name.size() < std::size(item_->name);
        if (hasName) CopyWhole(stored.name, item_->name, std::size(item_->name));
        upload_->file = std::move(stored);
        return item_;
    }

private:
    StorageRun& run_;
    std::shared_ptr<RunUpload> upload_;
    std::optional<obcontract::CloudItem> item_;
    bool isStored_ = false;
};

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
        PreparedRecord record(run, accountKey, file.name);
        UploadResult result = Upload(run, accountKey, file, texts, owner);
        Report(callback, result.end);
        if (result.end != UploadEnd::Done) {
            run.errors.SetSentence(accountKey, SentenceOf(result, file.name));
            return false;
        }
        list.entries.at(index).stored = record.Keep(std::move(result.stored));
    }
    if (list.entries.empty()) return false;
    run.errors.Clear(accountKey);
    return true;
}

} // namespace providers
