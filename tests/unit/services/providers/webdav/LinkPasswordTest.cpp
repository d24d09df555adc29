// Passwords for links.
#include "services/providers/webdav/LinkPassword.h"

#include <windows.h>

#include <bcrypt.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cctype>
#include <set>
#include <string>

#include "tests/support/ImportPatch.h"

namespace providers {
namespace {

std::string Made(const ShareRules& rules = {}) {
    const auto password = NewLinkPassword(rules);
    return password ? password->Text() : "none";
}

ShareRules Lengths(int shortest, int longest) {
    ShareRules rules;
    rules.shortestPassword = shortest;
    rules.longestPassword = longest;
    return rules;
}

bool HasAnyOf(const std::string& text, int (*kind)(int)) {
    return std::any_of(text.begin(), text.end(), [kind](char c) { return kind(c) != 0; });
}

NTSTATUS WINAPI NoRandomNumbers(BCRYPT_ALG_HANDLE, PUCHAR, ULONG, ULONG) { return -1; }

TEST(LinkPasswordTest, IsInGroupsAndHasEachKindOfCharacter) {
    std::set<std::string> all;
    for (int count = 0; count < 500; ++count) {
        const std::string password = Made();
        EXPECT_EQ(password.size(), 19u);
        EXPECT_EQ(std::count(password.begin(), password.end(), '-'), 3);
        EXPECT_EQ(password[4], '-');
        EXPECT_TRUE(HasAnyOf(password.substr(0, 4), &std::islower)) << password;
        EXPECT_TRUE(HasAnyOf(password.substr(0, 4), &std::isupper)) << password;
        EXPECT_TRUE(HasAnyOf(password.substr(0, 4), &std::isdigit)) << password;
        EXPECT_EQ(password.find_first_of("lIoO01"), std::string::npos) << password;
        all.insert(password);
    }
    EXPECT_EQ(all.size(), 500u);
}

TEST(LinkPasswordTest, HasTheLengthThatTheServerTakes) {
    EXPECT_EQ(Made(Lengths(8, 64)).size(), 19u);
    EXPECT_EQ(Made(Lengths(30, 0)).size(), 30u);
    EXPECT_EQ(Made(Lengths(0, 12)).size(), 12u);
    EXPECT_EQ(Made(Lengths(30, 8)).size(), 8u);
    EXPECT_EQ(Made(Lengths(100'000, 0)).size(), 255u);
    EXPECT_EQ(Made(Lengths(0, 7)), "none");
}

TEST(LinkPasswordTest, IsNeverMadeWithoutRandomNumbers) {
    const obtest::ImportPatch patch("bcrypt.dll", "BCryptGenRandom", &NoRandomNumbers);
    ASSERT_TRUE(patch.Ok());
    EXPECT_EQ(Made(), "none");
}

} // namespace
} // namespace providers
