// Installs the fake suite and the fake office programs in a test's own prefix.
#pragma once

#include <windows.h>

#include <string>

#include "ObLib/Src/Win32/UniqueHandle.h"
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

// Office programs that are driven by automation.

inline constexpr wchar_t kOfficeFolder[] = L"C:\\Program Files\\Sample office";
inline constexpr wchar_t kText[] = L"{6E2A7B10-4C1D-4F0E-9D53-0A5D5E3C7B01}";
inline constexpr wchar_t kTable[] = L"{6E2A7B10-4C1D-4F0E-9D53-0A5D5E3C7B02}";
inline constexpr wchar_t kSlides[] = L"{6E2A7B10-4C1D-4F0E-9D53-0A5D5E3C7B03}";

inline std::wstring InOffice(const wchar_t* name) {
    return std::wstring(kOfficeFolder) + L'\\' + name;
}

inline std::wstring CommandLine(const wchar_t* id) {
    return L"\"" + InOffice(L"office.exe") + L"\" " + id;
}

inline void SetServer(const wchar_t* id, const std::wstring& commandLine) {
    obtest::SetValue(HKEY_LOCAL_MACHINE,
                     std::wstring(L"SOFTWARE\\Classes\\CLSID\\") + id + L"\\LocalServer32", L"",
                     commandLine);
}

inline void RegisterProgram(const wchar_t* name, const wchar_t* id) {
    obtest::SetValue(HKEY_LOCAL_MACHINE, std::wstring(L"SOFTWARE\\Classes\\") + name + L"\\CLSID",
                     L"", id);
    SetServer(id, CommandLine(id));
}

inline void InstallOffice() {
    CreateDirectoryW(kOfficeFolder, nullptr);
    CopyFileW(obtest::BesideProgram(L"office.exe").c_str(), InOffice(L"office.exe").c_str(), FALSE);
    RegisterProgram(L"Word.Application", kText);
    RegisterProgram(L"Excel.Application", kTable);
    RegisterProgram(L"PowerPoint.Application", kSlides);
}

// Removes what InstallOffice made.
inline void ForgetOffice() {
    obtest::RemoveTree(kOfficeFolder);
    for (const wchar_t* name :
         {L"Word.Application", L"Excel.Application", L"PowerPoint.Application"}) {
        RegDeleteTreeW(HKEY_CLASSES_ROOT, name);
    }
    for (const wchar_t* id : {kText, kTable, kSlides}) {
        RegDeleteTreeW(HKEY_CLASSES_ROOT, (std::wstring(L"CLSID\\") + id).c_str());
    }
}

// Starts the program as the user does, so that one process serves every client. The caller ends it.
// Empty when it can't be started.
inline ObLib::UniqueKernelHandle StartAsUser(const wchar_t* id) {
    std::wstring commandLine = CommandLine(id) + L" shared";
    STARTUPINFOW startup{sizeof startup};
    PROCESS_INFORMATION made{};
    if (!CreateProcessW(nullptr, commandLine.data(), nullptr, nullptr, FALSE, 0, nullptr, nullptr,
                        &startup, &made)) {
        return {};
    }
    CloseHandle(made.hThread);
    return ObLib::UniqueKernelHandle(made.hProcess);
}

} // namespace suitetest
