// What is kept of an account of a network folder.
#pragma once

#include <optional>
#include <string>

#include "services/providers/storage/AccountBook.h"

namespace providers {

struct FolderSettings {
    std::wstring folder;  // as FullFolderPath gives it
    std::wstring pattern; // of links; empty: none
};

// Nothing when there is no such account, or none with a usable folder. A pattern that makes no
// links counts as none.
std::optional<FolderSettings> ReadFolder(const AccountBook& book, const std::wstring& accountKey);

// A new account of the folder; nothing as AccountBook::Add, with nothing left.
std::optional<StorageAccount> AddFolder(const AccountBook& book, const FolderSettings& settings);

// Changes the account, whose label follows the folder. False when it can't be written whole.
bool ChangeFolder(const AccountBook& book, const std::wstring& accountKey,
                  const FolderSettings& settings);

// The key of another account than `except` with this folder, in any letter case; empty for none.
std::wstring AccountOfFolder(const AccountBook& book, const std::wstring& folder,
                             const std::wstring& except);

} // namespace providers
