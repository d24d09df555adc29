#include "services/providers/folder/FolderAccount.h"

#include <windows.h>

#include "services/providers/folder/FolderLink.h"
#include "services/providers/folder/FolderPath.h"
#include "services/providers/storage/ProviderIds.h"

namespace providers {
namespace {

constexpr wchar_t kFolderValue[] = L"Folder";
constexpr wchar_t kPatternValue[] = L"LinkPattern";
constexpr wchar_t kLabelValue[] = L"Label"; // the book's

// At no time is there a folder with the pattern of another one, whose links would lead nowhere.
bool Write(const AccountBook& book, const std::wstring& key, const FolderSettings& settings) {
    return book.SetText(kNetworkFolderId, key, kPatternValue, L"") &&
           book.SetText(kNetworkFolderId, key, kFolderValue, settings.folder) &&
           book.SetText(kNetworkFolderId, key, kPatternValue, settings.pattern);
}

bool IsSamePath(const std::wstring& one, const std::wstring& other) {
    return CompareStringOrdinal(one.c_str(), static_cast<int>(one.size()), other.c_str(),
                                static_cast<int>(other.size()), TRUE) == CSTR_EQUAL;
}

} // namespace

std::optional<FolderSettings> ReadFolder(const AccountBook& book, const std::wstring& accountKey) {
    const auto folder = book.Text(kNetworkFolderId, accountKey, kFolderValue);
    const std::wstring path = folder ? FullFolderPath(*folder) : std::wstring();
    if (path.empty()) return {};
    const auto pattern = book.Text(kNetworkFolderId, accountKey, kPatternValue);
    return FolderSettings{path, pattern && IsLinkPattern(*pattern) ? *pattern : std::wstring()};
}

std::optional<StorageAccount> AddFolder(const AccountBook& book, const FolderSettings& settings) {
    const auto account = book.Add(kNetworkFolderId, FolderLabel(settings.folder));
    if (!account || Write(book, account->key, settings)) return account;
    book.Remove(kNetworkFolderId, account->key);
    return {};
}

bool ChangeFolder(const AccountBook& book, const std::wstring& accountKey,
                  const FolderSettings& settings) {
    const auto before = ReadFolder(book, accountKey);
    if (Write(book, accountKey, settings) &&
        book.SetText(kNetworkFolderId, accountKey, kLabelValue, FolderLabel(settings.folder))) {
        return true;
    }
    if (before) Write(book, accountKey, *before);
    return false;
}

std::wstring AccountOfFolder(const AccountBook& book, const std::wstring& folder,
                             const std::wstring& except) {
    for (const StorageAccount& account : book.Accounts(kNetworkFolderId)) {
        const auto settings = ReadFolder(book, account.key);
        if (settings && account.key != except && IsSamePath(settings->folder, folder)) {
            return account.key;
        }
    }
    return {};
}

} // namespace providers
