// The files through which the fake wipe program reports, and is controlled.
#pragma once

#include <windows.h>

#include <string>
#include <vector>

#include "tests/fakes/Recording.h"

namespace obtest {

// Two lines a run: the command line as the program got it, and its current directory. They are
// written at the end of the run.
inline constexpr wchar_t kWipeRunsFileName[] = L"wipe-runs.txt";

// While this file is beside the program, the program removes the named items.
inline constexpr wchar_t kWipeForRealFileName[] = L"wipe-for-real.txt";

// While an event of this name exists, the program waits for it before it does anything.
inline constexpr wchar_t kWipeHoldEventName[] = L"obtest-wipe-hold";

struct WipeRun {
    std::wstring commandLine;
    std::wstring currentDirectory;
};

// The finished runs of the program in `folder` (without a trailing backslash).
inline std::vector<WipeRun> WipeRuns(const std::wstring& folder) {
    const std::wstring text = ReadUtf8File(folder + L"\\" + kWipeRunsFileName);
    std::vector<WipeRun> runs;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t middle = text.find(L'\n', start);
        const std::size_t end = text.find(L'\n', middle + 1);
        runs.push_back(
            {text.substr(start, middle - start), text.substr(middle + 1, end - middle - 1)});
        start = end + 1;
    }
    return runs;
}

// Waits until `count` runs have finished; gives what there is after `limit` milliseconds.
inline std::vector<WipeRun> WaitForWipeRuns(const std::wstring& folder, std::size_t count,
                                            DWORD limit = 20000) {
    constexpr DWORD kLookEvery = 10;
    for (DWORD waited = 0; waited < limit; waited += kLookEvery) {
        const std::vector<WipeRun> runs = WipeRuns(folder);
        if (runs.size() >= count) return runs;
        Sleep(kLookEvery);
    }
    return WipeRuns(folder);
}

} // namespace obtest
