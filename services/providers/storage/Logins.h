// Logging in to accounts and out of them.
#pragma once

#include <windows.h>

#include "services/providers/storage/ProviderInstance.h"

namespace providers {

// Lets the user log in, to the account of the key or, without one that exists, to a new one of the
// instance's provider. After a success the two buffers, which have the sizes of a profile's fields,
// have the account's key and label, and it is its provider's newest. False after a cancel, a
// failure, or with as many accounts as there may be, which the user is told. On the thread that
// owns the dialogs.
bool LogIn(ProviderInstance& instance, wchar_t* accountKey, wchar_t* accountLabel, HWND owner);

// Logs out of the account of the key, if there is one.
void LogOut(ProviderInstance& instance, const wchar_t* accountKey, HWND owner);

bool IsLoggedIn(const ProviderInstance& instance, const wchar_t* accountKey);

} // namespace providers
