#include "ObLib/Src/Win32/LongPath.h"

namespace ObLib {
namespace {

constexpr wchar_t kPrefix[] = L"\\\\?\\";
constexpr wchar_t kSharePrefix[] = L"\\\\?\\UNC\\";

bool IsOnDrive(const std::wstring& path) {
    return path.size() > 2 && path.compare(1, 2, L":\\") == 0;
}

// A share: two backslashes and a server's name, not one of the prefixes of the system.
bool IsOnShare(const std::wstring& path) {
    return path.size() > 2 && path.starts_with(L"\\\\") && path[2] != L'?' && path[2] != L'.';
}

} // namespace

std::wstring WithLongPathPrefix(const std::wstring& path) {
    if (IsOnShare(path)) return kSharePrefix + path.substr(2);
    if (IsOnDrive(path)) return kPrefix + path;
    return path;
}

} // namespace ObLib
