// The fake wipe program: records how it was started, and removes the named items when a file of a
// known name is beside it.
#include <windows.h>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "tests/fakes/wipe/WipeRuns.h"
#include "tests/support/TestFolder.h"

namespace {

constexpr DWORD kHoldLimit = 30000; // milliseconds

void WaitWhileHeld() {
    const ObLib::UniqueKernelHandle hold(
        OpenEventW(SYNCHRONIZE, FALSE, obtest::kWipeHoldEventName));
    if (hold) WaitForSingleObject(hold.Get(), kHoldLimit);
}

void Remove(const std::wstring& item) {
    const DWORD attributes = GetFileAttributesW(item.c_str());
    if (attributes == INVALID_FILE_ATTRIBUTES) return;
    SetFileAttributesW(item.c_str(), FILE_ATTRIBUTE_NORMAL);
    if (attributes & FILE_ATTRIBUTE_DIRECTORY) {
        obtest::RemoveTree(item);
    } else {
        DeleteFileW(item.c_str());
    }
}

// The items are in quotation marks; the first pair is the empty first word.
void RemoveItems(const std::wstring& commandLine) {
    bool firstWord = true;
    for (std::size_t open = commandLine.find(L'"'); open != std::wstring::npos;) {
        const std::size_t close = commandLine.find(L'"', open + 1);
        if (close == std::wstring::npos) return;
        if (!firstWord) Remove(commandLine.substr(open + 1, close - open - 1));
        firstWord = false;
        open = commandLine.find(L'"', close + 1);
    }
}

std::wstring CurrentDirectory() {
    wchar_t folder[MAX_PATH];
    const DWORD length = GetCurrentDirectoryW(MAX_PATH, folder);
    return std::wstring(folder, length);
}

} // namespace

int wmain() {
    const std::wstring commandLine = GetCommandLineW();
    WaitWhileHeld();
    if (obtest::FileExists(obtest::BesideProgram(obtest::kWipeForRealFileName))) {
        RemoveItems(commandLine);
    }
    obtest::AppendUtf8File(obtest::BesideProgram(obtest::kWipeRunsFileName),
                           commandLine + L"\n" + CurrentDirectory() + L"\n");
    return 0;
}
