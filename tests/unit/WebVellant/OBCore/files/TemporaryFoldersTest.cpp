#include "OBCore/files/TemporaryFolders.h"

#include <windows.h>

#include <gtest/gtest.h>

#include "tests/support/ImportPatch.h"
#include "tests/support/RecordedTrace.h"
#include "tests/support/TestFolder.h"

namespace {

using obcore::CreateUniqueTempFolder;
using obcore::GetTemporaryFolder;
using obtest::ImportPatch;

// What the stubs return, and the calls that they got.
std::wstring tempPath;
DWORD tempPathResult = 0; // 0: the length of tempPath
DWORD tempPathCapacity = 0;
std::wstring longPath;
DWORD longPathResult = 0;
DWORD longPathCapacity = 0;
std::wstring longPathAsked;
DWORD tick = 0;

DWORD WINAPI FakeTempPath(DWORD capacity, LPWSTR buffer) {
    tempPathCapacity = capacity;
    wcscpy(buffer, tempPath.c_str());
    return tempPathResult;
}

DWORD WINAPI FakeLongPath(LPCWSTR path, LPWSTR buffer, DWORD capacity) {
    longPathAsked = path;
    longPathCapacity = capacity;
    if (longPathResult != 0 && longPathResult < capacity) wcscpy(buffer, longPath.c_str());
    if (longPathResult == 0) SetLastError(ERROR_PATH_NOT_FOUND);
    return longPathResult;
}

DWORD WINAPI FakeTick() { return tick; }

BOOL WINAPI RefusedFolder(LPCWSTR, LPSECURITY_ATTRIBUTES) {
    SetLastError(ERROR_ACCESS_DENIED);
    return FALSE;
}

// Another process was quicker with the first name that is asked for.
int foldersAsked = 0;
decltype(&CreateDirectoryW) realCreateDirectory = nullptr;
BOOL WINAPI FirstNameJustTaken(LPCWSTR path, LPSECURITY_ATTRIBUTES security) {
    if (foldersAsked++ == 0) realCreateDirectory(path, security);
    return realCreateDirectory(path, security);
}

class TemporaryFolder : public testing::Test {
protected:
    void Answer(const std::wstring& path, DWORD result) {
        tempPath = path;
        tempPathResult = result;
    }
    void AnswerLong(const std::wstring& path, DWORD result) {
        longPath = path;
        longPathResult = result;
    }
    void SetUp() override {
        ASSERT_TRUE(tempPathDouble_.Ok());
        ASSERT_TRUE(longPathDouble_.Ok());
        AnswerLong(L"", 0);
        obtest::ForgetTrace();
    }

    std::wstring folder_ = L"untouched";

private:
    ImportPatch<decltype(&GetTempPathW)> tempPathDouble_{"kernel32.dll", "GetTempPathW",
                                                         &FakeTempPath};
    ImportPatch<decltype(&GetLongPathNameW)> longPathDouble_{"kernel32.dll", "GetLongPathNameW",
                                                             &FakeLongPath};
};

TEST_F(TemporaryFolder, IsTheLongFormOfTheUsersFolder) {
    Answer(L"C:\\LONGNA~1\\", 12);
    AnswerLong(L"C:\\long name\\", 13);
    EXPECT_TRUE(GetTemporaryFolder(folder_));
    EXPECT_EQ(folder_, L"C:\\long name\\");
    EXPECT_EQ(tempPathCapacity, 260u);
    EXPECT_EQ(longPathCapacity, 520u);
    EXPECT_EQ(longPathAsked, L"C:\\LONGNA~1\\");
    EXPECT_TRUE(obtest::TraceLines().empty());
}

TEST_F(TemporaryFolder, TakesALongFormOf519Characters) {
    const std::wstring path = L"C:\\" + std::wstring(515, L'x') + L"\\";
    Answer(L"C:\\X\\", 5);
    AnswerLong(path, 519);
    EXPECT_TRUE(GetTemporaryFolder(folder_));
    EXPECT_EQ(folder_, path);
}

TEST_F(TemporaryFolder, StaysShortWithoutALongFormAndTracesWhy) {
    Answer(L"C:\\LONGNA~1\\", 12);
    EXPECT_TRUE(GetTemporaryFolder(folder_));
    EXPECT_EQ(folder_, L"C:\\LONGNA~1\\");
    EXPECT_EQ(obtest::TraceLines(), std::vector<std::string>{"Long Path not Get, 3"});
}

TEST_F(TemporaryFolder, StaysShortWhenTheLongFormDoesNotFit) {
    Answer(L"C:\\LONGNA~1\\", 12);
    AnswerLong(L"never written", 520);
    EXPECT_TRUE(GetTemporaryFolder(folder_));
    EXPECT_EQ(folder_, L"C:\\LONGNA~1\\");
}

TEST_F(TemporaryFolder, GetsItsTrailingBackslash) {
    Answer(L"C:\\temp", 7);
    EXPECT_TRUE(GetTemporaryFolder(folder_));
    EXPECT_EQ(folder_, L"C:\\temp\\");
    EXPECT_EQ(longPathAsked, L"C:\\temp\\");
}

TEST_F(TemporaryFolder, MayHave258Characters) {
    const std::wstring path = L"C:\\" + std::wstring(254, L't') + L"\\";
    Answer(path, 258);
    EXPECT_TRUE(GetTemporaryFolder(folder_));
    EXPECT_EQ(folder_, path);
}

TEST_F(TemporaryFolder, CanNotBeHadIn259CharactersOrMore) {
    Answer(L"C:\\temp\\", 259);
    EXPECT_FALSE(GetTemporaryFolder(folder_));
    Answer(L"C:\\temp\\", 400);
    EXPECT_FALSE(GetTemporaryFolder(folder_));
    EXPECT_EQ(folder_, L"untouched");
}

TEST_F(TemporaryFolder, IsNeverTheCurrentFolderWhenTheSystemNamesNone) {
    Answer(L"", 0);
    EXPECT_FALSE(GetTemporaryFolder(folder_));
    EXPECT_EQ(folder_, L"untouched");
}

TEST(RealTemporaryFolder, ExistsAndEndsInABackslash) {
    std::wstring folder;
    ASSERT_TRUE(GetTemporaryFolder(folder));
    EXPECT_TRUE(folder.ends_with(L'\\'));
    EXPECT_EQ(folder.find(L'~'), std::wstring::npos);
    EXPECT_TRUE(obtest::FileExists(folder));
}

class UniqueTempFolder : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(tickDouble_.Ok());
        tick = 0xABCDEF01;
        foldersAsked = 0;
    }

    // The name of the made folder, below the test's own.
    std::wstring Make() {
        std::wstring folder = base_;
        EXPECT_TRUE(CreateUniqueTempFolder(folder));
        EXPECT_TRUE(folder.starts_with(base_));
        return folder.substr(base_.size());
    }

    obtest::TestFolder home_;
    std::wstring base_ = home_.Path() + L"\\";

private:
    ImportPatch<decltype(&GetTickCount)> tickDouble_{"kernel32.dll", "GetTickCount", &FakeTick};
};

TEST_F(UniqueTempFolder, IsNamedByTheTimeInLowerCaseHexadecimal) {
    EXPECT_EQ(Make(), L"abcdef01\\");
    EXPECT_EQ(obtest::ListTree(home_.Path()), std::vector<std::wstring>{L"abcdef01\\"});
}

TEST_F(UniqueTempFolder, HasNoLeadingZeros) {
    tick = 0xA;
    EXPECT_EQ(Make(), L"a\\");
}

TEST_F(UniqueTempFolder, CountsOnWhileTheNameIsTaken) {
    home_.Folder(L"abcdef01");
    home_.Folder(L"abcdef02");
    EXPECT_EQ(Make(), L"abcdef03\\");
}

TEST_F(UniqueTempFolder, CountsOnWhenAFileHasTheName) {
    home_.File(L"abcdef01");
    EXPECT_EQ(Make(), L"abcdef02\\");
}

TEST_F(UniqueTempFolder, CountsOnFromTheLastNumberToZero) {
    tick = 0xFFFFFFFF;
    home_.Folder(L"ffffffff");
    EXPECT_EQ(Make(), L"0\\");
}

TEST_F(UniqueTempFolder, IsAnotherOneForASecondRunWithinTheSameTick) {
    EXPECT_EQ(Make(), L"abcdef01\\");
    EXPECT_EQ(Make(), L"abcdef02\\");
}

TEST_F(UniqueTempFolder, IsNotSharedWithAProcessThatWasQuicker) {
    ImportPatch<decltype(&CreateDirectoryW)> folders("kernel32.dll", "CreateDirectoryW",
                                                     &FirstNameJustTaken);
    ASSERT_TRUE(folders.Ok());
    realCreateDirectory = folders.Real();
    EXPECT_EQ(Make(), L"abcdef02\\");
}

TEST_F(UniqueTempFolder, IsNamedAlsoWhenItCanNotBeMade) {
    ImportPatch<decltype(&CreateDirectoryW)> folders("kernel32.dll", "CreateDirectoryW",
                                                     &RefusedFolder);
    ASSERT_TRUE(folders.Ok());
    EXPECT_EQ(Make(), L"abcdef01\\");
    EXPECT_TRUE(obtest::ListTree(home_.Path()).empty());
}

TEST_F(UniqueTempFolder, NeedsItsBase) {
    std::wstring folder = home_ / L"missing\\";
    EXPECT_FALSE(CreateUniqueTempFolder(folder));
    EXPECT_EQ(folder, home_ / L"missing\\");
    EXPECT_TRUE(obtest::ListTree(home_.Path()).empty());
}

TEST_F(UniqueTempFolder, KeepsItsBaseWhereThePathIsTooLongForThePlatform) {
    base_ = home_.Folder(std::wstring(255 - home_.Path().size(), L'b')) + L"\\";
    ASSERT_GT(base_.size() + 9, static_cast<std::size_t>(MAX_PATH));
    EXPECT_EQ(Make(), L"abcdef01\\");
}

} // namespace
