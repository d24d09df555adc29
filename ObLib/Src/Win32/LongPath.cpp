#include "ObLib/Src/Win32/LongPath.h"

namespace ObLib {
namespace {

constexpr std::wstring_view kShare = L"\\\\";

std::wstring Joined(std::wstring_view prefix, std::wstring_view path) {
    std::wstring joined(prefix);
    joined += path;
    return joined;
}

bool IsOnDrive(const std::wstring& path) {
    return path.size() > 2 && path.compare(1, 2, L":\\") == 0;
}

// A share: two backslashes and a server's name, not one of the prefixes of the system.
bool IsOnShare(const std::wstring& path) {
    return path.size() > 2 && path.starts_with(kShare) && path[2] != L'?' && path[2] != L'.';
}

} // namespace

std::wstring WithLongPathPrefix(const std::wstring& path) {
    const std::wstring_view whole = path;
    if (IsOnShare(path)) return Joined(kLongSharePrefix, whole.substr(kShare.size()));
    return IsOnDrive(path) ? Joined(kLongPathPrefix, whole) : path;
}

std::wstring WithoutLongPathPrefix(const std::wstring& path) {
    const std::wstring_view whole = path;
    if (whole.starts_with(kLongSharePrefix))
        return Joined(kShare, whole.substr(kLongSharePrefix.size()));
    return whole.starts_with(kLongPathPrefix) ? path.substr(kLongPathPrefix.size()) : path;
}

} // namespace ObLib
