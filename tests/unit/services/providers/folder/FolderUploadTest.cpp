// Uploads to a real folder: what is stored, what is left after each failure, and what the user
// reads.
#include "services/providers/folder/FolderUpload.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "contracts/ProviderManager.h"
#include "services/providers/folder/FolderCopy.h"
#include "services/providers/folder/FolderFile.h"
#include "services/providers/folder/FolderLink.h"
#include "services/providers/storage/LocalDays.h"
#include "services/providers/storage/ProviderIds.h"
#include "tests/support/ImportPatch.h"
#include "tests/support/ProductRegistry.h"
#include "tests/support/TestFolder.h"

using namespace providers;
using obtest::FileExists;
using obtest::ImportPatch;
using obtest::ListTree;
using obtest::ReadFileContent;

namespace {

using Tree = std::vector<std::wstring>;

constexpr wchar_t kFolder[] = L"Quillbox\\20261122101530";
constexpr std::size_t kBlock = 1 << 20;

// Runs `step` at each report, with the number of the report.
class FakeProgress final : public UploadProgress {
public:
    void Show(std::uint64_t sent, std::uint64_t total) override {
        sent_ = sent;
        total_ = total;
        if (step) step(reports_);
        ++reports_;
    }
    HANDLE Cancelled() const override { return cancelled_.Get(); }
    bool Ask(const std::function<void(HWND)>&) override { return false; }

    void Cancel() { SetEvent(cancelled_.Get()); }
    std::uint64_t Sent() const { return sent_; }
    std::uint64_t Total() const { return total_; }
    int Reports() const { return reports_; }

    std::function<void(int)> step;

private:
    ObLib::UniqueKernelHandle cancelled_{CreateEventW(nullptr, TRUE, FALSE, nullptr)};
    std::uint64_t sent_ = 0;
    std::uint64_t total_ = 0;
    int reports_ = 0;
};

// The fakes of system calls are functions, so what they need is here. Each is called on the test's
// thread.
int failingCall;   // counted from 0: this call and those after it fail, or for a move those before
int failures;      // so many writes fail
int callNumber;    // of the next call
DWORD failedWith;  // the error
bool isDoneBefore; // the move is done before its failure is reported

bool IsToFail() { return callNumber++ >= failingCall; }
BOOL Fail() { return SetLastError(failedWith), FALSE; }

decltype(&WriteFile) realWrite;
BOOL WINAPI FailingWrite(HANDLE file, const void* data, DWORD size, DWORD* written,
                         OVERLAPPED* overlapped) {
    return IsToFail() ? Fail() : realWrite(file, data, size, written, overlapped);
}

// The connection breaks, and what the share has by then isn't what was sent.
BOOL WINAPI BreakingWrite(HANDLE file, const void* data, DWORD size, DWORD* written,
                          OVERLAPPED* overlapped) {
    const int call = callNumber++;
    if (call < failingCall || call >= failingCall + failures) {
        return realWrite(file, data, size, written, overlapped);
    }
    const std::string garbage(kBlock / 4, 'x');
    LARGE_INTEGER at{};
    EXPECT_TRUE(SetFilePointerEx(file, at, &at, FILE_CURRENT));
    at.QuadPart = std::max<LONGLONG>(kStoredAtOnce, at.QuadPart - kBlock / 2);
    EXPECT_TRUE(SetFilePointerEx(file, at, nullptr, FILE_BEGIN));
    DWORD done = 0;
    EXPECT_TRUE(realWrite(file, garbage.data(), garbage.size(), &done, nullptr));
    EXPECT_TRUE(SetEndOfFile(file));
    return Fail();
}

BOOL WINAPI FailingFlush(HANDLE) { return Fail(); }

decltype(&FlushFileBuffers) realFlush;
BOOL WINAPI FailingFirstFlush(HANDLE file) { return callNumber++ == 0 ? Fail() : realFlush(file); }

decltype(&CreateDirectoryW) realMakeFolder;
BOOL WINAPI FailingMakeFolder(const wchar_t* path, SECURITY_ATTRIBUTES* security) {
    return IsToFail() ? Fail() : realMakeFolder(path, security);
}

DWORD openFailsWith; // when a part is opened again
int failingOpens;    // so many times

decltype(&CreateFileW) realOpenOfPart;
HANDLE WINAPI FailingOpenOfPart(const wchar_t* path, DWORD access, DWORD share,
                                SECURITY_ATTRIBUTES* security, DWORD how, DWORD flags,
                                HANDLE like) {
    const bool isAgain = std::wstring_view(path).ends_with(L".part") && how == OPEN_EXISTING;
    if (isAgain && failingOpens > 0) {
        --failingOpens;
        SetLastError(openFailsWith);
        return INVALID_HANDLE_VALUE;
    }
    return realOpenOfPart(path, access, share, security, how, flags, like);
}

int refusedDeletions;

BOOL WINAPI RefusedDeletion(const wchar_t*) {
    ++refusedDeletions;
    SetLastError(ERROR_ACCESS_DENIED);
    return FALSE;
}

BOOL WINAPI NoInformation(HANDLE, BY_HANDLE_FILE_INFORMATION*) { return Fail(); }

bool isMoved;    // the file has its name
int brokenOpens; // so many fail after that

decltype(&CreateFileW) realOpen;
HANDLE WINAPI BrokenOpen(const wchar_t* path, DWORD access, DWORD share,
                         SECURITY_ATTRIBUTES* security, DWORD how, DWORD flags, HANDLE like) {
    if (!isMoved || brokenOpens == 0) {
        return realOpen(path, access, share, security, how, flags, like);
    }
    --brokenOpens;
    SetLastError(failedWith);
    return INVALID_HANDLE_VALUE;
}

decltype(&MoveFileExW) realMove;
BOOL WINAPI FailingMove(const wchar_t* from, const wchar_t* to, DWORD flags) {
    EXPECT_EQ(flags, 0U); // never replaces
    if (isDoneBefore) return realMove(from, to, flags) ? (isMoved = true, Fail()) : FALSE;
    return callNumber++ < failingCall ? Fail() : realMove(from, to, flags);
}

decltype(&GetFileSizeEx) realSize;
BOOL WINAPI ShorterCopy(HANDLE file, LARGE_INTEGER* size) {
    const BOOL result = realSize(file, size);
    if (IsToFail()) --size->QuadPart;
    return result;
}

BOOL WINAPI LittleSpace(const wchar_t*, ULARGE_INTEGER* free, ULARGE_INTEGER*, ULARGE_INTEGER*) {
    free->QuadPart = 6;
    return TRUE;
}
BOOL WINAPI NoSpaceReported(const wchar_t*, ULARGE_INTEGER*, ULARGE_INTEGER*, ULARGE_INTEGER*) {
    return Fail();
}
BOOL WINAPI OfFat32(const wchar_t*, wchar_t*, DWORD, DWORD*, DWORD*, DWORD*, wchar_t* name, DWORD) {
    return lstrcpyW(name, L"FAT32") != nullptr;
}

class FolderUpload : public testing::Test {
protected:
    FolderUpload() {
        failingCall = 0;
        failures = 1;
        callNumber = 0;
        failedWith = ERROR_NETNAME_DELETED;
        openFailsWith = ERROR_BAD_NETPATH;
        failingOpens = 0;
        refusedDeletions = 0;
        isDoneBefore = false;
        isMoved = false;
        brokenOpens = 0;
    }

    UploadResult Upload(const std::wstring& name = L"Files.zip",
                        const std::wstring& folder = kFolder) {
        return UploadToFolder({cloud_.Path(), pattern_}, {source_, name, folder}, progress_, care_);
    }
    void WriteSource(std::size_t size) {
        content_.resize(size);
        for (std::size_t at = 0; at < size; ++at)
            content_[at] = static_cast<char>(at * 31 + at / 251);
        obtest::WriteFileContent(source_, content_);
    }
    Tree Stored() const { return ListTree(cloud_.Path()); }
    std::wstring Target() const { return cloud_ / (std::wstring(kFolder) + L"\\Files.zip"); }

    // It failed with this sentence, and left the folder as it was.
    void ExpectFailed(const UploadResult& result, const std::wstring& why,
                      const std::wstring& todo) {
        EXPECT_EQ(result.end, UploadEnd::Failed);
        EXPECT_EQ(result.sentence, L"\u201CFiles.zip\u201D wasn't uploaded, because " + why +
                                       L". Nothing was attached, and your files are unchanged. " +
                                       todo);
        EXPECT_EQ(Stored(), Tree{});
    }
    std::wstring Folder() const { return L"the folder \u201C" + cloud_.Path() + L"\u201D"; }

    obtest::TestFolder cloud_;
    obtest::TestFolder run_;
    std::string content_ = "content";
    std::wstring source_ = run_.File(L"zip.tmp", content_);
    std::wstring pattern_;
    FakeProgress progress_;
    FolderUploadCare care_{nullptr, {}, {.resume = 200, .rename = 2000, .pause = 10}};
};

// Uploads a file whose connection breaks after the first bytes are stored for certain.
class BrokenFolderUpload : public FolderUpload {
protected:
    static constexpr int kStoredBlocks = static_cast<int>(kStoredAtOnce / kBlock);

    BrokenFolderUpload() {
        realWrite = write_.Real();
        realOpenOfPart = open_.Real();
        failures = 0;
        WriteSource((kStoredBlocks + 3) * kBlock + 77);
        callNumber = 0;
        failingCall = kStoredBlocks + 2;
        failures = 1;
        care_.patience.resume = 20'000;
        progress_.step = [this](int) {
            if (progress_.Sent() < last_) wentBackTo_ = progress_.Sent();
            last_ = progress_.Sent();
        };
    }
    void ExpectStored() {
        EXPECT_EQ(Upload().end, UploadEnd::Done);
        EXPECT_TRUE(ReadFileContent(Target()) == content_);
        EXPECT_EQ(Stored().size(), 3U);
    }

    ImportPatch<decltype(&WriteFile)> write_{"kernel32.dll", "WriteFile", &BreakingWrite};
    ImportPatch<decltype(&CreateFileW)> open_{"kernel32.dll", "CreateFileW", &FailingOpenOfPart};
    std::uint64_t last_ = 0;
    std::uint64_t wentBackTo_ = 0;
};

TEST_F(FolderUpload, StoresTheFileUnderItsNameInItsFolder) {
    const UploadResult result = Upload();
    EXPECT_EQ(result.end, UploadEnd::Done);
    EXPECT_EQ(Stored(), (Tree{L"Quillbox\\", L"Quillbox\\20261122101530\\",
                              L"Quillbox\\20261122101530\\Files.zip"}));
    EXPECT_EQ(ReadFileContent(Target()), content_);
    EXPECT_EQ(ReadFileContent(source_), content_);
    EXPECT_EQ(result.stored.name, L"Files.zip");
    EXPECT_EQ(result.stored.size, content_.size());
    EXPECT_EQ(result.stored.path, L"2|" + cloud_.Path() + L"|" + kFolder + L"\\Files.zip");
    EXPECT_EQ(result.stored.version, VersionAt(Target()));
    EXPECT_NE(result.stored.version, L"");
}

TEST_F(FolderUpload, StoresInTheAccountsFolderItselfWithoutAnother) {
    EXPECT_EQ(Upload(L"Files.zip", L"").end, UploadEnd::Done);
    EXPECT_EQ(Stored(), Tree{L"Files.zip"});
}

TEST_F(FolderUpload, StoresFilesOfEverySizeAroundItsBlocks) {
    for (const std::size_t size : {std::size_t{0}, std::size_t{1}, kBlock - 1, kBlock, kBlock + 1,
                                   3 * kBlock, 5 * kBlock + 77}) {
        WriteSource(size);
        const UploadResult result = Upload(L"Files.zip", L"of " + std::to_wstring(size));
        EXPECT_EQ(result.end, UploadEnd::Done);
        EXPECT_EQ(ReadFileContent(cloud_ / (L"of " + std::to_wstring(size) + L"\\Files.zip")),
                  content_);
        EXPECT_EQ(progress_.Sent(), size);
        EXPECT_EQ(progress_.Total(), size);
    }
    EXPECT_EQ(progress_.Reports(), 7 + 0 + 1 + 1 + 1 + 2 + 3 + 6); // first 0, then each block
}

TEST_F(FolderUpload, StoresBeyondTheSystemsLimitOfPaths) {
    const std::wstring part(200, L'x');
    const std::wstring around = part + L"\\" + part + L"\\" + part + L"\\";
    const std::wstring folder = around + kFolder;
    const UploadResult result = Upload(std::wstring(251, L'n') + L".zip", folder);
    EXPECT_EQ(result.end, UploadEnd::Done) << result.sentence;
    EXPECT_EQ(ReadFileContent(L"\\\\?\\" + cloud_.Path() + L"\\" + folder + L"\\" +
                              std::wstring(251, L'n') + L".zip"),
              content_);
    EXPECT_EQ(DeleteFolderFile(result.stored), DeletionEnd::Gone);
    RemoveEmptyFolders(cloud_ / (around + L"Quillbox\\"), 4); // not as an upload makes them
    EXPECT_EQ(Stored(), Tree{});
}

TEST_F(FolderUpload, ReplacesNoFile) {
    CreateDirectoryW((cloud_ / L"Quillbox").c_str(), nullptr);
    CreateDirectoryW((cloud_ / kFolder).c_str(), nullptr);
    obtest::WriteFileContent(Target(), "another");
    const Tree before = Stored();
    EXPECT_EQ(Upload().end, UploadEnd::NameTaken);
    EXPECT_EQ(ReadFileContent(Target()), "another");
    EXPECT_EQ(Stored(), before);
    EXPECT_EQ(progress_.Sent(), 0U); // noticed before the copy
}

TEST_F(FolderUpload, ReplacesNoFileThatComesWhileItCopies) {
    progress_.step = [&](int report) {
        if (report == 1) obtest::WriteFileContent(Target(), "another");
    };
    EXPECT_EQ(Upload().end, UploadEnd::NameTaken);
    EXPECT_EQ(ReadFileContent(Target()), "another");
    EXPECT_EQ(Stored(), (Tree{L"Quillbox\\", L"Quillbox\\20261122101530\\",
                              L"Quillbox\\20261122101530\\Files.zip"}));
}

TEST_F(FolderUpload, ShowsItsBytesUnderAnotherNameUntilTheyAreComplete) {
    progress_.step = [&](int report) {
        if (report == 0) return;
        EXPECT_FALSE(FileExists(Target()));
        const Tree now = Stored();
        ASSERT_EQ(now.size(), 3U);
        EXPECT_TRUE(now[2].ends_with(L".part")) << now[2];
    };
    EXPECT_EQ(Upload().end, UploadEnd::Done);
}

TEST_F(FolderUpload, RefusesNamesThatTheFolderCannotHave) {
    for (const std::wstring& name :
         {std::wstring(L"Files."), std::wstring(L"con.zip"), std::wstring(L".."),
          std::wstring(L"a:b.zip"), std::wstring(L"a\\..\\b.zip"), std::wstring(L""),
          std::wstring(256, L'x')}) {
        const UploadResult result = Upload(name);
        EXPECT_EQ(result.end, UploadEnd::Failed) << name;
        EXPECT_EQ(result.sentence,
                  L"\u201C" + name + L"\u201D wasn't uploaded, because " + Folder() +
                      L" can't have a file of this name. Nothing was attached, and your files are "
                      L"unchanged. Please give the file another name and try again.");
        EXPECT_EQ(Stored(), Tree{});
    }
    for (const wchar_t* folder : {L"..", L"..\\outside", L"a\\..\\..\\b", L"C:", L"\\a", L"a\\"}) {
        EXPECT_EQ(Upload(L"Files.zip", folder).end, UploadEnd::Failed) << folder;
        EXPECT_EQ(Stored(), Tree{}) << folder;
    }
}

TEST_F(FolderUpload, RefusesALinkThatIsTooLong) {
    pattern_ = L"https://h/{path}/" + std::wstring(kLongestPattern - 17, L'x');
    const std::wstring name = std::wstring(157, L'\u20AC') + L".zip"; // nine characters each
    const UploadResult result = Upload(name, L"");
    EXPECT_EQ(result.end, UploadEnd::Failed);
    EXPECT_NE(result.sentence.find(L"because its link would be too long."), std::wstring::npos);
    EXPECT_EQ(Stored(), Tree{});
    EXPECT_EQ(Upload(std::wstring(156, L'\u20AC') + L".zip", L"").end, UploadEnd::Done);
}

TEST_F(FolderUpload, ReportsAFileThatCannotBeRead) {
    const std::wstring todo = L"Please close the programs that use the file and try again.";
    {
        const ObLib::UniqueKernelHandle open(
            CreateFileW(source_.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr));
        ExpectFailed(Upload(), L"it can't be read", todo);
    }
    DeleteFileW(source_.c_str());
    ExpectFailed(Upload(), L"it can't be read", todo);
}

TEST_F(FolderUpload, ReportsAFolderThatVanished) {
    const obtest::TestFolder gone;
    const std::wstring todo = L"Please make sure that the folder opens in Explorer and try again.";
    const auto result =
        UploadToFolder({gone / L"x", L""}, {source_, L"Files.zip", kFolder}, progress_);
    EXPECT_EQ(result.sentence, L"\u201CFiles.zip\u201D wasn't uploaded, because the folder \u201C" +
                                   (gone / L"x") +
                                   L"\u201D can't be reached. Nothing was attached, and your files "
                                   L"are unchanged. " +
                                   todo);
    EXPECT_EQ(ListTree(gone.Path()), Tree{});
    const std::wstring file = gone.File(L"y", "y");
    EXPECT_EQ(UploadToFolder({file, L""}, {source_, L"Files.zip", kFolder}, progress_).end,
              UploadEnd::Failed);
    EXPECT_EQ(ReadFileContent(file), "y");
}

TEST_F(FolderUpload, ReportsAShareThatVanishesWhileItCopies) {
    WriteSource(3 * kBlock);
    for (failingCall = 0; failingCall < 3; ++failingCall) {
        callNumber = 0;
        ImportPatch patch("kernel32.dll", "WriteFile", &FailingWrite);
        ASSERT_TRUE(patch.Ok());
        realWrite = patch.Real();
        ExpectFailed(Upload(), Folder() + L" can't be reached",
                     L"Please make sure that the folder opens in Explorer and try again.");
    }
}

TEST_F(FolderUpload, ReportsAFullDisk) {
    const std::wstring todo =
        L"Please free some space there or choose another account, and try again.";
    const std::wstring why = L"there is no room for it in " + Folder();
    WriteSource(2 * kBlock);
    for (const DWORD error : {ERROR_DISK_FULL, ERROR_HANDLE_DISK_FULL, 1295L}) {
        failingCall = 1;
        callNumber = 0;
        failedWith = error;
        ImportPatch patch("kernel32.dll", "WriteFile", &FailingWrite);
        ASSERT_TRUE(patch.Ok());
        realWrite = patch.Real();
        ExpectFailed(Upload(), why, todo);
    }
    ImportPatch flush("kernel32.dll", "FlushFileBuffers", &FailingFlush);
    ASSERT_TRUE(flush.Ok());
    ExpectFailed(Upload(), why, todo);
}

TEST_F(FolderUpload, CopiesNothingWhenTheSpaceIsKnownToBeTooSmall) {
    ImportPatch patch("kernel32.dll", "GetDiskFreeSpaceExW", &LittleSpace);
    ASSERT_TRUE(patch.Ok());
    ExpectFailed(Upload(), L"there is no room for it in " + Folder(),
                 L"Please free some space there or choose another account, and try again.");
    EXPECT_EQ(progress_.Reports(), 1);
    obtest::WriteFileContent(source_, "123456");
    EXPECT_EQ(Upload().end, UploadEnd::Done);
}

TEST_F(FolderUpload, TriesAFolderThatReportsNoSpace) {
    ImportPatch patch("kernel32.dll", "GetDiskFreeSpaceExW", &NoSpaceReported);
    ASSERT_TRUE(patch.Ok());
    EXPECT_EQ(Upload().end, UploadEnd::Done);
}

TEST_F(FolderUpload, ReportsAFileTooLargeForTheFileSystem) {
    ImportPatch patch("kernel32.dll", "GetVolumeInformationW", &OfFat32);
    ASSERT_TRUE(patch.Ok());
    {
        const ObLib::UniqueKernelHandle sparse(
            CreateFileW(source_.c_str(), GENERIC_WRITE, 0, nullptr, CREATE_ALWAYS, 0, nullptr));
        LARGE_INTEGER size;
        size.QuadPart = 1LL << 32;
        ASSERT_TRUE(SetFilePointerEx(sparse.Get(), size, nullptr, FILE_BEGIN));
        ASSERT_TRUE(SetEndOfFile(sparse.Get()));
    }
    ExpectFailed(Upload(), L"it is too large for the file system of " + Folder(),
                 L"Please choose another account.");
}

TEST_F(FolderUpload, ReportsAFolderThatTheUserMayNotWriteTo) {
    for (failingCall = 0; failingCall < 2; ++failingCall) {
        callNumber = 0;
        failedWith = ERROR_ACCESS_DENIED;
        ImportPatch patch("kernel32.dll", "CreateDirectoryW", &FailingMakeFolder);
        ASSERT_TRUE(patch.Ok());
        realMakeFolder = patch.Real();
        ExpectFailed(Upload(), L"you aren't allowed to write to " + Folder(),
                     L"Please ask whoever manages the folder, or choose another account.");
    }
}

TEST_F(FolderUpload, ReportsOtherErrorsWithTheirNumber) {
    failedWith = ERROR_CRC;
    ImportPatch patch("kernel32.dll", "FlushFileBuffers", &FailingFlush);
    ASSERT_TRUE(patch.Ok());
    ExpectFailed(Upload(), Folder() + L" reported the error 23", L"Please try again.");
}

TEST_F(FolderUpload, ReportsAShareThatAsksForALogin) {
    failedWith = ERROR_LOGON_FAILURE;
    ImportPatch patch("kernel32.dll", "CreateDirectoryW", &FailingMakeFolder);
    ASSERT_TRUE(patch.Ok());
    ExpectFailed(Upload(), Folder() + L" asks for a user name and a password",
                 L"Please open the folder in Explorer, and try again.");
}

TEST_F(FolderUpload, ReportsACopyOfAnotherLength) {
    ImportPatch patch("kernel32.dll", "GetFileSizeEx", &ShorterCopy);
    ASSERT_TRUE(patch.Ok());
    realSize = patch.Real();
    failingCall = 1; // the source is measured first
    ExpectFailed(Upload(), L"the copy in " + Folder() + L" isn't as long as the file",
                 L"Please try again.");
}

// A scanner or a sync client opens new files.
TEST_F(FolderUpload, WaitsWhileAnotherProgramHasTheNewFileOpen) {
    failingCall = 5;
    failedWith = ERROR_SHARING_VIOLATION;
    ImportPatch patch("kernel32.dll", "MoveFileExW", &FailingMove);
    ASSERT_TRUE(patch.Ok());
    realMove = patch.Real();
    EXPECT_EQ(Upload().end, UploadEnd::Done);
    EXPECT_EQ(ReadFileContent(Target()), content_);
}

TEST_F(FolderUpload, KnowsAFileThatGotItsNameBeforeTheConnectionBroke) {
    isDoneBefore = true;
    ImportPatch patch("kernel32.dll", "MoveFileExW", &FailingMove);
    ASSERT_TRUE(patch.Ok());
    realMove = patch.Real();
    const UploadResult result = Upload();
    EXPECT_EQ(result.end, UploadEnd::Done);
    EXPECT_EQ(ReadFileContent(Target()), content_);
    EXPECT_EQ(Stored().size(), 3U);
}

TEST_F(FolderUpload, AsksAgainForAFileThatGotItsNameWhileTheConnectionIsBroken) {
    isDoneBefore = true;
    brokenOpens = 3;
    ImportPatch move("kernel32.dll", "MoveFileExW", &FailingMove);
    ImportPatch open("kernel32.dll", "CreateFileW", &BrokenOpen);
    ASSERT_TRUE(move.Ok() && open.Ok());
    realMove = move.Real();
    realOpen = open.Real();
    const UploadResult result = Upload();
    EXPECT_EQ(result.end, UploadEnd::Done);
    EXPECT_EQ(brokenOpens, 0);
    EXPECT_EQ(ReadFileContent(Target()), content_);
    EXPECT_EQ(result.stored.version, VersionAt(Target()));
}

TEST_F(FolderUpload, ReportsAConnectionThatBreaksBeforeTheFileHasItsName) {
    failingCall = 1;
    ImportPatch patch("kernel32.dll", "MoveFileExW", &FailingMove);
    ASSERT_TRUE(patch.Ok());
    realMove = patch.Real();
    ExpectFailed(Upload(), Folder() + L" can't be reached",
                 L"Please make sure that the folder opens in Explorer and try again.");
}

TEST_F(FolderUpload, EndsWithACancelAtEachStep) {
    WriteSource(2 * kBlock + 1);
    for (int last = 0; last <= 3; ++last) { // at the start, and after each of three blocks
        FakeProgress progress;
        progress.step = [&](int report) {
            if (report == last) progress.Cancel();
        };
        const auto result =
            UploadToFolder({cloud_.Path(), L""}, {source_, L"Files.zip", kFolder}, progress);
        EXPECT_EQ(result.end, UploadEnd::Cancelled);
        EXPECT_EQ(result.sentence, L"");
        EXPECT_EQ(progress.Reports(), last + 1);
        EXPECT_EQ(Stored(), Tree{});
    }
    progress_.Cancel();
    EXPECT_EQ(Upload().end, UploadEnd::Cancelled);
    EXPECT_EQ(Stored(), Tree{});
}

TEST_F(FolderUpload, RemovesNothingThatItDidNotMake) {
    CreateDirectoryW((cloud_ / L"Quillbox").c_str(), nullptr);
    progress_.step = [&](int report) {
        if (report == 0) return;
        obtest::WriteFileContent(cloud_ / (std::wstring(kFolder) + L"\\mine.txt"), "mine");
        progress_.Cancel();
    };
    EXPECT_EQ(Upload().end, UploadEnd::Cancelled);
    EXPECT_EQ(Stored(), (Tree{L"Quillbox\\", L"Quillbox\\20261122101530\\",
                              L"Quillbox\\20261122101530\\mine.txt"}));
    DeleteFileW((cloud_ / (std::wstring(kFolder) + L"\\mine.txt")).c_str());
    RemoveDirectoryW((cloud_ / kFolder).c_str());
    progress_.step = nullptr;
    EXPECT_EQ(Upload().end, UploadEnd::Cancelled);
    EXPECT_EQ(Stored(), Tree{L"Quillbox\\"}); // was there before
}

TEST_F(BrokenFolderUpload, ContinuesAtTheLastLengthThatWasFlushed) {
    ExpectStored();
    EXPECT_EQ(wentBackTo_, kStoredAtOnce);
    EXPECT_EQ(callNumber, kStoredBlocks + 3 + 1 + 1 + 2) << "each block once, but for three";
}

TEST_F(BrokenFolderUpload, WaitsForTheFolderAndForItsServerToNotice) {
    failingOpens = 3;
    ExpectStored();
    failingOpens = 3;
    openFailsWith = ERROR_SHARING_VIOLATION;
    callNumber = 0;
    EXPECT_EQ(Upload(L"Second.zip").end, UploadEnd::Done);
    EXPECT_EQ(failingOpens, 0);
}

TEST_F(BrokenFolderUpload, GoesOnAfterSeveralBreaks) {
    failures = 4;
    ExpectStored();
}

TEST_F(BrokenFolderUpload, EndsWithoutTheFolderAfterAWhile) {
    care_.patience.resume = 100;
    failingOpens = 1'000'000;
    ExpectFailed(Upload(), Folder() + L" can't be reached",
                 L"Please make sure that the folder opens in Explorer and try again.");
    EXPECT_LT(failingOpens, 1'000'000);
}

TEST_F(BrokenFolderUpload, EndsAtOnceWhenItsPartHasGone) {
    care_.patience.resume = 600'000;
    failingOpens = 1;
    openFailsWith = ERROR_FILE_NOT_FOUND;
    EXPECT_EQ(Upload().end, UploadEnd::Failed);
    EXPECT_EQ(Stored(), Tree{});
}

TEST_F(BrokenFolderUpload, EndsWithACancelWhileItWaits) {
    care_.patience = {600'000, 0, 600'000};
    failures = 1'000'000;
    progress_.step = [this](int) {
        if (callNumber == failingCall) progress_.Cancel();
    };
    failingCall = kStoredBlocks + 2;
    EXPECT_EQ(Upload().end, UploadEnd::Cancelled);
    EXPECT_EQ(Stored(), Tree{});
}

TEST_F(FolderUpload, GoesOnWhenTheLastBytesCantBeStoredAtFirst) {
    WriteSource(2 * kBlock);
    failingCall = 0;
    care_.patience.resume = 20'000;
    ImportPatch patch("kernel32.dll", "FlushFileBuffers", &FailingFirstFlush);
    ASSERT_TRUE(patch.Ok());
    realFlush = patch.Real();
    EXPECT_EQ(Upload().end, UploadEnd::Done);
    EXPECT_TRUE(ReadFileContent(Target()) == content_);
}

TEST_F(FolderUpload, ReportsAFileThatMayBeInTheFolder) {
    isDoneBefore = true;
    brokenOpens = 1'000'000;
    care_.patience.rename = 100;
    ImportPatch move("kernel32.dll", "MoveFileExW", &FailingMove);
    ImportPatch open("kernel32.dll", "CreateFileW", &BrokenOpen);
    ASSERT_TRUE(move.Ok() && open.Ok());
    realMove = move.Real();
    realOpen = open.Real();
    const UploadResult result = Upload();
    EXPECT_EQ(result.end, UploadEnd::Failed);
    EXPECT_EQ(result.sentence,
              L"\u201CFiles.zip\u201D was sent to " + Folder() +
                  L", but the connection broke at the last step: the file may be in the folder "
                  L"already. Nothing was attached, and your files are unchanged. Please look into "
                  L"the folder before you try again.");
    EXPECT_EQ(Stored().size(), 3U);
}

TEST_F(FolderUpload, KnowsAFileWithoutAVersionByTheNameThatItNoLongerHas) {
    isDoneBefore = true;
    ImportPatch move("kernel32.dll", "MoveFileExW", &FailingMove);
    ImportPatch version("kernel32.dll", "GetFileInformationByHandle", &NoInformation);
    ASSERT_TRUE(move.Ok() && version.Ok());
    realMove = move.Real();
    const UploadResult result = Upload();
    EXPECT_EQ(result.end, UploadEnd::Done);
    EXPECT_EQ(result.stored.version, L"") << "so it is never deleted";
}

class NotedFolderUpload : public FolderUpload {
protected:
    NotedFolderUpload() {
        obtest::ClearProductRegistry();
        care_.notes = &notes_;
        care_.accountKey = L"account";
    }
    // As a session two days later finds them.
    std::vector<NotedPart> Notes() const { return notes_.OldAt(TimeNow() + 2 * kOldPart); }

    const AccountBook book_{HKEY_CURRENT_USER, obcontract::kProviderManagerKey};
    const PartNotes notes_{book_};
};

TEST_F(NotedFolderUpload, IsNotedWhileItHasItsTemporaryName) {
    WriteSource(2 * kBlock);
    std::vector<NotedPart> during;
    progress_.step = [&](int report) {
        if (report == 1) during = Notes();
    };
    EXPECT_EQ(Upload().end, UploadEnd::Done);
    ASSERT_EQ(during.size(), 1U);
    EXPECT_EQ(during[0].providerId, kNetworkFolderId);
    EXPECT_EQ(during[0].accountKey, L"account");
    const std::wstring before = L"2|" + cloud_.Path() + L"|" + kFolder + L"\\~{";
    EXPECT_TRUE(during[0].path.starts_with(before)) << during[0].path;
    EXPECT_TRUE(during[0].path.ends_with(L"}.part"));
    EXPECT_FALSE(notes_.HasAny());
}

TEST_F(NotedFolderUpload, LeavesNoNoteAfterACancelOrAFailure) {
    progress_.step = [&](int) { progress_.Cancel(); };
    EXPECT_EQ(Upload().end, UploadEnd::Cancelled);
    EXPECT_FALSE(notes_.HasAny());
    FakeProgress progress;
    CreateDirectoryW((cloud_ / L"Quillbox").c_str(), nullptr);
    progress.step = [&](int report) {
        if (report == 1) obtest::WriteFileContent(Target(), "another");
    };
    EXPECT_EQ(
        UploadToFolder({cloud_.Path(), L""}, {source_, L"Files.zip", kFolder}, progress, care_).end,
        UploadEnd::NameTaken);
    EXPECT_FALSE(notes_.HasAny());
}

TEST_F(NotedFolderUpload, UploadsAlsoWhereItCantBeNoted) {
    const AccountBook unwritable(HKEY_CURRENT_USER, std::wstring(300, L'k'));
    const PartNotes none(unwritable);
    care_.notes = &none;
    EXPECT_EQ(Upload().end, UploadEnd::Done);
}

// A scanner that keeps the part, or a folder from which nothing may be deleted.
TEST_F(NotedFolderUpload, IsRemovedLaterWhenItCantBeDeletedAtOnce) {
    WriteSource(3 * kBlock);
    progress_.step = [&](int report) {
        if (report == 2) progress_.Cancel();
    };
    {
        ImportPatch patch("kernel32.dll", "DeleteFileW", &RefusedDeletion);
        ASSERT_TRUE(patch.Ok());
        EXPECT_EQ(Upload().end, UploadEnd::Cancelled);
    }
    EXPECT_EQ(refusedDeletions, 100);
    ASSERT_EQ(Stored().size(), 3U);
    const auto notes = Notes();
    ASSERT_EQ(notes.size(), 1U);
    EXPECT_EQ(RemoveFolderPart(notes[0].path), DeletionEnd::Gone);
    EXPECT_EQ(Stored(), Tree{});
}

TEST_F(NotedFolderUpload, ThatFailsIsExplainedAlsoWhenItsPartCantBeDeleted) {
    failedWith = ERROR_DISK_FULL;
    ImportPatch patch("kernel32.dll", "DeleteFileW", &RefusedDeletion);
    ImportPatch flush("kernel32.dll", "FlushFileBuffers", &FailingFlush);
    ASSERT_TRUE(patch.Ok() && flush.Ok());
    EXPECT_EQ(Upload().sentence,
              L"\u201CFiles.zip\u201D wasn't uploaded, because there is no room for it in " +
                  Folder() +
                  L". Nothing was attached, and your files are unchanged. Please free some space "
                  L"there or choose another account, and try again.");
    EXPECT_EQ(Notes().size(), 1U);
}

} // namespace
