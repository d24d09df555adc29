#include "services/providers/storage/AccountBook.h"

#include <objbase.h>

#include <algorithm>
#include <iterator>
#include <string_view>
#include <utility>

#include "ObLib/Src/Win32/RegistryView.h"
#include "ObLib/Src/Win32/UniqueHandle.h"

namespace providers {
namespace {

constexpr wchar_t kLabelValue[] = L"Label";
constexpr wchar_t kOrderValue[] = L"Order";
constexpr std::size_t kLongestText = 2000;
// What account keys look like; # is a digit from 0 to F.
constexpr std::wstring_view kKeyPattern = L"{########-####-####-####-############}";

struct OrderedAccount {
    std::uint64_t order = 0;
    StorageAccount account;
};

bool IsDigit(wchar_t character) {
    return (character >= L'0' && character <= L'9') || (character >= L'A' && character <= L'F');
}

// Whether the text can be an account's key. Anything else never becomes part of a registry path.
bool IsAccountKey(const std::wstring& text) {
    return std::ranges::equal(kKeyPattern, text, [](wchar_t expected, wchar_t character) {
        return expected == L'#' ? IsDigit(character) : expected == character;
    });
}

std::wstring NewKey() {
    GUID id{};
    wchar_t text[kKeyPattern.size() + 1] = L"";
    if (FAILED(CoCreateGuid(&id))) return {};
    return StringFromGUID2(id, text, static_cast<int>(std::size(text))) != 0 ? text : L"";
}

std::wstring ProviderPath(const std::wstring& key, std::uint32_t providerId) {
    return key + L"\\Accounts\\" + std::to_wstring(providerId);
}

// Without NOEXPAND the system would take a text with variables for a plain one.
std::optional<std::wstring> ReadText(HKEY key, const wchar_t* name) {
    std::wstring text(kLongestText + 1, L'\0');
    auto size = static_cast<DWORD>(text.size() * sizeof(wchar_t));
    if (RegGetValueW(key, nullptr, name, RRF_RT_REG_SZ | RRF_NOEXPAND, nullptr, text.data(),
                     &size) != ERROR_SUCCESS) {
        return {};
    }
    return text.c_str();
}

bool WriteText(HKEY key, const wchar_t* name, const std::wstring& text) {
    const auto size = static_cast<DWORD>((text.size() + 1) * sizeof(wchar_t));
    return RegSetValueExW(key, name, 0, REG_SZ, reinterpret_cast<const BYTE*>(text.c_str()),
                          size) == ERROR_SUCCESS;
}

// 0, the oldest, when it can't be read.
std::uint64_t ReadOrder(HKEY key) {
    std::uint64_t order = 0;
    DWORD size = sizeof(order);
    const LSTATUS status =
        RegGetValueW(key, nullptr, kOrderValue, RRF_RT_REG_QWORD, nullptr, &order, &size);
    return status == ERROR_SUCCESS ? order : 0;
}

bool WriteOrder(HKEY key, std::uint64_t order) {
    return RegSetValueExW(key, kOrderValue, 0, REG_QWORD, reinterpret_cast<const BYTE*>(&order),
                          sizeof(order)) == ERROR_SUCCESS;
}

// At most as long as a label may be, without half a character at its end.
std::wstring ShortLabel(std::wstring label) {
    if (label.size() <= kLongestLabel) return label;
    label.resize(kLongestLabel);
    if (IS_HIGH_SURROGATE(label.back())) label.pop_back();
    return label;
}

// Names of all keys below one, also of those that this module didn't make.
std::vector<std::wstring> SubkeyNames(HKEY key) {
    constexpr DWORD kLongestName = 255; // of any key
    std::vector<std::wstring> names;
    for (DWORD index = 0;; ++index) {
        wchar_t name[kLongestName + 1] = L"";
        DWORD size = kLongestName + 1;
        if (RegEnumKeyExW(key, index, name, &size, nullptr, nullptr, nullptr, nullptr) !=
            ERROR_SUCCESS) {
            return names;
        }
        names.emplace_back(name, size);
    }
}

ObLib::UniqueRegistryKey OpenAccount(HKEY hive, const std::wstring& providerPath,
                                     const std::wstring& accountKey, REGSAM access) {
    if (!IsAccountKey(accountKey)) return {};
    return ObLib::OpenRegistryKey(hive, (providerPath + L'\\' + accountKey).c_str(), access);
}

// All accounts of a provider, oldest first. Of equal age the order of the keys decides, so that two
// reads have one order.
std::vector<OrderedAccount> AllAccounts(HKEY hive, const std::wstring& providerPath) {
    const auto parent = ObLib::OpenRegistryKey(hive, providerPath.c_str(), KEY_ENUMERATE_SUB_KEYS);
    if (!parent) return {};
    std::vector<OrderedAccount> accounts;
    for (const std::wstring& name : SubkeyNames(parent.Get())) {
        const auto key = OpenAccount(hive, providerPath, name, KEY_QUERY_VALUE);
        const auto label = key ? ReadText(key.Get(), kLabelValue) : std::nullopt;
        if (label) accounts.push_back({ReadOrder(key.Get()), {name, ShortLabel(*label)}});
    }
    std::ranges::sort(accounts, [](const OrderedAccount& one, const OrderedAccount& other) {
        return std::pair(one.order, one.account.key) < std::pair(other.order, other.account.key);
    });
    return accounts;
}

std::uint64_t NextOrder(const std::vector<OrderedAccount>& all) {
    return all.empty() ? 1 : all.back().order + 1;
}

ObLib::UniqueRegistryKey MakeAccount(HKEY hive, const std::wstring& path) {
    ObLib::UniqueRegistryKey key;
    DWORD made = 0;
    const LSTATUS status = RegCreateKeyExW(hive, path.c_str(), 0, nullptr, 0, KEY_SET_VALUE,
                                           nullptr, key.Put(), &made);
    if (status != ERROR_SUCCESS || made != REG_CREATED_NEW_KEY) key.Reset();
    return key;
}

} // namespace

AccountBook::AccountBook(HKEY hive, std::wstring key) : hive_(hive), key_(std::move(key)) {}

std::vector<StorageAccount> AccountBook::Accounts(std::uint32_t providerId) const {
    const auto all = AllAccounts(hive_, ProviderPath(key_, providerId));
    const std::size_t first = all.size() > kMostAccounts ? all.size() - kMostAccounts : 0;
    std::vector<StorageAccount> accounts;
    for (std::size_t index = first; index < all.size(); ++index) {
        accounts.push_back(all[index].account);
    }
    return accounts;
}

bool AccountBook::Contains(std::uint32_t providerId, const std::wstring& accountKey) const {
    return Text(providerId, accountKey, kLabelValue).has_value();
}

std::optional<StorageAccount> AccountBook::Account(std::uint32_t providerId,
                                                   const std::wstring& accountKey) const {
    const auto label = Text(providerId, accountKey, kLabelValue);
    if (!label) return {};
    return StorageAccount{accountKey, ShortLabel(*label)};
}

// The label is written last: until then the account isn't seen.
std::optional<StorageAccount> AccountBook::Add(std::uint32_t providerId,
                                               const std::wstring& label) const {
    const std::wstring path = ProviderPath(key_, providerId);
    const auto all = AllAccounts(hive_, path);
    if (all.size() >= kMostAccounts) return {};
    StorageAccount account{NewKey(), ShortLabel(label)};
    if (account.key.empty()) return {};
    const auto key = MakeAccount(hive_, path + L'\\' + account.key);
    if (!key) return {};
    if (WriteOrder(key.Get(), NextOrder(all)) && WriteText(key.Get(), kLabelValue, account.label)) {
        return account;
    }
    Remove(providerId, account.key);
    return {};
}

bool AccountBook::MakeNewest(std::uint32_t providerId, const std::wstring& accountKey) const {
    const std::wstring path = ProviderPath(key_, providerId);
    const auto all = AllAccounts(hive_, path);
    if (!all.empty() && all.back().account.key == accountKey) return true;
    const auto key = OpenAccount(hive_, path, accountKey, KEY_SET_VALUE);
    return key && WriteOrder(key.Get(), NextOrder(all));
}

bool AccountBook::Remove(std::uint32_t providerId, const std::wstring& accountKey) const {
    if (!IsAccountKey(accountKey)) return true;
    constexpr REGSAM kAccess = DELETE | KEY_ENUMERATE_SUB_KEYS | KEY_QUERY_VALUE | KEY_SET_VALUE;
    const auto parent =
        ObLib::OpenRegistryKey(hive_, ProviderPath(key_, providerId).c_str(), kAccess);
    if (!parent) return true;
    const LSTATUS status = RegDeleteTreeW(parent.Get(), accountKey.c_str());
    return status == ERROR_SUCCESS || status == ERROR_FILE_NOT_FOUND;
}

std::optional<std::wstring> AccountBook::Text(std::uint32_t providerId,
                                              const std::wstring& accountKey,
                                              const wchar_t* name) const {
    const auto key =
        OpenAccount(hive_, ProviderPath(key_, providerId), accountKey, KEY_QUERY_VALUE);
    return key ? ReadText(key.Get(), name) : std::nullopt;
}

bool AccountBook::SetText(std::uint32_t providerId, const std::wstring& accountKey,
                          const wchar_t* name, const std::wstring& text) const {
    if (text.size() > kLongestText) return false;
    const auto key = OpenAccount(hive_, ProviderPath(key_, providerId), accountKey, KEY_SET_VALUE);
    return key && WriteText(key.Get(), name, text);
}

} // namespace providers
