// The policy, its messages from the product's library beside the program, and the prompt under a
// policy.
#include "services/archive/policy/PasswordPolicy.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "services/archive/password/PasswordPrompt.h"
#include "services/archive/password/PasswordPromptIds.h"
#include "tests/support/MessageBoxWatcher.h"
#include "tests/support/ProductRegistry.h"
#include "tests/unit/services/archive/password/PromptDriver.h"

namespace {

using namespace obarchive;
using obtest::PromptOnScreen;

class PasswordPolicyTest : public testing::Test {
protected:
    void SetUp() override { obtest::ClearProductRegistry(); }
    void TearDown() override { obtest::ClearProductRegistry(); }
};

TEST_F(PasswordPolicyTest, WithoutAPolicyOneCharacterIsEnough) {
    const PasswordPolicy policy = ReadPasswordPolicy();
    EXPECT_TRUE(policy.AsksForNothing());
    EXPECT_TRUE(Meets(policy, L"x"));
    EXPECT_FALSE(Meets(policy, L""));
}

TEST_F(PasswordPolicyTest, EachValueSetsItsClass) {
    const struct {
        const wchar_t* name;
        std::uint32_t classes;
    } rows[] = {{L"PasswordNeedsLowerCase", 1},
                {L"PasswordNeedsUpperCase", 2},
                {L"PasswordNeedsDigit", 4},
                {L"PasswordNeedsSymbol", 8}};
    std::uint32_t together = 0;
    for (const auto& row : rows) {
        together |= row.classes;
        obtest::SetMachinePolicy(row.name, L"1", row.classes % 3 == 1 ? 32 : 64);
        EXPECT_EQ(ReadPasswordPolicy().classes, together);
    }
    EXPECT_EQ(ReadPasswordPolicy().minimumLength, 4U); // one a class
    for (const auto& row : rows) {
        obtest::SetMachinePolicy(row.name, L"0", 32);
        obtest::SetMachinePolicy(row.name, L"yes", 64);
    }
    EXPECT_TRUE(ReadPasswordPolicy().AsksForNothing());
}

TEST_F(PasswordPolicyTest, TheLongerLengthOfBothViewsCounts) {
    const auto lengthWith = [](const wchar_t* in64, const wchar_t* in32) {
        obtest::SetMachinePolicy(L"PasswordMinimumLength", in64, 64);
        obtest::SetMachinePolicy(L"PasswordMinimumLength", in32, 32);
        return ReadPasswordPolicy().minimumLength;
    };
    EXPECT_EQ(lengthWith(L"12", L"8"), 12U);
    EXPECT_EQ(lengthWith(L"8", L"12"), 12U);
    EXPECT_EQ(lengthWith(L"", L"9"), 9U);
    EXPECT_EQ(lengthWith(L"0", L"-5"), 1U);
    EXPECT_EQ(lengthWith(L"ten", L"8 "), 1U);
    EXPECT_EQ(lengthWith(L"99999999999", L""), 1U);
    EXPECT_EQ(lengthWith(L"99", L""), 99U);
    EXPECT_EQ(lengthWith(L"100", L""), 99U);
    EXPECT_EQ(lengthWith(L"4000", L""), 99U);
}

TEST_F(PasswordPolicyTest, ARegDwordCountsAsItsDecimalText) {
    obtest::SetMachinePolicyNumber(L"PasswordMinimumLength", 14, 32);
    obtest::SetMachinePolicyNumber(L"PasswordNeedsDigit", 1);
    obtest::SetMachinePolicyNumber(L"PasswordNeedsSymbol", 0);
    obtest::SetMachinePolicyNumber(L"PasswordNeedsUpperCase", 2);
    EXPECT_EQ(ReadPasswordPolicy().minimumLength, 14U);
    EXPECT_EQ(ReadPasswordPolicy().classes, kDigit);
}

TEST_F(PasswordPolicyTest, AValueOfAnotherTypeCountsAsAbsent) {
    const DWORD one = 1;
    for (const DWORD type : {REG_BINARY, REG_EXPAND_SZ, REG_MULTI_SZ, REG_QWORD}) {
        obtest::SetRawValue(HKEY_LOCAL_MACHINE, obtest::kPolicyKey, L"PasswordNeedsDigit", type,
                            &one, sizeof one);
        EXPECT_EQ(ReadPasswordPolicy().classes, 0U) << type;
    }
}

TEST_F(PasswordPolicyTest, CharactersAreCountedAndClassified) {
    EXPECT_EQ(ClassesOf(L"az"), kLowerCase);
    EXPECT_EQ(ClassesOf(L"AZ"), kUpperCase);
    EXPECT_EQ(ClassesOf(L"09"), kDigit);
    for (const wchar_t symbol : std::wstring(L"!\"#$%&'()*+,-./:;<=>?@[\\]^_`{|}~")) {
        EXPECT_EQ(ClassesOf(std::wstring(1, symbol)), kSymbol);
    }
    EXPECT_EQ(ClassesOf(L" \u00E4\u00C4\u0663\t\x7F"), 0U);
    EXPECT_EQ(CharactersIn(L"a\U0001F511b"), 3U);
    EXPECT_TRUE(Meets({3, kLowerCase}, L"a\U0001F511b"));
    EXPECT_FALSE(Meets({4, kLowerCase}, L"a\U0001F511b"));
}

// Built from the names of the classes, in the order of the messages.
std::wstring ExpectedMessage(std::uint32_t classes) {
    const std::wstring symbols = L"symbol character (!, @, #, $, %, ^, &, *, ...)";
    const std::wstring names[] = {L"a lower case character (a-z)", L"an upper case character (A-Z)",
                                  L"a number character (0-9)", L"a " + symbols};
    const std::wstring alone[] = {L"lower case character (a-z)", L"upper case character (A-Z)",
                                  L"number character (0-9)", symbols};
    std::vector<std::size_t> asked;
    for (std::size_t bit = 0; bit < 4; ++bit) {
        if (classes & (1U << bit)) asked.push_back(bit);
    }
    std::wstring text = L"PASSWORD POLICY: Password must be at least 17 characters long";
    if (asked.size() == 1) text += L" and contain at least one " + alone[asked[0]];
    if (asked.size() > 1) text += L" and contain at least one each of the following: ";
    for (std::size_t at = 0; asked.size() > 1 && at < asked.size(); ++at) {
        if (at != 0) text += asked.size() > 2 ? L", " : L" ";
        if (at + 1 == asked.size()) text += L"and ";
        text += names[asked[at]];
    }
    return text + L".";
}

TEST_F(PasswordPolicyTest, EachOfTheSixteenMessagesIsFoundByItsMaskAndFormatted) {
    for (std::uint32_t classes = 0; classes < 16; ++classes) {
        EXPECT_EQ(PolicyMessage({17, classes}), ExpectedMessage(classes)) << classes;
    }
}

TEST_F(PasswordPolicyTest, FormattingInsertsTheNumberAndUnescapesPercentAndAmpersand) {
    EXPECT_EQ(Formatted(L"%d%% && & % %s d%", 7), L"7% & & % %s d%");
    EXPECT_EQ(Formatted(L"", 7), L"");
}

TEST_F(PasswordPolicyTest, ThePromptRefusesUntilThePolicyIsMet) {
    obtest::SetMachinePolicy(L"PasswordMinimumLength", L"10");
    obtest::SetMachinePolicy(L"PasswordNeedsDigit", L"1");
    obtest::SetMachinePolicy(L"PasswordNeedsSymbol", L"1");
    const obtest::MessageBoxWatcher boxes;
    HWND dialog = nullptr;
    char password[260];
    {
        obtest::PromptDriver driver([&](const PromptOnScreen& prompt) {
            dialog = prompt.Window();
            const std::wstring hint = L"Your organization asks for at least 10 characters, among "
                                      L"them a digit, a symbol.";
            EXPECT_EQ(prompt.Text(OB_PASSWORD_HINT), hint);
            for (const wchar_t* refused : {L"short1!", L"long enough", L"long enough1"}) {
                prompt.Type(OB_PASSWORD_FIRST, refused);
                prompt.Type(OB_PASSWORD_REPEAT, refused);
                EXPECT_EQ(prompt.Text(OB_PASSWORD_HINT), hint);
                prompt.Press(IDOK);
                EXPECT_TRUE(IsWindow(prompt.Window()));
            }
            prompt.Type(OB_PASSWORD_FIRST, L"long enough1!");
            prompt.Type(OB_PASSWORD_REPEAT, L"long enough1!");
            EXPECT_EQ(prompt.Text(OB_PASSWORD_HINT), L"");
            prompt.Press(IDOK);
        });
        EXPECT_EQ(AskNewPassword(nullptr, password, sizeof password), PromptResult::Given);
    }
    EXPECT_STREQ(password, "long enough1!");
    const auto seen = boxes.Seen();
    ASSERT_EQ(seen.size(), 3U);
    for (const obtest::SeenBox& box : seen) {
        EXPECT_EQ(box.caption, L"Password Policy Error");
        EXPECT_EQ(box.text,
                  L"PASSWORD POLICY: Password must be at least 10 characters long and contain at "
                  L"least one each of the following: a number character (0-9) and a symbol "
                  L"character (!, @, #, $, %, ^, &, *, ...).\n\nPlease modify your password to "
                  L"comply with Password Policy settings.");
        EXPECT_TRUE(box.hasIcon);
        EXPECT_EQ(box.owner, dialog);
    }
}

TEST_F(PasswordPolicyTest, ASuggestionMeetsThePolicy) {
    obtest::SetMachinePolicy(L"PasswordMinimumLength", L"60");
    for (const wchar_t* name : {L"PasswordNeedsUpperCase", L"PasswordNeedsDigit"}) {
        obtest::SetMachinePolicy(name, L"1");
    }
    char password[260];
    obtest::PromptDriver driver([](const PromptOnScreen& prompt) {
        prompt.Press(OB_PASSWORD_SUGGEST);
        prompt.Press(IDOK);
    });
    EXPECT_EQ(AskNewPassword(nullptr, password, sizeof password), PromptResult::Given);
    EXPECT_GE(std::string(password).size(), 60U);
}

} // namespace
