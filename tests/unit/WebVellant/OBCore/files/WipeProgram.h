// The fake wipe program, put where a test wants it and taken away again.
#pragma once

#include <windows.h>

#include <string>

#include "tests/fakes/wipe/WipeRuns.h"
#include "tests/support/TestFolder.h"

namespace obtest {

// The tests stage the program under this name, so that it isn't beside them unless they put it
// there.
inline std::wstring StagedWipeProgram() { return BesideProgram(L"wipe\\obwipe64.exe"); }

// Folder of the test program, without a trailing backslash.
inline std::wstring ProgramFolder() {
    std::wstring folder = BesideProgram(L"");
    folder.pop_back();
    return folder;
}

// Is in a folder for the length of a scope.
class PlacedWipeProgram {
public:
    explicit PlacedWipeProgram(std::wstring folder) : folder_(std::move(folder)) {
        placed_ = CopyFileW(StagedWipeProgram().c_str(), Path(L"obwipe64.exe").c_str(), FALSE) != 0;
    }
    PlacedWipeProgram(const PlacedWipeProgram&) = delete;
    PlacedWipeProgram& operator=(const PlacedWipeProgram&) = delete;
    ~PlacedWipeProgram() {
        // A run that is just ending still has its program open, and maybe the file of the runs:
        // that one is deleted after it, or the next test would find an old run in it.
        for (int tries = 0; !DeleteFileW(Path(L"obwipe64.exe").c_str()) && tries < 500; ++tries) {
            Sleep(10);
        }
        DeleteFileW(Path(kWipeRunsFileName).c_str());
        DeleteFileW(Path(kWipeForRealFileName).c_str());
    }

    bool Ok() const { return placed_; }
    void WipeForReal() const { WriteFileContent(Path(kWipeForRealFileName), "yes"); }
    std::vector<WipeRun> Runs() const { return WipeRuns(folder_); }
    std::vector<WipeRun> WaitForRuns(std::size_t count) const {
        return WaitForWipeRuns(folder_, count);
    }

private:
    std::wstring Path(const wchar_t* name) const { return folder_ + L"\\" + name; }

    std::wstring folder_;
    bool placed_ = false;
};

} // namespace obtest
