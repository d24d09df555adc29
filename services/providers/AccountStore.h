// What the manager remembers of the user's accounts, below its registry key.
#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>
#include <string>

#include "contracts/ProviderManager.h"

namespace providers {

// The predefined key that a caller's 64-bit hive value names, with its sign extended or not.
// Nothing for any other value.
std::optional<HKEY> PredefinedKey(std::int64_t hive) noexcept;

// Opens the key for each access and keeps nothing open in between, so that another process sees a
// change at once. The last writer wins.
class AccountStore {
public:
    AccountStore(HKEY hive, std::wstring key);

    // The account that uploads go to unless the user chooses another. An empty profile when there
    // is none, when the key can't be read, or when the value isn't one that was saved here.
    obcontract::ProviderProfile DefaultProfile() const;

    // Saves the record byte by byte and makes the key if need be. False, with the old value kept,
    // when it can't be written or is no record that could be read back.
    bool SaveDefaultProfile(const obcontract::ProviderProfile& profile) const;

private:
    HKEY hive_; // predefined: never closed
    std::wstring key_;
};

} // namespace providers
