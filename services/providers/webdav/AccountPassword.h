// Passwords of accounts, in the store of the system for this user and nowhere else.
#pragma once

#include <optional>
#include <string>

#include "ObLib/Src/Win32/Secret.h"

namespace providers {

// The longest password in bytes: what the store has room for.
inline constexpr std::size_t kLongestAccountPassword = 2560;

// Stores the password of an account in place of the one before. False when it can't, or when the
// password is empty or too long. On any thread, like the others.
bool SaveAccountPassword(const std::wstring& accountKey, const ObLib::Secret& password);

// Nothing when there is none.
std::optional<ObLib::Secret> LoadAccountPassword(const std::wstring& accountKey);

// True when there is none afterwards.
bool ForgetAccountPassword(const std::wstring& accountKey);

} // namespace providers
