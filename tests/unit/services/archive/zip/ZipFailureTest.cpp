#include <windows.h>
#include <gtest/gtest.h>

#include <stdexcept>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "services/archive/zip/RunState.h"
#include "services/archive/zip/ZipRun.h"
#include "tests/support/ImportPatch.h"
#include "tests/support/TestFolder.h"
#include "tests/unit/services/archive/zip/ZipReader.h"

namespace {

using obarchive::RunZip;
using obarchive::ZipJob;
using obarchive::ZipProgress;
using obarchive::ZipResult;
using obtest::TestFolder;

using Tree = std::vector<std::wstring>;

class ZipFailureTest : public testing::Test {
protected:
    ZipFailureTest() {
        job_.target = out_ / L"result.zip";
        for (const wchar_t* name : {L"a.txt", L"b.txt", L"c.txt"}) {
            job_.files.push_back(in_.File(name, std::string(400'000, 'x')));
        }
    }

    // The run fails so, and nothing is left.
    void ExpectFailure(ZipResult expected, const obarchive::ProgressCallback& progress = {}) {
        EXPECT_EQ(RunZip(job_, progress), expected);
        EXPECT_EQ(obtest::ListTree(out_.Path()), Tree{});
    }

    void Encrypt() {
        job_.encryptionMethod = 8;
        job_.password = obarchive::Secret("password");
    }

    ObLib::UniqueKernelHandle Lock(const std::wstring& path) {
        return ObLib::UniqueKernelHandle(CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0,
                                                     nullptr, OPEN_EXISTING, 0, nullptr));
    }

    TestFolder in_;
    TestFolder out_;
    ZipJob job_;
};

TEST_F(ZipFailureTest, NoFiles) {
    job_.files.clear();
    ExpectFailure(ZipResult::NoFiles);
}

TEST_F(ZipFailureTest, NoTarget) {
    job_.target.clear();
    ExpectFailure(ZipResult::NoTarget);
}

TEST_F(ZipFailureTest, UnknownMethods) {
    job_.compressionMethod = 0;
    ExpectFailure(ZipResult::UnknownMethod);
    job_.compressionMethod = 8;
    for (const std::uint32_t method : {1U, 2U, 12U, 16U, 0xFFFFFFFFU}) {
        Encrypt();
        job_.encryptionMethod = method;
        ExpectFailure(ZipResult::UnknownMethod);
    }
}

TEST_F(ZipFailureTest, EncryptionWithoutAPassword) {
    job_.encryptionMethod = 4;
    ExpectFailure(ZipResult::PasswordMissing);
    job_.password = obarchive::Secret("");
    ExpectFailure(ZipResult::PasswordMissing);
}

TEST_F(ZipFailureTest, APasswordWithoutEncryption) {
    Encrypt();
    job_.encryptionMethod = 0;
    ExpectFailure(ZipResult::EncryptionMissing);
}

TEST_F(ZipFailureTest, RecoveryThatCannotBeCarriedOutIsNotPromised) {
    Encrypt();
    job_.recoveryAsked = true;
    ExpectFailure(ZipResult::RecoveryNotThere);
}

TEST_F(ZipFailureTest, AMissingSourceInTheMiddle) {
    DeleteFileW(job_.files[1].c_str());
    ExpectFailure(ZipResult::SourceMissing);
}

TEST_F(ZipFailureTest, AFolderIsNoSource) {
    job_.files[1] = in_.Folder(L"folder");
    ExpectFailure(ZipResult::SourceUnreadable);
}

TEST_F(ZipFailureTest, AnEmptyPathIsAFailure) {
    job_.files[1].clear();
    ExpectFailure(ZipResult::PathTooLong);
}

TEST_F(ZipFailureTest, ALockedSourceInTheMiddle) {
    const auto lock = Lock(job_.files[1]);
    ASSERT_TRUE(lock);
    ExpectFailure(ZipResult::SourceLocked);
    Encrypt();
    ExpectFailure(ZipResult::SourceLocked);
}

TEST_F(ZipFailureTest, ASourceThatVanishesBeforeItsTurn) {
    const auto vanish = [this](const ZipProgress&) {
        DeleteFileW(job_.files[2].c_str());
        return true;
    };
    ExpectFailure(ZipResult::SourceMissing, vanish);
}

TEST_F(ZipFailureTest, ASourceThatGrowsWhileItIsRead) {
    const auto grow = [this](const ZipProgress& now) {
        const ObLib::UniqueKernelHandle file(CreateFileW(now.file.c_str(), FILE_APPEND_DATA,
                                                         FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0,
                                                         nullptr));
        DWORD written = 0;
        EXPECT_TRUE(WriteFile(file.Get(), "more", 4, &written, nullptr));
        return true;
    };
    ExpectFailure(ZipResult::SourceChanged, grow);
}

TEST_F(ZipFailureTest, ASourceThatIsCutWhileItIsRead) {
    const auto cut = [](const ZipProgress& now) {
        const ObLib::UniqueKernelHandle file(CreateFileW(now.file.c_str(), GENERIC_WRITE,
                                                         FILE_SHARE_READ, nullptr,
                                                         TRUNCATE_EXISTING, 0, nullptr));
        EXPECT_TRUE(file);
        return true;
    };
    Encrypt();
    ExpectFailure(ZipResult::SourceChanged, cut);
}

TEST_F(ZipFailureTest, CancelledAtTheFirstAndInTheMiddle) {
    ExpectFailure(ZipResult::Cancelled, [](const ZipProgress&) { return false; });
    Encrypt();
    ExpectFailure(ZipResult::Cancelled,
                  [this](const ZipProgress& now) { return now.file != job_.files[1]; });
}

TEST_F(ZipFailureTest, AnExceptionOfTheProgressCallback) {
    ExpectFailure(ZipResult::Unexpected,
                  [](const ZipProgress&) -> bool { throw std::runtime_error("x"); });
}

TEST_F(ZipFailureTest, AMissingTargetFolder) {
    job_.target = out_ / L"missing\\result.zip";
    ExpectFailure(ZipResult::TargetUnwritable);
}

// Removed between the caller's making of the folder and the run, and tried again during the run.
TEST_F(ZipFailureTest, ATargetFolderThatVanishes) {
    const std::wstring inner = out_.Folder(L"inner");
    job_.target = inner + L"\\result.zip";
    job_.temporaryFolder = inner;
    RemoveDirectoryW(inner.c_str());
    ExpectFailure(ZipResult::TargetUnwritable);

    out_.Folder(L"inner");
    const auto vanish = [&](const ZipProgress&) {
        EXPECT_FALSE(MoveFileW(inner.c_str(), (out_ / L"moved").c_str()));
        return true;
    };
    EXPECT_EQ(RunZip(job_, vanish), ZipResult::Ok);
    EXPECT_EQ(obtest::ListTree(out_.Path()), (Tree{L"inner\\", L"inner\\result.zip"}));
}

// The folder for the unfinished file is kept open, the target's own is not when they differ.
TEST_F(ZipFailureTest, ATargetFolderThatVanishesWhileTheZipGrowsElsewhere) {
    const std::wstring inner = out_.Folder(L"inner");
    job_.target = inner + L"\\result.zip";
    job_.temporaryFolder = out_.Path();
    const auto vanish = [&](const ZipProgress&) {
        RemoveDirectoryW(inner.c_str());
        return true;
    };
    ExpectFailure(ZipResult::TargetUnwritable, vanish);
}

TEST_F(ZipFailureTest, AnExistingTargetIsNeverOverwritten) {
    out_.File(L"result.zip", "mine");
    EXPECT_EQ(RunZip(job_, {}), ZipResult::TargetExists);
    EXPECT_EQ(obtest::ReadFileContent(job_.target), "mine");
}

TEST_F(ZipFailureTest, ASourceIsNeverOverwritten) {
    job_.target = job_.files[1];
    ExpectFailure(ZipResult::TargetExists);
    EXPECT_EQ(obtest::ReadFileContent(job_.files[1]), std::string(400'000, 'x'));
}

TEST_F(ZipFailureTest, TheSourcesAreAsBeforeAfterEachFailure) {
    const auto lock = Lock(job_.files[2]);
    EXPECT_NE(RunZip(job_, {}), ZipResult::Ok);
    EXPECT_EQ(obtest::ListTree(in_.Path()), (Tree{L"a.txt", L"b.txt", L"c.txt"}));
}

// Writing fails after some bytes as on a full disk.
DWORD bytesThatFit = 0;
BOOL WINAPI WriteOnFullDisk(HANDLE, const void*, DWORD size, DWORD* written, OVERLAPPED*) {
    *written = 0;
    if (size > bytesThatFit) {
        SetLastError(ERROR_DISK_FULL);
        return FALSE;
    }
    bytesThatFit -= size;
    *written = size;
    return TRUE;
}

TEST(FullDiskTest, AFullDiskHasItsOwnResultAndLeavesNothing) {
    TestFolder in;
    TestFolder out;
    std::string noise(2'000'000, '\0');
    unsigned state = 1;
    for (char& byte : noise) byte = static_cast<char>((state = state * 1664525 + 1013904223) >> 24);
    ZipJob job;
    job.target = out / L"result.zip";
    job.files = {in.File(L"noise.bin", noise)};
    for (const DWORD room : {0U, 300'000U, 1'000'000U}) {
        bytesThatFit = room;
        const obtest::ImportPatch<decltype(&WriteFile)> patch("kernel32.dll", "WriteFile",
                                                              &WriteOnFullDisk);
        ASSERT_TRUE(patch.Ok());
        EXPECT_EQ(RunZip(job, {}), ZipResult::DiskFull);
    }
    EXPECT_EQ(obtest::ListTree(out.Path()), Tree{});
}

// Reading fails in the middle of a file, which the container library would not report.
int piecesThatRead = 0;
decltype(&ReadFile) realRead = nullptr;
BOOL WINAPI ReadFromBrokenDisk(HANDLE file, void* data, DWORD size, DWORD* read, OVERLAPPED* how) {
    if (piecesThatRead-- > 0) return realRead(file, data, size, read, how);
    SetLastError(ERROR_CRC);
    return FALSE;
}

TEST(BrokenDiskTest, AReadErrorInTheMiddleOfAFileFailsTheRun) {
    TestFolder in;
    TestFolder out;
    ZipJob job;
    job.target = out / L"result.zip";
    job.files = {in.File(L"big.bin", std::string(2'000'000, 'x'))};
    for (const std::uint32_t method : {0U, 4U, 8U}) {
        job.encryptionMethod = method;
        job.password = obarchive::Secret(method == 0 ? "" : "password");
        for (const int pieces : {0, 1, 5, 7}) {
            const obtest::ImportPatch<decltype(&ReadFile)> patch("kernel32.dll", "ReadFile",
                                                                 &ReadFromBrokenDisk);
            ASSERT_TRUE(patch.Ok());
            realRead = patch.Real();
            piecesThatRead = pieces;
            EXPECT_EQ(RunZip(job, {}), ZipResult::SourceUnreadable) << method << ' ' << pieces;
        }
    }
    EXPECT_EQ(obtest::ListTree(out.Path()), Tree{});
}

TEST(RunStateTest, TheFirstFailureStays) {
    obarchive::RunState run;
    run.Fail(ZipResult::DiskFull);
    run.Fail(ZipResult::EngineFailed);
    EXPECT_EQ(run.failure, ZipResult::DiskFull);
}

TEST(RunStateTest, SystemErrorsHaveResultsOfTheirOwn) {
    EXPECT_EQ(obarchive::SourceFailure(ERROR_PATH_NOT_FOUND), ZipResult::SourceMissing);
    EXPECT_EQ(obarchive::SourceFailure(ERROR_LOCK_VIOLATION), ZipResult::SourceLocked);
    EXPECT_EQ(obarchive::SourceFailure(ERROR_ACCESS_DENIED), ZipResult::SourceUnreadable);
    EXPECT_EQ(obarchive::SourceFailure(ERROR_FILENAME_EXCED_RANGE), ZipResult::PathTooLong);
    EXPECT_EQ(obarchive::TargetFailure(ERROR_HANDLE_DISK_FULL), ZipResult::DiskFull);
    EXPECT_EQ(obarchive::TargetFailure(1295), ZipResult::DiskFull);
    EXPECT_EQ(obarchive::TargetFailure(ERROR_ALREADY_EXISTS), ZipResult::TargetExists);
    EXPECT_EQ(obarchive::TargetFailure(ERROR_ACCESS_DENIED), ZipResult::TargetUnwritable);
}

} // namespace
