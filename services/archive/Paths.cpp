#include "services/archive/Paths.h"

#include <windows.h>

#include <algorithm>

#include "ObLib/Src/Win32/LongPath.h"

namespace obarchive {
namespace {

// Folders end earlier than files; the lower of the two limits serves both.
constexpr std::size_t kLongestPlainPath = MAX_PATH - 13;
constexpr std::size_t kLongestPath = 32766; // with the prefix
constexpr std::size_t kLongestName = 255;   // of a file or a folder, on every file system

int CompareLengths(std::size_t first, std::size_t second) {
    if (first == second) return CSTR_EQUAL;
    return first < second ? CSTR_LESS_THAN : CSTR_GREATER_THAN;
}

// Compares unit by unit first: most of two paths is the same text, for which the system's
// comparison isn't needed.
int CompareOrdinal(std::wstring_view first, std::wstring_view second) {
    const auto differing =
        std::mismatch(first.begin(), first.end(), second.begin(), second.end()).first;
    const auto alike = static_cast<std::size_t>(differing - first.begin());
    first.remove_prefix(alike);
    second.remove_prefix(alike);
    if (first.empty() || second.empty()) return CompareLengths(first.size(), second.size());
    return CompareStringOrdinal(first.data(), static_cast<int>(first.size()), second.data(),
                                static_cast<int>(second.size()), TRUE);
}

std::wstring AbsolutePath(const std::wstring& path) {
    if (path.empty() || path.starts_with(ObLib::kLongPathPrefix)) return path;
    const DWORD capacity = GetFullPathNameW(path.c_str(), 0, nullptr, nullptr);
    if (capacity == 0) return {};
    std::wstring full(capacity, L'\0');
    const DWORD length = GetFullPathNameW(path.c_str(), capacity, full.data(), nullptr);
    if (length == 0 || length >= capacity) return {};
    full.resize(length);
    return length <= kLongestPlainPath ? full : ObLib::WithLongPathPrefix(full);
}

// Asked beforehand, as the system's own answer to such a path may be that nothing is there.
bool FitsTheSystem(std::wstring_view path) {
    if (path.size() > kLongestPath) return false;
    for (std::size_t at = 0; at < path.size();) {
        const std::size_t end = std::min(path.find(L'\\', at), path.size());
        if (end - at > kLongestName) return false;
        at = end + 1;
    }
    return true;
}

} // namespace

std::wstring FullPath(const std::wstring& path) {
    const std::wstring full = AbsolutePath(path);
    return FitsTheSystem(full) ? full : std::wstring();
}

std::wstring_view FileName(std::wstring_view path) {
    const std::size_t separator = path.find_last_of(L"\\/");
    return separator == std::wstring_view::npos ? path : path.substr(separator + 1);
}

std::wstring_view FolderOf(std::wstring_view path) {
    return path.substr(0, path.size() - FileName(path).size());
}

bool EqualIgnoringCase(std::wstring_view first, std::wstring_view second) {
    return CompareOrdinal(first, second) == CSTR_EQUAL;
}

bool LessIgnoringCase::operator()(std::wstring_view first, std::wstring_view second) const {
    return CompareOrdinal(first, second) == CSTR_LESS_THAN;
}

std::wstring WithoutLoneSurrogates(std::wstring_view text) {
    std::wstring clean(text);
    for (std::size_t at = 0; at < clean.size(); ++at) {
        const bool pair = IS_HIGH_SURROGATE(clean[at]) && at + 1 < clean.size() &&
                          IS_LOW_SURROGATE(clean[at + 1]);
        if (pair) {
            ++at;
        } else if (IS_HIGH_SURROGATE(clean[at]) || IS_LOW_SURROGATE(clean[at])) {
            clean[at] = 0xFFFD;
        }
    }
    return clean;
}

} // namespace obarchive
