#include "services/providers/files/PathBelow.h"

#include <windows.h>

namespace providers {

bool IsPathBelow(const std::wstring& path, const std::wstring& folder) noexcept {
    if (folder.empty() || path.size() <= folder.size() + 1 || path[folder.size()] != L'\\') {
        return false;
    }
    const int length = static_cast<int>(folder.size());
    return CompareStringOrdinal(path.c_str(), length, folder.c_str(), length, TRUE) == CSTR_EQUAL;
}

} // namespace providers
