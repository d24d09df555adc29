#include "OBCore/files/TemporaryFolders.h"

#include <windows.h>

#include <shlwapi.h>

#include <cwchar>
#include <utility>

#include "OBCore/files/Paths.h"
#include "OBCore/modules/ObTrace.h"
#include "OBCore/modules/OwnModule.h"

namespace obcore {
namespace {

constexpr DWORD kLongFormCapacity = 520; // wide characters

// Nothing when the system has no long form or it doesn't fit.
std::wstring LongForm(const wchar_t* folder) {
    wchar_t longForm[kLongFormCapacity];
    const DWORD length = GetLongPathNameW(folder, longForm, kLongFormCapacity);
    if (length != 0 && length < kLongFormCapacity) return longForm;
    ObTrace("Long Path not Get, %d", GetLastError());
    return {};
}

std::wstring NumberedFolder(const std::wstring& base, DWORD number) {
    wchar_t name[16];
    _snwprintf(name, std::size(name), L"%x", static_cast<unsigned>(number));
    return CombinePath(base, name) + L'\\';
}

} // namespace

bool GetTemporaryFolder(std::wstring& folder) {
    wchar_t given[kPathCapacity];
    const DWORD length = GetTempPathW(kPathCapacity, given);
    // An empty path would mean the current folder, which this run doesn't own.
    if (length == 0 || length >= kPathCapacity - 1) return false;
    PathAddBackslashW(given);
    folder = LongForm(given);
    if (folder.empty()) folder = given;
    return true;
}

bool CreateUniqueTempFolder(std::wstring& folder) {
    if (!PathFileExistsW(folder.c_str())) return false;
    for (DWORD number = GetTickCount();; ++number) {
        std::wstring candidate = NumberedFolder(folder, number);
        if (PathFileExistsW(candidate.c_str())) continue;
        // Another process that asked within the same tick may take the name in between: two runs
        // in one folder would clear each other's files. Any other failure shows when it is used.
        if (!CreateDirectoryW(candidate.c_str(), nullptr) &&
            GetLastError() == ERROR_ALREADY_EXISTS) {
            continue;
        }
        folder = std::move(candidate);
        return true;
    }
}

} // namespace obcore
