// Whether files can be uploaded to a folder.
#pragma once

#include <windows.h>

#include <cstdint>
#include <optional>
#include <string>

namespace providers {

// Makes a file of its own in the folder and removes it. 0 when that worked, else the system's
// error: ERROR_DIRECTORY for a file in place of the folder. Any thread; a share that doesn't
// respond blocks it for a minute.
DWORD CheckFolder(const std::wstring& folder) noexcept;

// A new name for a file of this module that isn't finished, which no other file has: a random text
// in front of ".part". Empty when the system has none. And whether a name is such a one.
std::wstring PartName();
bool IsPartName(const std::wstring& name);

// The largest file that the folder's file system takes, in bytes; nothing when no limit is known.
// Blocks as CheckFolder.
std::optional<std::uint64_t> LargestFileIn(const std::wstring& folder) noexcept;

} // namespace providers
