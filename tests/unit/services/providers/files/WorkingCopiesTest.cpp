// Which files the manager may write, and that it writes no others.
#include <windows.h>

#include <winioctl.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstring>
#include <string>

#include "ObLib/Src/Win32/WholeTransfer.h"
#include "services/providers/files/WorkingCopies.h"
#include "tests/support/TestFolder.h"

using namespace providers;

namespace {

// The record that the system takes for a junction, for targets of up to 300 characters.
struct JunctionRecord {
    DWORD tag = IO_REPARSE_TAG_MOUNT_POINT;
    WORD dataLength = 0;
    WORD reserved = 0;
    WORD targetOffset = 0;
    WORD targetLength = 0;
    WORD nameOffset = 0;
    WORD nameLength = 0;
    wchar_t text[304] = {};
};

bool MakeJunction(const std::wstring& folder, const std::wstring& target) {
    CreateDirectoryW(folder.c_str(), nullptr);
    const ObLib::UniqueKernelHandle opened(CreateFileW(
        folder.c_str(), GENERIC_WRITE, FILE_SHARE_READ | FILE_SHARE_WRITE, nullptr, OPEN_EXISTING,
        FILE_FLAG_BACKUP_SEMANTICS | FILE_FLAG_OPEN_REPARSE_POINT, nullptr));
    const std::wstring path = L"\\??\\" + target;
    JunctionRecord record;
    std::memcpy(record.text, path.c_str(), path.size() * sizeof(wchar_t));
    record.targetLength = static_cast<WORD>(path.size() * sizeof(wchar_t));
    record.nameOffset = static_cast<WORD>(record.targetLength + sizeof(wchar_t));
    record.dataLength = static_cast<WORD>(record.nameOffset + sizeof(wchar_t) + 8);
    DWORD done = 0;
    return DeviceIoControl(opened.Get(), FSCTL_SET_REPARSE_POINT, &record,
                           record.dataLength +
                               static_cast<DWORD>(offsetof(JunctionRecord, targetOffset)),
                           nullptr, 0, &done, nullptr) != FALSE;
}

class WorkingCopiesTest : public testing::Test {
protected:
    void SetUp() override {
        CreateDirectoryW(kOutside, nullptr);
        ASSERT_TRUE(obtest::WriteFileContent(Outside(), "theirs"));
    }
    void TearDown() override { obtest::RemoveTree(kOutside); }

    static constexpr wchar_t kOutside[] = L"C:\\their files";
    static std::wstring Outside() { return std::wstring(kOutside) + L"\\photo.jpg"; }

    static CopyRefusal Refusal(const std::wstring& path, const std::wstring& folder = L"") {
        CopyRefusal refusal{};
        return WorkingCopy::Open(path, folder, refusal) ? CopyRefusal::None : refusal;
    }
    // Puts a new content in the place of a copy, as a stage does.
    bool Replace(const std::wstring& path, const std::string& content, bool ended = false) {
        CopyRefusal refusal{};
        auto copy = WorkingCopy::Open(path, L"", refusal);
        if (!copy) return false;
        const auto made = NewFile::MakeBeside(*copy, unfinished_);
        if (!made || !ObLib::WriteWhole(made->Handle(), content.data(), content.size())) {
            return false;
        }
        return made->TakePlaceOf(*copy, [ended] { return ended; });
    }
    // Puts a result of another kind beside a copy. The path that comes back is empty for a failure.
    std::wstring Convert(const std::wstring& path, const std::string& content,
                         const std::wstring& extension = L"jpg", std::size_t longest = 513,
                         bool ended = false) {
        CopyRefusal refusal{};
        auto copy = WorkingCopy::Open(path, L"", refusal);
        if (!copy) return {};
        const auto made = NewFile::MakeBeside(*copy, unfinished_);
        if (!made || !ObLib::WriteWhole(made->Handle(), content.data(), content.size())) return {};
        std::wstring result = path;
        const bool done =
            made->TakeNameBeside(*copy, result, extension, longest, [ended] { return ended; });
        EXPECT_TRUE(done || result == path);
        return done ? result : std::wstring();
    }
    std::vector<std::wstring> Names() const { return obtest::ListTree(folder_.Path()); }

    const obtest::TestFolder folder_;
    UnfinishedFiles unfinished_;
};

TEST_F(WorkingCopiesTest, AreFilesInASubfolderOfTheTemporaryPath) {
    EXPECT_EQ(Refusal(folder_.File(L"photo.jpg")), CopyRefusal::None);
    EXPECT_EQ(Refusal(folder_.Folder(L"deep") + L"\\..\\photo.jpg"), CopyRefusal::NotACopy);
    ASSERT_TRUE(obtest::WriteFileContent(folder_.Folder(L"deep") + L"\\a.jpg", "a"));
    EXPECT_EQ(Refusal(folder_ / L"deep\\a.jpg"), CopyRefusal::None);
}

TEST_F(WorkingCopiesTest, AreNoFilesOutsideOrInTheTemporaryPathItself) {
    EXPECT_EQ(Refusal(Outside()), CopyRefusal::NotACopy);
    wchar_t temporary[MAX_PATH + 1];
    ASSERT_NE(GetTempPathW(MAX_PATH + 1, temporary), 0u);
    const std::wstring path = std::wstring(temporary) + L"in-the-path-itself.jpg";
    ASSERT_TRUE(obtest::WriteFileContent(path, "theirs"));
    EXPECT_EQ(Refusal(path), CopyRefusal::NotACopy);
    DeleteFileW(path.c_str());
}

// Forms of a path in which the system resolves dots, so that the folders that the path shows aren't
// those in which the file is.
TEST_F(WorkingCopiesTest, AreNoFilesOutsideThatDotsLeadTo) {
    const std::wstring inside = folder_.Path(); // on drive C, as the file outside is
    ASSERT_EQ(inside.substr(1, 2), L":\\");
    std::wstring up;
    for (const wchar_t sign : inside) up += sign == L'\\' ? L"\\.." : L"";
    const std::wstring theirs = inside + up + L"\\their files\\photo.jpg";
    std::wstring slashes = theirs;
    std::ranges::replace(slashes, L'\\', L'/');
    const std::wstring rest = theirs.substr(3);
    for (const std::wstring& path :
         {theirs, slashes, L"C:/" + rest, L"C:" + rest, L"\\" + rest, L"\\\\.\\" + theirs,
          L"//./" + theirs, L"\\\\?\\" + theirs, L"//?/" + theirs, L"\\??\\" + theirs,
          L"\\\\?\\" + slashes, L"\\\\?\\GLOBALROOT\\??\\" + theirs}) {
        EXPECT_EQ(Refusal(path), CopyRefusal::NotACopy) << testing::PrintToString(path);
        EXPECT_FALSE(Replace(path, "new")) << testing::PrintToString(path);
        EXPECT_EQ(obtest::ReadFileContent(Outside()), "theirs") << testing::PrintToString(path);
    }
}

// The current folder is one of the temporary path, so that the system finds the files.
TEST_F(WorkingCopiesTest, AreNoFilesWithARelativePath) {
    wchar_t current[MAX_PATH];
    ASSERT_NE(GetCurrentDirectoryW(MAX_PATH, current), 0u);
    folder_.File(L"photo.jpg", "old");
    ASSERT_TRUE(SetCurrentDirectoryW(folder_.Path().c_str()));
    for (const wchar_t* path : {L"photo.jpg", L".\\photo.jpg", L"C:photo.jpg"}) {
        EXPECT_EQ(Refusal(path), CopyRefusal::NotACopy) << testing::PrintToString(path);
    }
    SetCurrentDirectoryW(current);
    EXPECT_EQ(obtest::ReadFileContent(folder_ / L"photo.jpg"), "old");
}

TEST_F(WorkingCopiesTest, AreNoStreamsAndHaveNoEmptyComponents) {
    const std::wstring path = folder_.File(L"photo.jpg", "old");
    EXPECT_EQ(Refusal(path + L":stream"), CopyRefusal::NotACopy);
    EXPECT_EQ(Refusal(path + L"::$DATA"), CopyRefusal::NotACopy);
    EXPECT_EQ(Refusal(path + L"\\"), CopyRefusal::NotACopy);
    EXPECT_EQ(Refusal(folder_.Path() + L"\\.\\photo.jpg"), CopyRefusal::NotACopy);
    EXPECT_EQ(Refusal(folder_.Path() + L"\\\\photo.jpg"), CopyRefusal::NotACopy);
    EXPECT_EQ(Refusal(L"\\\\?\\" + path), CopyRefusal::None);
}

TEST_F(WorkingCopiesTest, AreNoFoldersDevicesOrMissingFiles) {
    EXPECT_NE(Refusal(folder_.Path()), CopyRefusal::None);
    EXPECT_NE(Refusal(L"NUL"), CopyRefusal::None);
    EXPECT_NE(Refusal(L"\\\\.\\NUL"), CopyRefusal::None);
    EXPECT_NE(Refusal(L""), CopyRefusal::None);
    EXPECT_EQ(Refusal(folder_ / L"missing.jpg"), CopyRefusal::Unreadable);
}

TEST_F(WorkingCopiesTest, AreTheSameFilesWhateverTheCaseOfTheirPath) {
    std::wstring path = folder_.File(L"photo.jpg");
    CharUpperW(path.data());
    EXPECT_EQ(Refusal(path), CopyRefusal::None);
}

TEST_F(WorkingCopiesTest, AreTheSameFilesUnderTheirShortNames) {
    const std::wstring path = folder_.File(L"a rather long name.jpeg");
    wchar_t shortPath[MAX_PATH];
    ASSERT_NE(GetShortPathNameW(path.c_str(), shortPath, MAX_PATH), 0u);
    EXPECT_EQ(Refusal(shortPath), CopyRefusal::None);
    ASSERT_NE(GetShortPathNameW(Outside().c_str(), shortPath, MAX_PATH), 0u);
    EXPECT_EQ(Refusal(shortPath), CopyRefusal::NotACopy);
}

TEST_F(WorkingCopiesTest, AreInTheFolderOfTheRunWhenThereIsOne) {
    const std::wstring path = folder_.File(L"photo.jpg");
    EXPECT_EQ(Refusal(path, folder_.Path() + L"\\"), CopyRefusal::None);
    EXPECT_EQ(Refusal(path, folder_.Folder(L"other")), CopyRefusal::NotACopy);
    EXPECT_EQ(Refusal(path, folder_ / L"missing"), CopyRefusal::NotACopy);
}

TEST_F(WorkingCopiesTest, AreNoFilesWithASecondName) {
    const std::wstring path = folder_ / L"linked.jpg";
    if (!CreateHardLinkW(path.c_str(), Outside().c_str(), nullptr)) {
        std::printf("This system makes no hard links here: nothing was tested.\n");
        return;
    }
    EXPECT_EQ(Refusal(path), CopyRefusal::NotACopy);
    EXPECT_FALSE(Replace(path, "new"));
    EXPECT_EQ(obtest::ReadFileContent(Outside()), "theirs");
    DeleteFileW(path.c_str());
}

TEST_F(WorkingCopiesTest, AreNoFilesThatAJunctionLeadsTo) {
    if (!MakeJunction(folder_ / L"junction", kOutside)) {
        std::printf("This system makes no junctions: the refusal of links was not tested.\n");
        RemoveDirectoryW((folder_ / L"junction").c_str());
        return;
    }
    EXPECT_EQ(Refusal(folder_ / L"junction\\photo.jpg"), CopyRefusal::NotACopy);
    EXPECT_FALSE(Replace(folder_ / L"junction\\photo.jpg", "new"));
    EXPECT_EQ(obtest::ReadFileContent(Outside()), "theirs");
    EXPECT_EQ(obtest::ListTree(kOutside), (std::vector<std::wstring>{L"photo.jpg"}));
    RemoveDirectoryW((folder_ / L"junction").c_str());
}

TEST_F(WorkingCopiesTest, GetANewContentInOneStep) {
    const std::wstring path = folder_.File(L"photo.jpg", "old");
    EXPECT_TRUE(Replace(path, "new"));
    EXPECT_EQ(obtest::ReadFileContent(path), "new");
    EXPECT_EQ(Names(), (std::vector<std::wstring>{L"photo.jpg"}));
}

TEST_F(WorkingCopiesTest, KeepTheirTimesAndAttributes) {
    const std::wstring path = folder_.File(L"photo.jpg", "old");
    FILETIME written{123456789, 30000000};
    {
        const ObLib::UniqueKernelHandle file(CreateFileW(path.c_str(), FILE_WRITE_ATTRIBUTES, 0,
                                                         nullptr, OPEN_EXISTING, 0, nullptr));
        ASSERT_TRUE(SetFileTime(file.Get(), nullptr, nullptr, &written));
        GetFileTime(file.Get(), nullptr, nullptr, &written);
    }
    SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_READONLY);
    EXPECT_TRUE(Replace(path, "new"));
    WIN32_FILE_ATTRIBUTE_DATA data;
    ASSERT_TRUE(GetFileAttributesExW(path.c_str(), GetFileExInfoStandard, &data));
    EXPECT_EQ(CompareFileTime(&data.ftLastWriteTime, &written), 0);
    EXPECT_TRUE(data.dwFileAttributes & FILE_ATTRIBUTE_READONLY);
    EXPECT_EQ(obtest::ReadFileContent(path), "new");
}

// Another file that has the copy's path by now keeps its content and its attributes.
TEST_F(WorkingCopiesTest, LeaveAnotherFileInTheirPlaceAsItIs) {
    const std::wstring path = folder_.File(L"photo.jpg", "old");
    SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_READONLY);
    CopyRefusal refusal{};
    auto copy = WorkingCopy::Open(path, L"", refusal);
    ASSERT_TRUE(copy);
    const auto made = NewFile::MakeBeside(*copy, unfinished_);
    ASSERT_TRUE(made);
    ASSERT_TRUE(MoveFileW(path.c_str(), (folder_ / L"moved.jpg").c_str()));
    ASSERT_TRUE(obtest::WriteFileContent(path, "theirs"));
    constexpr DWORD kTheirs = FILE_ATTRIBUTE_READONLY | FILE_ATTRIBUTE_ARCHIVE;
    SetFileAttributesW(path.c_str(), kTheirs);
    EXPECT_FALSE(made->TakePlaceOf(*copy, [&] {
        EXPECT_TRUE(GetFileAttributesW(path.c_str()) & FILE_ATTRIBUTE_READONLY);
        return false;
    }));
    EXPECT_EQ(obtest::ReadFileContent(path), "theirs");
    EXPECT_TRUE(GetFileAttributesW(path.c_str()) & FILE_ATTRIBUTE_READONLY);
    SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);
    SetFileAttributesW((folder_ / L"moved.jpg").c_str(), FILE_ATTRIBUTE_NORMAL);
}

TEST_F(WorkingCopiesTest, DeleteANewFileThatIsProtectedByNow) {
    const std::wstring path = folder_.File(L"photo.jpg", "old");
    SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_READONLY);
    EXPECT_FALSE(Replace(path, "new", true));
    EXPECT_EQ(Names(), (std::vector<std::wstring>{L"photo.jpg"}));
    EXPECT_TRUE(GetFileAttributesW(path.c_str()) & FILE_ATTRIBUTE_READONLY);
    SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_NORMAL);
}

TEST_F(WorkingCopiesTest, StayAsTheyAreWhenTheCallIsToEnd) {
    const std::wstring path = folder_.File(L"photo.jpg", "old");
    EXPECT_FALSE(Replace(path, "new", true));
    EXPECT_EQ(obtest::ReadFileContent(path), "old");
    EXPECT_EQ(Names(), (std::vector<std::wstring>{L"photo.jpg"}));
}

// A clean-up may run while a stage still works.
TEST_F(WorkingCopiesTest, CanBeDeletedAtAnyTimeAndAreNotMadeAgain) {
    const std::wstring path = folder_.File(L"photo.jpg", "old");
    CopyRefusal refusal{};
    auto copy = WorkingCopy::Open(path, L"", refusal);
    ASSERT_TRUE(copy);
    const auto made = NewFile::MakeBeside(*copy, unfinished_);
    ASSERT_TRUE(made);
    EXPECT_TRUE(DeleteFileW(path.c_str()));
    EXPECT_FALSE(made->TakePlaceOf(*copy, [] { return false; }));
    EXPECT_FALSE(obtest::FileExists(path));
}

TEST_F(WorkingCopiesTest, LoseTheirUnfinishedFileAndEmptyFolderAtTheEnd) {
    const std::wstring folder = folder_.Folder(L"run");
    ASSERT_TRUE(obtest::WriteFileContent(folder + L"\\photo.jpg", "old"));
    {
        CopyRefusal refusal{};
        auto copy = WorkingCopy::Open(folder + L"\\photo.jpg", L"", refusal);
        ASSERT_TRUE(copy);
        const auto made = NewFile::MakeBeside(*copy, unfinished_);
        ASSERT_TRUE(made);
        EXPECT_EQ(Names().size(), 3u);
    }
    EXPECT_EQ(Names(), (std::vector<std::wstring>{L"run\\", L"run\\photo.jpg"}));
    unfinished_.DeleteAll();
    EXPECT_EQ(Names().size(), 2u); // the folder isn't empty
    ASSERT_TRUE(DeleteFileW((folder + L"\\photo.jpg").c_str()));
    unfinished_.DeleteAll();
    EXPECT_TRUE(Names().empty());
}

// Another file of the same name isn't what was begun.
TEST_F(WorkingCopiesTest, LeaveAnotherFileUnderAnUnfinishedName) {
    const std::wstring path = folder_.File(L"theirs.new", "theirs");
    unfinished_.Add(path, FileIdentity{1, 2});
    unfinished_.DeleteAll();
    EXPECT_EQ(obtest::ReadFileContent(path), "theirs");
}

TEST_F(WorkingCopiesTest, GiveTheirNameToAResultOfAnotherKind) {
    const std::wstring path = folder_.File(L"a photo.heic", "old");
    EXPECT_EQ(Convert(path, "new"), folder_ / L"a photo.jpg");
    EXPECT_EQ(Names(), std::vector<std::wstring>{L"a photo.jpg"});
    EXPECT_EQ(obtest::ReadFileContent(folder_ / L"a photo.jpg"), "new");
    EXPECT_EQ(Convert(folder_.File(L"none", "old"), "new", L"png"), folder_ / L"none.png");
    EXPECT_EQ(Convert(folder_.File(L".tif", "old"), "new"), folder_ / L".tif.jpg");
}

TEST_F(WorkingCopiesTest, GiveANumberedNameWhereThereIsAFileAlready) {
    folder_.File(L"photo.jpg", "another");
    EXPECT_EQ(Convert(folder_.File(L"photo.heic", "old"), "new"), folder_ / L"photo (2).jpg");
    EXPECT_EQ(Convert(folder_.File(L"photo.tif", "old"), "newer"), folder_ / L"photo (3).jpg");
    folder_.Folder(L"other.jpg");
    EXPECT_EQ(Convert(folder_.File(L"other.tif", "old"), "new"), folder_ / L"other (2).jpg");
    EXPECT_EQ(obtest::ReadFileContent(folder_ / L"photo.jpg"), "another");
    EXPECT_EQ(obtest::ReadFileContent(folder_ / L"photo (2).jpg"), "new");
}

TEST_F(WorkingCopiesTest, KeepTheirTimesAndAttributesUnderAnotherName) {
    const std::wstring path = folder_.File(L"photo.heic", "old");
    SetFileAttributesW(path.c_str(), FILE_ATTRIBUTE_READONLY);
    EXPECT_EQ(Convert(path, "new"), folder_ / L"photo.jpg");
    EXPECT_EQ(Names(), std::vector<std::wstring>{L"photo.jpg"});
    EXPECT_TRUE(GetFileAttributesW((folder_ / L"photo.jpg").c_str()) & FILE_ATTRIBUTE_READONLY);
}

TEST_F(WorkingCopiesTest, StayWhenTheNameOfTheResultIsTooLong) {
    const std::wstring path = folder_.File(L"photo.heic", "old");
    EXPECT_EQ(Convert(path, "new", L"jpg", path.size() - 2), L"");
    folder_.File(L"photo.jpg", "another");
    EXPECT_EQ(Convert(path, "new", L"jpg", path.size()), L"");
    EXPECT_EQ(Names(), (std::vector<std::wstring>{L"photo.heic", L"photo.jpg"}));
    EXPECT_EQ(obtest::ReadFileContent(path), "old");
}

TEST_F(WorkingCopiesTest, StayWhenTheCallEndsBeforeTheirResultIsNamed) {
    const std::wstring path = folder_.File(L"photo.heic", "old");
    EXPECT_EQ(Convert(path, "new", L"jpg", 513, true), L"");
    EXPECT_EQ(Names(), std::vector<std::wstring>{L"photo.heic"});
}

// Another program has the copy open and lets nobody delete it.
TEST_F(WorkingCopiesTest, StayAloneWhenTheyCannotBeDeletedForTheirResult) {
    const std::wstring path = folder_.File(L"photo.heic", "old");
    CopyRefusal refusal{};
    auto copy = WorkingCopy::Open(path, L"", refusal);
    ASSERT_TRUE(copy);
    auto made = NewFile::MakeBeside(*copy, unfinished_);
    const ObLib::UniqueKernelHandle other(CreateFileW(path.c_str(), GENERIC_READ, FILE_SHARE_READ,
                                                      nullptr, OPEN_EXISTING, 0, nullptr));
    ASSERT_TRUE(other);
    std::wstring result = path;
    int asked = 0;
    EXPECT_FALSE(
        made->TakeNameBeside(*copy, result, L"jpg", 513, [&asked] { return ++asked > 5; }));
    EXPECT_EQ(result, path);
    EXPECT_GT(asked, 2);
    made.reset();
    EXPECT_EQ(Names(), std::vector<std::wstring>{L"photo.heic"});
}

} // namespace
