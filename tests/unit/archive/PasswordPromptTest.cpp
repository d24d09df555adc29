#include "services/archive/PasswordPrompt.h"

#include <gtest/gtest.h>

#include <cstring>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "services/archive/PasswordPromptIds.h"
#include "tests/unit/archive/PromptDriver.h"

namespace {

using obarchive::AskNewPassword;
using obarchive::PromptResult;
using obtest::PromptDriver;
using obtest::PromptOnScreen;

constexpr int kFirst = OB_PASSWORD_FIRST;
constexpr int kRepeat = OB_PASSWORD_REPEAT;

class PasswordPromptTest : public testing::Test {
protected:
    PasswordPromptTest() { std::memset(buffer_, 0x55, sizeof buffer_); }

    PromptResult Ask(const std::function<void(const PromptOnScreen&)>& person,
                     std::uint32_t capacity = 260) {
        PromptDriver driver(person);
        return AskNewPassword(nullptr, buffer_, capacity);
    }

    char buffer_[512];
};

TEST_F(PasswordPromptTest, GivesThePasswordAsUtf8) {
    const auto person = [](const PromptOnScreen& prompt) {
        prompt.Type(kFirst, L"p\u00E4ss \U0001F511");
        prompt.Type(kRepeat, L"p\u00E4ss \U0001F511");
        prompt.Press(IDOK);
    };
    EXPECT_EQ(Ask(person), PromptResult::Given);
    EXPECT_STREQ(buffer_, "p\xC3\xA4ss \xF0\x9F\x94\x91");
    EXPECT_EQ(buffer_[511], 0x55);
}

TEST_F(PasswordPromptTest, CancelLeavesAnEmptyBuffer) {
    const auto person = [](const PromptOnScreen& prompt) {
        prompt.Type(kFirst, L"secret");
        prompt.Type(kRepeat, L"secret");
        prompt.Press(IDCANCEL);
    };
    EXPECT_EQ(Ask(person), PromptResult::Cancelled);
    EXPECT_STREQ(buffer_, "");
}

TEST_F(PasswordPromptTest, ClosingTheWindowIsACancel) {
    const auto person = [](const PromptOnScreen& prompt) {
        SendMessageW(prompt.Window(), WM_SYSCOMMAND, SC_CLOSE, 0);
    };
    EXPECT_EQ(Ask(person), PromptResult::Cancelled);
}

TEST_F(PasswordPromptTest, OkWantsTwoEqualTexts) {
    const auto person = [](const PromptOnScreen& prompt) {
        EXPECT_FALSE(prompt.OkIsEnabled());
        prompt.Type(kFirst, L"secret");
        EXPECT_FALSE(prompt.OkIsEnabled());
        prompt.Type(kRepeat, L"Secret");
        EXPECT_FALSE(prompt.OkIsEnabled());
        // The Enter key sends the command all the same.
        prompt.Press(IDOK);
        EXPECT_TRUE(IsWindow(prompt.Window()));
        prompt.Type(kRepeat, L"secret");
        EXPECT_TRUE(prompt.OkIsEnabled());
        prompt.Type(kFirst, L"secret!");
        EXPECT_FALSE(prompt.OkIsEnabled());
        prompt.Type(kFirst, L"");
        prompt.Type(kRepeat, L"");
        EXPECT_FALSE(prompt.OkIsEnabled());
    };
    EXPECT_EQ(Ask(person), PromptResult::Cancelled);
    EXPECT_STREQ(buffer_, "");
}

TEST_F(PasswordPromptTest, TellsThatTheTwoDifferOnlyWhenTheRepetitionIsWrong) {
    const auto person = [](const PromptOnScreen& prompt) {
        prompt.Type(kFirst, L"secret");
        EXPECT_EQ(prompt.Text(OB_PASSWORD_HINT), L"");
        prompt.Type(kRepeat, L"sec");
        EXPECT_EQ(prompt.Text(OB_PASSWORD_HINT), L"");
        prompt.Type(kRepeat, L"sex");
        EXPECT_EQ(prompt.Text(OB_PASSWORD_HINT), L"The two passwords are not the same.");
        prompt.Type(kRepeat, L"secret");
        EXPECT_EQ(prompt.Text(OB_PASSWORD_HINT), L"");
    };
    EXPECT_EQ(Ask(person), PromptResult::Cancelled);
}

TEST_F(PasswordPromptTest, APasswordThatFillsTheBufferIsTaken) {
    const auto person = [](const PromptOnScreen& prompt) {
        const std::wstring text = std::wstring(128, L'\u00E4') + L"abc"; // 259 bytes
        prompt.Type(kFirst, text);
        prompt.Type(kRepeat, text);
        prompt.Press(IDOK);
    };
    EXPECT_EQ(Ask(person), PromptResult::Given);
    EXPECT_EQ(std::strlen(buffer_), 259U);
    EXPECT_EQ(buffer_[260], 0x55);
}

TEST_F(PasswordPromptTest, APasswordThatDoesNotFitIsRefusedWithASentence) {
    for (const std::wstring& text : {std::wstring(130, L'\u00E4'), std::wstring(2000, L'x')}) {
        const auto person = [&text](const PromptOnScreen& prompt) {
            prompt.Type(kFirst, text);
            prompt.Type(kRepeat, text);
            EXPECT_TRUE(prompt.OkIsEnabled());
            prompt.Press(IDOK);
            EXPECT_TRUE(IsWindow(prompt.Window()));
            EXPECT_EQ(prompt.Text(OB_PASSWORD_HINT),
                      L"This password is too long. Please choose a shorter one.");
            prompt.Type(kFirst, L"short");
            prompt.Type(kRepeat, L"short");
            EXPECT_EQ(prompt.Text(OB_PASSWORD_HINT), L"");
            prompt.Press(IDOK);
        };
        EXPECT_EQ(Ask(person), PromptResult::Given);
        EXPECT_STREQ(buffer_, "short");
    }
    EXPECT_EQ(buffer_[260], 0x55);
}

TEST_F(PasswordPromptTest, HalfASurrogatePairIsRefusedWithASentence) {
    const auto person = [](const PromptOnScreen& prompt) {
        const std::wstring half = L"a" + std::wstring(1, static_cast<wchar_t>(0xD83D));
        prompt.Type(kFirst, half);
        prompt.Type(kRepeat, half);
        prompt.Press(IDOK);
        EXPECT_TRUE(IsWindow(prompt.Window()));
        EXPECT_EQ(
            prompt.Text(OB_PASSWORD_HINT),
            L"This password holds a character that can't be used. Please choose another one.");
    };
    EXPECT_EQ(Ask(person), PromptResult::Cancelled);
    EXPECT_STREQ(buffer_, "");
}

TEST_F(PasswordPromptTest, BothFieldsAreMaskedAndTheFirstHasTheFocus) {
    const auto person = [](const PromptOnScreen& prompt) {
        for (const int field : {kFirst, kRepeat}) {
            EXPECT_NE(GetWindowLongW(prompt.Item(field), GWL_STYLE) & ES_PASSWORD, 0);
        }
        GUITHREADINFO info{sizeof info};
        GetGUIThreadInfo(GetWindowThreadProcessId(prompt.Window(), nullptr), &info);
        EXPECT_EQ(info.hwndFocus, prompt.Item(kFirst));
    };
    EXPECT_EQ(Ask(person), PromptResult::Cancelled);
}

TEST_F(PasswordPromptTest, NothingIsCutOffAndNothingOverlaps) {
    const auto person = [](const PromptOnScreen& prompt) {
        RECT all;
        GetClientRect(prompt.Window(), &all);
        RECT last{};
        for (const int id :
             {OB_PASSWORD_INTRO, OB_PASSWORD_LABEL, OB_PASSWORD_FIRST, OB_PASSWORD_REPEAT_LABEL,
              OB_PASSWORD_REPEAT, OB_PASSWORD_HINT, IDOK}) {
            RECT place;
            GetWindowRect(prompt.Item(id), &place);
            MapWindowPoints(nullptr, prompt.Window(), reinterpret_cast<POINT*>(&place), 2);
            EXPECT_GE(place.top, last.bottom) << id;
            EXPECT_LE(place.right, all.right) << id;
            EXPECT_LE(place.bottom, all.bottom) << id;
            last = place;
        }
    };
    EXPECT_EQ(Ask(person), PromptResult::Cancelled);
}

TEST_F(PasswordPromptTest, TheOwnerIsDisabledMeanwhileAndEnabledAfterwards) {
    const ObLib::UniqueWindow owner(CreateWindowW(L"Static", L"owner",
                                                  WS_OVERLAPPEDWINDOW | WS_VISIBLE, 0, 0, 200, 200,
                                                  nullptr, nullptr, nullptr, nullptr));
    {
        PromptDriver driver([&](const PromptOnScreen& prompt) {
            EXPECT_EQ(GetWindow(prompt.Window(), GW_OWNER), owner.Get());
            EXPECT_FALSE(IsWindowEnabled(owner.Get()));
        });
        EXPECT_EQ(AskNewPassword(owner.Get(), buffer_, 260), PromptResult::Cancelled);
    }
    EXPECT_TRUE(IsWindowEnabled(owner.Get()));
}

TEST_F(PasswordPromptTest, AnOwnerThatIsGoneDoesNotKeepThePromptAway) {
    PromptDriver driver([](const PromptOnScreen& prompt) { prompt.Press(IDCANCEL); });
    EXPECT_EQ(AskNewPassword(reinterpret_cast<HWND>(0xDEAD), buffer_, 260),
              PromptResult::Cancelled);
}

TEST_F(PasswordPromptTest, WithoutABufferThereIsNoPrompt) {
    EXPECT_EQ(AskNewPassword(nullptr, nullptr, 260), PromptResult::NotShown);
    EXPECT_EQ(AskNewPassword(nullptr, buffer_, 0), PromptResult::NotShown);
    EXPECT_EQ(buffer_[0], 0x55);
}

} // namespace
