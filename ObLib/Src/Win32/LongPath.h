// The prefix with which the system takes paths beyond its limit of 260 characters.
#pragma once

#include <string>
#include <string_view>

namespace ObLib {

inline constexpr std::wstring_view kLongPathPrefix = L"\\\\?\\";       // of a drive
inline constexpr std::wstring_view kLongSharePrefix = L"\\\\?\\UNC\\"; // of a server's share

// A full path on a drive or on a share with that prefix in front, whatever its length. Every other
// path (relative, a device, one that has a prefix) comes back as it is.
std::wstring WithLongPathPrefix(const std::wstring& path);

// The path as users know it: a drive's or a share's without the prefix. Every other path comes back
// as it is.
std::wstring WithoutLongPathPrefix(const std::wstring& path);

} // namespace ObLib
