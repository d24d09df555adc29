// The accounts of the storage providers, below the manager's registry key: one key a provider,
// below it one key an account, whose values belong to the provider.
//
//   KEY\Accounts\<provider id>\<account key>
//       Label    REG_SZ     shown for the account
//       Order    REG_QWORD  the newest account has the highest
//       others   REG_SZ     the provider's own; never a password or a link
#pragma once

#include <windows.h>

#include <cstddef>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "services/providers/storage/StorageProvider.h"

namespace providers {

inline constexpr std::size_t kMostAccounts = 16; // of one provider: what a caller has room for
inline constexpr std::size_t kLongestLabel = 50; // characters, without the NUL

// Opens the keys for each access and keeps nothing open in between, so that another process sees a
// change at once. On any thread. Texts have at most 2,000 characters; a longer one, or a value of
// another type, is as if it weren't there. An account key that Add can't have made finds nothing
// and never becomes part of a registry path.
class AccountBook {
public:
    // The hive and key that Init was given.
    AccountBook(HKEY hive, std::wstring key);

    // Below which other things of the storage providers are kept, too.
    HKEY Hive() const noexcept { return hive_; }
    const std::wstring& Key() const noexcept { return key_; }

    // Oldest first, the newest kMostAccounts if there are more; those without a label are left out.
    // A label is cut to kLongestLabel.
    std::vector<StorageAccount> Accounts(std::uint32_t providerId) const;

    // Whether there is an account of this key with a label.
    bool Contains(std::uint32_t providerId, const std::wstring& accountKey) const;

    // The account of this key. Nothing when there is none with a label.
    std::optional<StorageAccount> Account(std::uint32_t providerId,
                                          const std::wstring& accountKey) const;

    // Makes a new account, which is the newest, with a key that no other has. Nothing when there
    // are kMostAccounts already, or when it can't be written. The label is cut as above.
    std::optional<StorageAccount> Add(std::uint32_t providerId, const std::wstring& label) const;

    // Puts an account last, as the one that the user logged in to. False when it can't be written
    // or there is no such account.
    bool MakeNewest(std::uint32_t providerId, const std::wstring& accountKey) const;

    // Removes an account with all its values. True when it isn't there afterwards.
    bool Remove(std::uint32_t providerId, const std::wstring& accountKey) const;

    // Whether there are accounts of any provider that Add has begun before `time`, as TimeNow
    // counts, and never finished, as when its process was killed; and removes them.
    bool HasUnfinished(std::uint64_t time) const;
    void RemoveUnfinished(std::uint64_t time) const;

    // A text of an account; nothing when there is none.
    std::optional<std::wstring> Text(std::uint32_t providerId, const std::wstring& accountKey,
                                     const wchar_t* name) const;
    // False, with the old value kept, when it can't be written, is too long, or there is no such
    // account.
    bool SetText(std::uint32_t providerId, const std::wstring& accountKey, const wchar_t* name,
                 const std::wstring& text) const;

private:
    HKEY hive_; // predefined: never closed
    std::wstring key_;
};

} // namespace providers
