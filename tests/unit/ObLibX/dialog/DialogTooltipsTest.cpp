// The tooltips of a dialog: which windows have one, and how long they live.
#include "ObLibX/src/dialog/Tooltips.h"

#include <commctrl.h>

#include <algorithm>
#include <functional>

#include "tests/support/ImportPatch.h"
#include "tests/unit/ObLibX/dialog/DialogFixture.h"

namespace {

using ObLibX::ObXDlg;

class DialogTooltips : public DialogTest {
protected:
    static HWND Tips() { return FindWindowExW(nullptr, nullptr, TOOLTIPS_CLASSW, nullptr); }
};

std::wstring TipOf(HWND tips, const ObXDlg& dialog, int id) {
    wchar_t text[100] = {};
    TTTOOLINFOW info{};
    info.cbSize = TTTOOLINFOW_V2_SIZE;
    info.hwnd = dialog.window;
    info.uId = reinterpret_cast<UINT_PTR>(dialog.GetItem(id, true));
    info.lpszText = text;
    SendMessageW(tips, TTM_GETTEXTW, 100, reinterpret_cast<LPARAM>(&info));
    return text;
}

TEST_F(DialogTooltips, HaveTheirTextStyleAndDelay) {
    RecordingDialog dialog(OB_TEST_PLAIN);
    dialog.Open();
    const std::wstring first = L"First";
    const std::wstring second = L"Second";
    dialog.AddTooltip(dialog.GetItem(1001, true), first.c_str());
    dialog.AddTooltip(dialog.GetItem(1003, true), second.c_str());
    const HWND tips = Tips();
    ASSERT_NE(nullptr, tips);
    EXPECT_EQ(dialog.window, GetWindow(tips, GW_OWNER));
    EXPECT_EQ(2, SendMessageW(tips, TTM_GETTOOLCOUNT, 0, 0));
    EXPECT_EQ(300, SendMessageW(tips, TTM_GETMAXTIPWIDTH, 0, 0));
    EXPECT_EQ(500, SendMessageW(tips, TTM_GETDELAYTIME, TTDT_INITIAL, 0));
    EXPECT_EQ(L"Second", TipOf(tips, dialog, 1003));
    EXPECT_EQ(static_cast<LONG_PTR>(WS_EX_TOPMOST),
              GetWindowLongPtrW(tips, GWL_EXSTYLE) & WS_EX_TOPMOST);
    const LONG_PTR style = GetWindowLongPtrW(tips, GWL_STYLE);
    EXPECT_TRUE((style & TTS_ALWAYSTIP) != 0 && (style & TTS_NOPREFIX) != 0);
    DestroyWindow(dialog.window);
    EXPECT_FALSE(IsWindow(tips));
}

// Messages that were sent to a window which isn't known yet.
std::vector<std::pair<UINT, WPARAM>> sentMessages;
LRESULT WINAPI RecordedSend(HWND window, UINT message, WPARAM wParam, LPARAM lParam) {
    static const auto real = reinterpret_cast<decltype(&SendMessageW)>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"user32.dll"), "SendMessageW")));
    sentMessages.emplace_back(message, wParam);
    return real(window, message, wParam, lParam);
}

TEST_F(DialogTooltips, AreSwitchedOnAndHearTheMouseThemselves) {
    RecordingDialog dialog(OB_TEST_PLAIN);
    dialog.Open();
    sentMessages.clear();
    {
        const obtest::ImportPatch<decltype(&SendMessageW)> patch("user32.dll", "SendMessageW",
                                                                 &RecordedSend);
        ASSERT_TRUE(patch.Ok());
        dialog.AddTooltip(dialog.GetItem(1003, true), L"Tip");
    }
    const std::pair<UINT, WPARAM> on{TTM_ACTIVATE, TRUE};
    EXPECT_NE(sentMessages.end(), std::ranges::find(sentMessages, on));
    const HWND tips = Tips();
    TTTOOLINFOW info{};
    info.cbSize = TTTOOLINFOW_V2_SIZE;
    info.hwnd = dialog.window;
    info.uId = reinterpret_cast<UINT_PTR>(dialog.GetItem(1003, true));
    ASSERT_TRUE(SendMessageW(tips, TTM_GETTOOLINFOW, 0, reinterpret_cast<LPARAM>(&info)));
    constexpr UINT kWanted = TTF_IDISHWND | TTF_SUBCLASS;
    EXPECT_EQ(kWanted, info.uFlags & kWanted);
}

// Moves the mouse on a window and dispatches messages until `isDone` or five seconds have passed.
bool HoverUntil(HWND window, const std::function<bool()>& isDone) {
    RECT rect{};
    GetWindowRect(window, &rect);
    const ULONGLONG begin = GetTickCount64();
    for (int step = 0; GetTickCount64() - begin < 5000 && !isDone(); ++step) {
        if (step < 2) {
            SetCursorPos(rect.left + 3 + step, rect.top + 3);
            INPUT input{};
            input.type = INPUT_MOUSE;
            input.mi.dwFlags = MOUSEEVENTF_MOVE;
            SendInput(1, &input, sizeof input);
        }
        MsgWaitForMultipleObjects(0, nullptr, FALSE, 50, QS_ALLINPUT);
        MSG message;
        while (PeekMessageW(&message, nullptr, 0, 0, PM_REMOVE)) DispatchMessageW(&message);
    }
    return isDone();
}

TEST_F(DialogTooltips, OfALabelAreShownToo) {
    RecordingDialog dialog(OB_TEST_PLAIN);
    dialog.Open();
    ShowWindow(dialog.window, SW_SHOW);
    const HWND label = dialog.GetItem(1001, true);
    EXPECT_EQ(HTTRANSPARENT, SendMessageW(label, WM_NCHITTEST, 0, 0));
    dialog.AddTooltip(label, L"Tip");
    EXPECT_EQ(HTCLIENT, SendMessageW(label, WM_NCHITTEST, 0, 0));
    const HWND tips = Tips();
    EXPECT_TRUE(HoverUntil(label, [&] { return IsWindowVisible(tips) != FALSE; }));
}

// The system gives them the window that the page is on as their owner, and that stays.
TEST_F(DialogTooltips, EndWithAPage) {
    RecordingDialog sheet(OB_TEST_PLAIN);
    sheet.Open();
    RecordingDialog page(OB_TEST_PAGE);
    page.Create(sheet.window);
    page.AddTooltip(page.GetItem(1001, true), L"Tip");
    const HWND tips = Tips();
    ASSERT_EQ(sheet.window, GetWindow(tips, GW_OWNER));
    DestroyWindow(page.window);
    EXPECT_FALSE(IsWindow(tips));
}

TEST_F(DialogTooltips, EndWithTheObjectOfAPage) {
    RecordingDialog sheet(OB_TEST_PLAIN);
    sheet.Open();
    HWND tips = nullptr;
    {
        RecordingDialog page(OB_TEST_PAGE);
        page.Create(sheet.window);
        page.AddTooltip(page.GetItem(1001, true), L"Tip");
        tips = Tips();
        ASSERT_EQ(sheet.window, GetWindow(tips, GW_OWNER));
    }
    EXPECT_FALSE(IsWindow(tips));
}

TEST_F(DialogTooltips, AreThereWhenTheDialogIsOpenedAgain) {
    RecordingDialog dialog(OB_TEST_PLAIN);
    for (int opening = 0; opening < 2; ++opening) {
        dialog.Open();
        dialog.AddTooltip(dialog.GetItem(1001, true), L"Tip");
        const HWND tips = Tips();
        EXPECT_EQ(1, SendMessageW(tips, TTM_GETTOOLCOUNT, 0, 0)) << opening;
        DestroyWindow(dialog.window);
    }
}

} // namespace
