#include "services/providers/AccountStore.h"

#include <algorithm>
#include <iterator>
#include <utility>

#include "ObLib/Src/Win32/RegistryView.h"
#include "ObLib/Src/Win32/UniqueHandle.h"

namespace providers {
namespace {

constexpr wchar_t kDefaultProfileValue[] = L"DefaultStorageProfile";

const HKEY kPredefinedKeys[] = {
    HKEY_CLASSES_ROOT, HKEY_CURRENT_USER, HKEY_LOCAL_MACHINE, HKEY_USERS, HKEY_CURRENT_CONFIG,
};

template <std::size_t Capacity>
bool IsTerminated(const wchar_t (&text)[Capacity]) {
    return std::find(std::begin(text), std::end(text), L'\0') != std::end(text);
}

// Whether the texts end inside their fields: whoever gets the record reads them as plain texts.
bool IsSound(const obcontract::ProviderProfile& profile) {
    return IsTerminated(profile.accountLabel) && IsTerminated(profile.accountKey) &&
           profile.reserved == L'\0';
}

ObLib::UniqueRegistryKey MakeKey(HKEY hive, const std::wstring& key) {
    ObLib::UniqueRegistryKey made;
    RegCreateKeyExW(hive, key.c_str(), 0, nullptr, 0, KEY_SET_VALUE, nullptr, made.Put(), nullptr);
    return made;
}

} // namespace

std::optional<HKEY> PredefinedKey(std::int64_t hive) noexcept {
    const auto low = static_cast<std::uint32_t>(hive);
    if (hive != static_cast<std::int64_t>(low) && hive != static_cast<std::int32_t>(low)) {
        return std::nullopt;
    }
    for (HKEY key : kPredefinedKeys) {
        if (static_cast<std::uint32_t>(reinterpret_cast<std::uintptr_t>(key)) == low) return key;
    }
    return std::nullopt;
}

AccountStore::AccountStore(HKEY hive, std::wstring key) : hive_(hive), key_(std::move(key)) {}

obcontract::ProviderProfile AccountStore::DefaultProfile() const {
    const auto key = ObLib::OpenRegistryKey(hive_, key_.c_str(), KEY_QUERY_VALUE);
    if (!key) return {};
    obcontract::ProviderProfile profile{};
    DWORD type = REG_NONE;
    DWORD size = sizeof(profile);
    const LSTATUS status = RegQueryValueExW(key.Get(), kDefaultProfileValue, nullptr, &type,
                                            reinterpret_cast<BYTE*>(&profile), &size);
    const bool whole = status == ERROR_SUCCESS && type == REG_BINARY && size == sizeof(profile);
    return whole && IsSound(profile) ? profile : obcontract::ProviderProfile{};
}

bool AccountStore::SaveDefaultProfile(const obcontract::ProviderProfile& profile) const {
    if (!IsSound(profile)) return false;
    const ObLib::UniqueRegistryKey key = MakeKey(hive_, key_);
    if (!key) return false;
    return RegSetValueExW(key.Get(), kDefaultProfileValue, 0, REG_BINARY,
                          reinterpret_cast<const BYTE*>(&profile),
                          sizeof(profile)) == ERROR_SUCCESS;
}

} // namespace providers
