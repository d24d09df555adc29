// Links to folders and files of the user in a folder that is cleared: they stay, and so does what
// they lead to.
#include <windows.h>

#include <gtest/gtest.h>
#include <winioctl.h>

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <cstring>

#include "OBCore/files/WorkingCopy.h"
#include "ObLib/Src/Win32/UniqueHandle.h"
#include "tests/support/ImportPatch.h"
#include "tests/unit/WebVellant/OBCore/files/WipeProgram.h"

namespace {

using obcore::CompressUtils::CleanupWorkingCopy;
using obcore::CompressUtils::CollectFolderFiles;
using obtest::ImportPatch;
using Files = std::vector<std::wstring>;

constexpr DWORD kDeduplicated = 0x80000013; // a tag of a file that has its content elsewhere

decltype(&FindFirstFileW) realFindFirstFile = nullptr;
decltype(&FindNextFileW) realFindNextFile = nullptr;
decltype(&GetFileAttributesW) realGetAttributes = nullptr;

// Entries named link... are links, entries named dedup... other reparse points.
void Mark(WIN32_FIND_DATAW& entry) {
    const std::wstring_view name = entry.cFileName;
    const bool isLink = name.starts_with(L"link");
    if (!isLink && !name.starts_with(L"dedup")) return;
    entry.dwFileAttributes |= FILE_ATTRIBUTE_REPARSE_POINT;
    entry.dwReserved0 = isLink ? IO_REPARSE_TAG_MOUNT_POINT : kDeduplicated;
}

HANDLE WINAPI FindFirstMarked(LPCWSTR pattern, LPWIN32_FIND_DATAW entry) {
    const HANDLE search = realFindFirstFile(pattern, entry);
    if (search != INVALID_HANDLE_VALUE) Mark(*entry);
    return search;
}

BOOL WINAPI FindNextMarked(HANDLE search, LPWIN32_FIND_DATAW entry) {
    const BOOL found = realFindNextFile(search, entry);
    if (found) Mark(*entry);
    return found;
}

DWORD WINAPI MarkedAttributes(LPCWSTR path) {
    const DWORD attributes = realGetAttributes(path);
    const std::wstring_view name = path;
    return name.ends_with(L"\\link") ? attributes | FILE_ATTRIBUTE_REPARSE_POINT : attributes;
}

class Links : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(first_.Ok() && next_.Ok() && attributes_.Ok());
        realFindFirstFile = first_.Real();
        realFindNextFile = next_.Real();
        realGetAttributes = attributes_.Real();
    }
    Files Left() { return obtest::ListTree(folder_.Path()); }

    obtest::TestFolder folder_;

private:
    ImportPatch<decltype(&FindFirstFileW)> first_{"kernel32.dll", "FindFirstFileW",
                                                  &FindFirstMarked};
    ImportPatch<decltype(&FindNextFileW)> next_{"kernel32.dll", "FindNextFileW", &FindNextMarked};
    ImportPatch<decltype(&GetFileAttributesW)> attributes_{"kernel32.dll", "GetFileAttributesW",
                                                           &MarkedAttributes};
};

TEST_F(Links, AreNeitherFollowedNorCollected) {
    folder_.Folder(L"link to a folder");
    folder_.File(L"link to a folder\\theirs.txt");
    folder_.File(L"link to a file.txt");
    const std::wstring own = folder_.File(L"own.txt");
    const std::wstring deduplicated = folder_.File(L"dedup.txt");
    Files files;
    CollectFolderFiles(folder_.Path(), files);
    std::sort(files.begin(), files.end());
    EXPECT_EQ((Files{deduplicated, own}), files);
}

TEST_F(Links, StayWithWhatTheyLeadToWhenAFolderIsCleared) {
    folder_.Folder(L"run");
    folder_.Folder(L"run\\link");
    folder_.File(L"run\\link\\theirs.txt");
    folder_.File(L"run\\link.txt");
    folder_.File(L"run\\own.txt");
    CleanupWorkingCopy({true, folder_ / L"run\\", {}});
    EXPECT_EQ((Files{L"run\\", L"run\\link.txt", L"run\\link\\", L"run\\link\\theirs.txt"}),
              Left());
}

TEST_F(Links, InPlaceOfTheFolderItselfStay) {
    folder_.Folder(L"link");
    folder_.File(L"link\\theirs.txt");
    const obtest::PlacedWipeProgram program(obtest::ProgramFolder());
    CleanupWorkingCopy({true, folder_ / L"link\\", {}});
    EXPECT_EQ((Files{L"link\\", L"link\\theirs.txt"}), Left());
    // A second clean-up that does start the wipe program shows that the first didn't.
    folder_.Folder(L"run");
    CleanupWorkingCopy({true, folder_ / L"run\\", {}});
    ASSERT_EQ(program.WaitForRuns(1).size(), 1u);
    EXPECT_EQ(program.Runs()[0].commandLine,
              L"\"\" /timeout:120 \"" + (folder_ / L"run\\") + L"\"");
}

// The record that FSCTL_SET_REPARSE_POINT takes for a junction.
struct JunctionRecord {
    DWORD tag = IO_REPARSE_TAG_MOUNT_POINT;
    WORD dataLength = 0;
    WORD reserved = 0;
    WORD targetOffset = 0;
    WORD targetLength = 0; // bytes
    WORD shownOffset = 0;
    WORD shownLength = 0;
    wchar_t text[2 * MAX_PATH] = {};
};

bool MakeJunction(const std::wstring& folder, const std::wstring& target) {
    if (!CreateDirectoryW(folder.c_str(), nullptr)) return false;
    const ObLib::UniqueKernelHandle link(
        CreateFileW(folder.c_str(), GENERIC_WRITE, 0, nullptr, OPEN_EXISTING,
                    FILE_FLAG_OPEN_REPARSE_POINT | FILE_FLAG_BACKUP_SEMANTICS, nullptr));
    const std::wstring name = L"\\??\\" + target;
    JunctionRecord record;
    const auto bytes = static_cast<WORD>(name.size() * sizeof(wchar_t));
    record.targetLength = bytes;
    record.shownOffset = static_cast<WORD>(bytes + sizeof(wchar_t));
    record.dataLength = static_cast<WORD>(bytes + 12); // four numbers and two NULs
    std::memcpy(record.text, name.c_str(), bytes);
    DWORD returned = 0;
    return link && DeviceIoControl(link.Get(), FSCTL_SET_REPARSE_POINT, &record,
                                   record.dataLength + offsetof(JunctionRecord, targetOffset),
                                   nullptr, 0, &returned, nullptr);
}

TEST(JunctionInARunsFolder, StaysWithWhatItLeadsTo) {
    obtest::TestFolder folder;
    folder.Folder(L"theirs");
    folder.File(L"theirs\\theirs.txt");
    folder.Folder(L"run");
    folder.File(L"run\\own.txt");
    if (!MakeJunction(folder / L"run\\junction", folder / L"theirs")) {
        std::printf("This system makes no junctions: the tests of Links mark the entries.\n");
        RemoveDirectoryW((folder / L"run\\junction").c_str());
    }
    CleanupWorkingCopy({true, folder / L"run\\", {}});
    EXPECT_TRUE(obtest::FileExists(folder / L"theirs\\theirs.txt"));
    EXPECT_FALSE(obtest::FileExists(folder / L"run\\own.txt"));
    RemoveDirectoryW((folder / L"run\\junction").c_str());
}

} // namespace
