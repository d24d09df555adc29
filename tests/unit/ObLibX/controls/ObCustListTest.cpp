// The flat list view: its columns, scroll bars, check boxes, and what screen readers get.
#include "ObLibX/src/controls/ObCustList.h"

#include <oleacc.h>

#include <algorithm>
#include <memory>

#include "ObLib/Src/Win32/ComResources.h"
#include "ObLibX/src/dialog/DlgFont.h"
#include "ObLibX/src/dialog/WindowSubclass.h"
#include "tests/unit/ObLib/FatalExit.h"
#include "tests/unit/ObLibX/controls/ListFixture.h"

namespace {

using namespace ObLibX;
using namespace listtest;

class ListColumnsOfADialog : public ListsTest {
protected:
    LVCOLUMNW Column(int index, wchar_t* text, int id = 1001) const {
        LVCOLUMNW column{};
        column.mask = LVCF_FMT | LVCF_WIDTH | LVCF_TEXT | LVCF_SUBITEM;
        column.pszText = text;
        column.cchTextMax = 40;
        Send(id, LVM_GETCOLUMNW, static_cast<WPARAM>(index), reinterpret_cast<LPARAM>(&column));
        return column;
    }
};

TEST_F(ListColumnsOfADialog, HaveTheTitlesWidthsAndAlignmentsOfTheDescription) {
    const int width = ClientArea(Window()).Width();
    const int widths[] = {width / 2, width * 30 / 100, width - width / 2 - width * 30 / 100};
    const wchar_t* const titles[] = {L"Name", L"Size", L""};
    constexpr int kFormats[] = {LVCFMT_LEFT, LVCFMT_RIGHT, LVCFMT_CENTER};
    ASSERT_EQ(3, SendMessageW(Header(), HDM_GETITEMCOUNT, 0, 0));
    for (int at = 0; at < 3; ++at) {
        wchar_t text[40] = L"?";
        const LVCOLUMNW column = Column(at, text);
        EXPECT_EQ(widths[at], column.cx) << at;
        EXPECT_STREQ(titles[at], text) << at;
        EXPECT_EQ(kFormats[at], column.fmt & LVCFMT_JUSTIFYMASK) << at;
        EXPECT_EQ(at, column.iSubItem);
    }
}

TEST_F(ListColumnsOfADialog, AreMadeAgainWhenTheDialogOpensAgain) {
    const ObFlatListView* const first = &List();
    DestroyWindow(dialog_->window);
    dialog_->Create(nullptr);
    EXPECT_EQ(first, &List());
    EXPECT_EQ(3, SendMessageW(Header(), HDM_GETITEMCOUNT, 0, 0));
    EXPECT_TRUE(List().IsGroupViewOn());
    EXPECT_EQ(Scale(18), RowImages());
}

TEST_F(ListColumnsOfADialog, AreNoneWithoutADescription) {
    EXPECT_EQ(0, SendMessageW(Header(1002), HDM_GETITEMCOUNT, 0, 0));
}

class ListViewObject : public ListsTest {};

TEST_F(ListViewObject, HasTheBaseFontOfNinePoints) {
    EXPECT_EQ(GetFont(9, L"", 400, 0), List().font);
    EXPECT_EQ(List().font, reinterpret_cast<HFONT>(Send(1001, WM_GETFONT)));
    List().SetControlFont(L"Tahoma", 14, 700, 0);
    EXPECT_EQ(GetFont(14, L"Tahoma", 700, 0), List().font);
    EXPECT_EQ(List().font, reinterpret_cast<HFONT>(Send(1001, WM_GETFONT)));
    const HFONT clients = GetFont(12, L"", 400, 0);
    Send(1001, WM_SETFONT, reinterpret_cast<WPARAM>(clients), TRUE);
    EXPECT_EQ(clients, List().font);
}

TEST_F(ListViewObject, HasItsDialogAndFourCheckImages) {
    EXPECT_EQ(dialog_.get(), List().colorSource);
    for (const auto& image : List().checkImages) EXPECT_TRUE(image);
    EXPECT_EQ(Scale(13), List().checkSize.cx);
    EXPECT_EQ(Scale(13), List().checkSize.cy);
}

TEST_F(ListViewObject, NeedsAParent) {
    const ObLib::UniqueWindow bare(CreateWindowExW(0, WC_LISTVIEWW, L"", WS_POPUP, 0, 0, 90, 90,
                                                   nullptr, nullptr, nullptr, nullptr));
    ASSERT_TRUE(bare);
    ObFlatListView list(1, {}, nullptr);
    EXPECT_FATAL(list.Attach(bare.Get()), "ObLibX\\src\\ObCustList.cpp");
}

TEST_F(ListViewObject, LeavesAStockListWhenItGoesFirst) {
    const HWND window = CreateWindowExW(0, WC_LISTVIEWW, L"", WS_CHILD | LVS_REPORT, 0, 0, 90, 90,
                                        dialog_->window, nullptr, nullptr, nullptr);
    const ObLib::UniqueImageList images = ColouredImages(16, 1, 0);
    SendMessageW(window, LVM_SETIMAGELIST, LVSIL_SMALL, reinterpret_cast<LPARAM>(images.Get()));
    {
        ObFlatListView list(1, {}, nullptr);
        list.Attach(window);
        EXPECT_TRUE(list.IsGroupViewOn());
    }
    EXPECT_EQ(0, SendMessageW(window, LVM_GETEXTENDEDLISTVIEWSTYLE, 0, 0));
    EXPECT_EQ(reinterpret_cast<LRESULT>(images.Get()),
              SendMessageW(window, LVM_SETIMAGELIST, LVSIL_SMALL, 0));
    SendMessageW(GetParent(window), WM_ERASEBKGND, 0, 0);
    SendMessageW(window, WM_MOUSEMOVE, 0, MAKELPARAM(5, 50));
    DestroyWindow(window);
}

// What is below the object's procedures destroys the window and deletes the object, as a dialog
// does that closes when it hears of a click.
class DeletedList : public ListsTest {
protected:
    void Make() {
        window_ = CreateWindowExW(0, WC_LISTVIEWW, L"", WS_CHILD | WS_VISIBLE | LVS_REPORT, 0, 0,
                                  90, 90, dialog_->window, nullptr, nullptr, nullptr);
        AddSubclass(window_, &DeletedList::Procedure, this);
        list_ = std::make_unique<DeletedAtOnce<ObFlatListView>>(
            1, std::vector<ColumnDescription>(1), nullptr);
        (*list_)->Attach(window_);
        SendMessageW(window_, LVM_SETCOLUMNWIDTH, 0, 80);
        SendMessageW(window_, LVM_SETEXTENDEDLISTVIEWSTYLE, LVS_EX_CHECKBOXES, LVS_EX_CHECKBOXES);
        LVITEMW item{};
        SendMessageW(window_, LVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&item));
        item.state = item.stateMask = LVIS_FOCUSED;
        SendMessageW(window_, LVM_SETITEMSTATE, 0, reinterpret_cast<LPARAM>(&item));
    }
    ObFlatListView& Object() const { return *list_->operator->(); }
    // A point of the first row's check box.
    LPARAM OnCheck() const {
        RECT area{LVIR_BOUNDS, 0, 0, 0};
        SendMessageW(window_, LVM_GETITEMRECT, 0, reinterpret_cast<LPARAM>(&area));
        return MAKELPARAM(area.left + 5, area.top + 1);
    }
    void ExpectSurvived(UINT fatal, UINT sent, WPARAM wParam, LPARAM lParam) {
        fatal_ = fatal;
        SendMessageW(window_, sent, wParam, lParam);
        EXPECT_TRUE((*list_).IsDeleted()) << fatal << " in " << sent;
        EXPECT_FALSE(IsWindow(window_)) << fatal << " in " << sent;
    }
    HWND window_ = nullptr;

private:
    static LRESULT CALLBACK Procedure(HWND window, UINT message, WPARAM wParam, LPARAM lParam,
                                      UINT_PTR, DWORD_PTR object) {
        auto& test = *reinterpret_cast<DeletedList*>(object);
        if (message == WM_NCDESTROY) RemoveSubclass(window, &DeletedList::Procedure, &test);
        if (message != test.fatal_) return CallNextSubclass(window, message, wParam, lParam);
        test.fatal_ = 0;
        DestroyWindow(window);
        test.list_->Delete();
        return 0;
    }
    UINT fatal_ = 0;
    std::unique_ptr<DeletedAtOnce<ObFlatListView>> list_;
};

TEST_F(DeletedList, IsNotUsedByAnyMessageThatWasOnItsWay) {
    RECT area{0, 0, 90, 90};
    WINDOWPOS place{nullptr, nullptr, 0, 0, 90, 90, 0};
    LVITEMW item{};
    const struct {
        UINT message;
        WPARAM wParam;
        LPARAM lParam;
    } rows[] = {{WM_PAINT, 0, 0},
                {WM_LBUTTONDOWN, 0, MAKELPARAM(2, 88)},
                {WM_LBUTTONUP, 0, 0},
                {WM_KEYDOWN, VK_DOWN, 1},
                {WM_VSCROLL, SB_LINEDOWN, 0},
                {WM_SETFOCUS, 0, 0},
                {WM_ENABLE, FALSE, 0},
                {WM_SETREDRAW, TRUE, 0},
                {WM_SIZE, 0, MAKELPARAM(90, 90)},
                {WM_WINDOWPOSCHANGED, 0, reinterpret_cast<LPARAM>(&place)},
                {WM_NCCALCSIZE, FALSE, reinterpret_cast<LPARAM>(&area)},
                {LVM_DELETEALLITEMS, 0, 0},
                {LVM_INSERTITEMW, 0, reinterpret_cast<LPARAM>(&item)},
                {LVM_SETEXTENDEDLISTVIEWSTYLE, 0, 0}};
    for (const auto& row : rows) {
        Make();
        ExpectSurvived(row.message, row.message, row.wParam, row.lParam);
    }
}

TEST_F(DeletedList, IsNotUsedAfterAFlip) {
    Make();
    ExpectSurvived(LVM_SETITEMSTATE, WM_LBUTTONDOWN, MK_LBUTTON, OnCheck());
    Make();
    ExpectSurvived(WM_SETFOCUS, WM_LBUTTONDOWN, MK_LBUTTON, OnCheck());
    Make();
    ExpectSurvived(LVM_SETITEMSTATE, WM_KEYDOWN, VK_SPACE, 1);
}

TEST_F(DeletedList, IsNotUsedAfterItsParentHasHeardOfADrawing) {
    Make();
    const HWND window = window_;
    NMLVCUSTOMDRAW draw{};
    draw.nmcd.hdr = {window, 0, static_cast<UINT>(NM_CUSTOMDRAW)};
    draw.nmcd.dwDrawStage = CDDS_PREPAINT;
    const ClientDc dc(dialog_->window);
    draw.nmcd.hdc = dc.Get();
    Heard().onDraw = [&](NMLVCUSTOMDRAW&) -> LRESULT {
        ExpectSurvived(WM_NULL + 1, WM_NULL + 1, 0, 0);
        return CDRF_DODEFAULT;
    };
    SendMessageW(dialog_->window, WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&draw));
    EXPECT_FALSE(IsWindow(window));
    Heard().onDraw = nullptr;
}

// A dialog that is asked for a cell's colour closes, at each stage at which a cell is painted.
TEST_F(DeletedList, IsNotUsedAfterTheQuestionForAColour) {
    Make();
    const HWND window = window_;
    const ClientDc dc(window);
    NMLVCUSTOMDRAW draw{};
    draw.nmcd.hdr = {window, 0, static_cast<UINT>(NM_CUSTOMDRAW)};
    draw.nmcd.hdc = dc.Get();
    const auto send = [&](DWORD stage) {
        draw.nmcd.dwDrawStage = stage;
        return SendMessageW(dialog_->window, WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&draw));
    };
    Object().colorSource = &Heard();
    send(CDDS_PREPAINT);
    send(CDDS_ITEMPREPAINT);
    Heard().cellColor = [&](int, int) {
        ExpectSurvived(WM_NULL + 1, WM_NULL + 1, 0, 0);
        return kNoColor;
    };
    send(CDDS_ITEMPREPAINT | CDDS_SUBITEM);
    EXPECT_FALSE(IsWindow(window));
    Heard().cellColor = nullptr;
}

// ---- Scroll bars

class ListBars : public ListsTest {
protected:
    const ScrollBarHost& Bars() const { return List().scrollBarHost; }
    HWND Holder(HolderKind kind) const { return Bars().Holder(kind).Window(); }
    const ObFlatScrollbar& Bar(HolderKind kind) const { return *Bars().Holder(kind).Bar(); }
};

TEST_F(ListBars, CoverTheListsOwn) {
    EXPECT_EQ(Window(), Bars().Host());
    EXPECT_FALSE(IsWindowVisible(Holder(HolderKind::Vertical))) << "nothing to scroll";
    InsertMany(100);
    Send(1001, LVM_SETCOLUMNWIDTH, 0, 5000);
    ASSERT_TRUE(IsWindowVisible(Holder(HolderKind::Vertical)));
    ASSERT_TRUE(IsWindowVisible(Holder(HolderKind::Horizontal)));
    const PixelRect list = RectOf(1001);
    const PixelRect vertical = RectInParent(Holder(HolderKind::Vertical));
    EXPECT_EQ(list.right, vertical.right);
    EXPECT_EQ(list.left + ClientArea(Window()).Width(), vertical.left);
    EXPECT_EQ(dialog_->window, GetParent(Holder(HolderKind::Vertical)));
}

TEST_F(ListBars, ShowWhereTheListIsAndScrollIt) {
    InsertMany(100);
    const HWND bar = Bar(HolderKind::Vertical).window;
    Send(1001, LVM_ENSUREVISIBLE, 99, FALSE);
    const LRESULT top = Send(1001, LVM_GETTOPINDEX);
    EXPECT_LT(0, top);
    SCROLLINFO info{};
    info.cbSize = sizeof info;
    info.fMask = SIF_POS;
    Bar(HolderKind::Vertical).GetInfo(info);
    EXPECT_EQ(top, info.nPos);
    SendMessageW(Holder(HolderKind::Vertical), WM_VSCROLL, SB_PAGEUP,
                 reinterpret_cast<LPARAM>(bar));
    EXPECT_GT(top, Send(1001, LVM_GETTOPINDEX));
}

TEST_F(ListBars, TakeTheColoursOfTheSystem) {
    InsertMany(100);
    const HWND bar = Bar(HolderKind::Vertical).window;
    UpdateWindow(bar);
    fieldtest::isContrast = true;
    for (const UINT message : {WM_SYSCOLORCHANGE, WM_THEMECHANGED}) {
        ValidateRect(bar, nullptr);
        SendMessageW(dialog_->window, message, 0, 0);
        EXPECT_TRUE(GetUpdateRect(bar, nullptr, FALSE)) << message;
    }
}

TEST_F(ListBars, GoWithTheListAndComeAgain) {
    const HWND first = Holder(HolderKind::Vertical);
    DestroyWindow(Window());
    EXPECT_EQ(nullptr, Bars().Host());
    EXPECT_FALSE(IsWindow(first));
    DestroyWindow(dialog_->window);
    dialog_->Create(nullptr);
    EXPECT_EQ(Window(), Bars().Host());
}

TEST_F(ListBars, AreTheSystemsAgainWhenTheObjectGoesFirst) {
    const HWND window = CreateWindowExW(0, WC_LISTVIEWW, L"", WS_CHILD | WS_VISIBLE | LVS_REPORT, 0,
                                        0, 90, 90, dialog_->window, nullptr, nullptr, nullptr);
    HWND holder = nullptr;
    {
        ObFlatListView list(1, {}, nullptr);
        list.Attach(window);
        holder = list.scrollBarHost.Holder(HolderKind::Vertical).Window();
        EXPECT_TRUE(IsWindow(holder));
    }
    EXPECT_FALSE(IsWindow(holder));
    DestroyWindow(window);
}

// ---- Check boxes

class ListChecks : public ListsTest {
protected:
    void SetUp() override {
        ListsTest::SetUp();
        GiveChecks();
        for (const wchar_t* const text : {L"One", L"Two", L"Three"}) Insert(text);
        Heard().codes.clear();
    }
    // Inside the area of the row's check box, and right of it.
    PixelPoint OnCheck(int row) const {
        const PixelRect cell = CellArea(row, 0);
        return {cell.left + Scale(24) - 1, cell.top + 1};
    }
    PixelPoint BesideCheck(int row) const {
        const PixelRect cell = CellArea(row, 0);
        return {cell.left + Scale(24), cell.top + 1};
    }
    bool Heard(int code) const {
        return std::ranges::find(ListsTest::Heard().codes, std::pair(1001, code)) !=
               ListsTest::Heard().codes.end();
    }
    using ListsTest::Heard;
    void PressSpace(LPARAM lParam = 1) const {
        Send(1001, WM_KEYDOWN, VK_SPACE, lParam);
        Send(1001, WM_CHAR, L' ', lParam);
    }
};

TEST_F(ListChecks, AreFlippedByAPressOnThem) {
    SetState(2, LVIS_SELECTED, LVIS_SELECTED);
    Click(OnCheck(1));
    EXPECT_EQ(RowCheck::On, Check(1));
    EXPECT_EQ(RowCheck::Off, Check(0));
    EXPECT_TRUE(Heard(LVN_ITEMCHANGED));
    EXPECT_EQ(Window(), GetFocus());
    EXPECT_EQ(1, Send(1001, LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_FOCUSED));
    EXPECT_EQ(UINT{LVIS_SELECTED}, StateOf(2, LVIS_SELECTED)) << "the selection stays";
    EXPECT_EQ(0u, StateOf(1, LVIS_SELECTED));
    Click(OnCheck(1));
    EXPECT_EQ(RowCheck::Off, Check(1));
}

TEST_F(ListChecks, AreFlippedByEachPressOfADoubleClick) {
    Click(OnCheck(0));
    Click(OnCheck(0), WM_LBUTTONDBLCLK);
    EXPECT_EQ(RowCheck::Off, Check(0));
    Click(OnCheck(0), WM_LBUTTONDBLCLK);
    EXPECT_EQ(RowCheck::On, Check(0));
    EXPECT_FALSE(Heard(static_cast<int>(LVN_ITEMACTIVATE)));
}

TEST_F(ListChecks, StayAtAPressBesideThem) {
    Click(BesideCheck(1));
    EXPECT_EQ(RowCheck::Off, Check(1));
    EXPECT_EQ(UINT{LVIS_SELECTED}, StateOf(1, LVIS_SELECTED))
        << "the system's list has selected it";
    const PixelRect last = RowArea(2);
    Click({last.left + 5, last.bottom + 5});
    for (const int row : {0, 1, 2}) EXPECT_EQ(RowCheck::Off, Check(row)) << row;
}

TEST_F(ListChecks, AreFlippedBySpaceOnTheFocusedRow) {
    SetState(1, LVIS_FOCUSED, LVIS_FOCUSED);
    PressSpace();
    EXPECT_EQ(RowCheck::On, Check(1));
    PressSpace(1 | LPARAM{1} << 30);
    EXPECT_EQ(RowCheck::On, Check(1)) << "a key that is held";
    PressSpace();
    EXPECT_EQ(RowCheck::Off, Check(1));
    EXPECT_EQ(RowCheck::Off, Check(0));
    EXPECT_EQ(RowCheck::Off, Check(2));
}

TEST_F(ListChecks, StayAtSpaceWithoutAFocusedRowOrWithCtrl) {
    SetState(-1, 0, LVIS_FOCUSED);
    PressSpace();
    SetState(1, LVIS_FOCUSED, LVIS_FOCUSED);
    BYTE keys[256] = {};
    GetKeyboardState(keys);
    const BYTE control = std::exchange(keys[VK_CONTROL], BYTE{0x80});
    SetKeyboardState(keys);
    PressSpace();
    keys[VK_CONTROL] = control;
    SetKeyboardState(keys);
    for (const int row : {0, 1, 2}) EXPECT_EQ(RowCheck::Off, Check(row)) << row;
}

TEST_F(ListChecks, AreNotFlippedWithoutTheirStyle) {
    Send(1001, LVM_SETEXTENDEDLISTVIEWSTYLE, LVS_EX_CHECKBOXES, 0);
    Click(OnCheck(1));
    EXPECT_EQ(RowCheck::Off, Check(1));
    EXPECT_EQ(UINT{LVIS_SELECTED}, StateOf(1, LVIS_SELECTED));
    PressSpace();
    EXPECT_EQ(RowCheck::Off, Check(1));
}

TEST_F(ListChecks, MayDestroyTheDialogThatHearsOfThem) {
    SetFocus(Window());
    Heard().onChanged = [&] {
        if (dialog_->window != nullptr) DestroyWindow(dialog_->window);
    };
    const HWND window = Window();
    const LPARAM point = MAKELPARAM(OnCheck(1).x, OnCheck(1).y);
    SendMessageW(window, WM_LBUTTONDOWN, MK_LBUTTON, point);
    EXPECT_FALSE(IsWindow(window));
    EXPECT_EQ(nullptr, List().window);
}

// Rows and check boxes of list 1005 are its client's.
class OwnerDataChecks : public ListChecks {
protected:
    void SetUp() override {
        ListChecks::SetUp();
        GiveChecks(1005);
        LVCOLUMNW column{};
        column.mask = LVCF_WIDTH;
        column.cx = Scale(60);
        Send(1005, LVM_INSERTCOLUMNW, 0, reinterpret_cast<LPARAM>(&column));
        Send(1005, LVM_SETCALLBACKMASK, LVIS_STATEIMAGEMASK);
        ListsTest::Heard().onAsked = [this](LVITEMW& item) {
            if ((item.mask & LVIF_STATE) != 0) item.state = INDEXTOSTATEIMAGEMASK(isOn_ ? 2 : 1);
        };
        Send(1005, LVM_SETITEMCOUNT, 2);
        SetState(1, LVIS_FOCUSED, LVIS_FOCUSED, 1005);
        ListsTest::Heard().codes.clear();
    }
    long Notified(UINT code) const {
        return std::ranges::count(ListsTest::Heard().codes,
                                  std::pair(1005, static_cast<int>(code)));
    }
    bool isOn_ = false;
};

TEST_F(OwnerDataChecks, HearOfAPressOnTheirBox) {
    const PixelRect cell = CellArea(1, 0, 1005);
    Click({cell.left + Scale(8), cell.top + 2}, WM_LBUTTONDOWN, 1005);
    EXPECT_EQ(1, Notified(static_cast<UINT>(NM_CLICK)));
}

TEST_F(OwnerDataChecks, HearOfSpace) {
    events.clear();
    Send(1005, WM_KEYDOWN, VK_SPACE, 1);
    EXPECT_EQ(1, Notified(static_cast<UINT>(LVN_KEYDOWN)));
    EXPECT_TRUE(events.empty()) << "the client flips it, or doesn't";
}

TEST_F(OwnerDataChecks, AreDrawnAsTheClientHasThem) {
    const auto box = [&] {
        const PixelRect cell = CellArea(1, 0, 1005);
        return ShownPixels(Window(1005))
            .Of({cell.left, cell.top, cell.left + Scale(20), cell.bottom});
    };
    const auto off = box();
    isOn_ = true;
    EXPECT_NE(off, box());
}

// ---- Screen readers

class ListAccessibility : public ListChecks {
protected:
    ObLib::ComPtr<IAccessible> Object() const {
        ObLib::ComPtr<IAccessible> object;
        AccessibleObjectFromWindow(Window(), static_cast<DWORD>(OBJID_CLIENT),
                                   __uuidof(IAccessible), reinterpret_cast<void**>(object.Put()));
        return object;
    }
    static VARIANT Child(LONG number) {
        VARIANT child{};
        child.vt = VT_I4;
        child.lVal = number;
        return child;
    }
    // -1 where there is no state.
    static LONG State(IAccessible& object, LONG child) {
        VARIANT state{};
        const HRESULT result = object.get_accState(Child(child), &state);
        return result == S_OK && state.vt == VT_I4 ? state.lVal : -1;
    }
};

TEST_F(ListAccessibility, HasTheCheckStateOfEachRow) {
    const auto object = Object();
    ASSERT_TRUE(object);
    EXPECT_EQ(0, State(*object.Get(), 2) & STATE_SYSTEM_CHECKED);
    SetCheckOfRow(Window(), 1, RowCheck::On);
    ASSERT_NE(-1, State(*object.Get(), 2));
    EXPECT_EQ(STATE_SYSTEM_CHECKED, State(*object.Get(), 2) & STATE_SYSTEM_CHECKED);
    ASSERT_NE(-1, State(*object.Get(), 1));
    EXPECT_EQ(0, State(*object.Get(), 1) & STATE_SYSTEM_CHECKED);
    ASSERT_NE(-1, State(*object.Get(), CHILDID_SELF));
    EXPECT_EQ(0, State(*object.Get(), CHILDID_SELF) & STATE_SYSTEM_CHECKED) << "the list itself";
}

TEST_F(ListAccessibility, HasNoCheckStateWithoutCheckBoxesOrRows) {
    SetCheckOfRow(Window(), 1, RowCheck::On);
    const auto object = Object();
    const auto isChecked = [&](LONG child) {
        const LONG state = State(*object.Get(), child);
        return state != -1 && (state & STATE_SYSTEM_CHECKED) != 0;
    };
    EXPECT_TRUE(isChecked(2));
    EXPECT_FALSE(isChecked(4)) << "after the last row";
    Send(1001, LVM_SETEXTENDEDLISTVIEWSTYLE, LVS_EX_CHECKBOXES, 0);
    EXPECT_FALSE(isChecked(2));
}

TEST_F(ListAccessibility, IsThePlatformsButForStates) {
    const auto object = Object();
    ObLib::ComPtr<IAccessible> platforms;
    CreateStdAccessibleObject(Window(), OBJID_CLIENT, __uuidof(IAccessible),
                              reinterpret_cast<void**>(platforms.Put()));
    ASSERT_TRUE(object && platforms);
    VARIANT ours{};
    VARIANT theirs{};
    EXPECT_EQ(platforms->get_accState(Child(0), &theirs), object->get_accState(Child(0), &ours));
    EXPECT_EQ(theirs.lVal, ours.lVal);
    long place[4] = {};
    EXPECT_EQ(S_OK, object->accLocation(&place[0], &place[1], &place[2], &place[3], Child(0)));
    EXPECT_EQ(ClientArea(Window()).Width(), place[2]);
    ObLib::ComPtr<IDispatch> parent;
    EXPECT_EQ(S_OK, object->get_accParent(parent.Put()));
    EXPECT_TRUE(parent);
}

TEST_F(ListAccessibility, ReportsAFlipOfTheRow) {
    events.clear();
    Click(OnCheck(1));
    EXPECT_EQ(1, std::ranges::count(events, std::pair<DWORD, LONG>(EVENT_OBJECT_STATECHANGE, 2)));
}

TEST_F(ListAccessibility, ReportsNoFlipThatTheClientRefuses) {
    ListsTest::Heard().refusesChanges = true;
    events.clear();
    Click(OnCheck(1));
    EXPECT_EQ(RowCheck::Off, Check(1));
    EXPECT_TRUE(std::ranges::none_of(
        events, [](const auto& event) { return event.first == EVENT_OBJECT_STATECHANGE; }));
}

TEST_F(ListAccessibility, EndsWithTheWindow) {
    const auto object = Object();
    DestroyWindow(dialog_->window);
    VARIANT state{};
    EXPECT_EQ(CO_E_OBJNOTCONNECTED, object->get_accState(Child(1), &state));
}

} // namespace
