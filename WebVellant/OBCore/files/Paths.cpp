#include "OBCore/files/Paths.h"

#include <windows.h>

#include <shlwapi.h>

namespace obcore {
namespace {

constexpr wchar_t kExtendedPrefix[] = L"\\\\?\\";
constexpr wchar_t kExtendedNetworkPrefix[] = L"\\\\?\\UNC\\";

bool IsOnDrive(const std::wstring& path) { return path.compare(1, 2, L":\\") == 0; }

// A share: two backslashes and a server's name, not one of the prefixes of the system.
bool IsOnNetwork(const std::wstring& path) {
    return path.starts_with(L"\\\\") && path[2] != L'?' && path[2] != L'.';
}

} // namespace

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
    if (IsOnNetwork(path)) return kExtendedNetworkPrefix + path.substr(2);
    if (IsOnDrive(path)) return kExtendedPrefix + path;
    return path;
}

} // namespace obcore
