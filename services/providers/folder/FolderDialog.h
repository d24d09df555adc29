// The page of a network folder: what the user enters at the login, and sees on the account page.
#pragma once

#include <windows.h>

#include <cstdint>
#include <functional>
#include <string>

#include "services/providers/folder/FolderAccount.h"

namespace providers {

enum class FolderPageEnd : std::uint8_t { Cancelled, Saved, LogOut };

struct FolderPage {
    std::wstring caption;
    FolderSettings settings; // shown first; after Saved what the user entered, checked
    bool hasLogOut = false;
    // Why this folder is refused, as a sentence; empty when it isn't. On the thread of the dialog.
    std::function<std::wstring(const std::wstring& folder)> refuse;
    // Whether files can be stored there; on a thread of its own, which may outlive the dialog.
    // Returns as CheckFolder.
    DWORD (*check)(const std::wstring& folder) noexcept;
};

// Shows the page in front of the owner, which may be null, and waits. A folder that can't be used
// is explained and keeps the page open. On the thread of the owner.
FolderPageEnd ShowFolderPage(HWND owner, FolderPage& page);

} // namespace providers
