// Links to files below a folder. Strings alone: no file is touched.
#pragma once

#include <cstddef>
#include <string>

namespace providers {

// In a pattern: where the file's path below the folder is put.
inline constexpr wchar_t kPathPlace[] = L"{path}";
inline constexpr std::size_t kLongestPattern = 1000; // characters

// Whether links can be made by the pattern: an address with a scheme and a host that contains the
// place for the path, and no blank or control character.
bool IsLinkPattern(const std::wstring& pattern);

// The parts of a path, which backslashes separate, each escaped as in an address and separated by
// slashes. A part that isn't Unicode gets a replacement character.
std::wstring EscapedPath(const std::wstring& path);

// The link by a pattern to a file with this path, whose parts are escaped and separated by slashes.
std::wstring PatternLink(const std::wstring& pattern, const std::wstring& escapedPath);

// The link to a file. `folder` is a full path as FullFolderPath gives it, `below` the file's path
// below the folder. With an empty pattern it is the "file:" address of the full path. It contains
// no pipe, which separates the parts of the text for the mail.
std::wstring LinkOf(const std::wstring& folder, const std::wstring& pattern,
                    const std::wstring& below);

} // namespace providers
