#include "services/providers/suite/TrustedProgram.h"

#include <windows.h>

#include <algorithm>

#include "ObLib/Src/Win32/LongPath.h"
#include "ObLib/Src/Win32/UniqueHandle.h"
#include "services/providers/files/FinalPath.h"
#include "services/providers/files/PathBelow.h"
#include "services/providers/suite/RegistryText.h"

namespace providers {
namespace {

constexpr wchar_t kSystemKey[] = L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion";
// Of 64-bit and of 32-bit programs.
constexpr const wchar_t* kFolderValues[] = {L"ProgramFilesDir", L"ProgramFilesDir (x86)"};

// As FinalPath gives it; empty when nothing is there. Folders too.
std::wstring FinalPathOf(const std::wstring& path) {
    const ObLib::UniqueKernelHandle open(CreateFileW(
        path.c_str(), FILE_READ_ATTRIBUTES, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE,
        nullptr, OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    return open ? FinalPath(open.Get()) : std::wstring();
}

bool IsFullPath(const std::wstring& path) {
    return path.size() > 3 && path.compare(1, 2, L":\\") == 0;
}

bool IsFile(const std::wstring& path) {
    const DWORD attributes = GetFileAttributesW(path.c_str());
    return attributes != INVALID_FILE_ATTRIBUTES && !(attributes & FILE_ATTRIBUTE_DIRECTORY);
}

// The environment has these folders too, but the user can change that.
bool IsBelowProgramFolder(const std::wstring& path) {
    return std::ranges::any_of(kFolderValues, [&](const wchar_t* value) {
        const std::wstring folder =
            RegistryText(HKEY_LOCAL_MACHINE, kSystemKey, value, ObLib::RegistryView::Bits64);
        return IsFullPath(folder) && IsPathBelow(path, FinalPathOf(folder));
    });
}

} // namespace

std::wstring TrustedProgram(const std::wstring& path) {
    if (!IsFullPath(path) || !IsFile(path)) return {};
    const std::wstring real = FinalPathOf(path);
    if (!real.starts_with(ObLib::kLongPathPrefix) || !IsBelowProgramFolder(real)) return {};
    return ObLib::WithoutLongPathPrefix(real); // programs expect their own path without the prefix
}

} // namespace providers
