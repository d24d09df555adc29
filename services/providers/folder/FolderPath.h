// Paths of folders, and names in them. Strings alone: no file is touched.
#pragma once

#include <cstddef>
#include <string>

namespace providers {

inline constexpr std::size_t kLongestFolder = 1000; // characters

// What the user typed as a full path on a drive or a share, without quotes, relative parts and a
// backslash at its end, which only the root of a drive has. Empty when it is no full path.
std::wstring FullFolderPath(const std::wstring& typed);

// The last component of such a path, which is what its account is called: the share where it has no
// folder, the drive's letter and colon where it is a drive.
std::wstring FolderLabel(const std::wstring& folder);

// Whether the path begins with a drive of this computer, so that it means nothing to others: also
// for the letter of a share.
bool IsOnDrive(const std::wstring& folder);

// The path of something below such a folder.
std::wstring BelowFolder(const std::wstring& folder, const std::wstring& below);

// Whether Windows can have a file or folder of this name: no device, no character that is part of a
// path, no dot or blank at its end, whole Unicode, at most 255 characters.
bool IsFileName(const std::wstring& name);

} // namespace providers
