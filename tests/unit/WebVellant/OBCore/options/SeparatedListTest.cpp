#include "OBCore/options/SeparatedList.h"

#include <gtest/gtest.h>

namespace {

using obcore::HasItem;

TEST(SeparatedList, FindsAnItemAnywhere) {
    EXPECT_TRUE(HasItem(L"a", L';', L"a"));
    EXPECT_TRUE(HasItem(L"a;b;c", L';', L"a"));
    EXPECT_TRUE(HasItem(L"a;b;c", L';', L"b"));
    EXPECT_TRUE(HasItem(L"a;b;c", L';', L"c"));
}

TEST(SeparatedList, TrimsBlanksAtBothEndsOfAnItem) {
    EXPECT_TRUE(HasItem(L"a,  b  ,c", L',', L"b"));
    EXPECT_FALSE(HasItem(L"a, b x ,c", L',', L"b"));
}

TEST(SeparatedList, IgnoresCaseBeyondAscii) {
    EXPECT_TRUE(HasItem(L"x;ALL", L';', L"all"));
    EXPECT_TRUE(HasItem(L"x;\u00c4B", L';', L"\u00e4b"));
}

TEST(SeparatedList, TakesWholeItemsOnly) {
    EXPECT_FALSE(HasItem(L"ALLOW", L',', L"ALL"));
    EXPECT_FALSE(HasItem(L"BALL", L',', L"ALL"));
    EXPECT_FALSE(HasItem(L"A,LL", L',', L"ALL"));
    EXPECT_FALSE(HasItem(L"a;b", L',', L"a"));
}

TEST(SeparatedList, HasNothingWhenEmpty) {
    EXPECT_FALSE(HasItem(L"", L',', L"ALL"));
    EXPECT_FALSE(HasItem(L" , ,", L',', L"ALL"));
}

} // namespace
