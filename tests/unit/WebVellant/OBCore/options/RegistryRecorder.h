// Writes down what the code asks of the registry, in order, and lets the test make a key fail.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "tests/support/ImportPatch.h"

// While one exists, registry calls of the program under test go through it. One at a time.
//
//   open machine PATH [32|64]   create user PATH
//   get PATH!NAME SIZE          set PATH!NAME=TEXT         trace LINE
//
// An open or create that fails ends in " fails".
class RegistryRecorder {
public:
    RegistryRecorder();
    ~RegistryRecorder();
    RegistryRecorder(const RegistryRecorder&) = delete;
    RegistryRecorder& operator=(const RegistryRecorder&) = delete;

    bool Ok() const;

    // From now on keys of this path don't open.
    void Fail(const std::wstring& path) { failing_ = path; }

    const std::vector<std::string>& Lines() const { return lines_; }
    std::vector<std::string> LinesThatBeginWith(const std::string& start) const;

private:
    static void Note(const std::string& line);
    static LSTATUS WINAPI Open(HKEY root, LPCWSTR path, DWORD options, REGSAM access, PHKEY key);
    static LSTATUS WINAPI Create(HKEY root, LPCWSTR path, DWORD reserved, LPWSTR keyClass,
                                 DWORD options, REGSAM access, const LPSECURITY_ATTRIBUTES security,
                                 PHKEY key, LPDWORD disposition);
    static LSTATUS WINAPI Query(HKEY key, LPCWSTR name, LPDWORD reserved, LPDWORD type, LPBYTE data,
                                LPDWORD size);
    static LSTATUS WINAPI Set(HKEY key, LPCWSTR name, DWORD reserved, DWORD type, const BYTE* data,
                              DWORD size);

    std::vector<std::string> lines_;
    std::wstring failing_;
    obtest::ImportPatch<decltype(RegOpenKeyExW)> open_;
    obtest::ImportPatch<decltype(RegCreateKeyExW)> create_;
    obtest::ImportPatch<decltype(RegQueryValueExW)> query_;
    obtest::ImportPatch<decltype(RegSetValueExW)> set_;
};
