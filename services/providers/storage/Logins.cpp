#include "services/providers/storage/Logins.h"

#include <iterator>

#include "services/providers/storage/RecordTexts.h"
#include "services/providers/ui/TextIds.h"
#include "services/providers/ui/Texts.h"

namespace providers {
namespace {

constexpr std::size_t kKeyCapacity = std::size(obcontract::ProviderProfile{}.accountKey);
constexpr std::size_t kLabelCapacity = std::size(obcontract::ProviderProfile{}.accountLabel);

bool HasRoom(const StorageRun& run, const StorageProvider& provider, HWND owner) {
    if (run.Book().Accounts(provider.Id()).size() < kMostAccounts) return true;
    ShowSentence(owner, FormatOwnText(OB_TEXT_STORAGE_TOO_MANY_ACCOUNTS,
                                      {std::to_wstring(kMostAccounts), provider.DisplayName()}));
    return false;
}

// To an account that exists, or to a new one of `provider`.
std::optional<StorageAccount> LogInTo(const StorageRun& run, StorageProvider& provider,
                                      const std::wstring& key, HWND owner) {
    const bool exists = run.Book().Contains(provider.Id(), key);
    if (!exists && !HasRoom(run, provider, owner)) return {};
    return provider.LogIn(exists ? key : std::wstring(), owner);
}

} // namespace

bool LogIn(ProviderInstance& instance, wchar_t* accountKey, wchar_t* accountLabel, HWND owner) {
    const auto kept = instance.shared_from_this();
    const auto key = TextIn(accountKey, kKeyCapacity);
    if (!key || !accountLabel) return false;
    const StorageRun& run = *instance.Run();
    StorageProvider& provider = instance.ProviderOf(*key);
    const auto account = LogInTo(run, provider, *key, owner);
    if (!account || account->key.size() >= kKeyCapacity) return false;
    run.Book().MakeNewest(provider.Id(), account->key);
    instance.Spaces().Forget(account->key);
    CopyWhole(account->key, accountKey, kKeyCapacity);
    CopyCut(account->label, accountLabel, kLabelCapacity);
    return true;
}

void LogOut(ProviderInstance& instance, const wchar_t* accountKey, HWND owner) {
    const auto kept = instance.shared_from_this();
    const auto key = AccountKeyIn(accountKey);
    StorageProvider* const provider = key ? instance.Run()->ProviderOf(*key) : nullptr;
    if (!provider) return;
    provider->LogOut(*key, owner);
    instance.Spaces().Forget(*key);
}

bool IsLoggedIn(const ProviderInstance& instance, const wchar_t* accountKey) {
    const auto key = AccountKeyIn(accountKey);
    const StorageProvider* const provider = key ? instance.Run()->ProviderOf(*key) : nullptr;
    return provider && provider->IsLoggedIn(*key);
}

} // namespace providers
