// Files that were stored in a folder: recognised and deleted.
#include "services/providers/folder/FolderFile.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "tests/support/TestFolder.h"

using namespace providers;

namespace {

using Tree = std::vector<std::wstring>;

class FolderFile : public testing::Test {
protected:
    FolderFile() {
        cloud_.Folder(L"Quillbox");
        cloud_.Folder(L"Quillbox\\2026");
        path_ = cloud_.File(L"Quillbox\\2026\\Files.zip", "content");
        stored_ = {TextOf({path_, 2}), L"Files.zip", VersionAt(path_), 7};
    }
    Tree Left() const { return obtest::ListTree(cloud_.Path()); }

    obtest::TestFolder cloud_;
    std::wstring path_;
    StoredFile stored_;
    const Tree all_{L"Quillbox\\", L"Quillbox\\2026\\", L"Quillbox\\2026\\Files.zip"};
};

TEST_F(FolderFile, KeepsItsPlaceAsAText) {
    for (const wchar_t* path : {L"C:\\a\\b.zip", L"\\\\server\\share\\b.zip", L"Z:\\b.zip"}) {
        const auto place = PlaceOf(TextOf({path, 2}));
        ASSERT_TRUE(place) << path;
        EXPECT_EQ(place->path, path);
        EXPECT_EQ(place->madeFolders, 2U);
    }
    for (const wchar_t* bad : {L"", L"C:\\a", L"|C:\\a\\b", L"x|C:\\a\\b", L"-1|C:\\a\\b",
                               L"17|C:\\a\\b", L"1|a\\b", L"1|", L"1|\\\\.\\pipe\\x"}) {
        EXPECT_FALSE(PlaceOf(bad)) << bad;
    }
}

TEST_F(FolderFile, ItsVersionChangesWithContentTimeAndFile) {
    const std::wstring version = VersionAt(path_);
    ASSERT_NE(version, L"");
    EXPECT_EQ(VersionAt(path_), version);
    const std::wstring renamed = cloud_ / L"renamed.zip";
    ASSERT_TRUE(MoveFileW(path_.c_str(), renamed.c_str()));
    EXPECT_EQ(VersionAt(renamed), version);
    obtest::WriteFileContent(path_, "contents");
    EXPECT_NE(VersionAt(path_), version);
    EXPECT_EQ(VersionAt(cloud_ / L"none"), L"");
}

TEST_F(FolderFile, IsDeletedWithTheEmptyFoldersThatWereMadeForIt) {
    cloud_.File(L"Quillbox\\other.zip");
    EXPECT_EQ(DeleteFolderFile(stored_), DeletionEnd::Gone);
    EXPECT_EQ(Left(), (Tree{L"Quillbox\\", L"Quillbox\\other.zip"}));
}

TEST_F(FolderFile, LeavesFoldersThatWereThereBefore) {
    stored_.path = TextOf({path_, 1});
    EXPECT_EQ(DeleteFolderFile(stored_), DeletionEnd::Gone);
    EXPECT_EQ(Left(), Tree{L"Quillbox\\"});
}

TEST_F(FolderFile, StaysWhenItWasChanged) {
    const std::wstring version = stored_.version;
    obtest::WriteFileContent(path_, "CONTENT");
    const ObLib::UniqueKernelHandle file(
        CreateFileW(path_.c_str(), FILE_WRITE_ATTRIBUTES, 7, nullptr, OPEN_EXISTING, 0, nullptr));
    const FILETIME later{0, 0x01E00000};
    ASSERT_TRUE(SetFileTime(file.Get(), nullptr, nullptr, &later));
    EXPECT_EQ(DeleteFolderFile(stored_), DeletionEnd::Changed);
    stored_.version.clear();
    EXPECT_EQ(DeleteFolderFile(stored_), DeletionEnd::Changed);
    EXPECT_EQ(Left(), all_);
    EXPECT_EQ(obtest::ReadFileContent(path_), "CONTENT");
}

TEST_F(FolderFile, StaysWhenItsPlaceMakesNoSense) {
    stored_.path = L"2|..\\Files.zip";
    EXPECT_EQ(DeleteFolderFile(stored_), DeletionEnd::Changed);
    EXPECT_EQ(Left(), all_);
}

TEST_F(FolderFile, AFolderInItsPlaceStays) {
    DeleteFileW(path_.c_str());
    cloud_.Folder(L"Quillbox\\2026\\Files.zip");
    EXPECT_NE(DeleteFolderFile(stored_), DeletionEnd::Gone);
    EXPECT_EQ(Left().size(), 3U);
}

TEST_F(FolderFile, IsGoneWhenSomebodyElseDeletedIt) {
    DeleteFileW(path_.c_str());
    EXPECT_EQ(DeleteFolderFile(stored_), DeletionEnd::Gone);
    EXPECT_EQ(Left(), (Tree{L"Quillbox\\", L"Quillbox\\2026\\"})); // not touched
    obtest::RemoveTree(cloud_ / L"Quillbox");
    EXPECT_EQ(DeleteFolderFile(stored_), DeletionEnd::Gone);
}

TEST_F(FolderFile, IsUnreachableWhileItsDriveIsGone) {
    stored_.path = L"2|Q:\\Cloud\\Quillbox\\2026\\Files.zip";
    EXPECT_EQ(DeleteFolderFile(stored_), DeletionEnd::Unreachable);
}

TEST_F(FolderFile, IsUnreachableWhileItIsOpenElsewhere) {
    {
        const ObLib::UniqueKernelHandle open(CreateFileW(
            path_.c_str(), GENERIC_READ, FILE_SHARE_READ, nullptr, OPEN_EXISTING, 0, nullptr));
        EXPECT_EQ(DeleteFolderFile(stored_), DeletionEnd::Unreachable);
        EXPECT_EQ(Left(), all_);
    }
    EXPECT_EQ(DeleteFolderFile(stored_), DeletionEnd::Gone);
    EXPECT_EQ(Left(), Tree{});
}

} // namespace
