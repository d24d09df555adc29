#include "services/archive/password/PasswordStrength.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using obarchive::StrengthLevel;
using obarchive::StrengthOf;

struct Row {
    const wchar_t* password;
    StrengthLevel level;
};

constexpr Row kRows[] = {
    {L"", StrengthLevel::None},
    {L"a", StrengthLevel::VeryWeak},
    {L"password", StrengthLevel::VeryWeak},
    {L"Password123!", StrengthLevel::VeryWeak},
    {L"P@ssw0rd", StrengthLevel::VeryWeak},
    {L"iloveyou2", StrengthLevel::VeryWeak},
    {L"aaaaaaaaaaaaaaaa", StrengthLevel::VeryWeak},
    {L"abcdefghijklmnop", StrengthLevel::VeryWeak},
    {L"1234567890", StrengthLevel::VeryWeak},
    {L"987654321", StrengthLevel::VeryWeak},
    {L"qwertyuiop", StrengthLevel::VeryWeak},
    {L"xk4xk4xk4xk4", StrengthLevel::VeryWeak}, // the same piece again and again
    {L"river", StrengthLevel::VeryWeak},        // one word
    {L"Mary1987", StrengthLevel::VeryWeak},     // a name and a year
    {L"24.12.1987", StrengthLevel::VeryWeak},   // a date
    {L"p\u00E4ssw\u00F6rd", StrengthLevel::VeryWeak},
    {L"tmvbhxq", StrengthLevel::Weak},
    {L"tmvbhxqojd", StrengthLevel::Fair},
    {L"tW4!mQz9#", StrengthLevel::Fair},
    {L"river-apple-stone-cloud", StrengthLevel::Good},
    {L"River-Apple-Stone-Cloud", StrengthLevel::Good},
    {L"tW4!mQz9#Lk2", StrengthLevel::Strong},
    {L"river-apple-stone-cloud-piano-tiger-wolf", StrengthLevel::Strong},
    {L"\u043F\u0430\u0448\u043B\u043C\u044B\u0439\u044E\u0444\u0436\u044D\u0431",
     StrengthLevel::Strong},
    {L"\U0001F511\U0001F511\U0001F511\U0001F511", StrengthLevel::VeryWeak}, // one emoji, four times
};

TEST(PasswordStrengthTest, EachKindOfPasswordHasItsLevel) {
    for (const Row& row : kRows) {
        EXPECT_EQ(StrengthOf(row.password).level, row.level)
            << testing::PrintToString(std::wstring(row.password)) << " "
            << StrengthOf(row.password).bits;
    }
}

TEST(PasswordStrengthTest, ALongerBeginningIsNeverWeaker) {
    const std::wstring text = L"tW4!mQz9#Lk2-river7";
    double before = 0;
    for (std::size_t length = 1; length <= text.size(); ++length) {
        const double bits = StrengthOf(text.substr(0, length)).bits;
        // From there on the letters may be counted as one word.
        if (length < 14) {
            EXPECT_GE(bits, before) << length;
        }
        before = bits;
    }
    EXPECT_GT(before, StrengthOf(L"tW4!").bits);
}

TEST(PasswordStrengthTest, TheLongestTextThatAFieldTakesIsEstimatedByItsBeginning) {
    std::wstring text;
    while (text.size() < 2047) text += L"tW4!mQz9#Lk2-" + std::to_wstring(text.size());
    EXPECT_EQ(StrengthOf(text).bits, StrengthOf(text.substr(0, 128)).bits);
}

} // namespace
