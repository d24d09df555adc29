// The host of flat scroll bars: holders and their places, state that is copied, and windows that go
// first or can't be made.
#include "ObLibX/src/controls/ScrollBarHost.h"

#include <algorithm>
#include <optional>
#include <set>

#include "ObLibX/src/controls/HolderMenu.h"
#include "ObLibX/src/utilities/ObUtil.h"
#include "tests/unit/ObLibX/controls/HostFixture.h"

namespace {

using namespace ObLibX;
using namespace obtest;

class HostHolders : public HostTest {
protected:
    // In the coordinates of the parent.
    static PixelRect In(HWND window) { return AsPixels(PlaceOf(window)); }
    // Which window the mouse is over in the middle of a bar, as far as windows are enabled.
    static HWND WindowFromBar(HWND bar) {
        const PixelPoint middle = ClientArea(bar).Centre();
        return ChildWindowFromPointEx(GetParent(bar), {middle.x, middle.y}, CWP_SKIPDISABLED);
    }
};

TEST_F(HostHolders, AreThreeWindowsOfTheHostsParentInFrontOfIt) {
    const HWND holders[] = {Vertical(), Horizontal(), Corner()};
    for (const HWND holder : holders) {
        wchar_t name[40] = {};
        GetClassNameW(holder, name, 40);
        EXPECT_STREQ(L"SCROLLBARHOLDER", name);
        EXPECT_EQ(parent_.Get(), GetParent(holder));
        EXPECT_EQ(0, GetDlgCtrlID(holder)) << "a dialog dresses no window without an id";
        int after = 0;
        for (HWND next = holder; next != nullptr; next = GetWindow(next, GW_HWNDNEXT)) {
            if (next == host_) ++after;
        }
        EXPECT_EQ(1, after) << "in front of the host";
    }
    EXPECT_NE(0, GetWindowLongPtrW(host_, GWL_STYLE) & WS_CLIPSIBLINGS);
}

TEST_F(HostHolders, HaveAScrollBarOrAStaticInThem) {
    const struct {
        HWND holder;
        const wchar_t* name;
    } rows[] = {{Vertical(), L"ScrollBar"}, {Horizontal(), L"ScrollBar"}, {Corner(), L"Static"}};
    for (const auto& row : rows) {
        const HWND child = GetWindow(row.holder, GW_CHILD);
        wchar_t name[40] = {};
        GetClassNameW(child, name, 40);
        EXPECT_STREQ(row.name, name);
        EXPECT_EQ(In(row.holder).Width(), ClientArea(child).Width());
        EXPECT_EQ(In(row.holder).Height(), ClientArea(child).Height());
        EXPECT_EQ(nullptr, GetWindow(child, GW_HWNDNEXT));
    }
    EXPECT_EQ(GetWindow(Vertical(), GW_CHILD), Bar(HolderKind::Vertical).window);
    EXPECT_EQ(ScrollOrientation::Vertical, Bar(HolderKind::Vertical).Orientation());
    EXPECT_EQ(ScrollOrientation::Horizontal, Bar(HolderKind::Horizontal).Orientation());
    EXPECT_EQ(nullptr, bars_.Holder(HolderKind::Corner).Bar());
    EXPECT_EQ(0, static_cast<int>(HolderKind::Horizontal));
    EXPECT_EQ(1, static_cast<int>(HolderKind::Vertical));
    EXPECT_EQ(2, static_cast<int>(HolderKind::Corner));
}

TEST_F(HostHolders, HaveAClassOfTheProgram) {
    WNDCLASSEXW row{};
    row.cbSize = sizeof row;
    ASSERT_TRUE(GetClassInfoExW(GetModuleHandleW(nullptr), L"SCROLLBARHOLDER", &row));
    EXPECT_EQ(UINT{CS_HREDRAW | CS_VREDRAW}, row.style);
    EXPECT_EQ(8, row.cbWndExtra);
    EXPECT_EQ(LoadCursorW(nullptr, IDC_ARROW), row.hCursor);
    EXPECT_EQ(reinterpret_cast<HBRUSH>(INT_PTR{COLOR_WINDOW + 1}), row.hbrBackground);
    ScrollBarHost second;
    const HWND other = MakeHost(0, 0);
    second.Attach(other);
    EXPECT_NE(nullptr, second.Holder(HolderKind::Vertical).Window()) << "registered already";
}

TEST_F(HostHolders, CoverTheHostsBars) {
    const int width = GetSystemMetrics(SM_CXVSCROLL);
    const int height = GetSystemMetrics(SM_CYHSCROLL);
    EXPECT_EQ((PixelRect{350 - width, 40, 350, 240 - height}), In(Vertical()));
    EXPECT_EQ((PixelRect{50, 240 - height, 350 - width, 240}), In(Horizontal()));
    EXPECT_EQ((PixelRect{350 - width, 240 - height, 350, 240}), In(Corner()));
    EXPECT_EQ(All(), Shown());
    EXPECT_EQ((PixelRect{0, 0, 300 - width, 200 - height}), ClientArea(host_))
        << "what the host's own bars leave";
}

TEST_F(HostHolders, LeaveTheHostsBorderOut) {
    const struct {
        DWORD style;
        DWORD extendedStyle;
        int border;
    } rows[] = {
        {WS_BORDER, 0, GetSystemMetrics(SM_CXBORDER)},
        {0, WS_EX_CLIENTEDGE, GetSystemMetrics(SM_CXEDGE)},
        {WS_BORDER, WS_EX_CLIENTEDGE, GetSystemMetrics(SM_CXBORDER) + GetSystemMetrics(SM_CXEDGE)}};
    for (const auto& row : rows) {
        DestroyWindow(host_);
        host_ = MakeHost(row.style, row.extendedStyle);
        bars_.Attach(host_);
        RECT client = AsRect(ClientArea(host_));
        MapWindowPoints(host_, parent_.Get(), reinterpret_cast<POINT*>(&client), 2);
        EXPECT_EQ(350 - row.border, In(Vertical()).right);
        EXPECT_EQ(240 - row.border, In(Corner()).bottom);
        EXPECT_EQ(client.right, In(Vertical()).left) << "beside the client area";
        EXPECT_EQ(client.bottom, In(Horizontal()).top);
    }
}

TEST_F(HostHolders, AreShownAsTheHostHasBars) {
    ShowScrollBar(host_, SB_HORZ, FALSE);
    EXPECT_EQ((std::array<bool, 3>{true, false, false}), Shown());
    EXPECT_EQ(240, In(Vertical()).bottom) << "to the end";
    ShowScrollBar(host_, SB_VERT, FALSE);
    EXPECT_EQ(None(), Shown());
    SetHost(host_, SB_HORZ, 300, 50, 7);
    ShowScrollBar(host_, SB_HORZ, TRUE);
    EXPECT_EQ((std::array<bool, 3>{false, true, false}), Shown());
    EXPECT_EQ(350, In(Horizontal()).right);
    EXPECT_EQ(7, Bar(HolderKind::Horizontal).Position()) << "with the state of the new bar";
    ShowScrollBar(host_, SB_BOTH, TRUE);
    EXPECT_EQ(All(), Shown());
}

TEST_F(HostHolders, FollowTheHost) {
    SetWindowPos(host_, nullptr, 10, 15, 300, 200, SWP_NOZORDER | SWP_NOSIZE);
    EXPECT_EQ(310, In(Vertical()).right);
    EXPECT_EQ(15, In(Vertical()).top);
    SetWindowPos(host_, nullptr, 0, 0, 120, 90, SWP_NOZORDER | SWP_NOMOVE);
    EXPECT_EQ(130, In(Corner()).right);
    EXPECT_EQ(105, In(Corner()).bottom);
    ShowWindow(host_, SW_HIDE);
    EXPECT_EQ(None(), Shown());
    ShowWindow(host_, SW_SHOW);
    EXPECT_EQ(All(), Shown());
    SetWindowPos(host_, nullptr, 0, 0, 0, 0, SWP_NOZORDER | SWP_NOMOVE);
    EXPECT_EQ(None(), Shown()) << "no room";
}

// As a dialog does before it is shown.
TEST_F(HostHolders, FollowTheHostInAHiddenDialog) {
    ShowWindow(parent_.Get(), SW_HIDE);
    ShowWindow(host_, SW_HIDE);
    EXPECT_EQ(None(), Shown());
    ShowWindow(host_, SW_SHOW);
    EXPECT_EQ(All(), Shown());
    ShowWindow(host_, SW_HIDE);
    ShowWindow(parent_.Get(), SW_SHOW);
    EXPECT_EQ(None(), Shown());
}

// As a program fills a list.
TEST_F(HostHolders, AreThereAfterAHostWasNotToBeRedrawn) {
    ShowScrollBar(host_, SB_BOTH, FALSE);
    SendMessageW(host_, WM_SETREDRAW, FALSE, 0);
    ShowScrollBar(host_, SB_VERT, TRUE);
    SendMessageW(host_, WM_SETREDRAW, FALSE, 0);
    SendMessageW(host_, WM_SETREDRAW, TRUE, 0);
    EXPECT_EQ((std::array<bool, 3>{true, false, false}), Shown());
    ShowWindow(host_, SW_HIDE);
    SendMessageW(host_, WM_SETREDRAW, FALSE, 0);
    ShowScrollBar(host_, SB_HORZ, TRUE);
    EXPECT_EQ(None(), Shown()) << "a hidden one";
}

TEST_F(HostHolders, StayInFrontOfAHostThatIsRaised) {
    SetWindowPos(host_, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
    for (const HWND holder : {Vertical(), Horizontal(), Corner()}) {
        HWND next = holder;
        while (next != nullptr && next != host_) next = GetWindow(next, GW_HWNDNEXT);
        EXPECT_EQ(host_, next);
    }
}

TEST_F(HostHolders, AreDisabledWithTheHost) {
    for (const bool isEnabled : {false, true, false}) {
        EnableWindow(host_, isEnabled);
        for (const HolderKind kind : {HolderKind::Vertical, HolderKind::Horizontal}) {
            const HWND bar = Bar(kind).window;
            EXPECT_EQ(isEnabled, IsWindowEnabled(bar) != FALSE);
            EXPECT_EQ(isEnabled, WindowFromBar(bar) == bar) << "which gets the mouse";
        }
    }
    const PaintedPixels off(VerticalBar().window);
    EnableWindow(host_, TRUE);
    const PaintedPixels on(VerticalBar().window);
    const PixelRect& arrow = VerticalBar().Layout().upArrow;
    const COLORREF ground = on.At(arrow.left, arrow.top);
    const auto marks = [&](const PaintedPixels& painted) {
        std::set<COLORREF> colours;
        for (int y = arrow.top; y < arrow.bottom; ++y) {
            for (int x = arrow.left; x < arrow.right; ++x) colours.insert(painted.At(x, y));
        }
        colours.erase(ground);
        return colours;
    };
    EXPECT_FALSE(marks(on).empty());
    EXPECT_NE(marks(off), marks(on)) << "and is painted so";
}

TEST_F(HostHolders, HaveACornerInTheBarsColour) {
    UpdateWindow(Corner());
    const HWND child = GetWindow(Corner(), GW_CHILD);
    RedrawWindow(child, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW);
    {
        const ClientDc dc(child);
        EXPECT_EQ(0xF0F0F0u, GetPixel(dc.Get(), 3, 3));
    }
    isBarContrast = true;
    bars_.Refresh();
    UpdateWindow(child); // what Refresh has invalidated
    const ClientDc dc(child);
    EXPECT_EQ(GetSysColor(COLOR_SCROLLBAR), GetPixel(dc.Get(), 3, 3));
}

class HostState : public HostTest {};

TEST_F(HostState, IsCopiedAtOnce) {
    EXPECT_EQ(40, VerticalBar().Position());
    EXPECT_EQ(99, VerticalBar().Range().maximum);
    EXPECT_EQ(20, VerticalBar().Range().page);
    EXPECT_EQ(199, Bar(HolderKind::Horizontal).Range().maximum);
    EXPECT_EQ(50, Bar(HolderKind::Horizontal).Range().page);
}

TEST_F(HostState, IsCopiedWhenTheHostIsErased) {
    SetHost(host_, SB_VERT, 499, 30, 77);
    EXPECT_EQ(40, VerticalBar().Position()) << "nobody reports it";
    Erase(host_);
    EXPECT_EQ(77, VerticalBar().Position());
    EXPECT_EQ(499, VerticalBar().Range().maximum);
    EXPECT_EQ(30, VerticalBar().Range().page);
}

TEST_F(HostState, IsPaintedOnlyWhenItDiffers) {
    const HWND bar = VerticalBar().window;
    UpdateWindow(bar);
    Erase(host_);
    EXPECT_FALSE(GetUpdateRect(bar, nullptr, FALSE));
    SetHost(host_, SB_VERT, 99, 20, 41);
    Erase(host_);
    EXPECT_TRUE(GetUpdateRect(bar, nullptr, FALSE));
}

TEST_F(HostState, IsNotCopiedWhileAScrollIsPassedOn) {
    LetItScroll();
    int seen = -1;
    onScroll_ = [&] {
        Erase(host_);
        seen = VerticalBar().Position();
    };
    Press(VerticalBar().window, 5, 2);
    LetGo(VerticalBar().window, 5, 2);
    EXPECT_EQ(40, seen);
    EXPECT_EQ(39, VerticalBar().Position()) << "but afterwards";
}

TEST_F(HostState, SwitchesTheArrowsOffWhereNothingScrolls) {
    SetHost(host_, SB_VERT, 99, 100, 0);
    ShowScrollBar(host_, SB_VERT, TRUE);
    Erase(host_);
    EXPECT_FALSE(VerticalBar().EnableArrows(ESB_DISABLE_BOTH)) << "they are";
    SetHost(host_, SB_VERT, 99, 50, 0);
    Erase(host_);
    EXPECT_FALSE(VerticalBar().EnableArrows(ESB_ENABLE_BOTH)) << "they are again";
}

TEST_F(HostState, OfAListFollowsWhatIsAddedOutOfSight) {
    const HWND list = Child(L"ListBox", WS_VSCROLL | LBS_NOINTEGRALHEIGHT, {10, 10, 40, 30});
    ScrollBarHost bars;
    bars.Attach(list);
    for (int at = 0; at < 200; ++at) {
        SendMessageW(list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(L"x"));
    }
    ASSERT_NE(nullptr, bars.Holder(HolderKind::Vertical).Bar());
    EXPECT_EQ(199, bars.Holder(HolderKind::Vertical).Bar()->Range().maximum);
    EXPECT_TRUE(bars.Holder(HolderKind::Vertical).IsShown());
    SendMessageW(list, LB_SETTOPINDEX, 100, 0);
    EXPECT_EQ(100, bars.Holder(HolderKind::Vertical).Bar()->Position());
}

class HostEnds : public HostTest {};

TEST_F(HostEnds, TheHostsWindowTakesItsHoldersAlong) {
    const HWND holders[] = {Vertical(), Horizontal(), Corner()};
    DestroyWindow(host_);
    for (const HWND holder : holders) EXPECT_FALSE(IsWindow(holder));
    EXPECT_EQ(nullptr, bars_.Host());
    EXPECT_EQ(nullptr, bars_.Holder(HolderKind::Vertical).Window());
    bars_.SetAutoHide(true);
    bars_.Refresh();
    bars_.Detach();
    bars_.SetAutoHide(false);
}

TEST_F(HostEnds, ItsWindowCanBeAnotherOneAfterwards) {
    DestroyWindow(host_);
    host_ = MakeHost(0, 0);
    bars_.Attach(host_);
    EXPECT_EQ(All(), Shown());
    const HWND other = MakeHost(WS_BORDER, 0);
    const HWND before = Vertical();
    bars_.Attach(other);
    EXPECT_FALSE(IsWindow(before));
    EXPECT_EQ(All(), Shown());
    bars_.Attach(nullptr);
    EXPECT_EQ(nullptr, bars_.Host());
}

TEST_F(HostEnds, TheObjectLeavesTheHostWithItsOwnBars) {
    const HWND other = MakeHost(0, 0);
    const PixelRect client = ClientArea(other);
    HWND holder = nullptr;
    {
        ScrollBarHost bars;
        bars.SetAutoHide(true);
        bars.Attach(other);
        holder = bars.Holder(HolderKind::Vertical).Window();
        ASSERT_NE(client, ClientArea(other));
    }
    EXPECT_FALSE(IsWindow(holder));
    EXPECT_EQ(client, ClientArea(other));
    Erase(other);
    SendMessageW(other, WM_SIZE, 0, 0);
}

TEST_F(HostEnds, AHolderThatIsDestroyedIsNoMore) {
    for (const HWND holder : {Vertical(), Horizontal(), Corner()}) DestroyWindow(holder);
    SetWindowPos(host_, nullptr, 0, 0, 200, 150, SWP_NOMOVE | SWP_NOZORDER);
    Erase(host_);
    EnableWindow(host_, FALSE);
    bars_.SetAutoHide(true);
    SendMessageW(host_, WM_KEYDOWN, VK_NEXT, 0);
    bars_.Refresh();
    AskForMenu(host_);
    for (const HolderKind kind :
         {HolderKind::Vertical, HolderKind::Horizontal, HolderKind::Corner}) {
        EXPECT_EQ(nullptr, Holder(kind));
        EXPECT_EQ(nullptr, bars_.Holder(kind).Bar());
        EXPECT_FALSE(bars_.Holder(kind).IsShown());
    }
    EXPECT_EQ(0, CountHolders()) << "nothing makes them again";
    EXPECT_EQ(host_, bars_.Host()) << "which goes on without them";
    EXPECT_EQ((PixelRect{0, 0, 200 - Scale(4), 150 - Scale(4)}), ClientArea(host_));
    EXPECT_EQ(40, HostPosition(host_, SB_VERT));
    bars_.SetAutoHide(false);
    bars_.Attach(host_);
    EXPECT_EQ(All(), Shown()) << "but Attach";
    EXPECT_FALSE(IsWindowEnabled(VerticalBar().window));
}

// A system that has no more windows after some.
int windowsLeft = 0;
HWND WINAPI CreateSome(DWORD extendedStyle, LPCWSTR className, LPCWSTR title, DWORD style, int x,
                       int y, int width, int height, HWND parent, HMENU menu, HINSTANCE instance,
                       LPVOID data) {
    static const auto real = reinterpret_cast<decltype(&CreateWindowExW)>(reinterpret_cast<void*>(
        GetProcAddress(GetModuleHandleW(L"user32.dll"), "CreateWindowExW")));
    if (windowsLeft-- <= 0) {
        SetLastError(ERROR_NOT_ENOUGH_MEMORY);
        return nullptr;
    }
    return real(extendedStyle, className, title, style, x, y, width, height, parent, menu, instance,
                data);
}

TEST_F(HostEnds, WithoutWindowsForItsHoldersTheHostKeepsItsOwnBars) {
    const ImportPatch<decltype(&CreateWindowExW)> patch("user32.dll", "CreateWindowExW",
                                                        &CreateSome);
    ASSERT_TRUE(patch.Ok());
    for (int left = 0; left < 6; ++left) { // three holders, and what is in each
        windowsLeft = 1;
        const HWND other = MakeHost(0, 0);
        const PixelRect client = ClientArea(other);
        ScrollBarHost bars;
        bars.SetAutoHide(true);
        windowsLeft = left;
        bars.Attach(other);
        EXPECT_EQ(nullptr, bars.Host()) << left;
        EXPECT_EQ(3, CountHolders()) << left << ": those of the first host";
        EXPECT_EQ(client, ClientArea(other)) << left;
        SendMessageW(other, WM_KEYDOWN, VK_NEXT, 0);
        Erase(other);
        windowsLeft = 6;
        bars.Attach(other);
        EXPECT_EQ(other, bars.Host()) << left << ": a later time";
        EXPECT_EQ(6, CountHolders()) << left;
        EXPECT_NE(client, ClientArea(other)) << left;
        DestroyWindow(other);
    }
}

TEST_F(HostEnds, TheHostMayGoWhileItScrolls) {
    onHost_ = [this](const HostMessage&) { DestroyWindow(host_); };
    Press(VerticalBar().window, 5, 2);
    EXPECT_EQ(nullptr, bars_.Host());
    EXPECT_EQ(nullptr, Vertical());
}

TEST_F(HostEnds, TheParentMayGoWhileTheHostScrolls) {
    onHost_ = [this](const HostMessage&) { parent_.Reset(); };
    SendMessageW(VerticalBar().window, WM_MOUSEWHEEL, MAKEWPARAM(0, 120), 0);
    EXPECT_EQ(nullptr, bars_.Host());
}

// The object's memory is another object by the time that the call of the host returns: what would
// use it as the old one changes the new one. Wine passes over crashes within its callbacks.
class HostDeletion : public HostTest {
protected:
    void SetUp() override {
        HostTest::SetUp();
        second_ = MakeHost(0, 0);
        Begin();
    }
    void Begin() {
        first_ = MakeHost(0, 0);
        memory_.emplace().Attach(first_);
    }
    // The new one's host then has a state that nobody has told it of.
    void Replace() {
        memory_.reset();
        SetHost(second_, SB_VERT, 99, 20, 40);
        memory_.emplace().Attach(second_);
        SetHost(second_, SB_VERT, 99, 20, 77);
        SetWindowLongPtrW(second_, GWL_STYLE, GetWindowLongPtrW(second_, GWL_STYLE) | WS_DISABLED);
    }
    HWND OwnBar(HolderKind kind) const { return memory_->Holder(kind).Bar()->window; }
    void ExpectUntouched(const char* by) {
        ASSERT_EQ(second_, memory_->Host()) << by << ": nothing was deleted";
        EXPECT_EQ(40, memory_->Holder(HolderKind::Vertical).Bar()->Position()) << by;
        EXPECT_TRUE(memory_->Holder(HolderKind::Vertical).IsShown()) << by;
        EXPECT_TRUE(memory_->Holder(HolderKind::Horizontal).IsShown()) << by;
        EXPECT_TRUE(IsWindowEnabled(OwnBar(HolderKind::Vertical))) << by;
        EXPECT_FALSE(memory_->IsAutoHide()) << by;
        SetWindowLongPtrW(second_, GWL_STYLE, GetWindowLongPtrW(second_, GWL_STYLE) & ~WS_DISABLED);
        DestroyWindow(first_);
    }

    std::optional<ScrollBarHost> memory_;
    HWND first_ = nullptr;
    HWND second_ = nullptr;
};

TEST_F(HostDeletion, IsAllowedInAnyMessageOfTheHost) {
    const struct {
        const char* name;
        UINT message;
        WPARAM wParam;
    } rows[] = {{"WM_ENABLE", WM_ENABLE, TRUE},
                {"WM_SIZE", WM_SIZE, 0},
                {"WM_SHOWWINDOW", WM_SHOWWINDOW, TRUE},
                {"WM_SETREDRAW", WM_SETREDRAW, 1},
                {"WM_CHAR", WM_CHAR, 'x'},
                {"WM_KEYDOWN", WM_KEYDOWN, VK_UP},
                {"WM_MOUSEWHEEL", WM_MOUSEWHEEL, 0}};
    for (const auto& row : rows) {
        onAnyMessage_ = [this] { Replace(); };
        SendMessageW(first_, row.message, row.wParam, 0);
        ExpectUntouched(row.name);
        Begin();
    }
    onAnyMessage_ = [this] { Replace(); };
    Erase(first_);
    ExpectUntouched("WM_ERASEBKGND");
    Begin();
    onAnyMessage_ = [this] { Replace(); };
    RECT rect{0, 0, 300, 200};
    SendMessageW(first_, WM_NCCALCSIZE, TRUE, reinterpret_cast<LPARAM>(&rect));
    ExpectUntouched("WM_NCCALCSIZE");
}

TEST_F(HostDeletion, IsAllowedWhileABarScrollsTheHost) {
    onHost_ = [this](const HostMessage&) {
        onHost_ = nullptr;
        Replace();
    };
    Press(OwnBar(HolderKind::Vertical), 5, 2);
    ExpectUntouched("a press");
}

TEST_F(HostDeletion, IsAllowedWhileTheMenuIsOpenOrSendsItsMessage) {
    hostFakes.onMenu = [this] { Replace(); };
    hostFakes.chosen = kCommandHideBars;
    SendMessageW(OwnBar(HolderKind::Vertical), WM_CONTEXTMENU, 0, 0);
    ExpectUntouched("the menu");
    hostFakes.onMenu = nullptr;
    Begin();
    onHost_ = [this](const HostMessage&) {
        onHost_ = nullptr;
        Replace();
    };
    SendMessageW(OwnBar(HolderKind::Vertical), WM_CONTEXTMENU, 0, 0);
    ExpectUntouched("the message");
}

TEST_F(HostDeletion, IsAllowedWhileTheModeChanges) {
    onAnyMessage_ = [this] { Replace(); };
    memory_->SetAutoHide(true);
    ExpectUntouched("the frame");
    Begin();
    hostFakes.onAnimation = [this] { Replace(); };
    memory_->SetAutoHide(true);
    ExpectUntouched("the slide");
}

} // namespace
