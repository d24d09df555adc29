#include "services/archive/zip/SourceList.h"

#include <windows.h>
#include <gtest/gtest.h>

#include <optional>
#include <string>
#include <vector>

#include "tests/support/TestFolder.h"

namespace {

using obarchive::DistinctSources;

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
