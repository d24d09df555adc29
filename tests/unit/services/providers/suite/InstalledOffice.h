// Installs the fake suite in a test's own prefix.
#pragma once

#include <windows.h>

#include <string>

#include "tests/fakes/Recording.h"
#include "tests/support/ProductRegistry.h"
#include "tests/support/TestFolder.h"

namespace suitetest {

inline constexpr wchar_t kSuiteKey[] = L"SOFTWARE\\LibreOffice\\UNO\\InstallPath";
inline constexpr wchar_t kAppPathKey[] =
    L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App Paths\\soffice.exe";
inline constexpr wchar_t kProgramFolder[] = L"C:\\Program Files\\Sample suite";

inline void Unregister() {
    for (const REGSAM view : {KEY_WOW64_64KEY, KEY_WOW64_32KEY}) {
        RegDeleteKeyExW(HKEY_LOCAL_MACHINE, kSuiteKey, view, 0);
        RegDeleteKeyExW(HKEY_LOCAL_MACHINE, kAppPathKey, view, 0);
    }
}

// The folder exists afterwards with the fake in it.
inline void Install(const std::wstring& folder) {
    CreateDirectoryW(folder.c_str(), nullptr);
    CopyFileW(obtest::BesideProgram(L"soffice.exe").c_str(), (folder + L"\\soffice.exe").c_str(),
              FALSE);
}

inline void Register(const std::wstring& folder, int view = 64) {
    obtest::SetValue(HKEY_LOCAL_MACHINE, kSuiteKey, L"", folder, view);
}

// Removes what earlier tests of this prefix left.
inline void BeginAnew() {
    Unregister();
    obtest::RemoveTree(kProgramFolder);
}

} // namespace suitetest
