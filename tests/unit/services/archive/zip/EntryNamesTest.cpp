#include "services/archive/zip/EntryNames.h"

#include <gtest/gtest.h>

namespace {

using Names = std::vector<std::wstring>;
using obarchive::UniqueEntryNames;

TEST(EntryNamesTest, AFileKeepsItsOwnNameWithoutItsFolder) {
    EXPECT_EQ(UniqueEntryNames({L"C:\\a\\one.txt", L"D:/b/two", L"three.x"}),
              (Names{L"one.txt", L"two", L"three.x"}));
}

TEST(EntryNamesTest, TheSecondOfANameGetsANumberBeforeItsExtension) {
    EXPECT_EQ(UniqueEntryNames({L"C:\\a\\x.txt", L"C:\\b\\x.txt", L"C:\\c\\x.txt"}),
              (Names{L"x.txt", L"x (2).txt", L"x (3).txt"}));
}

TEST(EntryNamesTest, NamesThatDifferInCaseOnlyAreOneName) {
    EXPECT_EQ(UniqueEntryNames(
                  {L"C:\\a\\Bild.JPG", L"C:\\b\\bild.jpg", L"C:\\c\\\u00C4.x", L"C:\\d\\\u00E4.x"}),
              (Names{L"Bild.JPG", L"bild (2).jpg", L"\u00C4.x", L"\u00E4 (2).x"}));
}

TEST(EntryNamesTest, ANumberNeverTakesANameThatAnotherFileHasByItself) {
    EXPECT_EQ(UniqueEntryNames({L"C:\\a\\x.txt", L"C:\\b\\x.txt", L"C:\\b\\x (2).txt"}),
              (Names{L"x.txt", L"x (3).txt", L"x (2).txt"}));
}

TEST(EntryNamesTest, NamesWithoutAnExtensionAndNamesThatBeginWithAPoint) {
    EXPECT_EQ(UniqueEntryNames({L"a\\README", L"b\\README", L"a\\.profile", L"b\\.profile",
                                L"a\\x.tar.gz", L"b\\x.tar.gz"}),
              (Names{L"README", L"README (2)", L".profile", L".profile (2)", L"x.tar.gz",
                     L"x.tar (2).gz"}));
}

TEST(EntryNamesTest, ANumberShortensANameThatWouldBecomeTooLong) {
    const std::wstring name = std::wstring(251, L'n') + L".txt";
    const Names names = UniqueEntryNames({L"a\\" + name, L"b\\" + name});
    EXPECT_EQ(names[1], std::wstring(247, L'n') + L" (2).txt");
    EXPECT_EQ(names[1].size(), 255U);
}

TEST(EntryNamesTest, ANumberIsPutAtTheEndWhereTheExtensionLeavesNoRoomForIt) {
    const std::wstring name = L"a." + std::wstring(253, L'x');
    const auto names = UniqueEntryNames({L"C:\\one\\" + name, L"C:\\two\\" + name});
    ASSERT_EQ(names.size(), 2U);
    EXPECT_EQ(names[0], name);
    EXPECT_EQ(names[1], L"a." + std::wstring(249, L'x') + L" (2)");
}

TEST(EntryNamesTest, ShorteningDoesNotSplitASurrogatePair) {
    std::wstring name;
    while (name.size() < 250) name += L"\U0001F600";
    name += L"x.txt";
    const Names names = UniqueEntryNames({L"a\\" + name, L"b\\" + name});
    EXPECT_EQ(names[1].size(), 254U);
    EXPECT_TRUE(names[1].ends_with(L"\U0001F600 (2).txt"));
}

TEST(EntryNamesTest, HalvesOfSurrogatePairsAreReplacedAndNamesStayDifferent) {
    const std::wstring high(1, static_cast<wchar_t>(0xD83D));
    const std::wstring low(1, static_cast<wchar_t>(0xDE00));
    EXPECT_EQ(UniqueEntryNames({L"a\\" + high, L"a\\" + low, L"a\\" + high + low}),
              (Names{L"\uFFFD", L"\uFFFD (2)", L"\U0001F600"}));
}

TEST(EntryNamesTest, ThousandsOfOneNameAreNumberedInOrder) {
    const Names paths(5000, L"C:\\a\\x.txt");
    const Names names = UniqueEntryNames(paths);
    EXPECT_EQ(names.front(), L"x.txt");
    EXPECT_EQ(names.back(), L"x (5000).txt");
}

} // namespace
