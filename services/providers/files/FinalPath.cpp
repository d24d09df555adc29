#include "services/providers/files/FinalPath.h"

namespace providers {

std::wstring FinalPath(HANDLE open) {
    std::wstring path(MAX_PATH, L'\0');
    for (;;) {
        const DWORD length = GetFinalPathNameByHandleW(
            open, path.data(), static_cast<DWORD>(path.size()), FILE_NAME_NORMALIZED);
        const bool fits = length < path.size();
        path.resize(length);
        if (fits) return path;
    }
}

} // namespace providers
