#include "services/providers/storage/AccountBook.h"

#include <algorithm>
#include <utility>

#include "ObLib/Src/Win32/RegistryView.h"
#include "ObLib/Src/Win32/UniqueHandle.h"
#include "services/providers/storage/GuidText.h"
#include "services/providers/storage/RegistryValues.h"

namespace providers {
namespace {

constexpr wchar_t kAccountsKey[] = L"\\Accounts";
constexpr wchar_t kLabelValue[] = L"Label";
constexpr wchar_t kOrderValue[] = L"Order";
constexpr std::size_t kLongestText = 2000;
constexpr std::uint64_t kHighestOrder = 1'000'000'000; // more is a foreign value

struct OrderedAccount {
    std::uint64_t order = 0;
    StorageAccount account;
};

std::wstring ProviderPath(const std::wstring& key, std::uint32_t providerId) {
    return key + kAccountsKey + L'\\' + std::to_wstring(providerId);
}

// At most as long as a label may be, without half a character at its end.
std::wstring ShortLabel(std::wstring label) {
    if (label.size() <= kLongestLabel) return label;
    label.resize(kLongestLabel);
    if (IS_HIGH_SURROGATE(label.back())) label.pop_back();
    return label;
}

ObLib::UniqueRegistryKey OpenAccount(HKEY hive, const std::wstring& providerPath,
                                     const std::wstring& accountKey, REGSAM access) {
    if (!IsGuidText(accountKey)) return {};
    return ObLib::OpenRegistryKey(hive, (providerPath + L'\\' + accountKey).c_str(), access);
}

// All accounts of a provider, oldest first; one without a readable order counts as the oldest. Of
// equal age the order of the keys decides, so that two reads have one order.
std::vector<OrderedAccount> AllAccounts(HKEY hive, const std::wstring& providerPath) {
    std::vector<OrderedAccount> accounts;
    for (const std::wstring& name : SubkeyNames(hive, providerPath)) {
        const auto key = OpenAccount(hive, providerPath, name, KEY_QUERY_VALUE);
        const auto label = key ? ReadText(key.Get(), kLabelValue, kLongestText) : std::nullopt;
        if (!label) continue;
        const std::uint64_t order = ReadNumber(key.Get(), kOrderValue).value_or(0);
        accounts.push_back({order <= kHighestOrder ? order : 0, {name, ShortLabel(*label)}});
    }
    std::ranges::sort(accounts, [](const OrderedAccount& one, const OrderedAccount& other) {
        return std::pair(one.order, one.account.key) < std::pair(other.order, other.account.key);
    });
    return accounts;
}

std::uint64_t NextOrder(const std::vector<OrderedAccount>& all) {
    return all.empty() ? 1 : all.back().order + 1;
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
    StorageAccount account{NewGuidText(), ShortLabel(label)};
    if (account.key.empty()) return {};
    const auto key = MakeNewKey(hive_, path + L'\\' + account.key);
    if (!key) return {};
    if (WriteNumber(key.Get(), kOrderValue, NextOrder(all)) &&
        WriteText(key.Get(), kLabelValue, account.label)) {
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
    return key && WriteNumber(key.Get(), kOrderValue, NextOrder(all));
}

bool AccountBook::Remove(std::uint32_t providerId, const std::wstring& accountKey) const {
    if (!IsGuidText(accountKey)) return true;
    return RemoveKey(hive_, ProviderPath(key_, providerId), accountKey);
}

bool AccountBook::HasUnfinished(std::uint64_t time) const {
    const std::wstring path = key_ + kAccountsKey;
    return std::ranges::any_of(SubkeyNames(hive_, path), [&](const std::wstring& provider) {
        return !UnfinishedKeys(hive_, path + L'\\' + provider, kLabelValue, time).empty();
    });
}

void AccountBook::RemoveUnfinished(std::uint64_t time) const {
    const std::wstring path = key_ + kAccountsKey;
    for (const std::wstring& provider : SubkeyNames(hive_, path)) {
        RemoveUnfinishedKeys(hive_, path + L'\\' + provider, kLabelValue, time);
    }
}

std::optional<std::wstring> AccountBook::Text(std::uint32_t providerId,
                                              const std::wstring& accountKey,
                                              const wchar_t* name) const {
    const auto key =
        OpenAccount(hive_, ProviderPath(key_, providerId), accountKey, KEY_QUERY_VALUE);
    return key ? ReadText(key.Get(), name, kLongestText) : std::nullopt;
}

bool AccountBook::SetText(std::uint32_t providerId, const std::wstring& accountKey,
                          const wchar_t* name, const std::wstring& text) const {
    if (text.size() > kLongestText) return false;
    const auto key = OpenAccount(hive_, ProviderPath(key_, providerId), accountKey, KEY_SET_VALUE);
    return key && WriteText(key.Get(), name, text);
}

} // namespace providers
