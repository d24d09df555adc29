// Files that were stored in a folder: recognised and deleted.
#include "services/providers/folder/FolderFile.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "services/providers/folder/FolderCheck.h"
#include "tests/support/TestFolder.h"

using namespace providers;

namespace {

using Tree = std::vector<std::wstring>;

constexpr wchar_t kBelow[] = L"Quillbox\\20261122101530\\Files.zip";

class FolderFile : public testing::Test {
protected:
    FolderFile() {
        cloud_.Folder(L"Quillbox");
        cloud_.Folder(L"Quillbox\\20261122101530");
        path_ = cloud_.File(kBelow, "content");
        stored_ = {TextOf({cloud_.Path(), kBelow, 2}), L"Files.zip", VersionAt(path_), 7};
    }
    Tree Left() const { return obtest::ListTree(cloud_.Path()); }

    obtest::TestFolder cloud_;
    std::wstring path_;
    StoredFile stored_;
    const Tree all_{L"Quillbox\\", L"Quillbox\\20261122101530\\", kBelow};
};

TEST_F(FolderFile, KeepsItsPlaceAsAText) {
    for (const wchar_t* folder : {L"C:\\a", L"\\\\server\\share", L"Z:\\"}) {
        const auto place = PlaceOf(TextOf({folder, L"x\\b.zip", 2}));
        ASSERT_TRUE(place) << folder;
        EXPECT_EQ(place->folder, folder);
        EXPECT_EQ(place->below, L"x\\b.zip");
        EXPECT_EQ(place->madeFolders, 2U);
    }
    for (const wchar_t* bad :
         {L"", L"1", L"1|", L"1||", L"1|C:\\a", L"1|C:\\a|", L"|C:\\a|b", L"x|C:\\a|b",
          L"-1|C:\\a|b", L"17|C:\\a|b", L"1|a|b", L"1|C:\\a|..\\b", L"1|C:\\a|\\b", L"1|C:\\a|b\\",
          L"1|C:\\a\\..|b", L"1|\\\\.\\pipe|x", L"1|C:\\a|b:stream"}) {
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
    stored_.path = TextOf({cloud_.Path(), kBelow, 1});
    EXPECT_EQ(DeleteFolderFile(stored_), DeletionEnd::Gone);
    EXPECT_EQ(Left(), Tree{L"Quillbox\\"});
}

// The text comes from the registry, where others can have put it.
TEST_F(FolderFile, LeavesFoldersThatNoUploadMakes) {
    for (const wchar_t* name : {L"Letters", L"2026112210153", L"2026112210153x"}) {
        const std::wstring folder = name;
        cloud_.Folder(L"Mine");
        cloud_.Folder(L"Mine\\" + folder);
        const std::wstring below = L"Mine\\" + folder + L"\\Files.zip";
        const std::wstring version = VersionAt(cloud_.File(below, "content"));
        EXPECT_EQ(DeleteFolderFile({TextOf({cloud_.Path(), below, 9}), L"", version, 7}),
                  DeletionEnd::Gone);
        EXPECT_TRUE(RemoveDirectoryW((cloud_ / (L"Mine\\" + folder)).c_str())) << folder;
    }
    cloud_.Folder(L"Mine\\20261122101530");
    const std::wstring below = L"Mine\\20261122101530\\Files.zip";
    const std::wstring version = VersionAt(cloud_.File(below, "content"));
    DeleteFolderFile({TextOf({cloud_.Path(), below, 9}), L"", version, 7});
    EXPECT_TRUE(RemoveDirectoryW((cloud_ / L"Mine").c_str())) << "is there, and empty";
    stored_.path = TextOf({cloud_.Path(), kBelow, 9});
    EXPECT_EQ(DeleteFolderFile(stored_), DeletionEnd::Gone);
    EXPECT_EQ(Left(), Tree{});
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
    stored_.path = TextOf({cloud_ / L"Quillbox", L"..\\" + std::wstring(kBelow), 2});
    EXPECT_EQ(DeleteFolderFile(stored_), DeletionEnd::Changed);
    EXPECT_EQ(Left(), all_);
}

TEST_F(FolderFile, AFolderInItsPlaceStays) {
    DeleteFileW(path_.c_str());
    cloud_.Folder(kBelow);
    EXPECT_NE(DeleteFolderFile(stored_), DeletionEnd::Gone);
    EXPECT_EQ(Left().size(), 3U);
}

TEST_F(FolderFile, IsGoneWhenSomebodyElseDeletedIt) {
    DeleteFileW(path_.c_str());
    EXPECT_EQ(DeleteFolderFile(stored_), DeletionEnd::Gone);
    EXPECT_EQ(Left(), (Tree{L"Quillbox\\", L"Quillbox\\20261122101530\\"})); // not touched
    obtest::RemoveTree(cloud_ / L"Quillbox");
    EXPECT_EQ(DeleteFolderFile(stored_), DeletionEnd::Gone);
}

TEST_F(FolderFile, IsUnreachableWhileItsDriveIsGone) {
    stored_.path = TextOf({L"Q:\\Cloud", kBelow, 2});
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

TEST_F(FolderFile, APartIsRemovedWithTheEmptyFoldersThatWereMadeForIt) {
    const std::wstring name = PartName();
    const std::wstring below = L"Quillbox\\20261122101530\\" + name;
    const std::wstring place = L"2|" + cloud_.Path() + L"|" + below;
    DeleteFileW(path_.c_str());
    cloud_.File(below, "half");
    {
        const ObLib::UniqueKernelHandle open(CreateFileW((cloud_ / below).c_str(), GENERIC_WRITE, 0,
                                                         nullptr, OPEN_EXISTING, 0, nullptr));
        EXPECT_EQ(RemoveFolderPart(place), DeletionEnd::Unreachable) << "its upload still runs";
    }
    EXPECT_EQ(RemoveFolderPart(place), DeletionEnd::Gone);
    EXPECT_EQ(obtest::ListTree(cloud_.Path()), std::vector<std::wstring>{});
    EXPECT_EQ(RemoveFolderPart(place), DeletionEnd::Gone);
}

TEST_F(FolderFile, NothingButAPartIsRemovedAsOne) {
    const std::wstring id = L"{01234567-89AB-CDEF-0123-456789ABCDEF}";
    for (const std::wstring& name :
         {std::wstring(L"mine.zip"), std::wstring(L"mine.part"), L"~" + id, id + L".part",
          L"~" + id + L".part.txt", L"~{0}" + std::wstring(L".part"), L"x~" + id + L".part"}) {
        cloud_.File(name, "mine");
        EXPECT_EQ(RemoveFolderPart(L"0|" + cloud_.Path() + L"|" + name), DeletionEnd::Changed);
        EXPECT_TRUE(obtest::FileExists(cloud_ / name)) << name;
    }
    const std::wstring part = L"~" + id + L".part";
    cloud_.File(part, "mine");
    CreateDirectoryW((cloud_ / L"account").c_str(), nullptr);
    for (const std::wstring& place :
         {L"0|" + cloud_.Path() + L"\\account|..\\" + part, L"0|account|" + part,
          L"0||" + cloud_ / part, L"16|" + cloud_.Path() + L"|" + part, cloud_ / part}) {
        EXPECT_EQ(RemoveFolderPart(place), DeletionEnd::Changed) << place;
    }
    EXPECT_TRUE(obtest::FileExists(cloud_ / part));
    EXPECT_EQ(RemoveFolderPart(L"9|" + cloud_.Path() + L"|" + part), DeletionEnd::Gone);
    EXPECT_TRUE(obtest::FileExists(cloud_ / L"mine.zip"));
}

TEST_F(FolderFile, APartIsUnreachableWhileItsDriveIsGone) {
    EXPECT_EQ(RemoveFolderPart(L"0|Q:\\cloud|" + PartName()), DeletionEnd::Unreachable);
}

} // namespace
