#include "services/providers/webdav/DavAccount.h"

#include <algorithm>

#include "services/providers/folder/FolderLink.h"
#include "services/providers/http/Utf8.h"
#include "services/providers/storage/ProviderIds.h"
#include "services/providers/webdav/AccountPassword.h"

namespace providers {
namespace {

constexpr wchar_t kAddressValue[] = L"Address";
constexpr wchar_t kUserValue[] = L"User";
constexpr wchar_t kPatternValue[] = L"LinkPattern";
constexpr wchar_t kPasswordsValue[] = L"LinkPasswords";
constexpr wchar_t kLabelValue[] = L"Label"; // the book's

// A server may have several users, and a user may be on several servers.
std::wstring LabelOf(const DavSettings& settings) {
    return TextFromUtf8(HostAndPort(settings.root.origin)) + L" (" + settings.user + L")";
}

// Links are made by a pattern last: at no time does an account have the pattern of another folder.
bool Write(const AccountBook& book, const std::wstring& key, const DavSettings& settings) {
    const auto set = [&](const wchar_t* name, const std::wstring& text) {
        return book.SetText(kWebDavId, key, name, text);
    };
    return set(kPatternValue, L"") &&
           set(kAddressValue, TextFromUtf8(HttpUrlText(settings.root))) &&
           set(kUserValue, settings.user) &&
           set(kPasswordsValue, settings.hasLinkPasswords ? L"1" : L"") &&
           set(kPatternValue, settings.pattern);
}

} // namespace

bool CanBeKept(const DavSettings& settings) {
    const auto isOfUser = [](wchar_t character) {
        return character >= L' ' && character != L':' && character != 0x7F;
    };
    return !settings.user.empty() && settings.user.size() <= kLongestDavUser &&
           std::ranges::all_of(settings.user, isOfUser) && settings.root.query.empty() &&
           settings.root.path.ends_with('/') &&
           HttpUrlText(settings.root).size() <= kLongestDavAddress;
}

std::optional<DavSettings> ReadDavAccount(const AccountBook& book, const std::wstring& accountKey) {
    const auto text = [&](const wchar_t* name) {
        return book.Text(kWebDavId, accountKey, name).value_or(L"");
    };
    const auto root = ParseHttpUrl(ToUtf8(text(kAddressValue)));
    if (!root) return {};
    const std::wstring pattern = text(kPatternValue);
    // Each account has this value: one that can't be read now never makes links without passwords.
    const bool hasPasswords =
        book.Text(kWebDavId, accountKey, kPasswordsValue).value_or(L"1") == L"1";
    DavSettings settings{*root, text(kUserValue), IsLinkPattern(pattern) ? pattern : std::wstring(),
                         hasPasswords};
    if (!CanBeKept(settings)) return {};
    return settings;
}

std::optional<StorageAccount> AddDavAccount(const AccountBook& book, const DavSettings& settings,
                                            const ObLib::Secret& password) {
    if (!CanBeKept(settings)) return {};
    const auto account = book.Add(kWebDavId, LabelOf(settings));
    if (!account) return {};
    if (Write(book, account->key, settings) && SaveAccountPassword(account->key, password)) {
        return account;
    }
    RemoveDavAccount(book, account->key);
    return {};
}

bool ChangeDavAccount(const AccountBook& book, const std::wstring& accountKey,
                      const DavSettings& settings) {
    if (!CanBeKept(settings)) return false;
    const auto before = ReadDavAccount(book, accountKey);
    if (Write(book, accountKey, settings) &&
        book.SetText(kWebDavId, accountKey, kLabelValue, LabelOf(settings))) {
        return true;
    }
    if (before) Write(book, accountKey, *before);
    return false;
}

void RemoveDavAccount(const AccountBook& book, const std::wstring& accountKey) {
    ForgetAccountPassword(accountKey);
    book.Remove(kWebDavId, accountKey);
}

std::wstring DavAccountOf(const AccountBook& book, const HttpUrl& root, const std::wstring& user) {
    for (const StorageAccount& account : book.Accounts(kWebDavId)) {
        const auto settings = ReadDavAccount(book, account.key);
        if (settings && settings->root == root && settings->user == user) return account.key;
    }
    return {};
}

std::vector<std::wstring> DavAccountsAround(const AccountBook& book, const HttpUrl& url) {
    std::vector<std::wstring> keys;
    for (const StorageAccount& account : book.Accounts(kWebDavId)) {
        const auto settings = ReadDavAccount(book, account.key);
        if (settings && IsBelow(url, settings->root)) keys.push_back(account.key);
    }
    return keys;
}

bool IsBelow(const HttpUrl& url, const HttpUrl& root) {
    return url.origin == root.origin && url.path.size() > root.path.size() &&
           url.path.starts_with(root.path);
}

} // namespace providers
