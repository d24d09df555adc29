#include "services/archive/zip/SourceList.h"

#include <windows.h>

#include <algorithm>
#include <map>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "services/archive/Paths.h"

namespace obarchive {
namespace {

bool ReadIdentity(const std::wstring& path, BY_HANDLE_FILE_INFORMATION& identity) {
    // No access right: a file that can't be read still has an identity.
    const ObLib::UniqueKernelHandle file(
        CreateFileW(path.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
                    nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    return file && GetFileInformationByHandle(file.Get(), &identity);
}

bool AreDifferentFiles(const std::wstring& first, const std::wstring& second) {
    BY_HANDLE_FILE_INFORMATION one{};
    BY_HANDLE_FILE_INFORMATION other{};
    if (!ReadIdentity(first, one) || !ReadIdentity(second, other)) return false;
    return one.dwVolumeSerialNumber != other.dwVolumeSerialNumber ||
           one.nFileIndexHigh != other.nFileIndexHigh || one.nFileIndexLow != other.nFileIndexLow;
}

} // namespace

std::vector<std::wstring> DistinctSources(const std::vector<std::wstring>& files,
                                          std::optional<std::wstring>* tooLong) {
    std::map<std::wstring, std::vector<std::wstring>, LessIgnoringCase> seen;
    std::vector<std::wstring> distinct;
    for (const std::wstring& file : files) {
        const std::wstring path = FullPath(file);
        if (path.empty()) {
            if (tooLong) *tooLong = file;
            return distinct;
        }
        std::vector<std::wstring>& same = seen[path];
        const bool known = std::any_of(same.begin(), same.end(), [&](const std::wstring& one) {
            return one == path || !AreDifferentFiles(one, path);
        });
        if (known) continue;
        same.push_back(path);
        distinct.push_back(path);
    }
    return distinct;
}

} // namespace obarchive
