#include <windows.h>

#include <gtest/gtest.h>

#include "OBCore/files/TemporaryFolders.h"
#include "ObLib/Src/Win32/UniqueHandle.h"
#include "tests/support/ImportPatch.h"
#include "tests/support/TestFolder.h"

namespace {

using obcore::CompressUtils::CopyFilesToFolder;
using obtest::FileExists;
using obtest::ReadFileContent;
using obtest::TestFolder;
using Files = std::vector<std::wstring>;

ObLib::UniqueKernelHandle Open(const std::wstring& path, DWORD access, DWORD share) {
    return ObLib::UniqueKernelHandle(
        CreateFileW(path.c_str(), access, share, nullptr, OPEN_EXISTING, 0, nullptr));
}

class CopyFiles : public testing::Test {
protected:
    Files Copy(Files files) {
        CopyFilesToFolder(copies_.Path() + L"\\", files);
        return files;
    }

    TestFolder sources_;
    TestFolder copies_;
};

TEST_F(CopyFiles, ReplacesTheListByTheCopiesInOrder) {
    const std::wstring b = sources_.File(L"b.txt", "text of b");
    const std::wstring a = sources_.File(L"a.txt", "text of a");
    EXPECT_EQ(Copy({b, a}), (Files{copies_ / L"b.txt", copies_ / L"a.txt"}));
    EXPECT_EQ(ReadFileContent(copies_ / L"a.txt"), "text of a");
    EXPECT_EQ(ReadFileContent(copies_ / L"b.txt"), "text of b");
    EXPECT_EQ(ReadFileContent(a), "text of a");
    EXPECT_EQ(ReadFileContent(b), "text of b");
}

TEST_F(CopyFiles, LeavesAnEmptyListEmpty) {
    EXPECT_TRUE(Copy({}).empty());
    EXPECT_TRUE(obtest::ListTree(copies_.Path()).empty());
}

TEST_F(CopyFiles, OverwritesAFileOfThatName) {
    copies_.File(L"a.txt", "old and longer");
    const std::wstring a = sources_.File(L"a.txt", "new");
    EXPECT_EQ(Copy({a}), Files{copies_ / L"a.txt"});
    EXPECT_EQ(ReadFileContent(copies_ / L"a.txt"), "new");
}

TEST_F(CopyFiles, DropsWhatCanNotBeCopied) {
    const std::wstring a = sources_.File(L"a.txt");
    const std::wstring c = sources_.File(L"c.txt");
    EXPECT_EQ(Copy({a, sources_ / L"missing.txt", sources_.Folder(L"folder"), c}),
              (Files{copies_ / L"a.txt", copies_ / L"c.txt"}));
    EXPECT_EQ(obtest::ListTree(copies_.Path()), (Files{L"a.txt", L"c.txt"}));
}

TEST_F(CopyFiles, DropsALockedFileAndLeavesItWhole) {
    const std::wstring locked = sources_.File(L"locked.txt", "in use");
    const std::wstring free = sources_.File(L"free.txt");
    {
        const auto lock = Open(locked, GENERIC_READ | GENERIC_WRITE, 0);
        ASSERT_TRUE(lock);
        EXPECT_EQ(Copy({locked, free}), Files{copies_ / L"free.txt"});
    }
    EXPECT_EQ(ReadFileContent(locked), "in use");
}

TEST_F(CopyFiles, OpensItsSourcesForReadingOnly) {
    const std::wstring a = sources_.File(L"a.txt", "read by others");
    const auto reader = Open(a, GENERIC_READ, FILE_SHARE_READ);
    ASSERT_TRUE(reader);
    EXPECT_EQ(Copy({a}), Files{copies_ / L"a.txt"});
    EXPECT_EQ(ReadFileContent(copies_ / L"a.txt"), "read by others");
}

TEST_F(CopyFiles, CopiesAWriteProtectedFileAndLeavesItProtected) {
    const std::wstring a = sources_.File(L"a.txt", "protected");
    ASSERT_TRUE(SetFileAttributesW(a.c_str(), FILE_ATTRIBUTE_READONLY));
    EXPECT_EQ(Copy({a}), Files{copies_ / L"a.txt"});
    EXPECT_EQ(ReadFileContent(copies_ / L"a.txt"), "protected");
    EXPECT_EQ(ReadFileContent(a), "protected");
    EXPECT_NE(GetFileAttributesW(a.c_str()) & FILE_ATTRIBUTE_READONLY, 0u);
}

TEST_F(CopyFiles, ListsOneFileTwiceForTwoSourcesOfOneName) {
    const std::wstring first = sources_.Folder(L"1") + L"\\same.txt";
    const std::wstring second = sources_.Folder(L"2") + L"\\same.txt";
    ASSERT_TRUE(obtest::WriteFileContent(first, "first"));
    ASSERT_TRUE(obtest::WriteFileContent(second, "second"));
    EXPECT_EQ(Copy({first, second}), (Files{copies_ / L"same.txt", copies_ / L"same.txt"}));
    EXPECT_EQ(ReadFileContent(copies_ / L"same.txt"), "second");
    EXPECT_EQ(ReadFileContent(first), "first");
}

TEST_F(CopyFiles, CopiesOutOfAFolderWithAPathOfMoreThan260Characters) {
    std::wstring folder = L"\\\\?\\" + sources_.Path();
    for (int depth = 0; depth < 3; ++depth) {
        folder += L"\\" + std::wstring(100, L'd');
        ASSERT_TRUE(CreateDirectoryW(folder.c_str(), nullptr));
    }
    ASSERT_TRUE(obtest::WriteFileContent(folder + L"\\deep.txt", "deep"));
    const std::wstring picked = folder.substr(4) + L"\\deep.txt";
    ASSERT_GT(picked.size(), 300u);
    EXPECT_EQ(Copy({picked}), Files{copies_ / L"deep.txt"});
    EXPECT_EQ(ReadFileContent(copies_ / L"deep.txt"), "deep");
    EXPECT_EQ(ReadFileContent(L"\\\\?\\" + picked), "deep");
}

struct CopyCall {
    std::wstring source;
    std::wstring target;
    bool operator==(const CopyCall&) const = default;
};
std::vector<CopyCall> copyCalls;
BOOL keepsExisting = FALSE;

BOOL WINAPI NotedCopy(LPCWSTR source, LPCWSTR target, BOOL failIfExists) {
    copyCalls.push_back({source, target});
    keepsExisting |= failIfExists;
    return TRUE;
}

TEST_F(CopyFiles, HandsTheSystemLongPathsInTheirExtendedForm) {
    obtest::ImportPatch<decltype(&CopyFileW)> copy("kernel32.dll", "CopyFileW", &NotedCopy);
    ASSERT_TRUE(copy.Ok());
    const std::wstring picked = L"C:\\" + std::wstring(250, L'd') + L"\\deep.txt";
    const std::wstring longName(250, L'n');
    EXPECT_EQ(Copy({picked, L"C:\\short.txt", L"C:\\" + longName}),
              (Files{copies_ / L"deep.txt", copies_ / L"short.txt", copies_ / longName}));
    EXPECT_EQ(copyCalls,
              (std::vector<CopyCall>{{L"\\\\?\\" + picked, copies_ / L"deep.txt"},
                                     {L"C:\\short.txt", copies_ / L"short.txt"},
                                     {L"C:\\" + longName, L"\\\\?\\" + (copies_ / longName)}}));
    EXPECT_FALSE(keepsExisting);
}

TEST_F(CopyFiles, KeepsNamesWithEveryLegalOddity) {
    const Files names = {L"two  blanks.txt",       L"no extension", L".point first",
                         L"a.b.c.tar.gz",          L"100%s%n;&'!",  L"\u00e4\u6f22\u0416.txt",
                         L"\xD83D\xDE00 smile.txt"};
    Files sources;
    Files copies;
    for (const std::wstring& name : names) {
        sources.push_back(sources_.File(name, "content"));
        copies.push_back(copies_ / name);
    }
    EXPECT_EQ(Copy(sources), copies);
    EXPECT_EQ(obtest::ListTree(copies_.Path()).size(), names.size());
}

} // namespace
