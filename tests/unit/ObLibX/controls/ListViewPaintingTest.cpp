// The flat list view: how its ground and rows are painted, and what its parent hears of it.
#include <algorithm>
#include <numeric>

#include "ObLibX/src/controls/ListPainting.h"
#include "ObLibX/src/dialog/DlgFont.h"
#include "ObLibX/src/dialog/Images.h"
#include "ObLibX/src/dialog/Palette.h"
#include "ObLibX/src/dialog/WindowSubclass.h"
#include "tests/unit/ObLibX/controls/ListPaintingFixture.h"

namespace {

using namespace ObLibX;
using namespace listtest;

TEST_F(ListPainting, ShowsEachStateOfARow) {
    EXPECT_EQ((Colours{kWhite, kWhite}), Look(0));
    SetState(0, LVIS_SELECTED, LVIS_SELECTED);
    EXPECT_EQ((Colours{0xF0F0F0, 0xD9D9D9}), Look(0)) << "the focus is elsewhere";
    SetState(2, LVIS_FOCUSED, LVIS_FOCUSED);
    SetFocus(Window());
    EXPECT_TRUE(List().isFocused);
    EXPECT_EQ((Colours{0xFDE8D2, kSelectedFrame}), Look(0));
    SetState(-1, 0, LVIS_SELECTED | LVIS_FOCUSED);
    SetState(1, LVIS_FOCUSED, LVIS_FOCUSED);
    EXPECT_EQ((Colours{kWhite, kWhite}), Look(0));
    EXPECT_EQ((Colours{kWhite, kSelectedFrame}), Look(1)) << "the focused row";
    Move(On(2).x, On(2).y);
    EXPECT_EQ((Colours{0xFBF3E5, kHotFrame}), Look(2));
    SetFocus(Item(1010));
    EXPECT_FALSE(List().isFocused);
    EXPECT_EQ((Colours{kWhite, kWhite}), Look(1));
}

TEST_F(ListPainting, RepaintsByItselfWhenTheFocusComesAndGoes) {
    SetState(0, LVIS_SELECTED, LVIS_SELECTED);
    const PixelRect area = RowArea(0);
    const auto shown = [&] {
        UpdateWindow(Window());
        return fieldtest::PixelOf(Window(), area.left, area.top);
    };
    EXPECT_EQ(0xD9D9D9u, shown());
    SetFocus(Window());
    EXPECT_EQ(kSelectedFrame, shown());
    SetFocus(Item(1010));
    EXPECT_EQ(0xD9D9D9u, shown());
}

TEST_F(ListPainting, HasTheSystemsColoursInHighContrast) {
    fieldtest::isContrast = true;
    const COLORREF window = GetSysColor(COLOR_WINDOW);
    const COLORREF highlight = GetSysColor(COLOR_HIGHLIGHT);
    SetState(1, LVIS_FOCUSED, LVIS_FOCUSED);
    SetFocus(Window());
    EXPECT_EQ((Colours{window, window}), Look(0));
    SetState(0, LVIS_SELECTED, LVIS_SELECTED);
    EXPECT_EQ((Colours{highlight, highlight}), Look(0));
    Move(On(2).x, On(2).y);
    EXPECT_EQ((Colours{window, highlight}), Look(2));
}

TEST_F(ListPainting, FollowsTheMouseFromBelowTheHeader) {
    EXPECT_EQ(-1, List().HotRow());
    Move(On(1).x, On(1).y);
    EXPECT_EQ(1, List().HotRow());
    Move(On(1).x, Scale(24));
    EXPECT_NE(-1, List().HotRow());
    Move(On(1).x, Scale(24) - 1);
    EXPECT_EQ(-1, List().HotRow()) << "on the header";
    Move(On(2).x, On(2).y);
    Send(1001, WM_MOUSELEAVE);
    EXPECT_EQ(-1, List().HotRow());
    Move(On(2).x, RowArea(2).bottom + 2);
    EXPECT_EQ(-1, List().HotRow()) << "after the last row";
}

TEST_F(ListPainting, RepaintsOnlyTheRowsThatTheMouseEntersAndLeaves) {
    Move(On(1).x, On(1).y);
    UpdateWindow(Window());
    Heard().painted.clear();
    Move(On(1).x + 1, On(1).y);
    UpdateWindow(Window());
    EXPECT_TRUE(Heard().painted.empty());
    Move(On(2).x, On(2).y);
    UpdateWindow(Window());
    EXPECT_EQ((std::map<int, int>{{1, 1}, {2, 1}}), Heard().painted);
}

TEST_F(ListPainting, ShowsTheFocusedRowWithoutColourUnlessCuesAreHidden) {
    SetFocus(Window());
    SetState(0, LVIS_SELECTED, LVIS_SELECTED);
    SetState(1, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
    const auto dots = [&](int row) {
        const ShownPixels shown(Window());
        const PixelRect area = RowArea(row);
        const PixelRect line{area.left + 1, area.top + 1, area.right - 1, area.top + 2};
        return line.Width() - shown.Count(line, 0xFDE8D2);
    };
    EXPECT_LT(RowArea(1).Width() / 4, dots(1));
    EXPECT_EQ(0, dots(0)) << "selected as well";
    HideFocusCues();
    EXPECT_EQ(0, dots(1));
}

TEST_F(ListPainting, ShowsTheFocusedRowWithoutColourInHighContrast) {
    fieldtest::isContrast = true;
    SetFocus(Window());
    SetState(0, LVIS_SELECTED, LVIS_SELECTED);
    SetState(1, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
    const auto dots = [&](int row) {
        const PixelRect area = RowArea(row);
        const PixelRect line{area.left + 1, area.top + 1, area.right - 1, area.top + 2};
        return line.Width() - ShownPixels(Window()).Count(line, GetSysColor(COLOR_HIGHLIGHT));
    };
    EXPECT_LT(RowArea(1).Width() / 4, dots(1));
    EXPECT_GT(RowArea(1).Width() * 3 / 4, dots(1)) << "dots, no line";
    EXPECT_EQ(0, dots(0));
}

// ---- The focus without a row for it

class FocusBox : public ListPainting {
protected:
    // The part of the box's upper line that isn't ground, in percent.
    int Dots() const {
        const ShownPixels shown(Window());
        const int y = TitleArea(0).bottom + 1;
        const PixelRect line{1, y, shown.Area().right - 1, y + 1};
        return 100 - 100 * shown.Count(line, kWhite) / line.Width();
    }
};

TEST_F(FocusBox, IsAroundTheRowsOfAListThatHasTheFocusAlone) {
    Send(1001, LVM_DELETEALLITEMS);
    EXPECT_EQ(0, Dots());
    SetFocus(Window());
    EXPECT_NEAR(50, Dots(), 10);
    HideFocusCues();
    EXPECT_EQ(0, Dots());
}

TEST_F(FocusBox, GoesToTheRowThatGetsTheFocus) {
    SetFocus(Window());
    UpdateWindow(Window());
    const PixelRect area = ClientArea(Window());
    const auto left = [&] {
        UpdateWindow(Window()); // what is invalid by itself
        int dots = 0;
        for (int y = RowArea(2).bottom + 1; y < area.bottom - 1; ++y) {
            dots += fieldtest::PixelOf(Window(), 1, y) != kWhite ? 1 : 0;
        }
        return dots;
    };
    EXPECT_LT(0, left());
    SetState(1, LVIS_FOCUSED, LVIS_FOCUSED);
    EXPECT_EQ(0, left());
    SetState(-1, 0, LVIS_FOCUSED);
    EXPECT_LT(0, left());
}

TEST_F(FocusBox, StaysInItsPlaceWhenTheListScrolls) {
    InsertMany(100);
    SetFocus(Window());
    UpdateWindow(Window());
    const PixelRect area = ClientArea(Window());
    const int row = RowArea(0).Height();
    // As the system does with rows that stay in view.
    const RECT rows{0, TitleArea(0).bottom, area.right, area.bottom};
    ScrollWindowEx(Window(), 0, -row, &rows, &rows, nullptr, nullptr, SW_INVALIDATE);
    UpdateWindow(Window());
    std::vector<COLORREF> scrolled;
    const int middle = area.right / 2;
    const PixelRect columns{middle, TitleArea(0).bottom, middle + 4, area.bottom};
    for (int y = columns.top; y < columns.bottom; ++y) {
        for (int x = columns.left; x < columns.right; ++x) {
            scrolled.push_back(fieldtest::PixelOf(Window(), x, y));
        }
    }
    EXPECT_EQ(ShownPixels(Window()).Of(columns), scrolled);
}

// ---- What the parent hears and does first

// A dialog that is asked for a colour has the list painted, and asks it for another text.
TEST_F(ListPainting, MayBePaintedInTheMiddleOfACell) {
    const HFONT bold = GetFont(9, L"", 700, 0);
    SetCell(1, 0, L"The text of a row that is bold");
    SetCell(1, 1, L"12,345");
    Heard().onAsked = [](LVITEMW& item) {
        static wchar_t text[40];
        swprintf(text, 40, L"Asked for %d and %d", item.iItem, item.iSubItem);
        if ((item.mask & LVIF_TEXT) != 0) item.pszText = text;
    };
    Insert(LPSTR_TEXTCALLBACKW);
    Insert(LPSTR_TEXTCALLBACKW);
    SetCell(3, 1, LPSTR_TEXTCALLBACKW);
    Heard().onDraw = [&](NMLVCUSTOMDRAW& draw) -> LRESULT {
        if (draw.nmcd.dwDrawStage != CDDS_ITEMPREPAINT || draw.nmcd.dwItemSpec != 1) {
            return CDRF_DODEFAULT;
        }
        SelectObject(draw.nmcd.hdc, bold);
        return CDRF_NEWFONT;
    };
    const auto shown = [&] { return ShownPixels(Window()).Of(ClientArea(Window())); };
    const std::vector<COLORREF> before = shown();
    int nested = 0;
    Heard().cellColor = [&](int row, int column) {
        wchar_t other[80] = L"";
        LVITEMW item{};
        item.pszText = other;
        item.cchTextMax = 80;
        Send(1001, LVM_GETITEMTEXTW, 4, reinterpret_cast<LPARAM>(&item));
        const bool isAsked = (row == 1 && column == 0) || (row == 3 && column == 0);
        if (isAsked && nested < 2) {
            ++nested;
            RedrawWindow(Window(), nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
        }
        return kNoColor;
    };
    EXPECT_EQ(before, shown());
    EXPECT_EQ(2, nested);
}

TEST_F(ListPainting, LeavesARowToAParentThatPaintsItItself) {
    Heard().onDraw = [&](NMLVCUSTOMDRAW& draw) -> LRESULT {
        if (draw.nmcd.dwDrawStage == CDDS_PREPAINT) return CDRF_NOTIFYITEMDRAW;
        const bool isRow = draw.nmcd.dwDrawStage == CDDS_ITEMPREPAINT;
        if (!isRow || draw.nmcd.dwItemSpec != 1) return CDRF_DODEFAULT;
        FillArea(draw.nmcd.hdc, RowArea(1), kRed);
        return CDRF_SKIPDEFAULT;
    };
    const ShownPixels shown(Window());
    EXPECT_TRUE(shown.IsAll(RowArea(1), kRed));
    EXPECT_EQ(kWhite, shown.At(RowArea(0).left, RowArea(0).top));
}

// The system announces each group in the middle of a painting, after rows that are there already.
TEST_F(ListPainting, FillsNothingForAGroup) {
    const ClientDc dc(Window());
    const PixelRect area = ClientArea(Window());
    NMLVCUSTOMDRAW draw{};
    draw.nmcd.hdr = {Window(), 1001, static_cast<UINT>(NM_CUSTOMDRAW)};
    draw.nmcd.dwDrawStage = CDDS_PREPAINT;
    draw.nmcd.hdc = dc.Get();
    const auto sent = [&](DWORD type) {
        FillArea(dc.Get(), area, kRed);
        draw.dwItemType = type;
        return SendMessageW(dialog_->window, WM_NOTIFY, 1001, reinterpret_cast<LPARAM>(&draw));
    };
    EXPECT_EQ(CDRF_NOTIFYITEMDRAW, sent(LVCDI_ITEM));
    EXPECT_EQ(kWhite, GetPixel(dc.Get(), area.right / 2, area.bottom - 3)) << "the list itself";
    EXPECT_EQ(CDRF_DODEFAULT, sent(LVCDI_GROUP));
    EXPECT_EQ(kRed, GetPixel(dc.Get(), area.right / 2, area.bottom - 3));
}

TEST_F(ListPainting, AnswersEachStage) {
    NMLVCUSTOMDRAW draw{};
    const ClientDc dc(Window());
    draw.nmcd.hdr = {Window(), 1001, static_cast<UINT>(NM_CUSTOMDRAW)};
    draw.nmcd.hdc = dc.Get();
    const auto answer = [&](DWORD stage) {
        draw.nmcd.dwDrawStage = stage;
        return SendMessageW(dialog_->window, WM_NOTIFY, 1001, reinterpret_cast<LPARAM>(&draw));
    };
    EXPECT_EQ(CDRF_NOTIFYITEMDRAW, answer(CDDS_PREPAINT));
    draw.nmcd.uItemState = CDIS_FOCUS | CDIS_SELECTED;
    EXPECT_EQ(CDRF_NOTIFYSUBITEMDRAW, answer(CDDS_ITEMPREPAINT));
    EXPECT_EQ(UINT{CDIS_SELECTED}, draw.nmcd.uItemState) << "no focus box of the system's";
    EXPECT_EQ(CDRF_SKIPDEFAULT, answer(CDDS_ITEMPREPAINT | CDDS_SUBITEM));
    EXPECT_EQ(CDRF_DODEFAULT, answer(CDDS_POSTPAINT));
    draw.iSubItem = 77;
    EXPECT_EQ(CDRF_SKIPDEFAULT, answer(CDDS_ITEMPREPAINT | CDDS_SUBITEM)) << "no such column";
}

TEST_F(ListPainting, LeavesOtherViewsToTheSystem) {
    const ObLib::UniqueImageList images = ColouredImages(Scale(16), 1, kRed);
    Send(1004, LVM_SETIMAGELIST, LVSIL_SMALL, reinterpret_cast<LPARAM>(images.Get()));
    LVCOLUMNW column{};
    column.mask = LVCF_WIDTH;
    column.cx = Scale(60);
    Send(1004, LVM_INSERTCOLUMNW, 0, reinterpret_cast<LPARAM>(&column));
    Insert(L"One", 1004);
    std::vector<DWORD> stages;
    Heard().onDraw = [&](NMLVCUSTOMDRAW& draw) -> LRESULT {
        if (draw.nmcd.hdr.idFrom == 1004) stages.push_back(draw.nmcd.dwDrawStage);
        return CDRF_DODEFAULT;
    };
    const auto icons = [&](WPARAM view) {
        Send(1004, LVM_SETVIEW, view);
        stages.clear();
        const ShownPixels shown(Window(1004));
        return shown.Count(shown.Area(), kRed);
    };
    const int whole = Scale(16) * Scale(16);
    for (const WPARAM view : {LV_VIEW_SMALLICON, LV_VIEW_LIST}) {
        EXPECT_EQ(whole, icons(view)) << view;
        EXPECT_EQ((std::vector<DWORD>{CDDS_PREPAINT}), stages) << "nothing more is asked for";
    }
    EXPECT_EQ(whole, icons(LV_VIEW_DETAILS));
    EXPECT_LT(2u, stages.size());
}

// ---- The ground

TEST_F(ListPainting, FillsWhereNoRowIs) {
    Send(1001, LVM_DELETEALLITEMS);
    const ShownPixels shown(Window());
    const PixelRect below{0, TitleArea(0).bottom + Scale(2), shown.Area().right,
                          shown.Area().bottom};
    EXPECT_TRUE(shown.IsAll(below, kWhite));
}

TEST_F(ListPainting, IsLeftOutWhenTheDialogIsErased) {
    RECT place{};
    GetWindowRect(Window(), &place);
    MapWindowPoints(HWND_DESKTOP, dialog_->window, reinterpret_cast<POINT*>(&place), 2);
    const HDC dc = GetDC(dialog_->window);
    RECT all{};
    GetClientRect(dialog_->window, &all);
    FillArea(dc, AsPixels(all), kRed);
    SendMessageW(dialog_->window, WM_ERASEBKGND, reinterpret_cast<WPARAM>(dc), 0);
    EXPECT_EQ(kRed, GetPixel(dc, place.left + 5, place.bottom - 5)) << "the list's place";
    EXPECT_EQ(kWhite, GetPixel(dc, place.left - 2, place.top - 2)) << "the dialog's own";
    RECT clip{};
    GetClipBox(dc, &clip);
    FillArea(dc, AsPixels(place), 0);
    EXPECT_EQ(0u, GetPixel(dc, place.left + 5, place.bottom - 5)) << "not clipped after that";
    ShowWindow(Window(), SW_HIDE);
    SendMessageW(dialog_->window, WM_ERASEBKGND, reinterpret_cast<WPARAM>(dc), 0);
    EXPECT_EQ(kWhite, GetPixel(dc, place.left + 5, place.bottom - 5)) << "a hidden list has none";
    ReleaseDC(dialog_->window, dc);
}

// ---- Scrolling

class ListScrolling : public ListsTest {
protected:
    static constexpr int kRows = 1000;
    void SetUp() override {
        ListsTest::SetUp();
        InsertMany(kRows);
        RedrawWindow(Window(), nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN);
    }
    int Top() const { return static_cast<int>(Send(1001, LVM_GETTOPINDEX)); }
    int Page() const { return static_cast<int>(Send(1001, LVM_GETCOUNTPERPAGE)); }
    // The rows that a step paints, once each; but for one whose state has changed after that.
    void ExpectEachOnce(int least, int changed = -1) const {
        int rows = 0;
        for (const auto& [row, count] : Heard().painted) {
            if (row != changed) {
                EXPECT_EQ(1, count) << row;
            }
            ++rows;
        }
        EXPECT_LE(least, rows);
        EXPECT_GE(Page() + 2, rows);
    }
};

TEST_F(ListScrolling, PaintsEachRowOnceAStep) {
    const int height = RowArea(0).Height();
    const struct {
        UINT message;
        WPARAM wParam;
        LPARAM lParam;
        int least; // rows that come into view
    } steps[] = {{WM_VSCROLL, SB_LINEDOWN, 0, 1},
                 {WM_VSCROLL, SB_PAGEDOWN, 0, 3},
                 {WM_VSCROLL, SB_LINEUP, 0, 1},
                 {WM_MOUSEWHEEL, MAKEWPARAM(0, static_cast<WORD>(-WHEEL_DELTA)), 0, 1},
                 {LVM_SCROLL, 0, 500 * height, 3},
                 {LVM_ENSUREVISIBLE, kRows - 1, FALSE, 3},
                 {LVM_ENSUREVISIBLE, 0, FALSE, 3}};
    for (const auto& step : steps) {
        SCOPED_TRACE(&step - steps);
        const int before = Top();
        Heard().painted.clear();
        Send(1001, step.message, step.wParam, step.lParam);
        UpdateWindow(Window());
        EXPECT_NE(before, Top());
        ExpectEachOnce(step.least);
    }
}

TEST_F(ListScrolling, PaintsEachRowOnceAPageByKeys) {
    SetFocus(Window());
    SetState(0, LVIS_FOCUSED | LVIS_SELECTED, LVIS_FOCUSED | LVIS_SELECTED);
    for (int page = 0; page < 5; ++page) {
        UpdateWindow(Window());
        Heard().painted.clear();
        Send(1001, WM_KEYDOWN, VK_NEXT, 1);
        UpdateWindow(Window());
        const auto focused =
            static_cast<int>(Send(1001, LVM_GETNEXTITEM, static_cast<WPARAM>(-1), LVNI_FOCUSED));
        ExpectEachOnce(1, focused);
    }
}

TEST_F(ListScrolling, KeepsTheHotRowUnderAMouseThatRests) {
    const PixelRect first = RowArea(Top());
    Move(first.left + 5, std::max(first.Centre().y, Scale(24)));
    const int hot = List().HotRow();
    UpdateWindow(Window());
    Send(1001, WM_VSCROLL, SB_LINEDOWN);
    UpdateWindow(Window());
    EXPECT_EQ(hot + 1, List().HotRow());
    const ShownPixels shown(Window());
    const auto fill = [&](int row) {
        return shown.At(CellArea(row, 1).left + Scale(4), RowArea(row).top + 3);
    };
    EXPECT_EQ(0xFBF3E5u, fill(hot + 1));
    EXPECT_EQ(kWhite, fill(hot + 2));
}

// Rows, ground and all: the screen gets the picture when it is done.
TEST_F(ListScrolling, PaintsOffTheScreenWithGroupModeAndWithout) {
    const obtest::ImportPatch<decltype(&FillRect)> fills("user32.dll", "FillRect", &RecordFill);
    ASSERT_TRUE(fills.Ok());
    SetState(-1, LVIS_SELECTED, LVIS_SELECTED);
    for (const WPARAM mode : {TRUE, FALSE}) {
        Send(1001, LVM_ENABLEGROUPVIEW, mode);
        UpdateWindow(Window());
        filled.clear();
        Heard().painted.clear();
        Send(1001, WM_VSCROLL, SB_PAGEDOWN);
        UpdateWindow(Window());
        EXPECT_LT(3u, filled.size());
        EXPECT_EQ(0, std::ranges::count(filled, Window())) << "mode " << mode;
        ExpectEachOnce(3);
    }
}

// What the window shows after a step is what it shows when all of it is painted anew.
TEST_F(ListScrolling, ShowsTheSameAsAWholePaintingWithoutGroupMode) {
    Send(1001, LVM_ENABLEGROUPVIEW, FALSE);
    UpdateWindow(Window());
    Send(1001, WM_VSCROLL, SB_LINEDOWN);
    UpdateWindow(Window());
    const PixelRect column{Scale(8), TitleArea(0).bottom, Scale(8) + 1,
                           ClientArea(Window()).bottom};
    std::vector<COLORREF> stepped;
    for (int y = column.top; y < column.bottom; ++y) {
        stepped.push_back(fieldtest::PixelOf(Window(), column.left, y));
    }
    EXPECT_EQ(ShownPixels(Window()).Of(column), stepped);
    EXPECT_LT(0, std::ranges::count_if(stepped, [](COLORREF color) { return color != kWhite; }));
}

TEST_F(ListScrolling, LeavesTheTitlesAloneWithoutGroupMode) {
    Send(1001, LVM_ENABLEGROUPVIEW, FALSE);
    const ShownPixels shown(Window());
    EXPECT_LT(0, shown.Count(TitleArea(0), 0x797979));
}

TEST_F(ListScrolling, IsNeverErasedBetweenSteps) {
    const HWND window = Window();
    const ClientDc dc(window);
    const PixelRect area = ClientArea(window);
    FillArea(dc.Get(), area, kRed);
    EXPECT_NE(0, SendMessageW(window, WM_ERASEBKGND, reinterpret_cast<WPARAM>(dc.Get()), 0));
    EXPECT_EQ(kRed, GetPixel(dc.Get(), area.right / 2, area.bottom - 3));
}

} // namespace
