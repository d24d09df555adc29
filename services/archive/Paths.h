// Paths as the system takes them at any length, and their parts.
#pragma once

#include <string>
#include <string_view>

namespace obarchive {

// The absolute form, with the prefix that lifts the length limit when the path needs it. Empty when
// the system can't make or take one: no more than 32,766 UTF-16 units, and no name of more than
// 255.
std::wstring FullPath(const std::wstring& path);

// The part after the last backslash or slash.
std::wstring_view FileName(std::wstring_view path);

// The part before that, with the backslash.
std::wstring_view FolderOf(std::wstring_view path);

// Whether the file system takes two names as one: compared ordinally, without regard to case.
bool EqualIgnoringCase(std::wstring_view first, std::wstring_view second);

// Less-than for ordered containers in the same order of things.
struct LessIgnoringCase {
    bool operator()(std::wstring_view first, std::wstring_view second) const;
};

// Halves of surrogate pairs, which a file name may contain and UTF-8 can't, become U+FFFD.
std::wstring WithoutLoneSurrogates(std::wstring_view text);

} // namespace obarchive
