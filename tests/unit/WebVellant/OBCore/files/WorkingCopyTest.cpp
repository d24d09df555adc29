#include "OBCore/files/WorkingCopy.h"

#include <windows.h>

#include <gtest/gtest.h>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "tests/support/ImportPatch.h"
#include "tests/unit/WebVellant/OBCore/files/WipeProgram.h"

namespace {

using obcore::WorkingCopy;
using obcore::CompressUtils::CleanupWorkingCopy;
using obtest::FileExists;
using obtest::ImportPatch;
using obtest::PlacedWipeProgram;
using obtest::ProgramFolder;
using Files = std::vector<std::wstring>;

int filesDeleted = 0;
int searches = 0;
int foldersRemoved = 0;
std::wstring lastDeleted;
std::wstring lastSearched;
decltype(&DeleteFileW) realDeleteFile = nullptr;
decltype(&FindFirstFileW) realFindFirstFile = nullptr;
decltype(&RemoveDirectoryW) realRemoveDirectory = nullptr;

BOOL WINAPI CountedDelete(LPCWSTR path) {
    ++filesDeleted;
    lastDeleted = path;
    return realDeleteFile(path);
}

HANDLE WINAPI CountedSearch(LPCWSTR pattern, LPWIN32_FIND_DATAW data) {
    ++searches;
    lastSearched = pattern;
    return realFindFirstFile(pattern, data);
}

BOOL WINAPI CountedRemove(LPCWSTR path) {
    ++foldersRemoved;
    return realRemoveDirectory(path);
}

// Counts the calls that search and delete, for a scope.
class CallCounts {
public:
    CallCounts() {
        realDeleteFile = delete_.Real();
        realFindFirstFile = find_.Real();
        realRemoveDirectory = remove_.Real();
        filesDeleted = searches = foldersRemoved = 0;
    }
    bool Ok() const { return delete_.Ok() && find_.Ok() && remove_.Ok(); }

private:
    ImportPatch<decltype(&DeleteFileW)> delete_{"kernel32.dll", "DeleteFileW", &CountedDelete};
    ImportPatch<decltype(&FindFirstFileW)> find_{"kernel32.dll", "FindFirstFileW", &CountedSearch};
    ImportPatch<decltype(&RemoveDirectoryW)> remove_{"kernel32.dll", "RemoveDirectoryW",
                                                     &CountedRemove};
};

class CleanedWorkingCopy : public testing::Test {
protected:
    WorkingCopy Copy() { return {true, Top() + L"\\", {}}; }
    std::wstring Top() { return home_ / L"1a2b3c"; }
    void SetUp() override { home_.Folder(L"1a2b3c"); }
    std::wstring File(const std::wstring& name) { return home_.File(L"1a2b3c\\" + name); }
    Files Left() { return obtest::ListTree(home_.Path()); }

    obtest::TestFolder home_;
};

TEST_F(CleanedWorkingCopy, IsDeletedPlainlyWithoutTheWipeProgram) {
    File(L"a.txt");
    File(L"b.txt");
    CleanupWorkingCopy(Copy());
    EXPECT_TRUE(Left().empty());
}

TEST_F(CleanedWorkingCopy, KeepsItsSubfoldersWithoutTheWipeProgram) {
    home_.Folder(L"1a2b3c\\sub");
    File(L"a.txt");
    File(L"sub\\b.txt");
    CleanupWorkingCopy(Copy());
    EXPECT_EQ(Left(), (Files{L"1a2b3c\\", L"1a2b3c\\sub\\"}));
}

TEST_F(CleanedWorkingCopy, LosesWriteProtectedCopiesToo) {
    ASSERT_TRUE(SetFileAttributesW(File(L"a.txt").c_str(), FILE_ATTRIBUTE_READONLY));
    CleanupWorkingCopy(Copy());
    EXPECT_TRUE(Left().empty());
}

TEST_F(CleanedWorkingCopy, KeepsACopyThatIsInUse) {
    File(L"a.txt");
    const std::wstring used = File(L"used.txt");
    const ObLib::UniqueKernelHandle lock(
        CreateFileW(used.c_str(), GENERIC_READ, 0, nullptr, OPEN_EXISTING, 0, nullptr));
    ASSERT_TRUE(lock);
    CleanupWorkingCopy(Copy());
    EXPECT_EQ(Left(), (Files{L"1a2b3c\\", L"1a2b3c\\used.txt"}));
}

TEST_F(CleanedWorkingCopy, LeavesEverythingOutsideItsFolderAlone) {
    home_.File(L"beside.txt");
    home_.Folder(L"1a2b3d");
    home_.File(L"1a2b3d\\other run.txt");
    File(L"a.txt");
    CleanupWorkingCopy(Copy());
    EXPECT_EQ(Left(), (Files{L"1a2b3d\\", L"1a2b3d\\other run.txt", L"beside.txt"}));
}

TEST_F(CleanedWorkingCopy, LosesACopyWithTheLongestName) {
    home_.Folder(L"1a2b3c\\" + std::wstring(100, L's'));
    const std::wstring subfolder = L"1a2b3c\\" + std::wstring(100, L's') + L"\\";
    const std::wstring path = home_ / (subfolder + std::wstring(255, L'n'));
    ASSERT_TRUE(obtest::WriteFileContent(L"\\\\?\\" + path, "content"));
    CleanupWorkingCopy(Copy());
    EXPECT_EQ(Left(), (Files{L"1a2b3c\\", subfolder}));
}

TEST_F(CleanedWorkingCopy, IsSearchedAndDeletedByExtendedPathsWhereTheyAreLong) {
    const std::wstring subfolder = L"1a2b3c\\" + std::wstring(240, L's');
    ASSERT_TRUE(CreateDirectoryW((L"\\\\?\\" + (home_ / subfolder)).c_str(), nullptr));
    const std::wstring file = L"\\\\?\\" + (home_ / subfolder) + L"\\a.txt";
    ASSERT_TRUE(obtest::WriteFileContent(file, "content"));
    const CallCounts counts;
    ASSERT_TRUE(counts.Ok());
    CleanupWorkingCopy(Copy());
    EXPECT_EQ(lastSearched, L"\\\\?\\" + (home_ / subfolder) + L"\\*");
    EXPECT_EQ(lastDeleted, file);
    EXPECT_EQ(Left(), (Files{L"1a2b3c\\", subfolder + L"\\"}));
}

TEST_F(CleanedWorkingCopy, IsDeletedPlainlyWhenTheWipeProgramDoesNotStart) {
    File(L"a.txt");
    const std::wstring program = ProgramFolder() + L"\\obwipe64.exe";
    ASSERT_TRUE(obtest::WriteFileContent(program, "no program"));
    CleanupWorkingCopy(Copy());
    EXPECT_TRUE(DeleteFileW(program.c_str()));
    EXPECT_TRUE(Left().empty());
}

TEST_F(CleanedWorkingCopy, IsLeftToTheWipeProgramWhereThereIsOne) {
    const std::wstring a = File(L"a.txt");
    const PlacedWipeProgram program(ProgramFolder());
    const CallCounts counts;
    ASSERT_TRUE(counts.Ok());
    CleanupWorkingCopy(Copy());
    EXPECT_EQ(filesDeleted, 0);
    EXPECT_EQ(foldersRemoved, 1);
    const auto runs = program.WaitForRuns(1);
    ASSERT_EQ(runs.size(), 1u);
    EXPECT_EQ(runs[0].commandLine, L"\"\" /timeout:120 \"" + a + L"\" \"" + Top() + L"\\\"");
    EXPECT_TRUE(FileExists(a));
}

TEST_F(CleanedWorkingCopy, VanishesALittleLaterWithTheWipeProgram) {
    home_.Folder(L"1a2b3c\\sub");
    File(L"a.txt");
    File(L"sub\\b.txt");
    const PlacedWipeProgram program(ProgramFolder());
    program.WipeForReal();
    CleanupWorkingCopy(Copy());
    ASSERT_EQ(program.WaitForRuns(1).size(), 1u);
    EXPECT_TRUE(Left().empty());
}

TEST_F(CleanedWorkingCopy, StartsTheWipeProgramAlsoWithoutFiles) {
    const PlacedWipeProgram program(ProgramFolder());
    CleanupWorkingCopy(Copy());
    const auto runs = program.WaitForRuns(1);
    ASSERT_EQ(runs.size(), 1u);
    EXPECT_EQ(runs[0].commandLine, L"\"\" /timeout:120 \"" + Top() + L"\\\"");
}

// A run that got no temporary folder has an empty one in its record, which any search would take
// for the current folder.
class WorkingCopyWithoutFolder : public testing::Test {
protected:
    void SetUp() override {
        current_.File(L"canary.txt", "alive");
        current_.Folder(L"cage");
        current_.File(L"cage\\canary.txt", "alive");
        ASSERT_TRUE(SetCurrentDirectoryW(current_.Path().c_str()));
    }
    void TearDown() override { SetCurrentDirectoryW(ProgramFolder().c_str()); }

    obtest::TestFolder current_;
};

TEST_F(WorkingCopyWithoutFolder, SearchesNothingAndDeletesNothing) {
    const CallCounts counts;
    ASSERT_TRUE(counts.Ok());
    CleanupWorkingCopy({false, L"", {current_ / L"canary.txt"}});
    CleanupWorkingCopy({false, current_.Path() + L"\\", {}});
    EXPECT_EQ(searches, 0);
    EXPECT_EQ(filesDeleted, 0);
    EXPECT_EQ(foldersRemoved, 0);
    EXPECT_EQ(obtest::ListTree(current_.Path()),
              (Files{L"cage\\", L"cage\\canary.txt", L"canary.txt"}));
    EXPECT_EQ(obtest::ReadFileContent(current_ / L"canary.txt"), "alive");
}

TEST_F(WorkingCopyWithoutFolder, StartsNoWipeProgram) {
    const PlacedWipeProgram program(ProgramFolder());
    program.WipeForReal();
    CleanupWorkingCopy({false, L"", {current_ / L"canary.txt"}});
    // A second clean-up that does start it shows that the first didn't: runs end in any order, but
    // there is only one.
    obtest::TestFolder own;
    CleanupWorkingCopy({true, own.Path() + L"\\", {}});
    ASSERT_EQ(program.WaitForRuns(1).size(), 1u);
    EXPECT_EQ(program.Runs()[0].commandLine, L"\"\" /timeout:120 \"" + own.Path() + L"\\\"");
    EXPECT_TRUE(FileExists(current_ / L"canary.txt"));
}

} // namespace
