// The password of a link, operated as a user does; and what memory and clipboard keep of it.
#include "services/providers/storage/LinkPasswordDialog.h"

#include <windows.h>

#include <gtest/gtest.h>

#include <functional>
#include <iterator>
#include <string>

#include "ObLib/Src/Win32/SecretClipboard.h"
#include "services/providers/storage/LinkPasswordDialogIds.h"
#include "tests/support/WindowKit.h"
#include "tests/unit/services/providers/ui/DialogUiDriver.h"
#include "tests/unit/services/providers/ui/MaskedLetters.h"

namespace {

using obtest::DialogUiDriver;

constexpr wchar_t kPassword[] = L"Tr4ve-Moss-Quill";

std::wstring ClipboardText() {
    if (!OpenClipboard(nullptr)) return L"(busy)";
    std::wstring text;
    if (const HANDLE memory = GetClipboardData(CF_UNICODETEXT)) {
        text = static_cast<const wchar_t*>(GlobalLock(memory));
        GlobalUnlock(memory);
    }
    CloseClipboard();
    return text;
}

class LinkPassword : public testing::Test {
protected:
    bool Show(const std::function<void(HWND)>& use, const std::wstring& name = L"a.zip") {
        DialogUiDriver user(OB_LINK_PASSWORD_TEXT, use);
        const bool isShown = providers::ShowLinkPassword(nullptr, name, kPassword);
        EXPECT_TRUE(user.WasUsed());
        return isShown;
    }
};

TEST_F(LinkPassword, IsShownWithWhatToDoAndCopyInFocus) {
    EXPECT_TRUE(Show([](HWND dialog) {
        EXPECT_EQ(obtest::TextOf(dialog), L"Password of the link");
        EXPECT_EQ(obtest::TextOf(GetDlgItem(dialog, OB_LINK_PASSWORD_TEXT)), kPassword);
        EXPECT_EQ(obtest::TextOf(GetDlgItem(dialog, OB_LINK_PASSWORD_SENTENCE)),
                  L"The link to “a.zip” opens only with this password, which isn't in the mail. "
                  L"Please send it to the receivers another way, such as a phone call or a text "
                  L"message. It isn't stored and won't be shown again.");
        const LONG_PTR style =
            GetWindowLongPtrW(GetDlgItem(dialog, OB_LINK_PASSWORD_TEXT), GWL_STYLE);
        EXPECT_TRUE(style & ES_READONLY);
        GUITHREADINFO info{sizeof info};
        EXPECT_TRUE(GetGUIThreadInfo(GetWindowThreadProcessId(dialog, nullptr), &info));
        EXPECT_EQ(info.hwndFocus, GetDlgItem(dialog, OB_LINK_PASSWORD_COPY));
        DialogUiDriver::Press(dialog, IDOK);
    }));
}

TEST_F(LinkPassword, IsShownWithAShortFormOfALongName) {
    std::size_t length = 59;
    const auto use = [&](HWND dialog) {
        const std::wstring text = obtest::TextOf(GetDlgItem(dialog, OB_LINK_PASSWORD_SENTENCE));
        EXPECT_EQ(text.rfind(L"The link to “" + std::wstring(length, L'x') + L"…” opens", 0), 0u);
        DialogUiDriver::Press(dialog, IDOK);
    };
    EXPECT_TRUE(Show(use, std::wstring(200, L'x') + L".zip"));
    length = 58; // half of the next character has no room
    EXPECT_TRUE(Show(use, std::wstring(58, L'x') + L"\xD83D\xDE00.zip"));
}

TEST_F(LinkPassword, WasShownAlsoWhenTheUserPressesEscape) {
    EXPECT_TRUE(Show([](HWND dialog) { PostMessageW(dialog, WM_COMMAND, IDCANCEL, 0); }));
}

TEST_F(LinkPassword, IsCopiedAndKeptOutOfTheHistory) {
    EXPECT_TRUE(Show([](HWND dialog) {
        DialogUiDriver::Press(dialog, OB_LINK_PASSWORD_COPY);
        EXPECT_EQ(obtest::TextOf(GetDlgItem(dialog, OB_LINK_PASSWORD_STATE)),
                  L"Copied. You can paste it now.");
        EXPECT_TRUE(
            IsClipboardFormatAvailable(RegisterClipboardFormatW(L"CanIncludeInClipboardHistory")));
        DialogUiDriver::Press(dialog, IDOK);
    }));
    EXPECT_EQ(ClipboardText(), kPassword) << "the user pastes it after the dialog is closed";
    ObLib::ForgetCopiedSecret();
    EXPECT_EQ(ClipboardText(), L"");
}

TEST_F(LinkPassword, IsCopiedWholeAndMarkedByCtrlCInItsField) {
    EXPECT_TRUE(Show([](HWND dialog) {
        const HWND field = GetDlgItem(dialog, OB_LINK_PASSWORD_TEXT);
        SendMessageW(field, EM_SETSEL, 0, 1);
        SendMessageW(field, WM_COPY, 0, 0); // as Ctrl+C and the field's menu do
        EXPECT_EQ(obtest::TextOf(GetDlgItem(dialog, OB_LINK_PASSWORD_STATE)),
                  L"Copied. You can paste it now.");
        EXPECT_TRUE(
            IsClipboardFormatAvailable(RegisterClipboardFormatW(L"CanIncludeInClipboardHistory")));
        DialogUiDriver::Press(dialog, IDOK);
    }));
    EXPECT_EQ(ClipboardText(), kPassword) << "whole, also where one character was selected";
    ObLib::ForgetCopiedSecret();
}

TEST_F(LinkPassword, IsExplainedWhenItCantBeCopied) {
    EXPECT_TRUE(Show([](HWND dialog) {
        ASSERT_TRUE(OpenClipboard(nullptr)); // by another thread
        DialogUiDriver::Press(dialog, OB_LINK_PASSWORD_COPY);
        CloseClipboard();
        EXPECT_EQ(obtest::TextOf(GetDlgItem(dialog, OB_LINK_PASSWORD_STATE)),
                  L"It can't be copied now. Please try again.");
        DialogUiDriver::Press(dialog, IDOK);
    }));
}

TEST_F(LinkPassword, IsOverwrittenInItsField) {
    EXPECT_TRUE(Show([](HWND dialog) {
        // The field is wiped when the dialog is destroyed.
        const HWND field = GetDlgItem(dialog, OB_LINK_PASSWORD_TEXT);
        static std::wstring after;
        static WNDPROC before;
        before = reinterpret_cast<WNDPROC>(SetWindowLongPtrW(
            field, GWLP_WNDPROC,
            reinterpret_cast<LONG_PTR>(
                +[](HWND window, UINT message, WPARAM wParam, LPARAM lParam) -> LRESULT {
                    if (message == WM_DESTROY) after = L"[" + obtest::TextOf(window) + L"]";
                    return CallWindowProcW(before, window, message, wParam, lParam);
                })));
        DialogUiDriver::Press(dialog, IDOK);
        EXPECT_TRUE(obtest::WaitUntil([] { return !after.empty(); }));
        EXPECT_EQ(after, L"[]");
    }));
}

TEST_F(LinkPassword, LeavesNoCopyInMemory) {
    for (const int button : {IDOK, IDCANCEL}) {
        std::wstring password(std::size(obtest::kMasked), L' ');
        for (std::size_t at = 0; at < password.size(); ++at) password[at] = obtest::Letter(at);
        DialogUiDriver user(OB_LINK_PASSWORD_TEXT, [&](HWND dialog) {
            EXPECT_GE(obtest::TimesInMemory(2), 2) << "the caller's and the field's";
            PostMessageW(dialog, WM_COMMAND, static_cast<WPARAM>(button), 0);
        });
        EXPECT_TRUE(providers::ShowLinkPassword(nullptr, L"a.zip", password));
        EXPECT_EQ(obtest::TimesInMemory(2), 1) << "the caller's";
        EXPECT_EQ(obtest::TimesInMemory(1), 0);
        SecureZeroMemory(password.data(), password.size() * sizeof(wchar_t));
    }
}

} // namespace
