#include <windows.h>

#include <shlwapi.h>

#include <utility>

#include "OBCore/files/Paths.h"
#include "OBCore/files/TemporaryFolders.h"

namespace obcore::CompressUtils {

void CopyFilesToFolder(const std::wstring& folder, std::vector<std::wstring>& files) {
    std::vector<std::wstring> copies;
    for (const std::wstring& source : files) {
        std::wstring copy = folder + PathFindFileNameW(source.c_str());
        if (CopyFileW(ExtendedPath(source).c_str(), ExtendedPath(copy).c_str(), FALSE)) {
            copies.push_back(std::move(copy));
        }
    }
    files = std::move(copies);
}

} // namespace obcore::CompressUtils
