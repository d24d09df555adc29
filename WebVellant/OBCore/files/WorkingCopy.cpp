#include "OBCore/files/WorkingCopy.h"

#include <windows.h>

#include "OBCore/files/Paths.h"
#include "OBCore/files/Wipe.h"
#include "ObLib/Src/Win32/UniqueHandle.h"

namespace obcore {
namespace {

bool IsSelfOrParent(const wchar_t* name) {
    const std::wstring_view entry = name;
    return entry == L"." || entry == L"..";
}

// A junction, a mount point or a symbolic link. What it leads to belongs to somebody else.
bool IsLink(const WIN32_FIND_DATAW& entry) {
    return (entry.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 &&
           IsReparseTagNameSurrogate(entry.dwReserved0);
}

// A copy inherits the mark of a write-protected source, and such a file can't be deleted.
void DeleteCopy(const std::wstring& path) {
    const std::wstring file = ExtendedPath(path);
    if (DeleteFileW(file.c_str()) || GetLastError() != ERROR_ACCESS_DENIED) return;
    SetFileAttributesW(file.c_str(), FILE_ATTRIBUTE_NORMAL);
    DeleteFileW(file.c_str());
}

} // namespace

bool IsLinkInstead(std::wstring folder) {
    if (folder.ends_with(L'\\')) folder.pop_back();
    const DWORD attributes = GetFileAttributesW(ExtendedPath(folder).c_str());
    return attributes != INVALID_FILE_ATTRIBUTES &&
           (attributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0;
}

void WipeResult(std::vector<std::wstring> files, const std::wstring& folder) {
    if (IsLinkInstead(folder)) return;
    std::vector<std::wstring> folders = {folder};
    WipeFiles(files, folders);
    if (files.empty()) return;
    for (const std::wstring& file : files) DeleteCopy(file);
    RemoveDirectoryW(ExtendedPath(folder).c_str());
}

namespace CompressUtils {

void CollectFolderFiles(const std::wstring& folder, std::vector<std::wstring>& files) {
    WIN32_FIND_DATAW entry;
    const std::wstring pattern = ExtendedPath(CombinePath(folder, L"*"));
    const ObLib::UniqueFindHandle search(FindFirstFileW(pattern.c_str(), &entry));
    if (!search) return;
    do {
        const bool isFolder = (entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
        if (isFolder && IsSelfOrParent(entry.cFileName)) continue;
        if (IsLink(entry)) continue;
        const std::wstring path = CombinePath(folder, entry.cFileName);
        if (isFolder) {
            CollectFolderFiles(path, files);
        } else {
            files.push_back(path);
        }
    } while (FindNextFileW(search.Get(), &entry));
}

void CleanupWorkingCopy(const WorkingCopy& copy) {
    if (!copy.HasFolder || IsLinkInstead(copy.Folder)) return;
    std::vector<std::wstring> files;
    CollectFolderFiles(copy.Folder, files);
    std::vector<std::wstring> folders = {copy.Folder};
    WipeFiles(files, folders);
    for (const std::wstring& file : files) DeleteCopy(file);
    // Fails while a wipe program that was just started still has files in it, and removes the
    // folder itself then.
    RemoveDirectoryW(copy.Folder.c_str());
}

} // namespace CompressUtils
} // namespace obcore
