// The prompt at one scale of the display: painted, in proportion, and no text cut off. In the
// folder OB_PICTURES, where that is set, the tests leave pictures to be judged by eye.
#include <gtest/gtest.h>

#include <functional>
#include <string>

#include "services/archive/password/PasswordPrompt.h"
#include "services/archive/password/PasswordPromptIds.h"
#include "tests/support/PictureSuite.h"
#include "tests/support/ProductRegistry.h"
#include "tests/unit/services/archive/password/PromptDriver.h"
#include "tests/unit/services/archive/recovery/RecoveryCertificates.h"

namespace {

using obarchive::AskNewPassword;
using obarchive::PromptResult;
using obtest::PromptOnScreen;

class PromptPictures : public testing::Test {
protected:
    static void SetUpTestSuite() { obtest::BeAwareOfTheScale(); }

    void SetUp() override { obtest::ClearProductRegistry(); }

    static void Look(const PromptOnScreen& prompt, const std::wstring& name) {
        ExpectWholeTexts(prompt);
        obtest::LookAt(prompt.Window(), name, 360, 280);
    }

    static void ExpectWholeTexts(const PromptOnScreen& prompt) {
        for (const int id : {OB_PASSWORD_INTRO, OB_PASSWORD_LABEL, OB_PASSWORD_STRENGTH_LABEL,
                             OB_PASSWORD_REPEAT_LABEL, OB_PASSWORD_HINT, OB_PASSWORD_SHOW,
                             OB_PASSWORD_SUGGEST, OB_PASSWORD_COPY, IDOK, IDCANCEL}) {
            obtest::ExpectWholeText(prompt.Item(id));
        }
    }

    static void TypeBoth(const PromptOnScreen& prompt, const std::wstring& text) {
        prompt.Type(OB_PASSWORD_FIRST, text);
        prompt.Type(OB_PASSWORD_REPEAT, text);
    }

    static PromptResult Ask(const std::function<void(const PromptOnScreen&)>& act) {
        char password[260];
        obtest::PromptDriver driver(act);
        return AskNewPassword(nullptr, password, sizeof password);
    }
};

TEST_F(PromptPictures, WhileItIsFilledIn) {
    const auto act = [](const PromptOnScreen& prompt) {
        prompt.Type(OB_PASSWORD_FIRST, L"Abc123!xQv");
        prompt.Type(OB_PASSWORD_REPEAT, L"Abc124");
        Look(prompt, L"prompt-typed");
    };
    EXPECT_EQ(Ask(act), PromptResult::Cancelled);
}

TEST_F(PromptPictures, WithASuggestion) {
    const auto act = [](const PromptOnScreen& prompt) {
        prompt.Press(OB_PASSWORD_SUGGEST);
        Look(prompt, L"prompt-suggested");
    };
    EXPECT_EQ(Ask(act), PromptResult::Cancelled);
}

TEST_F(PromptPictures, WithTheHintAboutCharactersBeyondAscii) {
    const auto act = [](const PromptOnScreen& prompt) {
        TypeBoth(prompt, L"Gr\u00FCne Wiese 5!");
        Look(prompt, L"prompt-characters");
    };
    EXPECT_EQ(Ask(act), PromptResult::Cancelled);
}

TEST_F(PromptPictures, WithTheMessageThatThePasswordIsTooLong) {
    const auto act = [](const PromptOnScreen& prompt) {
        TypeBoth(prompt, std::wstring(100, L'x'));
        prompt.Press(IDOK);
        EXPECT_NE(prompt.Text(OB_PASSWORD_HINT).find(L"99"), std::wstring::npos);
        Look(prompt, L"prompt-too-long");
    };
    EXPECT_EQ(Ask(act), PromptResult::Cancelled);
}

// Waits for the message box of the prompt; null when none came.
HWND WaitForBox(HWND prompt) {
    return obtest::WaitForTopWindow(
        [prompt](HWND window) { return GetWindow(window, GW_OWNER) == prompt; });
}

TEST_F(PromptPictures, OfTheQuestionAboutAVeryWeakPassword) {
    const auto act = [](const PromptOnScreen& prompt) {
        TypeBoth(prompt, L"summer");
        PostMessageW(prompt.Window(), WM_COMMAND, IDOK, 0);
        const HWND box = WaitForBox(prompt.Window());
        ASSERT_TRUE(box);
        obtest::LookAt(box, L"prompt-question", 200, 100);
        SendMessageW(box, WM_COMMAND, IDNO, 0);
    };
    EXPECT_EQ(Ask(act), PromptResult::Cancelled);
}

TEST_F(PromptPictures, WithTheLongestPolicyAndRecovery) {
    obtest::SetMachinePolicy(L"EntX509Certificate", obtest::kRecoveryCertificate);
    obtest::SetMachinePolicy(L"PasswordMinimumLength", L"128");
    for (const wchar_t* name : {L"PasswordNeedsLowerCase", L"PasswordNeedsUpperCase",
                                L"PasswordNeedsDigit", L"PasswordNeedsSymbol"}) {
        obtest::SetMachinePolicy(name, L"1");
    }
    const auto act = [](const PromptOnScreen& prompt) {
        EXPECT_NE(prompt.Text(OB_PASSWORD_INTRO).find(L"Your organization can recover it."),
                  std::wstring::npos);
        Look(prompt, L"prompt-policy");
    };
    EXPECT_EQ(Ask(act), PromptResult::Cancelled);
}

} // namespace
