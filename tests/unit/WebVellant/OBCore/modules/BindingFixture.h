// What the suites of the bound modules share: which module the code takes for its own, what it asks
// the loader for, and what it traces.
#pragma once

#include <windows.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "tests/support/ImportPatch.h"
#include "tests/support/RecordedTrace.h"
#include "tests/support/TestFolder.h"

// Folder of the test program, with its trailing backslash.
std::wstring ProgramFolder();

class BindingFixture : public testing::Test {
protected:
    void SetUp() override;
    void TearDown() override;

    // Copies a staged file to a full path.
    static void Put(const wchar_t* staged, const std::wstring& path);

    // Makes the code take a module of this full path for its own; any module file will do.
    void LiveIn(const std::wstring& path);

    // An absolute path of exactly `length` characters that is an existing folder, with its
    // trailing backslash.
    std::wstring FolderOfLength(std::size_t length) const;

    // Paths that were given to LoadLibraryW.
    static const std::vector<std::wstring>& Loads();
    // The error mode of the thread during the last of those calls.
    static DWORD ErrorModeOfLastLoad();

    obtest::TestFolder folder_;

private:
    ObLib::UniqueModule own_;
    obtest::ImportPatch<decltype(LoadLibraryW)> load_;

public:
    BindingFixture();
};
