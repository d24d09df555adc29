// The tips of controls that a policy took away.
#include "OBCore/settings/PolicyHints.h"

#include <commctrl.h>

#include "OBCore/modules/ResourceModule.h"
#include "tests/unit/WebVellant/OBCore/settings/OptionsFixture.h"

namespace {

using obcore::PolicyHints;

constexpr int kIds[] = {1, 2, 3, 4, 99};

class PolicyHintsOfADialog : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(obcore::BindResourceModule());
        const INITCOMMONCONTROLSEX classes{sizeof classes, ICC_BAR_CLASSES};
        InitCommonControlsEx(&classes);
        dialog_.Reset(CreateWindowExW(0, L"Static", L"", WS_OVERLAPPEDWINDOW | WS_VISIBLE, 50, 50,
                                      400, 300, nullptr, nullptr, nullptr, nullptr));
        Add(1, WS_VISIBLE | WS_DISABLED, 10);
        Add(2, WS_VISIBLE, 50);
        Add(3, WS_DISABLED, 90);
        Add(4, WS_VISIBLE | WS_DISABLED, 130);
    }
    void Add(int id, DWORD style, int top) {
        CreateWindowExW(0, L"Button", L"", WS_CHILD | style, 20, top, 100, 30, dialog_.Get(),
                        reinterpret_cast<HMENU>(static_cast<INT_PTR>(id)), nullptr, nullptr);
    }
    static LRESULT Count(const PolicyHints& hints) {
        return SendMessageW(hints.Window(), TTM_GETTOOLCOUNT, 0, 0);
    }
    // The text of the tip at a place of the dialog; empty where there is none.
    std::wstring TipAt(const PolicyHints& hints, int x, int y) const {
        wchar_t text[200] = L"";
        TTHITTESTINFOW test{};
        test.hwnd = dialog_.Get();
        test.pt = {x, y};
        test.ti.cbSize = TTTOOLINFOW_V2_SIZE;
        if (!SendMessageW(hints.Window(), TTM_HITTESTW, 0, reinterpret_cast<LPARAM>(&test))) {
            return L"";
        }
        TTTOOLINFOW tool{};
        tool.cbSize = TTTOOLINFOW_V2_SIZE;
        tool.hwnd = dialog_.Get();
        tool.uId = test.ti.uId;
        tool.lpszText = text;
        SendMessageW(hints.Window(), TTM_GETTEXTW, std::size(text),
                     reinterpret_cast<LPARAM>(&tool));
        return text;
    }

    ObLib::UniqueWindow dialog_;
};

TEST_F(PolicyHintsOfADialog, SayWhoDecidedWhereAControlIsShownAndDisabled) {
    PolicyHints hints;
    hints.Show(dialog_.Get(), kIds);
    EXPECT_EQ(2, Count(hints));
    const std::wstring text = obcore::LoadText(obcore::TextId::DecidedByAdministrator);
    ASSERT_FALSE(text.empty());
    EXPECT_EQ(text, TipAt(hints, 21, 11));
    EXPECT_EQ(text, TipAt(hints, 119, 159));
    for (const int y : {9, 41, 60, 100}) EXPECT_EQ(L"", TipAt(hints, 30, y)) << y;
    EXPECT_EQ(L"", TipAt(hints, 121, 20));
    EXPECT_EQ(dialog_.Get(), GetWindow(hints.Window(), GW_OWNER));
}

TEST_F(PolicyHintsOfADialog, MoveWithTheirControlsWhenTheyAreShownAgain) {
    PolicyHints hints;
    hints.Show(dialog_.Get(), kIds);
    SetWindowPos(GetDlgItem(dialog_.Get(), 1), nullptr, 200, 200, 0, 0, SWP_NOSIZE | SWP_NOZORDER);
    hints.Show(dialog_.Get(), kIds);
    EXPECT_EQ(2, Count(hints));
    EXPECT_EQ(L"", TipAt(hints, 30, 20));
    EXPECT_NE(L"", TipAt(hints, 210, 210));
}

TEST_F(PolicyHintsOfADialog, HaveNoWindowWithoutAControlThatWasTakenAway) {
    PolicyHints hints;
    const int ids[] = {2, 3, 99};
    hints.Show(dialog_.Get(), ids);
    EXPECT_EQ(nullptr, hints.Window());
}

TEST_F(PolicyHintsOfADialog, ComeBackInTheNextWindow) {
    PolicyHints hints;
    hints.Show(dialog_.Get(), kIds);
    SetUp();
    hints.Show(dialog_.Get(), kIds);
    EXPECT_EQ(2, Count(hints));
    EXPECT_NE(L"", TipAt(hints, 30, 20));
}

// The window's own tips, by the real mouse.
class PolicyHintsByMouse : public obtest::OptionsFixture {};

TEST_F(PolicyHintsByMouse, AppearOverTheBrowserGroupThatAPolicyDisabled) {
    options_.DisableWebVellant = true;
    Show([](const obtest::OpenDialog& dialog) {
        RECT button{};
        GetWindowRect(dialog.Item(OB_OPTIONS_EDGE), &button);
        const auto isTip = [](HWND window) {
            return obtest::ClassOf(window) == TOOLTIPS_CLASSW && IsWindowVisible(window);
        };
        SetCursorPos(button.left + 6, button.top + 6);
        INPUT move{.type = INPUT_MOUSE, .mi = {.dx = 1, .dy = 1, .dwFlags = MOUSEEVENTF_MOVE}};
        SendInput(1, &move, sizeof move);
        const HWND tip = obtest::WaitForTopWindow(isTip, GetCurrentProcessId(), 5000);
        ASSERT_NE(nullptr, tip);
        EXPECT_EQ(obcore::LoadText(obcore::TextId::DecidedByAdministrator), obtest::TextOf(tip));
    });
}

TEST_F(PolicyHintsByMouse, AreNotThereWithoutThePolicy) {
    Show([](const obtest::OpenDialog& dialog) {
        int tips = 0;
        EnumThreadWindows(
            GetWindowThreadProcessId(dialog.window, nullptr),
            [](HWND window, LPARAM count) -> BOOL {
                TTTOOLINFOW tool{};
                tool.cbSize = TTTOOLINFOW_V2_SIZE;
                tool.hwnd = GetWindow(window, GW_OWNER);
                tool.uId = OB_OPTIONS_EDGE;
                if (obtest::ClassOf(window) == TOOLTIPS_CLASSW &&
                    SendMessageW(window, TTM_GETTOOLINFOW, 0, reinterpret_cast<LPARAM>(&tool))) {
                    ++*reinterpret_cast<int*>(count);
                }
                return TRUE;
            },
            reinterpret_cast<LPARAM>(&tips));
        EXPECT_EQ(0, tips);
    });
}

} // namespace
