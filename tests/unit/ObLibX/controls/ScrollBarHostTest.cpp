// The host of flat scroll bars: holders and their places, state that is copied, scrolling that is
// passed on, and windows that go first.
#include "ObLibX/src/controls/ScrollBarHost.h"

#include <oleacc.h>

#include <algorithm>
#include <optional>

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
    EnableWindow(host_, FALSE);
    EXPECT_FALSE(IsWindowEnabled(VerticalBar().window));
    Press(VerticalBar().window, 5, 2);
    EnableWindow(host_, TRUE);
    EXPECT_TRUE(IsWindowEnabled(VerticalBar().window));
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
    RedrawWindow(child, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW);
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

class HostScroll : public HostTest {
protected:
    static HostMessage Sent(UINT message, int code, int value = 0) {
        return {message, MAKEWPARAM(code, value), 0};
    }
};

TEST_F(HostScroll, PassesEachPressOnWithoutTheBar) {
    const ScrollLayout& layout = VerticalBar().Layout();
    const struct {
        PixelPoint at;
        int code;
    } rows[] = {{layout.upArrow.Centre(), SB_LINEUP},
                {layout.pageBefore.Centre(), SB_PAGEUP},
                {layout.pageAfter.Centre(), SB_PAGEDOWN},
                {layout.downArrow.Centre(), SB_LINEDOWN}};
    for (const auto& row : rows) {
        sent_.clear();
        Press(VerticalBar().window, row.at.x, row.at.y);
        LetGo(VerticalBar().window, row.at.x, row.at.y);
        EXPECT_EQ((std::vector<HostMessage>{Sent(WM_VSCROLL, row.code)}), sent_);
    }
    sent_.clear();
    ObFlatScrollbar& across = Bar(HolderKind::Horizontal);
    const PixelPoint right = across.Layout().downArrow.Centre();
    Press(across.window, right.x, right.y);
    LetGo(across.window, right.x, right.y);
    EXPECT_EQ((std::vector<HostMessage>{Sent(WM_HSCROLL, SB_LINERIGHT)}), sent_);
    EXPECT_TRUE(scrolled_.empty()) << "the host's parent gets nothing";
}

TEST_F(HostScroll, PassesTheThumbOnWithItsValue) {
    LetItScroll();
    DragTo(true);
    ASSERT_EQ(2u, sent_.size());
    EXPECT_EQ(Sent(WM_VSCROLL, SB_THUMBTRACK, 80), sent_[0]);
    EXPECT_EQ(Sent(WM_VSCROLL, SB_THUMBPOSITION, 80), sent_[1]);
    EXPECT_EQ(80, VerticalBar().Position());
}

// What the host doesn't follow is neither sent again nor written into its bar.
TEST_F(HostScroll, SendsTheThumbOnceToAHostThatDoesNotFollow) {
    std::vector<int> found;
    onHost_ = [&](const HostMessage&) { found.push_back(HostPosition(host_, SB_VERT)); };
    DragTo(true);
    EXPECT_EQ((std::vector<HostMessage>{Sent(WM_VSCROLL, SB_THUMBTRACK, 80),
                                        Sent(WM_VSCROLL, SB_THUMBPOSITION, 80)}),
              sent_);
    EXPECT_EQ((std::vector<int>{40, 40}), found);
    EXPECT_EQ(40, HostPosition(host_, SB_VERT));
    EXPECT_EQ(40, VerticalBar().Position()) << "where the host is";
}

TEST_F(HostScroll, LeavesTheFocusWithTheHost) {
    SetFocus(parent_.Get());
    Press(VerticalBar().window, 5, 2);
    LetGo(VerticalBar().window, 5, 2);
    EXPECT_EQ(host_, GetFocus());
    SetFocus(Vertical());
    EXPECT_EQ(host_, GetFocus()) << "a holder passes it on";
}

TEST_F(HostScroll, PassesTheWheelOn) {
    SendMessageW(VerticalBar().window, WM_MOUSEWHEEL, MAKEWPARAM(0, 120), 0);
    EXPECT_EQ((std::vector<HostMessage>{{WM_MOUSEWHEEL, MAKEWPARAM(0, 120), 0}}), sent_);
}

TEST_F(HostScroll, RepeatsAPressAfterTheDelayOnce) {
    const PixelPoint down = VerticalBar().Layout().downArrow.Centre();
    Press(VerticalBar().window, down.x, down.y);
    EXPECT_EQ((std::vector<SentTimer>{{VerticalBar().window, 10551, 200}}), hostFakes.timers);
    LetGo(VerticalBar().window, down.x, down.y);
    EXPECT_TRUE(hostFakes.timers.empty());
}

TEST_F(HostScroll, NamesTheBarAsTheHost) {
    const HWND label = Child(L"Static", 0, {0, 0, 20, 20});
    SetWindowTextW(label, L"&Files:");
    SetWindowPos(label, HWND_TOP, 0, 0, 0, 0, SWP_NOMOVE | SWP_NOSIZE);
    const Accessible bar = AccessibleOf(VerticalBar().window);
    EXPECT_EQ(ROLE_SYSTEM_SCROLLBAR, bar.role);
    EXPECT_EQ(L"Files:", bar.name);
    EXPECT_EQ(L"40", bar.value);
}

// Real windows, each with its own way to follow a thumb.
class HostClients : public HostTest {
protected:
    void SetUp() override {
        HostTest::SetUp();
        const INITCOMMONCONTROLSEX classes{sizeof classes, ICC_LISTVIEW_CLASSES};
        InitCommonControlsEx(&classes);
    }
    HWND Attach(const wchar_t* className, DWORD style) {
        client_ = Child(className, style, {10, 10, 10 + Scale(150), 10 + Scale(110)});
        clientBars_.Attach(client_);
        return client_;
    }
    // Drags the thumb of a bar by so many pixels.
    void Drag(HolderKind kind, int pixels) const {
        ObFlatScrollbar& bar = *clientBars_.Holder(kind).Bar();
        const PixelPoint from = bar.Layout().thumb.Centre();
        const bool isVertical = kind == HolderKind::Vertical;
        const PixelPoint to =
            isVertical ? PixelPoint{from.x, from.y + pixels} : PixelPoint{from.x + pixels, from.y};
        Press(bar.window, from.x, from.y);
        Move(bar.window, to.x, to.y);
        LetGo(bar.window, to.x, to.y);
    }
    int Position() const { return clientBars_.Holder(HolderKind::Vertical).Bar()->Position(); }
    void PressArrow(bool isDown) const {
        ObFlatScrollbar& bar = *clientBars_.Holder(HolderKind::Vertical).Bar();
        const PixelPoint at = (isDown ? bar.Layout().downArrow : bar.Layout().upArrow).Centre();
        Press(bar.window, at.x, at.y);
        LetGo(bar.window, at.x, at.y);
    }

    ScrollBarHost clientBars_;
    HWND client_ = nullptr;
};

TEST_F(HostClients, AnEditFollowsThumbAndArrows) {
    const HWND edit = Attach(L"Edit", ES_MULTILINE | WS_VSCROLL | ES_AUTOVSCROLL);
    std::wstring text = L"line";
    for (int at = 1; at < 300; ++at) text += L"\r\nline";
    SetWindowTextW(edit, text.c_str());
    ASSERT_TRUE(clientBars_.Holder(HolderKind::Vertical).IsShown());
    PressArrow(true);
    EXPECT_EQ(1, SendMessageW(edit, EM_GETFIRSTVISIBLELINE, 0, 0));
    EXPECT_EQ(1, Position());
    Drag(HolderKind::Vertical, 5000);
    EXPECT_LT(280, SendMessageW(edit, EM_GETFIRSTVISIBLELINE, 0, 0)) << "the end";
    Drag(HolderKind::Vertical, -5000);
    EXPECT_EQ(0, SendMessageW(edit, EM_GETFIRSTVISIBLELINE, 0, 0));
    EXPECT_EQ(0, Position());
}

TEST_F(HostClients, AnEditOf50000LinesGoesToItsEnd) {
    const HWND edit = Attach(L"Edit", ES_MULTILINE | WS_VSCROLL | ES_AUTOVSCROLL);
    SendMessageW(edit, EM_SETLIMITTEXT, 0x7FFFFFFE, 0);
    std::wstring text;
    for (int at = 0; at < 50'000; ++at) text += L"x\r\n";
    SetWindowTextW(edit, text.c_str());
    Drag(HolderKind::Vertical, 5000);
    EXPECT_LT(49'900, SendMessageW(edit, EM_GETFIRSTVISIBLELINE, 0, 0));
    EXPECT_EQ(SendMessageW(edit, EM_GETFIRSTVISIBLELINE, 0, 0), Position());
}

TEST_F(HostClients, AListBoxOf100000RowsFollowsThumbAndArrows) {
    const HWND list =
        Attach(L"ListBox", WS_VSCROLL | LBS_NOINTEGRALHEIGHT | LBS_NODATA | LBS_OWNERDRAWFIXED);
    SendMessageW(list, LB_SETCOUNT, 100'000, 0);
    PressArrow(true);
    EXPECT_EQ(1, SendMessageW(list, LB_GETTOPINDEX, 0, 0));
    Drag(HolderKind::Vertical, 5000);
    EXPECT_LT(99'900, SendMessageW(list, LB_GETTOPINDEX, 0, 0));
    EXPECT_EQ(SendMessageW(list, LB_GETTOPINDEX, 0, 0), Position());
    Drag(HolderKind::Vertical, -5000);
    EXPECT_EQ(0, SendMessageW(list, LB_GETTOPINDEX, 0, 0));
}

TEST_F(HostClients, AListViewFollowsThumbAndArrows) {
    const HWND list = Attach(WC_LISTVIEWW, LVS_REPORT | LVS_OWNERDATA);
    LVCOLUMNW column{};
    column.mask = LVCF_WIDTH;
    column.cx = 400;
    SendMessageW(list, LVM_INSERTCOLUMNW, 0, reinterpret_cast<LPARAM>(&column));
    SendMessageW(list, LVM_SETITEMCOUNT, 100'000, 0);
    ASSERT_TRUE(clientBars_.Holder(HolderKind::Vertical).IsShown());
    ASSERT_TRUE(clientBars_.Holder(HolderKind::Horizontal).IsShown());
    PressArrow(true);
    EXPECT_EQ(1, SendMessageW(list, LVM_GETTOPINDEX, 0, 0));
    Drag(HolderKind::Vertical, 5000);
    EXPECT_LT(99'900, SendMessageW(list, LVM_GETTOPINDEX, 0, 0));
    EXPECT_EQ(SendMessageW(list, LVM_GETTOPINDEX, 0, 0), Position());
    Drag(HolderKind::Vertical, -5000);
    EXPECT_EQ(0, SendMessageW(list, LVM_GETTOPINDEX, 0, 0));
    Drag(HolderKind::Horizontal, 5000);
    POINT origin{};
    SendMessageW(list, LVM_GETORIGIN, 0, reinterpret_cast<LPARAM>(&origin));
    EXPECT_EQ(HostPosition(list, SB_HORZ),
              clientBars_.Holder(HolderKind::Horizontal).Bar()->Position());
    EXPECT_LT(100, HostPosition(list, SB_HORZ));
}

TEST_F(HostClients, AListViewOfIconsFollowsTheThumb) {
    const HWND list = Attach(WC_LISTVIEWW, LVS_ICON | LVS_AUTOARRANGE);
    for (int at = 0; at < 200; ++at) {
        wchar_t text[] = L"item";
        LVITEMW item{};
        item.mask = LVIF_TEXT;
        item.iItem = at;
        item.pszText = text;
        SendMessageW(list, LVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&item));
    }
    ASSERT_TRUE(clientBars_.Holder(HolderKind::Vertical).IsShown());
    Drag(HolderKind::Vertical, 5000);
    const int bottom = HostPosition(list, SB_VERT);
    EXPECT_LT(500, bottom);
    EXPECT_EQ(bottom, Position());
    Drag(HolderKind::Vertical, -5000);
    EXPECT_EQ(0, HostPosition(list, SB_VERT));
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
    EXPECT_EQ(nullptr, Vertical());
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
