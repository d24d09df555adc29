#include "services/providers/folder/FolderFile.h"

#include <algorithm>
#include <cwchar>
#include <iterator>

#include "ObLib/Src/Win32/Guarded.h"
#include "ObLib/Src/Win32/LongPath.h"
#include "ObLib/Src/Win32/UniqueHandle.h"
#include "services/providers/folder/FolderCheck.h"
#include "services/providers/folder/FolderPath.h"

namespace providers {
namespace {

using ObLib::UniqueKernelHandle;
using ObLib::WithLongPathPrefix;

constexpr wchar_t kSeparator = L'|'; // no path contains it
constexpr DWORD kShareAll = FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE;

UniqueKernelHandle Open(const std::wstring& path, DWORD access) {
    return UniqueKernelHandle(CreateFileW(WithLongPathPrefix(path).c_str(),
                                          access | FILE_READ_ATTRIBUTES, kShareAll, nullptr,
                                          OPEN_EXISTING, FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
}

// Some file systems make up an id at each opening.
bool KeepsIds(HANDLE open) {
    DWORD flags = 0;
    return GetVolumeInformationByHandleW(open, nullptr, 0, nullptr, nullptr, &flags, nullptr, 0) &&
           (flags & FILE_SUPPORTS_OPEN_BY_FILE_ID);
}

std::wstring ParentOf(const std::wstring& path) {
    const std::size_t slash = path.find_last_of(L'\\');
    return slash == std::wstring::npos ? std::wstring() : path.substr(0, slash);
}

// The drive or share that the path is on, with a backslash at its end.
std::wstring RootOf(const std::wstring& path) {
    if (!path.starts_with(L"\\\\")) return path.substr(0, 3);
    const std::size_t server = path.find(L'\\', 2);
    const std::size_t share = server == std::wstring::npos ? server : path.find(L'\\', server + 1);
    return path.substr(0, share) + L'\\';
}

// A file isn't gone while its drive or share is.
DeletionEnd EndWithout(const std::wstring& path, DWORD error) {
    if (error != ERROR_FILE_NOT_FOUND && error != ERROR_PATH_NOT_FOUND) {
        return DeletionEnd::Unreachable;
    }
    const DWORD root = GetFileAttributesW(RootOf(path).c_str());
    return root == INVALID_FILE_ATTRIBUTES ? DeletionEnd::Unreachable : DeletionEnd::Gone;
}

// Whether each part of a path below a folder is a name, so that the path leads nowhere else.
bool AreNames(const std::wstring& below) {
    for (std::size_t at = 0; at <= below.size();) {
        const std::size_t end = std::min(below.find(L'\\', at), below.size());
        if (!IsFileName(below.substr(at, end - at))) return false;
        at = end + 1;
    }
    return true;
}

// How many folders around the file have the names that an upload gives: a time's 14 digits, and the
// program's name around it.
unsigned OwnFolders(const std::wstring& below) {
    constexpr std::size_t kDigits = 14;
    const std::wstring around = ParentOf(below);
    const std::wstring stamp = around.substr(around.find_last_of(L'\\') + 1);
    if (stamp.size() != kDigits || stamp.find_first_not_of(L"0123456789") != std::wstring::npos) {
        return 0;
    }
    return ParentOf(around) == L"Quillbox" ? 2 : 1;
}

bool Delete(HANDLE open) {
    FILE_DISPOSITION_INFO gone{TRUE};
    return SetFileInformationByHandle(open, FileDispositionInfo, &gone, sizeof gone) != FALSE;
}

} // namespace

std::wstring FullPath(const FolderPlace& place) { return BelowFolder(place.folder, place.below); }

std::wstring TextOf(const FolderPlace& place) {
    return std::to_wstring(std::min(place.madeFolders, 9U)) + kSeparator + place.folder +
           kSeparator + place.below;
}

std::optional<FolderPlace> PlaceOf(const std::wstring& text) {
    constexpr std::size_t kDigit = 1;
    const std::size_t second = text.find(kSeparator, kDigit + 1);
    if (second == std::wstring::npos || text[kDigit] != kSeparator) return {};
    if (text[0] < L'0' || text[0] > L'9') return {};
    FolderPlace place{text.substr(kDigit + 1, second - kDigit - 1), text.substr(second + 1),
                      static_cast<unsigned>(text[0] - L'0')};
    const bool isFull = !place.folder.empty() && FullFolderPath(place.folder) == place.folder;
    if (!isFull || !AreNames(place.below)) return {};
    return place;
}

std::wstring VersionOf(HANDLE open) {
    BY_HANDLE_FILE_INFORMATION info{};
    if (!GetFileInformationByHandle(open, &info)) return {};
    const bool keepsIds = KeepsIds(open);
    wchar_t text[80] = L"";
    _snwprintf(text, std::size(text) - 1, L"%08lX%08lX-%08lX%08lX-%08lX%08lX", info.nFileSizeHigh,
               info.nFileSizeLow, info.ftLastWriteTime.dwHighDateTime,
               info.ftLastWriteTime.dwLowDateTime, keepsIds ? info.nFileIndexHigh : 0,
               keepsIds ? info.nFileIndexLow : 0);
    return text;
}

std::wstring VersionAt(const std::wstring& path) {
    const UniqueKernelHandle file = Open(path, 0);
    return file ? VersionOf(file.Get()) : std::wstring();
}

DeletionEnd DeleteFolderFile(const StoredFile& file) {
    const auto place = PlaceOf(file.path);
    if (!place || file.version.empty()) return DeletionEnd::Changed;
    const std::wstring path = FullPath(*place);
    {
        const UniqueKernelHandle open = Open(path, DELETE);
        if (!open) return EndWithout(path, GetLastError());
        const std::wstring version = VersionOf(open.Get());
        if (version.empty()) return DeletionEnd::Unreachable;
        if (version != file.version) return DeletionEnd::Changed;
        if (!Delete(open.Get())) return DeletionEnd::Unreachable;
    }
    RemoveEmptyFolders(path, std::min(place->madeFolders, OwnFolders(place->below)));
    return DeletionEnd::Gone;
}

DeletionEnd RemoveFolderPart(const std::wstring& text) {
    const auto place = PlaceOf(text);
    if (!place || !IsPartName(place->below.substr(place->below.find_last_of(L'\\') + 1))) {
        return DeletionEnd::Changed;
    }
    const std::wstring path = FullPath(*place);
    {
        const UniqueKernelHandle open = Open(path, DELETE);
        const DWORD error = open ? 0 : GetLastError();
        if (error != 0 && EndWithout(path, error) != DeletionEnd::Gone) {
            return DeletionEnd::Unreachable;
        }
        if (open && !Delete(open.Get())) return DeletionEnd::Unreachable;
    }
    RemoveEmptyFolders(path, std::min(place->madeFolders, OwnFolders(place->below)));
    return DeletionEnd::Gone;
}

void RemoveEmptyFolders(const std::wstring& path, unsigned count) noexcept {
    ObLib::RanGuarded([&] {
        std::wstring folder = ParentOf(path);
        for (; count > 0; --count, folder = ParentOf(folder)) {
            if (!RemoveDirectoryW(WithLongPathPrefix(folder).c_str())) return;
        }
    });
}

} // namespace providers
