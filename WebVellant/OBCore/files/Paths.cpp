#include "OBCore/files/Paths.h"

#include <windows.h>

#include <shlwapi.h>

#include "ObLib/Src/Win32/LongPath.h"

namespace obcore {
std::wstring CombinePath(const std::wstring& folder, const std::wstring& name) {
    // The platform's call may take two points in front of a name for a step out of the folder.
    const bool isPlain = !name.starts_with(L"..");
    wchar_t combined[MAX_PATH];
    if (isPlain && PathCombineW(combined, folder.c_str(), name.c_str())) return combined;
    const bool separated = folder.empty() || folder.ends_with(L'\\');
    return separated ? folder + name : folder + L'\\' + name;
}

std::wstring ExtendedPath(const std::wstring& path) {
    if (path.size() < MAX_PATH) return path;
    return ObLib::WithLongPathPrefix(path);
}

} // namespace obcore
