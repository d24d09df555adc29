#include "services/archive/password/PasswordPrompt.h"

#include <bcrypt.h>
#include <commctrl.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <cstring>
#include <cwchar>
#include <cwctype>
#include <thread>
#include <utility>
#include <vector>

#include "ObLib/Src/Win32/UniqueHandle.h"
#include "services/archive/password/PasswordPromptIds.h"
#include "tests/support/ImportPatch.h"
#include "tests/support/MessageBoxWatcher.h"
#include "tests/unit/services/archive/password/PromptDriver.h"

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

    static void TypeBoth(const PromptOnScreen& prompt, const std::wstring& text) {
        prompt.Type(kFirst, text);
        prompt.Type(kRepeat, text);
    }

    PromptResult Ask(const std::function<void(const PromptOnScreen&)>& act,
                     std::uint32_t capacity = 260) {
        PromptDriver driver(act);
        return AskNewPassword(nullptr, buffer_, capacity);
    }

    char buffer_[512];
};

TEST_F(PasswordPromptTest, GivesThePasswordAsUtf8) {
    const auto act = [](const PromptOnScreen& prompt) {
        prompt.Type(kFirst, L"p\u00E4ss wort \U0001F511");
        prompt.Type(kRepeat, L"p\u00E4ss wort \U0001F511");
        prompt.Press(IDOK);
    };
    EXPECT_EQ(Ask(act), PromptResult::Given);
    EXPECT_STREQ(buffer_, "p\xC3\xA4ss wort \xF0\x9F\x94\x91");
    EXPECT_EQ(buffer_[511], 0x55);
}

TEST_F(PasswordPromptTest, CancelLeavesAnEmptyBuffer) {
    const auto act = [](const PromptOnScreen& prompt) {
        prompt.Type(kFirst, L"secret");
        prompt.Type(kRepeat, L"secret");
        prompt.Press(IDCANCEL);
    };
    EXPECT_EQ(Ask(act), PromptResult::Cancelled);
    EXPECT_STREQ(buffer_, "");
}

TEST_F(PasswordPromptTest, ClosingTheWindowIsACancel) {
    const auto act = [](const PromptOnScreen& prompt) {
        SendMessageW(prompt.Window(), WM_SYSCOMMAND, SC_CLOSE, 0);
    };
    EXPECT_EQ(Ask(act), PromptResult::Cancelled);
}

TEST_F(PasswordPromptTest, OkNeedsTwoEqualTexts) {
    const auto act = [](const PromptOnScreen& prompt) {
        EXPECT_FALSE(prompt.OkIsEnabled());
        prompt.Type(kFirst, L"secret");
        EXPECT_FALSE(prompt.OkIsEnabled());
        prompt.Type(kRepeat, L"Secret");
        EXPECT_FALSE(prompt.OkIsEnabled());
        // The Enter key sends the command although the button is disabled.
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
    EXPECT_EQ(Ask(act), PromptResult::Cancelled);
    EXPECT_STREQ(buffer_, "");
}

TEST_F(PasswordPromptTest, AHintAboutDifferentTextsAppearsOnlyWhenTheRepetitionIsWrong) {
    const auto act = [](const PromptOnScreen& prompt) {
        prompt.Type(kFirst, L"secret");
        EXPECT_EQ(prompt.Text(OB_PASSWORD_HINT), L"");
        prompt.Type(kRepeat, L"sec");
        EXPECT_EQ(prompt.Text(OB_PASSWORD_HINT), L"");
        prompt.Type(kRepeat, L"sex");
        EXPECT_EQ(prompt.Text(OB_PASSWORD_HINT), L"The two passwords are not the same.");
        prompt.Type(kRepeat, L"secret");
        EXPECT_EQ(prompt.Text(OB_PASSWORD_HINT), L"");
    };
    EXPECT_EQ(Ask(act), PromptResult::Cancelled);
}

constexpr wchar_t kNotWeak[] = L"tW4!mQz9#";

// Beginnings of one text that isn't easy to guess.
std::wstring LongText(std::size_t length) {
    std::wstring text;
    while (text.size() < length) text += kNotWeak + std::to_wstring(text.size());
    return text.substr(0, length);
}

TEST_F(PasswordPromptTest, APasswordOf99BytesIsTaken) {
    for (const std::wstring& text : {LongText(99), LongText(97) + L"\u00E4"}) {
        const auto act = [&](const PromptOnScreen& prompt) {
            TypeBoth(prompt, text);
            prompt.Press(IDOK);
        };
        EXPECT_EQ(Ask(act), PromptResult::Given);
        EXPECT_EQ(std::strlen(buffer_), 99U);
        EXPECT_EQ(buffer_[260], 0x55);
    }
}

TEST_F(PasswordPromptTest, APasswordOfMoreThan99BytesIsRefusedWithASentenceOfItsOwn) {
    for (const std::wstring& text :
         {LongText(100), LongText(98) + L"\u00E4", std::wstring(2000, L'x')}) {
        const auto act = [&](const PromptOnScreen& prompt) {
            TypeBoth(prompt, text);
            EXPECT_TRUE(prompt.OkIsEnabled());
            prompt.Press(IDOK);
            EXPECT_TRUE(IsWindow(prompt.Window()));
            EXPECT_EQ(prompt.Text(OB_PASSWORD_HINT),
                      L"Programs that open zips take at most 99 characters, fewer if some have "
                      L"accents. Please choose a shorter password.");
            TypeBoth(prompt, kNotWeak);
            EXPECT_EQ(prompt.Text(OB_PASSWORD_HINT), L"");
            prompt.Press(IDOK);
        };
        EXPECT_EQ(Ask(act), PromptResult::Given);
        EXPECT_STREQ(buffer_, "tW4!mQz9#");
    }
    EXPECT_EQ(buffer_[260], 0x55);
}

TEST_F(PasswordPromptTest, APasswordThatFillsTheCallersBufferIsTakenAndALongerOneRefused) {
    const auto act = [](const PromptOnScreen& prompt) {
        TypeBoth(prompt, LongText(40));
        prompt.Press(IDOK);
        EXPECT_EQ(prompt.Text(OB_PASSWORD_HINT),
                  L"This password is too long. Please choose a shorter one.");
        TypeBoth(prompt, LongText(39));
        prompt.Press(IDOK);
    };
    EXPECT_EQ(Ask(act, 40), PromptResult::Given);
    EXPECT_EQ(std::strlen(buffer_), 39U);
    EXPECT_EQ(buffer_[40], 0x55);
}

TEST_F(PasswordPromptTest, ACharacterBeyondAsciiGetsAHintAndIsTaken) {
    const auto act = [](const PromptOnScreen& prompt) {
        const std::wstring hint = L"Some programs can't open a zip whose password has characters "
                                  L"other than the letters A to Z, digits and common symbols.";
        prompt.Type(kFirst, std::wstring(kNotWeak) + L"\u00FC");
        EXPECT_EQ(prompt.Text(OB_PASSWORD_HINT), hint);
        prompt.Type(kRepeat, L"x");
        EXPECT_EQ(prompt.Text(OB_PASSWORD_HINT), L"The two passwords are not the same.");
        TypeBoth(prompt, L" ~" + std::wstring(kNotWeak));
        EXPECT_EQ(prompt.Text(OB_PASSWORD_HINT), L"");
        TypeBoth(prompt, std::wstring(kNotWeak) + L"\u0080");
        EXPECT_EQ(prompt.Text(OB_PASSWORD_HINT), hint);
        prompt.Press(IDOK);
    };
    EXPECT_EQ(Ask(act), PromptResult::Given);
    EXPECT_STREQ(buffer_, "tW4!mQz9#\xC2\x80");
}

TEST_F(PasswordPromptTest, AVeryWeakPasswordIsTakenOnlyAfterAYes) {
    obtest::MessageBoxWatcher boxes;
    boxes.AnswerWith(IDNO);
    HWND dialog = nullptr;
    const auto act = [&](const PromptOnScreen& prompt) {
        dialog = prompt.Window();
        TypeBoth(prompt, L"Password123!");
        prompt.Press(IDOK);
        EXPECT_TRUE(IsWindow(dialog));
        EXPECT_TRUE(IsWindowEnabled(dialog));
        EXPECT_EQ(prompt.Text(kFirst), L"Password123!");
        boxes.AnswerWith(IDYES);
        prompt.Press(IDOK);
    };
    EXPECT_EQ(Ask(act), PromptResult::Given);
    EXPECT_STREQ(buffer_, "Password123!");
    const auto seen = boxes.Seen();
    ASSERT_EQ(seen.size(), 2U);
    for (const obtest::SeenBox& box : seen) {
        EXPECT_EQ(box.caption, L"Ombrix Vellant");
        EXPECT_EQ(box.text, L"This password is very weak. Somebody who gets the files could guess "
                            L"it quickly.\n\nDo you want to use it all the same?");
        EXPECT_TRUE(box.hasIcon);
        EXPECT_EQ(box.owner, dialog);
        EXPECT_EQ(box.defaultButton, IDNO);
    }
}

TEST_F(PasswordPromptTest, AWeakPasswordIsTakenWithoutAQuestion) {
    const obtest::MessageBoxWatcher boxes;
    const auto act = [](const PromptOnScreen& prompt) {
        TypeBoth(prompt, L"tmvbhxq");
        EXPECT_EQ(prompt.Text(OB_PASSWORD_STRENGTH_LABEL), L"Strength: weak");
        prompt.Press(IDOK);
    };
    EXPECT_EQ(Ask(act), PromptResult::Given);
    EXPECT_TRUE(boxes.Seen().empty());
}

TEST_F(PasswordPromptTest, HalfASurrogatePairIsRefusedWithASentence) {
    const auto act = [](const PromptOnScreen& prompt) {
        const std::wstring half = L"a" + std::wstring(1, static_cast<wchar_t>(0xD83D));
        prompt.Type(kFirst, half);
        prompt.Type(kRepeat, half);
        prompt.Press(IDOK);
        EXPECT_TRUE(IsWindow(prompt.Window()));
        EXPECT_EQ(
            prompt.Text(OB_PASSWORD_HINT),
            L"This password contains a character that can't be used. Please choose another one.");
    };
    EXPECT_EQ(Ask(act), PromptResult::Cancelled);
    EXPECT_STREQ(buffer_, "");
}

TEST_F(PasswordPromptTest, BothFieldsAreMaskedAndTheFirstHasTheFocus) {
    const auto act = [](const PromptOnScreen& prompt) {
        for (const int field : {kFirst, kRepeat}) {
            EXPECT_NE(GetWindowLongW(prompt.Item(field), GWL_STYLE) & ES_PASSWORD, 0);
        }
        GUITHREADINFO info{sizeof info};
        GetGUIThreadInfo(GetWindowThreadProcessId(prompt.Window(), nullptr), &info);
        EXPECT_EQ(info.hwndFocus, prompt.Item(kFirst));
    };
    EXPECT_EQ(Ask(act), PromptResult::Cancelled);
}

// Every visible control of the prompt, in the order of the Tab key.
std::vector<HWND> Controls(HWND dialog) {
    std::vector<HWND> controls;
    for (HWND child = GetWindow(dialog, GW_CHILD); child; child = GetWindow(child, GW_HWNDNEXT)) {
        controls.push_back(child);
    }
    return controls;
}

RECT PlaceOf(HWND control, HWND dialog) {
    RECT place;
    GetWindowRect(control, &place);
    MapWindowPoints(nullptr, dialog, reinterpret_cast<POINT*>(&place), 2);
    return place;
}

TEST_F(PasswordPromptTest, NothingIsCutOffAndNothingOverlaps) {
    const auto act = [](const PromptOnScreen& prompt) {
        RECT all;
        GetClientRect(prompt.Window(), &all);
        const std::vector<HWND> controls = Controls(prompt.Window());
        EXPECT_EQ(controls.size(), 13U);
        for (std::size_t one = 0; one < controls.size(); ++one) {
            const RECT place = PlaceOf(controls[one], prompt.Window());
            EXPECT_TRUE(place.left > 0 && place.top > 0 && place.right < all.right &&
                        place.bottom < all.bottom)
                << GetDlgCtrlID(controls[one]);
            for (std::size_t two = 0; two < one; ++two) {
                const RECT other = PlaceOf(controls[two], prompt.Window());
                RECT common;
                EXPECT_FALSE(IntersectRect(&common, &place, &other))
                    << GetDlgCtrlID(controls[one]) << " and " << GetDlgCtrlID(controls[two]);
            }
        }
    };
    EXPECT_EQ(Ask(act), PromptResult::Cancelled);
}

TEST_F(PasswordPromptTest, TheTabKeyGoesInTheOrderOfReading) {
    const auto act = [](const PromptOnScreen& prompt) {
        prompt.Press(OB_PASSWORD_SUGGEST); // makes every button fit to be pressed
        std::vector<int> order;
        HWND at = prompt.Item(kFirst);
        do {
            order.push_back(GetDlgCtrlID(at));
            at = GetNextDlgTabItem(prompt.Window(), at, FALSE);
        } while (at != prompt.Item(kFirst) && order.size() < 20);
        EXPECT_EQ(order, (std::vector<int>{kFirst, kRepeat, OB_PASSWORD_SHOW, OB_PASSWORD_SUGGEST,
                                           OB_PASSWORD_COPY, IDOK, IDCANCEL}));
    };
    EXPECT_EQ(Ask(act), PromptResult::Cancelled);
}

TEST_F(PasswordPromptTest, EachAccessKeyIsUsedOnceAndLabelsComeRightBeforeTheirFields) {
    const auto act = [](const PromptOnScreen& prompt) {
        std::wstring keys;
        for (const HWND control : Controls(prompt.Window())) {
            const std::wstring text = prompt.Text(GetDlgCtrlID(control));
            const std::size_t mark = text.find(L'&');
            if (mark != text.npos) keys += static_cast<wchar_t>(towupper(text[mark + 1]));
        }
        EXPECT_EQ(keys, L"PRSUC");
        const auto before = [&](int id) {
            return GetDlgCtrlID(GetWindow(prompt.Item(id), GW_HWNDPREV));
        };
        EXPECT_EQ(before(kFirst), OB_PASSWORD_LABEL);
        EXPECT_EQ(before(kRepeat), OB_PASSWORD_REPEAT_LABEL);
        EXPECT_EQ(before(OB_PASSWORD_STRENGTH), OB_PASSWORD_STRENGTH_LABEL);
    };
    EXPECT_EQ(Ask(act), PromptResult::Cancelled);
}

TEST_F(PasswordPromptTest, ShowingTakesTheMaskOffBothFieldsAndHidingPutsItBack) {
    const auto act = [](const PromptOnScreen& prompt) {
        const auto masks = [&] {
            return std::pair(SendMessageW(prompt.Item(kFirst), EM_GETPASSWORDCHAR, 0, 0),
                             SendMessageW(prompt.Item(kRepeat), EM_GETPASSWORDCHAR, 0, 0));
        };
        const auto hidden = masks();
        EXPECT_NE(hidden.first, 0);
        SendMessageW(prompt.Item(OB_PASSWORD_SHOW), BM_CLICK, 0, 0);
        EXPECT_EQ(masks(), (std::pair<LRESULT, LRESULT>{0, 0}));
        SendMessageW(prompt.Item(OB_PASSWORD_SHOW), BM_CLICK, 0, 0);
        EXPECT_EQ(masks(), hidden);
    };
    EXPECT_EQ(Ask(act), PromptResult::Cancelled);
}

TEST_F(PasswordPromptTest, TheStrengthIsAWordAndABar) {
    const auto act = [](const PromptOnScreen& prompt) {
        const auto bar = [&] {
            return SendMessageW(prompt.Item(OB_PASSWORD_STRENGTH), PBM_GETPOS, 0, 0);
        };
        EXPECT_EQ(prompt.Text(OB_PASSWORD_STRENGTH_LABEL), L"Strength:");
        EXPECT_EQ(bar(), 0);
        prompt.Type(kFirst, L"aaaa");
        EXPECT_EQ(prompt.Text(OB_PASSWORD_STRENGTH_LABEL), L"Strength: very weak");
        const LRESULT little = bar();
        prompt.Type(kFirst, L"tW4!mQz9#Lk2");
        EXPECT_EQ(prompt.Text(OB_PASSWORD_STRENGTH_LABEL), L"Strength: strong");
        EXPECT_GT(bar(), little);
        prompt.Type(kFirst, L"");
        EXPECT_EQ(prompt.Text(OB_PASSWORD_STRENGTH_LABEL), L"Strength:");
    };
    EXPECT_EQ(Ask(act), PromptResult::Cancelled);
}

TEST_F(PasswordPromptTest, ASuggestionFillsBothFieldsAndIsShownWithItsRandomBits) {
    std::wstring phrase;
    const auto act = [&](const PromptOnScreen& prompt) {
        EXPECT_FALSE(IsWindowEnabled(prompt.Item(OB_PASSWORD_COPY)));
        prompt.Press(OB_PASSWORD_SUGGEST);
        phrase = prompt.Text(kFirst);
        EXPECT_EQ(prompt.Text(kRepeat), phrase);
        EXPECT_EQ(std::count(phrase.begin(), phrase.end(), L'-'), 6);
        EXPECT_EQ(IsDlgButtonChecked(prompt.Window(), OB_PASSWORD_SHOW), UINT{BST_CHECKED});
        EXPECT_EQ(SendMessageW(prompt.Item(kFirst), EM_GETPASSWORDCHAR, 0, 0), 0);
        EXPECT_NE(prompt.Text(OB_PASSWORD_HINT).find(L"with 70 bits of randomness"),
                  std::wstring::npos);
        EXPECT_TRUE(prompt.OkIsEnabled());
        prompt.Press(OB_PASSWORD_SUGGEST);
        EXPECT_NE(prompt.Text(kFirst), phrase);
        phrase = prompt.Text(kFirst);
        prompt.Press(IDOK);
    };
    EXPECT_EQ(Ask(act), PromptResult::Given);
    EXPECT_EQ(std::string(phrase.begin(), phrase.end()), buffer_);
}

NTSTATUS WINAPI NoRandomNumbers(BCRYPT_ALG_HANDLE, PUCHAR, ULONG, ULONG) { return -1; }

TEST_F(PasswordPromptTest, WithoutRandomNumbersNothingIsSuggested) {
    const obtest::ImportPatch<decltype(&BCryptGenRandom)> random("bcrypt.dll", "BCryptGenRandom",
                                                                 &NoRandomNumbers);
    ASSERT_TRUE(random.Ok());
    const auto act = [](const PromptOnScreen& prompt) {
        prompt.Press(OB_PASSWORD_SUGGEST);
        EXPECT_EQ(prompt.Text(OB_PASSWORD_HINT),
                  L"No password could be drawn. Please choose one yourself.");
        EXPECT_EQ(prompt.Text(kFirst), L"");
        EXPECT_EQ(prompt.Text(kRepeat), L"");
        EXPECT_FALSE(IsWindowEnabled(prompt.Item(OB_PASSWORD_COPY)));
        EXPECT_FALSE(prompt.OkIsEnabled());
    };
    EXPECT_EQ(Ask(act), PromptResult::Cancelled);
    EXPECT_STREQ(buffer_, "");
}

std::wstring ClipboardText() {
    if (!OpenClipboard(nullptr)) return L"(closed)";
    const HANDLE data = GetClipboardData(CF_UNICODETEXT);
    const auto* text = data ? static_cast<const wchar_t*>(GlobalLock(data)) : nullptr;
    const std::wstring copy = text ? text : L"(none)";
    if (text) GlobalUnlock(data);
    CloseClipboard();
    return copy;
}

// The formats of the clipboard in the order in which they were put there.
std::vector<UINT> ClipboardFormats() {
    std::vector<UINT> formats;
    if (!OpenClipboard(nullptr)) return formats;
    for (UINT format = EnumClipboardFormats(0); format; format = EnumClipboardFormats(format)) {
        formats.push_back(format);
    }
    CloseClipboard();
    return formats;
}

TEST_F(PasswordPromptTest, ASuggestionIsCopiedAndKeptOutOfTheClipboardsHistory) {
    const auto act = [&](const PromptOnScreen& prompt) {
        prompt.Press(OB_PASSWORD_SUGGEST);
        EXPECT_TRUE(IsWindowEnabled(prompt.Item(OB_PASSWORD_COPY)));
        prompt.Press(OB_PASSWORD_COPY);
        EXPECT_EQ(ClipboardText(), prompt.Text(kFirst));
        const std::vector<UINT> formats = ClipboardFormats();
        const auto text = std::find(formats.begin(), formats.end(), UINT{CF_UNICODETEXT});
        for (const wchar_t* format :
             {L"ExcludeClipboardContentFromMonitorProcessing", L"CanIncludeInClipboardHistory",
              L"CanUploadToCloudClipboard"}) {
            const UINT mark = RegisterClipboardFormatW(format);
            EXPECT_TRUE(IsClipboardFormatAvailable(mark));
            // Before the text, or a clipboard monitor could read it without the mark.
            EXPECT_NE(std::find(formats.begin(), text, mark), text);
        }
        EXPECT_EQ(prompt.Text(OB_PASSWORD_HINT).rfind(L"Copied.", 0), 0U);
        prompt.Type(kFirst, L"own");
        EXPECT_FALSE(IsWindowEnabled(prompt.Item(OB_PASSWORD_COPY)));
        prompt.Type(kRepeat, L"own");
        EXPECT_EQ(prompt.Text(OB_PASSWORD_HINT), L"");
    };
    EXPECT_EQ(Ask(act), PromptResult::Cancelled);
}

TEST_F(PasswordPromptTest, CopyingFailsWithASentenceWhileAnotherProgramHasTheClipboardOpen) {
    const auto act = [&](const PromptOnScreen& prompt) {
        prompt.Press(OB_PASSWORD_SUGGEST);
        const HWND other =
            CreateWindowW(L"Static", L"", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr);
        EXPECT_TRUE(OpenClipboard(other));
        prompt.Press(OB_PASSWORD_COPY);
        CloseClipboard();
        DestroyWindow(other);
        EXPECT_EQ(prompt.Text(OB_PASSWORD_HINT),
                  L"The password could not be copied. Please try again.");
    };
    EXPECT_EQ(Ask(act), PromptResult::Cancelled);
}

UINT WINAPI NoClipboardFormat(const wchar_t*) { return 0; }

TEST_F(PasswordPromptTest, CopyingFailsWithASentenceWhenAMarkCannotBeSet) {
    const obtest::ImportPatch<decltype(&RegisterClipboardFormatW)> formats(
        "user32.dll", "RegisterClipboardFormatW", &NoClipboardFormat);
    ASSERT_TRUE(formats.Ok());
    const auto act = [&](const PromptOnScreen& prompt) {
        prompt.Press(OB_PASSWORD_SUGGEST);
        prompt.Press(OB_PASSWORD_COPY);
        EXPECT_EQ(prompt.Text(OB_PASSWORD_HINT),
                  L"The password could not be copied. Please try again.");
        EXPECT_EQ(ClipboardText(), L"(none)");
    };
    EXPECT_EQ(Ask(act), PromptResult::Cancelled);
}

// The last timer that the prompt set for the thread and not for a window; the test lets it elapse.
UINT lifetime = 0;
TIMERPROC onLifetimeOver = nullptr;
decltype(&SetTimer) realSetTimer = nullptr;
bool elapsesAtOnce = false;

UINT_PTR WINAPI NoteTimer(HWND window, UINT_PTR id, UINT interval, TIMERPROC proc) {
    if (window) return realSetTimer(window, id, interval, proc);
    lifetime = interval;
    onLifetimeOver = proc;
    return elapsesAtOnce ? realSetTimer(window, id, USER_TIMER_MINIMUM, proc) : 4711;
}

// Copies a suggestion, whose timer the test controls.
class CopiedPasswordTest : public PasswordPromptTest {
protected:
    void SetUp() override {
        ASSERT_TRUE(timers_.Ok());
        realSetTimer = timers_.Real();
        lifetime = 0;
        onLifetimeOver = nullptr;
        elapsesAtOnce = false;
    }

    void Copy(const PromptOnScreen& prompt) {
        prompt.Press(OB_PASSWORD_SUGGEST);
        prompt.Press(OB_PASSWORD_COPY);
        phrase_ = prompt.Text(kFirst);
    }

    static void CopyElsewhere(const wchar_t* text) {
        ASSERT_TRUE(OpenClipboard(nullptr));
        EmptyClipboard();
        const std::size_t size = (std::wcslen(text) + 1) * sizeof(wchar_t);
        const HGLOBAL memory = GlobalAlloc(GMEM_MOVEABLE, size);
        std::memcpy(GlobalLock(memory), text, size);
        GlobalUnlock(memory);
        SetClipboardData(CF_UNICODETEXT, memory);
        CloseClipboard();
    }

    std::wstring phrase_;

private:
    obtest::ImportPatch<decltype(&SetTimer)> timers_{"user32.dll", "SetTimer", &NoteTimer};
};

TEST_F(CopiedPasswordTest, IsClearedAfterAMinuteWhileThePromptIsOpen) {
    elapsesAtOnce = true;
    const auto act = [&](const PromptOnScreen& prompt) {
        Copy(prompt);
        EXPECT_EQ(lifetime, 60'000U);
        EXPECT_TRUE(obtest::WaitUntil([] { return ClipboardText() == L"(none)"; }));
        EXPECT_EQ(prompt.Text(kFirst), phrase_);
    };
    EXPECT_EQ(Ask(act), PromptResult::Cancelled);
}

TEST_F(CopiedPasswordTest, StaysAfterOkAndIsClearedAfterTheMinute) {
    const auto act = [&](const PromptOnScreen& prompt) {
        Copy(prompt);
        prompt.Press(IDOK);
    };
    EXPECT_EQ(Ask(act), PromptResult::Given);
    EXPECT_EQ(ClipboardText(), phrase_);
    ASSERT_TRUE(onLifetimeOver);
    onLifetimeOver(nullptr, WM_TIMER, 4711, 0);
    EXPECT_EQ(ClipboardText(), L"(none)");
}

TEST_F(CopiedPasswordTest, IsClearedWhenThePromptIsCancelled) {
    const auto act = [&](const PromptOnScreen& prompt) {
        Copy(prompt);
        EXPECT_EQ(ClipboardText(), phrase_);
    };
    EXPECT_EQ(Ask(act), PromptResult::Cancelled);
    EXPECT_EQ(ClipboardText(), L"(none)");
}

TEST_F(CopiedPasswordTest, IsNotClearedOnceSomethingElseWasCopied) {
    const auto act = [&](const PromptOnScreen& prompt) {
        Copy(prompt);
        CopyElsewhere(L"something else");
        prompt.Press(IDOK);
    };
    EXPECT_EQ(Ask(act), PromptResult::Given);
    ASSERT_TRUE(onLifetimeOver);
    onLifetimeOver(nullptr, WM_TIMER, 4711, 0);
    EXPECT_EQ(ClipboardText(), L"something else");
}

TEST_F(CopiedPasswordTest, IsClearedASecondLaterWhenAnotherProgramHasTheClipboardOpen) {
    const auto act = [&](const PromptOnScreen& prompt) {
        Copy(prompt);
        prompt.Press(IDOK);
    };
    EXPECT_EQ(Ask(act), PromptResult::Given);
    ASSERT_TRUE(onLifetimeOver);
    // On another thread: the one that has the clipboard open can open it again.
    HANDLE opened = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    HANDLE tried = CreateEventW(nullptr, TRUE, FALSE, nullptr);
    std::thread other([&] {
        const HWND window =
            CreateWindowW(L"Static", L"", WS_POPUP, 0, 0, 1, 1, nullptr, nullptr, nullptr, nullptr);
        EXPECT_TRUE(OpenClipboard(window));
        SetEvent(opened);
        WaitForSingleObject(tried, 10000);
        CloseClipboard();
        DestroyWindow(window);
    });
    WaitForSingleObject(opened, 10000);
    onLifetimeOver(nullptr, WM_TIMER, 4711, 0);
    EXPECT_EQ(lifetime, 1000U);
    SetEvent(tried);
    other.join();
    EXPECT_EQ(ClipboardText(), phrase_);
    onLifetimeOver(nullptr, WM_TIMER, 4711, 0);
    EXPECT_EQ(ClipboardText(), L"(none)");
    CloseHandle(opened);
    CloseHandle(tried);
}

std::atomic<bool> capsLockIsOn = false;

SHORT WINAPI FakeKeyState(int key) {
    return key == VK_CAPITAL && capsLockIsOn ? SHORT{1} : SHORT{0};
}

bool WaitForHint(const PromptOnScreen& prompt, const std::wstring& expected) {
    return obtest::WaitUntil([&] { return prompt.Text(OB_PASSWORD_HINT) == expected; });
}

TEST_F(PasswordPromptTest, AHintShowsThatCapsLockIsOn) {
    // The state of a key needs a real keyboard.
    const obtest::ImportPatch<decltype(&GetKeyState)> keys("user32.dll", "GetKeyState",
                                                           &FakeKeyState);
    const auto act = [&](const PromptOnScreen& prompt) {
        EXPECT_EQ(prompt.Text(OB_PASSWORD_HINT), L"");
        capsLockIsOn = true;
        EXPECT_TRUE(WaitForHint(prompt, L"Caps Lock is on."));
        prompt.Type(kFirst, L"a");
        prompt.Type(kRepeat, L"b");
        EXPECT_EQ(prompt.Text(OB_PASSWORD_HINT),
                  L"Caps Lock is on.\nThe two passwords are not the same.");
        capsLockIsOn = false;
        EXPECT_TRUE(WaitForHint(prompt, L"The two passwords are not the same."));
    };
    EXPECT_EQ(Ask(act), PromptResult::Cancelled);
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

TEST_F(PasswordPromptTest, ThePromptOpensWhenTheOwnerNoLongerExists) {
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
