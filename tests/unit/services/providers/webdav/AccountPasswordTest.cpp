#include "services/providers/webdav/AccountPassword.h"

#include <gtest/gtest.h>

namespace providers {
namespace {

constexpr wchar_t kKey[] = L"{01234567-89AB-CDEF-0123-456789ABCDEF}";
constexpr wchar_t kOther[] = L"{01234567-89AB-CDEF-0123-456789ABCDE0}";

std::string Loaded(const std::wstring& key) {
    const auto password = LoadAccountPassword(key);
    return password ? password->Text() : "none";
}

TEST(AccountPasswordTest, KeepsThePasswordOfEachAccount) {
    EXPECT_EQ("none", Loaded(kKey));
    EXPECT_TRUE(SaveAccountPassword(kKey, ObLib::Secret("one \xC3\xA4")));
    EXPECT_TRUE(SaveAccountPassword(kOther, ObLib::Secret("two")));
    EXPECT_EQ("one \xC3\xA4", Loaded(kKey));
    EXPECT_TRUE(SaveAccountPassword(kKey, ObLib::Secret("three")));
    EXPECT_EQ("three", Loaded(kKey));
    EXPECT_TRUE(ForgetAccountPassword(kKey));
    EXPECT_TRUE(ForgetAccountPassword(kKey));
    EXPECT_EQ("none", Loaded(kKey));
    EXPECT_EQ("two", Loaded(kOther));
}

TEST(AccountPasswordTest, TakesWhatTheStoreHasRoomFor) {
    EXPECT_FALSE(SaveAccountPassword(kKey, ObLib::Secret()));
    EXPECT_FALSE(SaveAccountPassword(L"", ObLib::Secret("one")));
    const std::string longest(kLongestAccountPassword, 'x');
    EXPECT_FALSE(SaveAccountPassword(kKey, ObLib::Secret((longest + "x").c_str())));
    EXPECT_EQ("none", Loaded(kKey));
    EXPECT_TRUE(SaveAccountPassword(kKey, ObLib::Secret(longest.c_str())));
    EXPECT_EQ(longest, Loaded(kKey));
}

} // namespace
} // namespace providers
