// The prompt at one scale of the display: painted, in proportion, and no text cut off. In the
// folder OB_PICTURES, where that is set, the tests leave pictures to be judged by eye.
#include <gtest/gtest.h>

#include <cstdlib>
#include <functional>
#include <string>

#include "services/archive/password/PasswordPrompt.h"
#include "services/archive/password/PasswordPromptIds.h"
#include "tests/support/ProductRegistry.h"
#include "tests/support/WindowPicture.h"
#include "tests/unit/services/archive/password/PromptDriver.h"
#include "tests/unit/services/archive/recovery/RecoveryCertificates.h"

namespace {

using obarchive::AskNewPassword;
using obarchive::PromptResult;
using obtest::PromptOnScreen;

int ExpectedDpi() {
    const char* const text = std::getenv("OB_EXPECTED_DPI");
    return text ? std::atoi(text) : 0;
}

class PromptPictures : public testing::Test {
protected:
    static void SetUpTestSuite() {
        SetProcessDpiAwarenessContext(DPI_AWARENESS_CONTEXT_PER_MONITOR_AWARE_V2);
    }

    void SetUp() override { obtest::ClearProductRegistry(); }

    static void Look(const PromptOnScreen& prompt, const std::wstring& name) {
        ExpectWholeTexts(prompt, name);
        TakePicture(prompt.Window(), name, 360, 280);
    }

    // The least width and height are in pixels at 96 dpi.
    static void TakePicture(HWND window, const std::wstring& name, int leastWidth,
                            int leastHeight) {
        const auto picture = obtest::TakeSettledPicture(window);
        ASSERT_TRUE(picture);
        EXPECT_GE(picture->width, MulDiv(leastWidth, ExpectedDpi(), 96));
        EXPECT_GE(picture->height, MulDiv(leastHeight, ExpectedDpi(), 96));
        const wchar_t* const folder = _wgetenv(L"OB_PICTURES");
        if (!folder) return;
        const std::wstring file =
            std::wstring(folder) + L"\\" + name + L"-" + std::to_wstring(ExpectedDpi()) + L".png";
        EXPECT_TRUE(obtest::WritePng(*picture, file));
    }

    // Each text, broken into lines as its control breaks it, fits into the control.
    static void ExpectWholeTexts(const PromptOnScreen& prompt, const std::wstring& name) {
        for (const int id : {OB_PASSWORD_INTRO, OB_PASSWORD_LABEL, OB_PASSWORD_STRENGTH_LABEL,
                             OB_PASSWORD_REPEAT_LABEL, OB_PASSWORD_HINT, OB_PASSWORD_SHOW,
                             OB_PASSWORD_SUGGEST, OB_PASSWORD_COPY, IDOK, IDCANCEL}) {
            const HWND control = prompt.Item(id);
            RECT room;
            GetClientRect(control, &room);
            RECT needed{0, 0, room.right, 0};
            const HDC dc = GetDC(control);
            const HGDIOBJ old = SelectObject(
                dc, reinterpret_cast<HGDIOBJ>(SendMessageW(control, WM_GETFONT, 0, 0)));
            DrawTextW(dc, prompt.Text(id).c_str(), -1, &needed, DT_CALCRECT | DT_WORDBREAK);
            SelectObject(dc, old);
            ReleaseDC(control, dc);
            EXPECT_LE(needed.bottom, room.bottom) << id << " in picture " << name.size();
            EXPECT_LE(needed.right, room.right) << id << " in picture " << name.size();
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
        TakePicture(box, L"prompt-question", 200, 100);
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
