// The question for a PDF's password, operated as a user does; and what memory keeps of the
// password.
#include "services/providers/ui/PdfPasswordDialog.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

#include "contracts/TransformWork.h"
#include "services/providers/ui/PdfPasswordDialogIds.h"
#include "tests/unit/services/providers/ui/DialogUiDriver.h"
#include "tests/unit/services/providers/ui/MaskedLetters.h"

using namespace providers;
using obtest::DialogUiDriver;
using obtest::kMasked;
using obtest::Letter;
using obtest::TimesInMemory;

namespace {

HWND Field(HWND dialog) { return GetDlgItem(dialog, OB_PDF_PASSWORD_TEXT); }

class PdfPasswordDialog : public testing::Test {
protected:
    PasswordAnswer Ask(const std::function<void(HWND)>& use) {
        DialogUiDriver user(OB_PDF_PASSWORD_TEXT, use);
        return AskForPdfPassword(nullptr, L"A sentence.", password_);
    }
    PasswordAnswer Type(const wchar_t* text, int button = IDOK) {
        return Ask([&](HWND dialog) {
            SetWindowTextW(Field(dialog), text);
            DialogUiDriver::Press(dialog, button);
        });
    }

    ObLib::Secret password_;
};

TEST_F(PdfPasswordDialog, ShowsTheSentenceAndBeginsInTheField) {
    EXPECT_EQ(Ask([](HWND dialog) {
                  EXPECT_EQ(obtest::TextOf(GetDlgItem(dialog, OB_PDF_PASSWORD_SENTENCE)),
                            L"A sentence.");
                  GUITHREADINFO info{sizeof info};
                  EXPECT_TRUE(GetGUIThreadInfo(GetWindowThreadProcessId(dialog, nullptr), &info));
                  EXPECT_EQ(info.hwndFocus, Field(dialog));
                  EXPECT_EQ(SendMessageW(dialog, DM_GETDEFID, 0, 0), MAKELONG(IDOK, DC_HASDEFID));
                  DialogUiDriver::Press(dialog, IDCANCEL);
              }),
              PasswordAnswer::Cancelled);
}

TEST_F(PdfPasswordDialog, GivesThePasswordAsUtf8) {
    EXPECT_EQ(Type(L"p\u00E4ss \U0001F511"), PasswordAnswer::Given);
    EXPECT_STREQ(password_.Text(), "p\xC3\xA4ss \xF0\x9F\x94\x91");
}

TEST_F(PdfPasswordDialog, CutsThePasswordAsTheFormatDoes) {
    EXPECT_EQ(Type(std::wstring(200, L'\u00E4').c_str()), PasswordAnswer::Given);
    EXPECT_EQ(password_.Bytes().size(), obcontract::kMostPasswordBytes);
}

// The Enter key reports OK also while the button is disabled.
TEST_F(PdfPasswordDialog, StaysOpenWhenEnterIsPressedInTheEmptyField) {
    EXPECT_EQ(Ask([](HWND dialog) {
                  SendMessageW(dialog, WM_COMMAND, IDOK, 0);
                  EXPECT_TRUE(IsWindow(dialog));
                  SetWindowTextW(Field(dialog), L"secret");
                  SendMessageW(dialog, WM_COMMAND, IDOK, 0);
              }),
              PasswordAnswer::Given);
    EXPECT_STREQ(password_.Text(), "secret");
}

TEST_F(PdfPasswordDialog, GivesNoneWithoutOk) {
    EXPECT_EQ(Type(L"secret", OB_PDF_PASSWORD_LEAVE), PasswordAnswer::LeaveAsItIs);
    EXPECT_EQ(Type(L"secret", IDCANCEL), PasswordAnswer::Cancelled);
    EXPECT_TRUE(password_.Empty());
}

TEST_F(PdfPasswordDialog, HasOkWithAPasswordAlone) {
    EXPECT_EQ(Ask([](HWND dialog) {
                  const HWND ok = GetDlgItem(dialog, IDOK);
                  EXPECT_FALSE(IsWindowEnabled(ok));
                  SetWindowTextW(Field(dialog), L"s");
                  EXPECT_TRUE(IsWindowEnabled(ok));
                  SetWindowTextW(Field(dialog), L"");
                  EXPECT_FALSE(IsWindowEnabled(ok));
                  DialogUiDriver::Press(dialog, IDCANCEL);
              }),
              PasswordAnswer::Cancelled);
}

TEST_F(PdfPasswordDialog, ShowsThePasswordWhileTheBoxIsTicked) {
    EXPECT_EQ(Ask([](HWND dialog) {
                  const auto dot = [&] {
                      return SendMessageW(Field(dialog), EM_GETPASSWORDCHAR, 0, 0);
                  };
                  const LRESULT hidden = dot();
                  EXPECT_NE(hidden, 0);
                  DialogUiDriver::Press(dialog, OB_PDF_PASSWORD_SHOW);
                  EXPECT_EQ(dot(), 0);
                  DialogUiDriver::Press(dialog, OB_PDF_PASSWORD_SHOW);
                  EXPECT_EQ(dot(), hidden);
                  DialogUiDriver::Press(dialog, IDCANCEL);
              }),
              PasswordAnswer::Cancelled);
}

TEST_F(PdfPasswordDialog, KeepsNoCopyOfThePassword) {
    for (const int button : {IDOK, OB_PDF_PASSWORD_LEAVE, IDCANCEL}) {
        Ask([&](HWND dialog) {
            for (std::size_t index = 0; index < std::size(kMasked); ++index) {
                SendMessageW(Field(dialog), WM_CHAR, Letter(index), 1);
            }
            DialogUiDriver::Press(dialog, button);
        });
        EXPECT_EQ(TimesInMemory(1), button == IDOK ? 1 : 0); // the caller's
        EXPECT_EQ(TimesInMemory(2), 0);
        password_ = {};
        EXPECT_EQ(TimesInMemory(1), 0);
    }
}

} // namespace
