// A temporary folder that is full, missing, not writable, too deep, or deleted during the run.
#include <cstring>

#include "tests/faults/HostRole.h"
#include "tests/support/ImportPatch.h"

namespace obtest {
namespace {

using Contents = std::map<std::string, std::string>;

class TemporaryFolderFaults : public HostRole {
protected:
    void SetUp() override {
        HostRole::SetUp();
        one_ = sources_.File(L"one.txt", "first");
        two_ = sources_.File(L"two.txt", std::string(100000, '2'));
    }

    void TearDown() override {
        EXPECT_EQ(ReadFileContent(one_), "first");
        EXPECT_EQ(ReadFileContent(two_), std::string(100000, '2'));
        EXPECT_EQ(ListTree(sources_.Path()), (Texts{L"one.txt", L"two.txt"}));
        HostRole::TearDown();
    }

    std::wstring one_;
    std::wstring two_;
};

TEST_F(TemporaryFolderFaults, MissingItGivesThePageNothingAndMakesNothing) {
    UseTemporaryFolder(temp_ / L"missing");
    ExpectNothingGiven(Open({one_, two_}));
    ExpectNothingGiven(Show({one_, two_}));
    EXPECT_EQ(Left(), Texts{});
    EXPECT_TRUE(boxes_.Seen().empty());
}

TEST_F(TemporaryFolderFaults, MissingItDoesNotMatterWithoutAZip) {
    UseTemporaryFolder(temp_ / L"missing");
    ChooseNoZip();
    EXPECT_EQ(Open({one_}).files, Texts{one_});
    EXPECT_EQ(Show({one_, two_}).files, (Texts{one_, two_}));
}

TEST_F(TemporaryFolderFaults, AFileOfItsNameGivesThePageNothingAndStays) {
    const std::wstring file = temp_.File(L"no folder", "kept");
    UseTemporaryFolder(file);
    ExpectNothingGiven(Open({one_, two_}));
    EXPECT_EQ(ListTree(temp_.Path()), Texts{L"no folder"});
    EXPECT_EQ(ReadFileContent(file), "kept");
}

TEST_F(TemporaryFolderFaults, NearThePathLimitItStillGetsTheZip) {
    std::wstring deep = temp_.Path();
    while (deep.size() + 50 < 232) deep += L"\\" + std::wstring(40, L'd');
    deep += L"\\" + std::wstring(232 - deep.size() - 1, L'e');
    std::wstring made = temp_.Path();
    while (made.size() < deep.size()) {
        made = deep.substr(0, deep.find(L'\\', made.size() + 1));
        ASSERT_TRUE(CreateDirectoryW(made.c_str(), nullptr)) << made.size();
    }
    UseTemporaryFolder(deep);
    const Answer answer = Open({one_, two_});
    ASSERT_EQ(answer.files.size(), 1u);
    EXPECT_GT(answer.files.front().size(), std::size_t{260});
    EXPECT_EQ(ZipOf(answer),
              (Contents{{"one.txt", "first"}, {"two.txt", std::string(100000, '2')}}));
    EXPECT_TRUE(DeleteFileW((L"\\\\?\\" + answer.files.front()).c_str()));
}

// A path of 259 characters and more isn't usable; then nothing may be copied, moved or deleted,
// above all not the user's own files.
TEST_F(TemporaryFolderFaults, TooLongItGivesThePageNothingAndTouchesNothing) {
    UseTemporaryFolder(L"C:\\" + std::wstring(300, L't'));
    ExpectNothingGiven(Open({one_, two_}));
    ExpectNothingGiven(Show({one_, two_}));
    EXPECT_EQ(Left(), Texts{});
}

BOOL WINAPI RefuseFolder(LPCWSTR, LPSECURITY_ATTRIBUTES) {
    SetLastError(ERROR_ACCESS_DENIED);
    return FALSE;
}

// The failing calls are replaced: a test's process has every right, so no real folder refuses it.
TEST_F(TemporaryFolderFaults, WithoutWriteAccessItGivesThePageNothing) {
    const ImportPatch<decltype(&CreateDirectoryW)> refused("kernel32.dll", "CreateDirectoryW",
                                                           &RefuseFolder);
    ASSERT_TRUE(refused.Ok());
    ExpectNothingGiven(Open({one_, two_}));
    EXPECT_EQ(Left(), Texts{});
}

using FakeCopy = ImportPatch<decltype(&CopyFileW)>;

// The original function: its name leads to the replacement during the test.
decltype(&CopyFileW) realCopy = nullptr;
int copiesThatFit = 0;

BOOL WINAPI CopyUntilFull(LPCWSTR source, LPCWSTR target, BOOL keep) {
    if (copiesThatFit-- > 0) return realCopy(source, target, keep);
    SetLastError(ERROR_DISK_FULL);
    return FALSE;
}

TEST_F(TemporaryFolderFaults, FullBeforeTheFirstCopyItGivesThePageNothing) {
    const FakeCopy full("kernel32.dll", "CopyFileW", &CopyUntilFull);
    ASSERT_TRUE(full.Ok());
    realCopy = full.Real();
    copiesThatFit = 0;
    ExpectNothingGiven(Open({one_, two_}));
    EXPECT_EQ(Left(), Texts{});
}

// A zip of what could be copied, as with any file that can't be read.
TEST_F(TemporaryFolderFaults, FullAfterTheFirstCopyItZipsWhatIsThere) {
    const FakeCopy full("kernel32.dll", "CopyFileW", &CopyUntilFull);
    ASSERT_TRUE(full.Ok());
    realCopy = full.Real();
    copiesThatFit = 1;
    const Answer answer = Open({one_, two_});
    EXPECT_EQ(ZipOf(answer), (Contents{{"one.txt", "first"}}));
    ExpectOnlyTheZipIsLeft(answer);
}

int writesRefused = 0;

BOOL WINAPI WriteToFullDisk(HANDLE, LPCVOID, DWORD, LPDWORD written, LPOVERLAPPED) {
    ++writesRefused;
    if (written) *written = 0;
    SetLastError(ERROR_DISK_FULL);
    return FALSE;
}

// The copies fit, the zip doesn't. A message is shown, and only the zip's empty folder stays.
TEST_F(TemporaryFolderFaults, FullDuringTheZipItShowsAMessageAndLeavesNoPartialZip) {
    const ImportPatch<decltype(&WriteFile)> full("kernel32.dll", "WriteFile", &WriteToFullDisk,
                                                 GetModuleHandleW(L"obofcsvc64.dll"));
    ASSERT_TRUE(full.Ok());
    writesRefused = 0;
    ExpectNothingGiven(Open({one_, two_}));
    EXPECT_GT(writesRefused, 0);
    EXPECT_EQ(ZipFailureMessages(), 1u);
    EXPECT_EQ(Left(), Texts{L"1\\"});
    ExpectNothingGiven(Show({one_, two_}));
    EXPECT_EQ(ZipFailureMessages(), 2u);
    EXPECT_EQ(Left(), (Texts{L"1\\", L"2\\"}));
}

std::wstring vanishing;

// After the copy, another program empties the whole temporary folder.
BOOL WINAPI CopyAndSweep(LPCWSTR source, LPCWSTR target, BOOL keep) {
    const BOOL copied = realCopy(source, target, keep);
    RemoveTree(vanishing);
    return copied;
}

TEST_F(TemporaryFolderFaults, EmptiedDuringTheRunItShowsAMessageAndGivesNothing) {
    vanishing = temp_.Folder(L"swept");
    UseTemporaryFolder(vanishing);
    const FakeCopy sweep("kernel32.dll", "CopyFileW", &CopyAndSweep);
    ASSERT_TRUE(sweep.Ok());
    realCopy = sweep.Real();
    ExpectNothingGiven(Open({one_, two_}));
    EXPECT_EQ(ZipFailureMessages(), 1u);
    EXPECT_EQ(ListTree(temp_.Path()), Texts{});
}

// Only the run's folder of copies is deleted, not the folder of the zip.
BOOL WINAPI CopyAndSweepCopies(LPCWSTR source, LPCWSTR target, BOOL keep) {
    const BOOL copied = realCopy(source, target, keep);
    const std::wstring path = target;
    if (path.ends_with(L"two.txt")) RemoveTree(path.substr(0, path.rfind(L'\\')));
    return copied;
}

TEST_F(TemporaryFolderFaults, WithoutItsCopiesItShowsAMessageAndLeavesNoPartialZip) {
    const FakeCopy sweep("kernel32.dll", "CopyFileW", &CopyAndSweepCopies);
    ASSERT_TRUE(sweep.Ok());
    realCopy = sweep.Real();
    ExpectNothingGiven(Open({one_, two_}));
    EXPECT_EQ(ZipFailureMessages(), 1u);
    EXPECT_EQ(Left(), Texts{L"1\\"});
}

} // namespace
} // namespace obtest
