#include <windows.h>

#include <gtest/gtest.h>

#include <algorithm>

#include "OBCore/files/WorkingCopy.h"
#include "tests/support/TestFolder.h"

namespace {

using obcore::CompressUtils::CollectFolderFiles;
using Files = std::vector<std::wstring>;

Files Collect(const std::wstring& folder, Files files = {}) {
    CollectFolderFiles(folder, files);
    std::sort(files.begin(), files.end());
    return files;
}

class CollectFiles : public testing::Test {
protected:
    obtest::TestFolder folder_;
};

TEST_F(CollectFiles, GathersTheFilesOfAllSubfolders) {
    folder_.File(L"a.txt");
    folder_.Folder(L"sub");
    folder_.File(L"sub\\b.txt");
    folder_.Folder(L"sub\\deeper");
    folder_.File(L"sub\\deeper\\c.txt");
    folder_.Folder(L"empty");
    const Files all = {folder_ / L"a.txt", folder_ / L"sub\\b.txt",
                       folder_ / L"sub\\deeper\\c.txt"};
    EXPECT_EQ(Collect(folder_.Path()), all);
    EXPECT_EQ(Collect(folder_.Path() + L"\\"), all);
}

TEST_F(CollectFiles, GathersHiddenAndPointedNames) {
    const std::wstring hidden = folder_.File(L"hidden.txt");
    ASSERT_TRUE(
        SetFileAttributesW(hidden.c_str(), FILE_ATTRIBUTE_HIDDEN | FILE_ATTRIBUTE_READONLY));
    folder_.File(L"...");
    folder_.File(L".profile");
    EXPECT_EQ(Collect(folder_.Path()).size(), obtest::ListTree(folder_.Path()).size());
}

TEST_F(CollectFiles, AppendsToTheList) {
    folder_.File(L"a.txt");
    Files files = {L"Z:\\before"};
    CollectFolderFiles(folder_.Path(), files);
    EXPECT_EQ(files, (Files{L"Z:\\before", folder_ / L"a.txt"}));
}

TEST_F(CollectFiles, AddsNothingForAFolderThatCanNotBeSearched) {
    EXPECT_TRUE(Collect(folder_ / L"missing").empty());
    EXPECT_TRUE(Collect(folder_.File(L"a file")).empty());
}

TEST_F(CollectFiles, AddsNothingForAnEmptyFolder) { EXPECT_TRUE(Collect(folder_.Path()).empty()); }

} // namespace
