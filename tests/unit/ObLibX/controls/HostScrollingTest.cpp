// Hosted bars that are used: presses, drags and the wheel are passed to the host, and real windows
// follow, each its own way.
#include <commctrl.h>
#include <oleacc.h>

#include "ObLibX/src/utilities/ObUtil.h"
#include "tests/unit/ObLibX/controls/HostFixture.h"

namespace {

using namespace ObLibX;
using namespace obtest;

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
    const HWND bar = VerticalBar().window;
    const std::vector<SentTimer> one{{bar, 10551, 200}};
    Press(bar, down.x, down.y);
    EXPECT_EQ(one, hostFakes.timers);
    const std::size_t expected[] = {1, 1, 1, 2, 3, 4};
    for (const std::size_t count : expected) {
        TickAt(bar, down);
        EXPECT_EQ(std::vector(count, Sent(WM_VSCROLL, SB_LINEDOWN)), sent_);
        EXPECT_EQ(one, hostFakes.timers) << "it goes on, without another delay";
    }
    LetGo(bar, down.x, down.y);
    EXPECT_TRUE(hostFakes.timers.empty());
    TickAt(bar, down);
    EXPECT_EQ(4u, sent_.size());
}

// As the dialog and its owner of the bars do.
TEST_F(HostScroll, GoesOnWithADragWhenColoursOrThemeChange) {
    LetItScroll();
    ObFlatScrollbar& bar = VerticalBar();
    const PixelPoint thumb = bar.Layout().thumb.Centre();
    Press(bar.window, thumb.x, thumb.y);
    Move(bar.window, thumb.x, thumb.y + 10);
    const std::size_t before = sent_.size();
    ASSERT_LT(0u, before);
    const PixelRect dragged = bar.Layout().thumb;
    for (const UINT message : {UINT{WM_SYSCOLORCHANGE}, UINT{WM_THEMECHANGED}}) {
        isBarContrast = !isBarContrast;
        for (const HWND window : {host_, Vertical(), bar.window}) {
            SendMessageW(window, message, 0, 0);
        }
        bars_.Refresh();
        EXPECT_TRUE(bar.IsDragging()) << message;
        EXPECT_EQ(bar.window, GetCapture()) << message;
        EXPECT_EQ(dragged, bar.Layout().thumb) << message;
    }
    EXPECT_EQ(before, sent_.size()) << "nothing is reported twice";
    Move(bar.window, thumb.x, 5000);
    LetGo(bar.window, thumb.x, 5000);
    EXPECT_EQ(Sent(WM_VSCROLL, SB_THUMBPOSITION, 80), sent_.back());
    EXPECT_EQ(80, HostPosition(host_, SB_VERT));
    EXPECT_EQ(80, bar.Position());
}

TEST_F(HostScroll, BreaksADragOffWhenItsBarIsHiddenMeanwhile) {
    LetItScroll();
    ObFlatScrollbar& bar = VerticalBar();
    const PixelPoint thumb = bar.Layout().thumb.Centre();
    Press(bar.window, thumb.x, thumb.y);
    Move(bar.window, thumb.x, thumb.y + 10);
    const int reached = HostPosition(host_, SB_VERT);
    ASSERT_NE(40, reached);
    bars_.SetAutoHide(true);
    EXPECT_EQ(None(), Shown());
    EXPECT_FALSE(bar.IsDragging());
    EXPECT_EQ(nullptr, GetCapture());
    sent_.clear();
    Move(bar.window, thumb.x, 5000);
    LetGo(bar.window, thumb.x, 5000);
    EXPECT_TRUE(sent_.empty());
    EXPECT_EQ(reached, HostPosition(host_, SB_VERT)) << "where the drag was";
    EXPECT_EQ(reached, bar.Position());
}

TEST_F(HostScroll, GoesOnWithADragWhenTheBarsAreShownAlwaysFromThenOn) {
    LetItScroll();
    bars_.SetAutoHide(true);
    SendMessageW(host_, WM_KEYDOWN, VK_NEXT, 0);
    ASSERT_EQ(All(), Shown());
    ObFlatScrollbar& bar = VerticalBar();
    const PixelPoint thumb = bar.Layout().thumb.Centre();
    Press(bar.window, thumb.x, thumb.y);
    Move(bar.window, thumb.x, thumb.y + 10);
    bars_.SetAutoHide(false);
    EXPECT_TRUE(bar.IsDragging());
    Move(bar.window, thumb.x, 5000);
    LetGo(bar.window, thumb.x, 5000);
    EXPECT_EQ(80, HostPosition(host_, SB_VERT));
    EXPECT_EQ(All(), Shown());
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
        ShowWindow(host_, SW_HIDE); // it would cover the clients
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
    int PositionAcross() const {
        return clientBars_.Holder(HolderKind::Horizontal).Bar()->Position();
    }
    void PressArrow(bool isDown) const {
        ObFlatScrollbar& bar = *clientBars_.Holder(HolderKind::Vertical).Bar();
        const PixelPoint at = (isDown ? bar.Layout().downArrow : bar.Layout().upArrow).Centre();
        Press(bar.window, at.x, at.y);
        LetGo(bar.window, at.x, at.y);
    }

    // Of 100,000: by an arrow, by the thumb to the end and back. `top`: asks for the first one
    // shown.
    void ExpectRowsFollow(UINT top) const {
        const auto first = [&] { return SendMessageW(client_, top, 0, 0); };
        PressArrow(true);
        EXPECT_EQ(1, first());
        Drag(HolderKind::Vertical, 5000);
        EXPECT_LT(99'900, first());
        EXPECT_EQ(first(), Position());
        Drag(HolderKind::Vertical, -5000);
        EXPECT_EQ(0, first());
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

TEST_F(HostClients, AnEditFollowsTheThumbAcross) {
    const HWND edit =
        Attach(L"Edit", ES_MULTILINE | WS_VSCROLL | WS_HSCROLL | ES_AUTOVSCROLL | ES_AUTOHSCROLL);
    SetWindowTextW(edit, std::wstring(200, L'w').c_str());
    const auto firstAt = [&] {
        return static_cast<short>(LOWORD(SendMessageW(edit, EM_POSFROMCHAR, 0, 0)));
    };
    const int start = firstAt();
    Drag(HolderKind::Horizontal, 5000);
    EXPECT_LT(100, HostPosition(edit, SB_HORZ));
    EXPECT_EQ(HostPosition(edit, SB_HORZ), PositionAcross());
    EXPECT_EQ(start - HostPosition(edit, SB_HORZ), firstAt());
    Drag(HolderKind::Horizontal, -5000);
    EXPECT_EQ(start, firstAt());
    EXPECT_EQ(0, PositionAcross());
}

TEST_F(HostClients, AListBoxFollowsTheThumbAcross) {
    const HWND list = Attach(L"ListBox", WS_VSCROLL | WS_HSCROLL | LBS_NOINTEGRALHEIGHT);
    for (int at = 0; at < 60; ++at) {
        SendMessageW(list, LB_ADDSTRING, 0, reinterpret_cast<LPARAM>(L"A row"));
    }
    SendMessageW(list, LB_SETHORIZONTALEXTENT, 1000, 0);
    const auto isTextThere = [&] {
        SetFocus(parent_.Get()); // the focused row has a box
        RedrawWindow(list, nullptr, nullptr, RDW_INVALIDATE | RDW_ERASE | RDW_UPDATENOW);
        const PixelRect area = ClientArea(list);
        const ClientDc dc(list);
        int marks = 0;
        for (int y = 0; y < area.bottom; ++y) {
            for (int x = 0; x < area.right; ++x) {
                marks += GetPixel(dc.Get(), x, y) != GetSysColor(COLOR_WINDOW);
            }
        }
        return marks > 0;
    };
    ASSERT_TRUE(isTextThere());
    Drag(HolderKind::Horizontal, 5000);
    EXPECT_LT(300, HostPosition(list, SB_HORZ));
    EXPECT_EQ(HostPosition(list, SB_HORZ), PositionAcross());
    EXPECT_FALSE(isTextThere()) << "far right of the texts";
    Drag(HolderKind::Horizontal, -5000);
    EXPECT_TRUE(isTextThere());
    EXPECT_EQ(0, PositionAcross());
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
    ExpectRowsFollow(LB_GETTOPINDEX);
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
    ExpectRowsFollow(LVM_GETTOPINDEX);
    Drag(HolderKind::Horizontal, 5000);
    RECT row{};
    row.left = LVIR_BOUNDS;
    ASSERT_TRUE(SendMessageW(list, LVM_GETITEMRECT, 0, reinterpret_cast<LPARAM>(&row)));
    EXPECT_EQ(HostPosition(list, SB_HORZ), PositionAcross());
    EXPECT_EQ(-HostPosition(list, SB_HORZ), row.left) << "the content";
    EXPECT_LT(100, HostPosition(list, SB_HORZ));
}

// Neither has a menu of its own.
TEST_F(HostClients, AListBoxAndAListViewHaveTheMenuOfTheirBars) {
    const HWND listBox =
        Attach(L"ListBox", WS_VSCROLL | LBS_NOINTEGRALHEIGHT | LBS_NODATA | LBS_OWNERDRAWFIXED);
    SendMessageW(listBox, LB_SETCOUNT, 1000, 0);
    AskForMenu(listBox);
    EXPECT_EQ(1, hostFakes.menusShown);
    const HWND list = Attach(WC_LISTVIEWW, LVS_REPORT | LVS_OWNERDATA | LVS_NOCOLUMNHEADER);
    SendMessageW(list, LVM_SETITEMCOUNT, 1000, 0);
    ASSERT_TRUE(clientBars_.Holder(HolderKind::Vertical).IsShown());
    AskForMenu(list);
    EXPECT_EQ(2, hostFakes.menusShown);
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

} // namespace
