#include "services/archive/zip/OutputFile.h"

#include <gtest/gtest.h>

#include "tests/support/ImportPatch.h"
#include "tests/support/TestFolder.h"

namespace {

using obarchive::OutputFile;
using obarchive::ZipResult;
using obtest::ListTree;
using obtest::TestFolder;

using Tree = std::vector<std::wstring>;

class OutputFileTest : public testing::Test {
protected:
    TestFolder folder_;
    std::wstring target_ = folder_ / L"out.bin";
};

TEST_F(OutputFileTest, HasNoNameUntilItIsCommitted) {
    OutputFile file;
    ASSERT_EQ(file.Create(target_, {}), ZipResult::Ok);
    EXPECT_TRUE(file.Write("whole", 5));
    EXPECT_FALSE(obtest::FileExists(target_));
    EXPECT_EQ(file.Commit(), ZipResult::Ok);
    EXPECT_EQ(obtest::ReadFileContent(target_), "whole");
    EXPECT_EQ(ListTree(folder_.Path()), Tree{L"out.bin"});
}

TEST_F(OutputFileTest, LeavesNothingWhenItIsGivenUp) {
    {
        OutputFile file;
        ASSERT_EQ(file.Create(target_, {}), ZipResult::Ok);
        EXPECT_TRUE(file.Write("half", 4) && file.Flush());
        EXPECT_EQ(ListTree(folder_.Path()).size(), 1U);
    }
    EXPECT_EQ(ListTree(folder_.Path()), Tree{});
}

TEST_F(OutputFileTest, RefusesATargetThatExists) {
    folder_.File(L"out.bin", "mine");
    OutputFile file;
    EXPECT_EQ(file.Create(target_, {}), ZipResult::TargetExists);
    EXPECT_EQ(obtest::ReadFileContent(target_), "mine");
    EXPECT_EQ(ListTree(folder_.Path()), Tree{L"out.bin"});
}

TEST_F(OutputFileTest, ATargetThatCameMeanwhileIsLeftAsItIs) {
    {
        OutputFile file;
        ASSERT_EQ(file.Create(target_, {}), ZipResult::Ok);
        file.Write("new", 3);
        folder_.File(L"out.bin", "mine");
        EXPECT_EQ(file.Commit(), ZipResult::TargetExists);
    }
    EXPECT_EQ(obtest::ReadFileContent(target_), "mine");
    EXPECT_EQ(ListTree(folder_.Path()), Tree{L"out.bin"});
}

TEST_F(OutputFileTest, UsesTheTemporaryFolderOfTheSameVolume) {
    const std::wstring other = folder_.Folder(L"temp");
    OutputFile file;
    ASSERT_EQ(file.Create(target_, other), ZipResult::Ok);
    EXPECT_EQ(ListTree(other).size(), 1U);
    EXPECT_EQ(file.Commit(), ZipResult::Ok);
    EXPECT_EQ(ListTree(folder_.Path()), (Tree{L"out.bin", L"temp\\"}));
}

TEST_F(OutputFileTest, ATemporaryFolderThatIsNotThereIsPassedOver) {
    OutputFile file;
    EXPECT_EQ(file.Create(target_, folder_ / L"missing"), ZipResult::Ok);
    EXPECT_EQ(file.Commit(), ZipResult::Ok);
}

TEST_F(OutputFileTest, AMissingFolderIsAFailure) {
    OutputFile file;
    EXPECT_EQ(file.Create(folder_ / L"missing\\out.bin", {}), ZipResult::TargetUnwritable);
    EXPECT_NE(file.Commit(), ZipResult::Ok);
}

TEST_F(OutputFileTest, TheFolderCannotBeTakenAwayMeanwhile) {
    const std::wstring inner = folder_.Folder(L"inner");
    const std::wstring moved = folder_ / L"moved";
    {
        OutputFile file;
        ASSERT_EQ(file.Create(inner + L"\\out.bin", {}), ZipResult::Ok);
        EXPECT_FALSE(MoveFileW(inner.c_str(), moved.c_str()));
        EXPECT_FALSE(RemoveDirectoryW(inner.c_str()));
    }
    EXPECT_TRUE(MoveFileW(inner.c_str(), moved.c_str()));
    EXPECT_EQ(ListTree(folder_.Path()), Tree{L"moved\\"});
}

// Writes a pattern of a few hundred kilobytes with patches before, in and after the buffer, and
// compares with a plain string.
TEST_F(OutputFileTest, SeeksAndPatchesLikeAPlainFile) {
    OutputFile file;
    ASSERT_EQ(file.Create(target_, {}), ZipResult::Ok);
    std::string expected;
    const auto put = [&](std::uint64_t at, const std::string& text) {
        ASSERT_TRUE(file.Seek(at) && file.Write(text.data(), text.size()));
        if (expected.size() < at + text.size()) expected.resize(at + text.size());
        expected.replace(at, text.size(), text);
        ASSERT_EQ(file.Position(), at + text.size());
        ASSERT_EQ(file.Length(), expected.size());
    };
    put(0, "head");
    put(4, std::string(700'000, 'a'));
    put(2, "XY");
    put(699'990, std::string(100, 'b'));
    put(700'004, "tail");
    put(3, std::string(300'000, 'c'));
    char back[4] = {};
    EXPECT_TRUE(file.ReadAt(700'004, back, 4));
    EXPECT_EQ(std::string(back, 4), "tail");
    EXPECT_FALSE(file.ReadAt(expected.size() - 1, back, 4));
}

TEST_F(OutputFileTest, PatchedContentReachesTheDisk) {
    OutputFile file;
    ASSERT_EQ(file.Create(target_, {}), ZipResult::Ok);
    const std::string body(600'000, 'a');
    ASSERT_TRUE(file.Write("head", 4) && file.Write(body.data(), body.size()));
    ASSERT_TRUE(file.Seek(1) && file.Write("EA", 2));
    ASSERT_TRUE(file.Seek(4 + body.size()) && file.Write("end", 3));
    ASSERT_EQ(file.Commit(), ZipResult::Ok);
    EXPECT_TRUE(obtest::ReadFileContent(target_) == "hEAd" + body + "end");
}

// A fake of the system's call that refuses the first times, as while a scanner has the file open.
struct BusyFile {
    int refusals = 0;
    DWORD error = ERROR_SHARING_VIOLATION;
    DWORD waited = 0;
    decltype(&MoveFileExW) real = nullptr;
};
BusyFile busyFile;

BOOL WINAPI MoveUnlessBusy(const wchar_t* from, const wchar_t* to, DWORD flags) {
    if (busyFile.refusals-- <= 0) return busyFile.real(from, to, flags);
    SetLastError(busyFile.error);
    return FALSE;
}

void WINAPI CountWait(DWORD milliseconds) { busyFile.waited += milliseconds; }

class BusyFileTest : public OutputFileTest {
protected:
    ZipResult CommitWith(int refusals, DWORD error) {
        busyFile = {refusals, error, 0, patch_.Real()};
        OutputFile file(&CountWait);
        EXPECT_EQ(file.Create(target_, {}), ZipResult::Ok);
        EXPECT_TRUE(file.Write("whole", 5));
        return file.Commit();
    }

    const obtest::ImportPatch<decltype(&MoveFileExW)> patch_{"kernel32.dll", "MoveFileExW",
                                                             &MoveUnlessBusy};
};

TEST_F(BusyFileTest, AFileThatAScannerHasOpenIsRenamedALittleLater) {
    ASSERT_TRUE(patch_.Ok());
    for (const DWORD error : {ERROR_SHARING_VIOLATION, ERROR_ACCESS_DENIED, ERROR_LOCK_VIOLATION}) {
        EXPECT_EQ(CommitWith(5, error), ZipResult::Ok) << error;
        EXPECT_GT(busyFile.waited, 0U);
        EXPECT_EQ(obtest::ReadFileContent(target_), "whole");
        DeleteFileW(target_.c_str());
    }
}

TEST_F(BusyFileTest, AFileThatStaysOpenFailsAfterTwoSecondsAndIsRemoved) {
    EXPECT_EQ(CommitWith(1000, ERROR_SHARING_VIOLATION), ZipResult::TargetUnwritable);
    EXPECT_EQ(busyFile.waited, 2000U);
    EXPECT_EQ(ListTree(folder_.Path()), Tree{});
}

TEST_F(BusyFileTest, OtherFailuresAreNotWaitedFor) {
    EXPECT_EQ(CommitWith(1000, ERROR_PATH_NOT_FOUND), ZipResult::TargetUnwritable);
    EXPECT_EQ(busyFile.waited, 0U);
}

} // namespace
