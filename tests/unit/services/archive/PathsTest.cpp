#include "services/archive/Paths.h"

#include <windows.h>
#include <gtest/gtest.h>

#include "services/archive/zip/SourceList.h"
#include "tests/support/TestFolder.h"

namespace {

using namespace obarchive;

TEST(PathsTest, ShortPathsOnlyBecomeAbsolute) {
    EXPECT_EQ(FullPath(L"C:\\a\\..\\b.txt"), L"C:\\b.txt");
    EXPECT_EQ(FullPath(L"C:/a/b.txt"), L"C:\\a\\b.txt");
    EXPECT_EQ(FullPath(L""), L"");
}

TEST(PathsTest, LongPathsGetThePrefixThatLiftsTheLimit) {
    const std::wstring tail = std::wstring(150, L'a') + L"\\" + std::wstring(150, L'b');
    EXPECT_EQ(FullPath(L"C:\\" + tail), L"\\\\?\\C:\\" + tail);
    EXPECT_EQ(FullPath(L"\\\\server\\share\\" + tail), L"\\\\?\\UNC\\server\\share\\" + tail);
    EXPECT_EQ(FullPath(L"\\\\?\\C:\\" + tail + L"."), L"\\\\?\\C:\\" + tail + L".");
}

TEST(PathsTest, WhatTheSystemCannotTakeHasNoFullPath) {
    const std::wstring longestName(255, L'n');
    EXPECT_EQ(FullPath(L"C:\\" + longestName), L"\\\\?\\C:\\" + longestName);
    EXPECT_EQ(FullPath(L"C:\\" + longestName + L"n"), L"");
    EXPECT_EQ(FullPath(L"C:\\" + longestName + L"n\\b.txt"), L"");
    EXPECT_EQ(FullPath(L"\\\\?\\C:\\" + longestName + L"n"), L"");

    std::wstring longest = L"\\\\?\\C:";
    while (longest.size() < 32'500) longest += L"\\" + longestName;
    longest += L"\\" + std::wstring(32'766 - longest.size() - 1, L'n');
    EXPECT_EQ(FullPath(longest), longest);
    EXPECT_EQ(FullPath(longest + L"n"), L"");
}

TEST(PathsTest, SplitsAtTheLastSeparatorOfEitherKind) {
    EXPECT_EQ(FileName(L"C:\\a/b.txt"), L"b.txt");
    EXPECT_EQ(FolderOf(L"C:\\a/b.txt"), L"C:\\a/");
    EXPECT_EQ(FileName(L"b.txt"), L"b.txt");
    EXPECT_EQ(FolderOf(L"b.txt"), L"");
}

TEST(SourceListTest, TheSamePathTwiceIsOneSource) {
    obtest::TestFolder folder;
    const std::wstring one = folder.File(L"one.txt");
    const std::wstring two = folder.File(L"two.txt");
    std::wstring upper = one;
    CharUpperW(upper.data());
    const std::wstring detour = folder.Path() + L"\\.\\one.txt";
    EXPECT_EQ(DistinctSources({one, two, one, upper, detour}), (std::vector{one, two}));
}

TEST(SourceListTest, EqualContentUnderTwoNamesIsTwoSources) {
    obtest::TestFolder folder;
    const std::wstring one = folder.File(L"one.txt", "same");
    const std::wstring two = folder.File(L"two.txt", "same");
    EXPECT_EQ(DistinctSources({one, two}).size(), 2U);
}

TEST(SourceListTest, ThePathThatTheSystemCannotTakeIsNamed) {
    const std::wstring good = L"C:\\no\\such.txt";
    const std::wstring bad = L"C:\\no\\" + std::wstring(300, L'n');
    std::optional<std::wstring> tooLong;
    EXPECT_EQ(DistinctSources({good, bad, L"C:\\other"}, &tooLong), std::vector{good});
    EXPECT_EQ(tooLong, bad);
    EXPECT_TRUE(DistinctSources({L""}, &tooLong).empty());
    EXPECT_EQ(tooLong, L"");
}

TEST(SourceListTest, AMissingFileIsKeptForTheRunToReport) {
    EXPECT_EQ(DistinctSources({L"C:\\no\\such.txt", L"c:\\NO\\such.txt"}),
              (std::vector<std::wstring>{L"C:\\no\\such.txt"}));
}

} // namespace
