#include "services/providers/folder/NetworkFolder.h"

#include <utility>
#include <vector>

#include "services/providers/folder/FolderCheck.h"
#include "services/providers/folder/FolderDialog.h"
#include "services/providers/folder/FolderFile.h"
#include "services/providers/folder/FolderIconIds.h"
#include "services/providers/folder/FolderLink.h"
#include "services/providers/folder/FolderPath.h"
#include "services/providers/folder/FolderPick.h"
#include "services/providers/folder/FolderUpload.h"
#include "services/providers/storage/PickLimits.h"
#include "services/providers/storage/ProviderIds.h"
#include "services/providers/ui/TextIds.h"
#include "services/providers/ui/Texts.h"
#include "services/providers/worker/DetachedCall.h"

namespace providers {

using obcontract::ProviderCapability;
using Limit = std::optional<std::uint64_t>;

std::uint32_t NetworkFolder::Id() const noexcept { return kNetworkFolderId; }

std::wstring NetworkFolder::DisplayName() const { return OwnText(OB_TEXT_FOLDER_NAME_OF_PROVIDER); }

std::wstring NetworkFolder::ShortDescription() const { return DisplayName(); }

UINT NetworkFolder::IconId() const noexcept { return OB_FOLDER_ICON; }

bool NetworkFolder::Has(ProviderCapability capability) const noexcept {
    return capability == ProviderCapability::OpenPicker ||
           capability == ProviderCapability::FreeSpace || capability == ProviderCapability::Folders;
}

// A folder that is an account already stays that account, which a new pattern changes.
std::optional<StorageAccount> NetworkFolder::Save(const std::wstring& key,
                                                  FolderSettings settings) const {
    const std::wstring known = AccountOfFolder(book_, settings.folder, key);
    if (key.empty() && known.empty()) return AddFolder(book_, settings);
    const std::wstring& target = known.empty() ? key : known;
    if (settings.pattern.empty() && !known.empty()) {
        settings.pattern = ReadFolder(book_, known).value_or(settings).pattern;
    }
    if (!ChangeFolder(book_, target, settings)) return {};
    return book_.Account(kNetworkFolderId, target);
}

std::optional<StorageAccount> NetworkFolder::LogIn(const std::wstring& key, HWND owner) {
    FolderPage page{OwnText(OB_TEXT_FOLDER_LOGIN_CAPTION),
                    ReadFolder(book_, key).value_or(FolderSettings{}),
                    false,
                    {},
                    &CheckFolder};
    if (ShowFolderPage(owner, page) != FolderPageEnd::Saved) return {};
    auto account = Save(key, page.settings);
    if (!account) ShowSentence(owner, OwnText(OB_TEXT_FOLDER_NOT_SAVED));
    return account;
}

bool NetworkFolder::IsLoggedIn(const std::wstring& key) const {
    return ReadFolder(book_, key).has_value();
}

void NetworkFolder::LogOut(const std::wstring& key, HWND) { book_.Remove(kNetworkFolderId, key); }

void NetworkFolder::Manage(const std::wstring& key, HWND owner) {
    const auto settings = ReadFolder(book_, key);
    if (!settings) return;
    const auto refuse = [&](const std::wstring& folder) {
        return AccountOfFolder(book_, folder, key).empty()
                   ? std::wstring()
                   : FormatOwnText(OB_TEXT_FOLDER_KNOWN, {folder});
    };
    FolderPage page{DisplayName(), *settings, true, refuse, &CheckFolder};
    const FolderPageEnd end = ShowFolderPage(owner, page);
    if (end == FolderPageEnd::LogOut) LogOut(key, owner);
    if (end == FolderPageEnd::Saved && !ChangeFolder(book_, key, page.settings)) {
        ShowSentence(owner, OwnText(OB_TEXT_FOLDER_NOT_SAVED));
    }
}

std::optional<AccountSpace> NetworkFolder::Space(const std::wstring& key, HANDLE) const {
    const auto settings = ReadFolder(book_, key);
    ULARGE_INTEGER free{};
    ULARGE_INTEGER total{};
    if (!settings ||
        !GetDiskFreeSpaceExW(BelowFolder(settings->folder, L"").c_str(), &free, &total, nullptr)) {
        return {};
    }
    return AccountSpace{static_cast<std::int64_t>(free.QuadPart),
                        static_cast<std::int64_t>(total.QuadPart)};
}

// On the thread of the dialogs, which a share that doesn't respond must not block.
std::optional<std::uint64_t> NetworkFolder::MaxFileSize(const std::wstring& key) const {
    constexpr DWORD kPatience = 2000; // milliseconds
    const auto settings = ReadFolder(book_, key);
    if (!settings) return {};
    DetachedCall<Limit> question(
        [folder = settings->folder](HANDLE) { return LargestFileIn(folder); });
    WaitForSingleObject(question.Done(), kPatience);
    return question.Take().value_or(Limit{});
}

std::wstring NetworkFolder::RootFolder(const std::wstring&) const { return {}; }

UploadResult NetworkFolder::Upload(const std::wstring& key, const UploadFile& file,
                                   UploadProgress& progress) {
    const auto settings = ReadFolder(book_, key);
    const PartNotes notes(book_);
    if (settings) return UploadToFolder(*settings, file, progress, {&notes, key});
    return {UploadEnd::Failed, {}, FormatOwnText(OB_TEXT_FOLDER_LOGGED_OUT, {file.name})};
}

// The length of the link was checked before the upload.
ShareResult NetworkFolder::Share(const std::wstring& key, const StoredFile& file, HANDLE) {
    ShareResult result;
    const auto settings = ReadFolder(book_, key);
    const auto place = PlaceOf(file.path);
    if (!settings) result.sentence = OwnText(OB_TEXT_FOLDER_NO_LINK);
    if (!settings || !place) return result;
    const std::wstring start = BelowFolder(settings->folder, L"");
    const std::wstring path = FullPath(*place);
    if (!path.starts_with(start)) return result;
    std::wstring link = LinkOf(settings->folder, settings->pattern, path.substr(start.size()));
    result.isShared = link.size() <= kLongestLink;
    if (result.isShared) result.link = std::move(link);
    return result;
}

// A folder's links have no end of their own.
bool NetworkFolder::SetExpiry(const std::wstring&, const std::wstring&, std::int32_t, HANDLE) {
    return false;
}

// The file's own path is enough: what an account that is logged out has promised is still done.
DeletionEnd NetworkFolder::Delete(const std::wstring&, const StoredFile& file, HANDLE ended) {
    return IsSet(ended) ? DeletionEnd::Unreachable : DeleteFolderFile(file);
}

DeletionEnd NetworkFolder::RemovePart(const std::wstring&, const std::wstring& path, HANDLE ended) {
    return IsSet(ended) ? DeletionEnd::Unreachable : RemoveFolderPart(path);
}

PickResult NetworkFolder::Pick(const std::wstring& preferred, HWND owner) {
    if (book_.Accounts(kNetworkFolderId).empty() && !LogIn({}, owner)) return {};
    std::vector<PickableFolder> folders;
    std::size_t first = 0;
    for (const StorageAccount& account : book_.Accounts(kNetworkFolderId)) {
        auto settings = ReadFolder(book_, account.key);
        if (!settings) continue;
        folders.push_back({account, std::move(*settings)});
        // The newest account, unless the preferred one is among them.
        if (folders[first].account.key != preferred) first = folders.size() - 1;
    }
    if (folders.empty()) return {{}, OwnText(OB_TEXT_PICK_FAILED)};
    return PickFromFolders(owner, folders, first, DisplayName());
}

} // namespace providers
