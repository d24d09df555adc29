#include "services/archive/Paths.h"

#include <windows.h>
#include <gtest/gtest.h>

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

} // namespace
