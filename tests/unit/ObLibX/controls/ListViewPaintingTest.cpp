// The flat list view: how its rows, cells and header are painted.
#include <algorithm>
#include <numeric>

#include "ObLibX/src/controls/ListPainting.h"
#include "ObLibX/src/dialog/DlgFont.h"
#include "ObLibX/src/dialog/Images.h"
#include "ObLibX/src/dialog/Palette.h"
#include "ObLibX/src/dialog/WindowSubclass.h"
#include "tests/unit/ObLibX/controls/ListFixture.h"

namespace {

using namespace ObLibX;
using namespace listtest;

constexpr COLORREF kWhite = 0xFFFFFF;
constexpr COLORREF kSelectedFrame = 0xE6A869;
constexpr COLORREF kHotFrame = 0xE6C37A;

class ListPainting : public ListsTest {
protected:
    void SetUp() override {
        ListsTest::SetUp();
        for (const wchar_t* const text : {L"One", L"Two", L"Three"}) Insert(text);
        SetCell(0, 1, L"111");
        SetCell(0, 2, L"ooo");
        SetState(-1, 0, LVIS_SELECTED | LVIS_FOCUSED);
    }
    void HideFocusCues() const {
        SetWindowSubclass(
            Window(),
            [](HWND hidden, UINT message, WPARAM wParam, LPARAM lParam, UINT_PTR,
               DWORD_PTR) -> LRESULT {
                if (message == WM_QUERYUISTATE) return UISF_HIDEFOCUS;
                return DefSubclassProc(hidden, message, wParam, lParam);
            },
            1, 0);
    }
    // Fill and frame of a row, as they are shown.
    std::pair<COLORREF, COLORREF> Look(int row) const {
        const ShownPixels shown(Window());
        const PixelRect area = RowArea(row);
        const COLORREF frame = shown.At(area.left, area.top);
        EXPECT_TRUE(shown.IsFramed(area, frame)) << row;
        return {shown.At(area.right - 3, area.top + 3), frame};
    }
    using Colours = std::pair<COLORREF, COLORREF>;
    // Inside a row, where the mouse counts.
    PixelPoint On(int row) const {
        const PixelRect area = RowArea(row);
        return {area.left + 5, std::max(area.top + 1, Scale(24))};
    }
};

TEST_F(ListPainting, ShowsEachStateOfARow) {
    EXPECT_EQ((Colours{kWhite, kWhite}), Look(0));
    SetState(0, LVIS_SELECTED, LVIS_SELECTED);
    EXPECT_EQ((Colours{0xF0F0F0, 0xD9D9D9}), Look(0)) << "the focus is elsewhere";
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

// ---- Cells

constexpr COLORREF kRed = 0x0000FF;

class ListCells : public ListPainting {
protected:
    // How often a colour is in a cell.
    int Ink(int row, int column, COLORREF color) const {
        return ShownPixels(Window()).Count(CellArea(row, column), color);
    }
};

TEST_F(ListCells, AreDarkInTheFirstColumnAndPaleInTheOthers) {
    Heard().cellColor = nullptr;
    EXPECT_LT(0, Ink(0, 0, 0x212121));
    EXPECT_LT(0, Ink(0, 1, 0xA9A9A9));
    EXPECT_EQ(0, Ink(0, 1, 0x212121));
    EnableWindow(Window(), FALSE);
    EXPECT_EQ(0, Ink(0, 0, 0x212121));
    EXPECT_LT(0, Ink(0, 0, 0x808080));
}

TEST_F(ListCells, AskTheDialogForTheirColourFirst) {
    Heard().cellColor = [](int row, int column) {
        return row == 0 && column == 1 ? kRed : kNoColor;
    };
    EXPECT_LT(0, Ink(0, 1, kRed));
    EXPECT_EQ(0, Ink(0, 1, 0xA9A9A9));
    EXPECT_LT(0, Ink(0, 0, 0x212121));
    fieldtest::isContrast = true;
    EXPECT_LT(0, Ink(0, 1, kRed)) << "in high contrast too";
}

TEST_F(ListCells, ReportTheirStateToTheDialog) {
    const auto flagsOf = [&](int row) {
        Heard().asked.clear();
        const ShownPixels shown(Window());
        for (const ColorAsked& asked : Heard().asked) {
            if (asked.id == 1001 && asked.row == row && asked.column == 2) return asked.flags;
        }
        return 99u;
    };
    EXPECT_EQ(0u, flagsOf(0));
    SetState(0, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
    EXPECT_EQ(1u, flagsOf(0));
    SetFocus(Window());
    EXPECT_EQ(5u, flagsOf(0));
    EXPECT_EQ(0u, flagsOf(1));
    Move(On(0).x, On(0).y);
    Move(On(1).x, On(1).y);
    EXPECT_EQ(2u, flagsOf(1));
    fieldtest::isContrast = true;
    EXPECT_EQ(8u + 2u, flagsOf(1));
}

TEST_F(ListCells, HaveTheAlignmentOfTheirColumn) {
    const ShownPixels shown(Window());
    const PixelRect left = CellArea(0, 0);
    const PixelRect right = CellArea(0, 1);
    const PixelRect centre = CellArea(0, 2);
    const int inset = Scale(4);
    EXPECT_NEAR(left.left + inset, shown.Inked(left, kWhite).first, Scale(3));
    EXPECT_NEAR(right.right - inset, shown.Inked(right, kWhite).second + 1, Scale(3));
    const auto ink = shown.Inked(centre, kWhite);
    EXPECT_NEAR((centre.left + centre.right) / 2, (ink.first + ink.second) / 2, Scale(2));
}

TEST_F(ListCells, EndInAnEllipsisInsideTheirInsets) {
    SetCell(0, 1, L"A text that is much longer than its column is wide, and longer still");
    const ShownPixels shown(Window());
    const PixelRect cell = CellArea(0, 1);
    const auto ink = shown.Inked(cell, kWhite);
    EXPECT_GE(ink.first, cell.left + Scale(4) - 1);
    EXPECT_LE(ink.second, cell.right - Scale(4));
    const PixelRect end{cell.right - Scale(16), cell.top, cell.right, cell.bottom};
    const PixelRect upper{end.left, end.top, end.right, end.top + end.Height() / 2 - Scale(1)};
    const PixelRect lower{end.left, end.top + end.Height() / 2, end.right, end.bottom};
    const auto inked = [&](const PixelRect& rect) {
        return rect.Width() * rect.Height() - shown.Count(rect, kWhite);
    };
    EXPECT_LT(inked(upper), inked(lower)) << "dots on the base line";
}

TEST_F(ListCells, ShowTheCheckBoxOfTheirRow) {
    GiveChecks();
    SetCheckOfRow(Window(), 1, RowCheck::On);
    const auto drawn = [&](int row) {
        const PixelRect cell = CellArea(row, 0);
        const int left = cell.left + Scale(4);
        const int top = cell.top + Scale(4);
        return ShownPixels(Window()).Of({left, top, left + static_cast<int>(List().checkSize.cx),
                                         top + static_cast<int>(List().checkSize.cy)});
    };
    // A bitmap on white.
    const auto expected = [&](int image) {
        const ClientDc screen(Window());
        const ObLib::UniqueMemoryDc dc(CreateCompatibleDC(screen.Get()));
        const SIZE size = List().checkSize;
        const ObLib::UniqueBitmap bitmap(CreateCompatibleBitmap(screen.Get(), size.cx, size.cy));
        const HGDIOBJ old = SelectObject(dc.Get(), bitmap.Get());
        FillArea(dc.Get(), {0, 0, size.cx, size.cy}, kWhite);
        DrawImageAt(dc.Get(), List().checkImages[static_cast<std::size_t>(image)].Get(), 0, 0);
        std::vector<COLORREF> pixels;
        for (int y = 0; y < size.cy; ++y) {
            for (int x = 0; x < size.cx; ++x) pixels.push_back(GetPixel(dc.Get(), x, y));
        }
        SelectObject(dc.Get(), old);
        return pixels;
    };
    EXPECT_EQ(expected(1), drawn(0));
    EXPECT_EQ(expected(0), drawn(1));
    EXPECT_NE(expected(0), expected(1));
    EnableWindow(Window(), FALSE);
    EXPECT_EQ(expected(3), drawn(0));
    EXPECT_EQ(expected(2), drawn(1));
    EXPECT_NE(expected(0), expected(2));
    const PixelRect cell = CellArea(0, 0);
    EXPECT_LE(cell.left + Scale(24),
              ShownPixels(Window())
                  .Inked({cell.left + Scale(18), cell.top, cell.right, cell.bottom}, kWhite)
                  .first)
        << "the text is after it";
}

TEST_F(ListCells, ShowTheirCheckBoxByLinesInHighContrast) {
    GiveChecks();
    SetCheckOfRow(Window(), 1, RowCheck::On);
    fieldtest::isContrast = true;
    const ShownPixels shown(Window());
    const COLORREF text = GetSysColor(COLOR_WINDOWTEXT);
    const auto box = [&](int row) {
        const PixelRect cell = CellArea(row, 0);
        const int left = cell.left + Scale(4);
        const int top = cell.top + Scale(4);
        return PixelRect{left, top, left + static_cast<int>(List().checkSize.cx),
                         top + static_cast<int>(List().checkSize.cy)};
    };
    EXPECT_NE(text, shown.At(box(0).Centre().x, box(0).Centre().y));
    EXPECT_EQ(text, shown.At(box(1).Centre().x, box(1).Centre().y));
    EXPECT_LT(0, shown.Count(box(0), text));
}

TEST_F(ListCells, ShowTheIconOfTheirRow) {
    const ObLib::UniqueImageList images = ColouredImages(Scale(16), 1, kRed);
    Send(1004, LVM_SETIMAGELIST, LVSIL_SMALL, reinterpret_cast<LPARAM>(images.Get()));
    LVCOLUMNW column{};
    column.mask = LVCF_WIDTH;
    column.cx = Scale(60);
    Send(1004, LVM_INSERTCOLUMNW, 0, reinterpret_cast<LPARAM>(&column));
    Insert(L"One", 1004);
    LVITEMW item{};
    item.mask = LVIF_IMAGE;
    item.iImage = 5;
    Insert(L"Two", 1004);
    item.iItem = 1;
    Send(1004, LVM_SETITEMW, 0, reinterpret_cast<LPARAM>(&item));
    const ShownPixels shown(Window(1004));
    const PixelRect cell = CellArea(0, 0, 1004);
    const int left = cell.left + Scale(4);
    const int top = cell.top + (cell.Height() - Scale(16)) / 2;
    const PixelRect icon{left, top, left + Scale(16), top + Scale(16)};
    EXPECT_TRUE(shown.IsAll(icon, kRed));
    EXPECT_EQ(Scale(16) * Scale(16), shown.Count(cell, kRed)) << "and nowhere else";
    const PixelRect rest{icon.right, cell.top, cell.right, cell.bottom};
    EXPECT_LE(cell.left + Scale(28) - 1, shown.Inked(rest, kWhite).first);
    EXPECT_EQ(0, shown.Count(CellArea(1, 0, 1004), kRed)) << "no such picture";
}

TEST_F(ListCells, ShrinkAnIconThatIsTooLarge) {
    const ObLib::UniqueImageList images = ColouredImages(Scale(32), 1, kRed);
    Send(1001, LVM_SETIMAGELIST, LVSIL_SMALL, reinterpret_cast<LPARAM>(images.Get()));
    const ShownPixels shown(Window());
    const PixelRect cell = CellArea(0, 0);
    const int left = cell.left + Scale(4);
    const int top = cell.top + (cell.Height() - Scale(16)) / 2;
    EXPECT_EQ(kRed, shown.At(left + Scale(8), top + Scale(8)));
    EXPECT_EQ(0, shown.Count({cell.left, cell.top, left, cell.bottom}, kRed));
    EXPECT_EQ(0, shown.Count({left + Scale(16), cell.top, cell.right, cell.bottom}, kRed));
    Send(1001, LVM_SETIMAGELIST, LVSIL_SMALL, 0);
}

TEST_F(ListCells, ClipTheirPicturesToANarrowColumn) {
    GiveChecks();
    const ObLib::UniqueImageList images = ColouredImages(Scale(16), 1, kRed);
    Send(1001, LVM_SETIMAGELIST, LVSIL_SMALL, reinterpret_cast<LPARAM>(images.Get()));
    Send(1001, LVM_SETCOLUMNWIDTH, 0, Scale(30));
    const ShownPixels shown(Window());
    EXPECT_LT(0, shown.Count(CellArea(0, 0), kRed));
    EXPECT_EQ(0, shown.Count(CellArea(0, 1), kRed));
    Send(1001, LVM_SETIMAGELIST, LVSIL_SMALL, 0);
}

TEST_F(ListCells, OfColumnsWithoutWidthShowNothing) {
    for (const WPARAM column : {0, 1, 2}) Send(1001, LVM_SETCOLUMNWIDTH, column, 0);
    GiveChecks();
    const ShownPixels shown(Window());
    EXPECT_EQ(0, shown.Count(shown.Area(), 0x212121));
    EXPECT_TRUE(shown.IsAll(shown.Area(), kWhite));
}

TEST_F(ListCells, FollowTheirColumnsWhenTheyAreMoved) {
    int order[] = {2, 0, 1};
    Send(1001, LVM_SETCOLUMNORDERARRAY, 3, reinterpret_cast<LPARAM>(order));
    Heard().cellColor = [](int, int column) { return column == 0 ? kRed : kNoColor; };
    EXPECT_LT(CellArea(0, 2).left, CellArea(0, 0).left);
    EXPECT_LT(0, Ink(0, 0, kRed));
    EXPECT_EQ(0, Ink(0, 2, kRed));
}

// ---- What the parent hears and does first

TEST_F(ListCells, HaveTheFontThatTheParentSelectsForTheirRow) {
    const HFONT bold = GetFont(9, L"", 700, 0);
    SetCell(1, 0, L"Wider in bold");
    SetCell(2, 0, L"Wider in bold");
    SetCell(1, 1, L"also");
    SetCell(2, 1, L"also");
    Heard().onDraw = [&](NMLVCUSTOMDRAW& draw) -> LRESULT {
        if (draw.nmcd.dwDrawStage == CDDS_PREPAINT) return CDRF_NOTIFYITEMDRAW;
        if (draw.nmcd.dwDrawStage != CDDS_ITEMPREPAINT || draw.nmcd.dwItemSpec != 1) {
            return CDRF_DODEFAULT;
        }
        SelectObject(draw.nmcd.hdc, bold);
        return CDRF_NEWFONT;
    };
    const ShownPixels shown(Window());
    const auto inked = [&](int row, int column) {
        const PixelRect cell = CellArea(row, column);
        return cell.Width() * cell.Height() - shown.Count(cell, kWhite);
    };
    EXPECT_LT(inked(2, 0), inked(1, 0));
    EXPECT_LT(inked(2, 1), inked(1, 1)) << "the row's other cells";
}

TEST_F(ListPainting, LeavesARowToAParentThatPaintsItItself) {
    Heard().onDraw = [&](NMLVCUSTOMDRAW& draw) -> LRESULT {
        if (draw.nmcd.dwDrawStage == CDDS_PREPAINT) return CDRF_NOTIFYITEMDRAW;
        if (draw.nmcd.dwItemSpec != 1) return CDRF_DODEFAULT;
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

TEST_F(ListPainting, LeavesIconsToTheSystem) {
    Insert(L"Icon", 1003);
    std::vector<DWORD> stages;
    Heard().onDraw = [&](NMLVCUSTOMDRAW& draw) -> LRESULT {
        if (draw.nmcd.hdr.idFrom == 1003) stages.push_back(draw.nmcd.dwDrawStage);
        return CDRF_DODEFAULT;
    };
    const ShownPixels shown(Window(1003));
    EXPECT_EQ((std::vector<DWORD>{CDDS_PREPAINT}), stages) << "nothing more is asked for";
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

// No pixel is the ground's between two steps but where the ground is: with a page of filled rows
// the window is never white.
TEST_F(ListScrolling, IsNeverErasedBetweenSteps) {
    const HWND window = Window();
    const ClientDc dc(window);
    const PixelRect area = ClientArea(window);
    FillArea(dc.Get(), area, kRed);
    EXPECT_NE(0, SendMessageW(window, WM_ERASEBKGND, reinterpret_cast<WPARAM>(dc.Get()), 0));
    EXPECT_EQ(kRed, GetPixel(dc.Get(), area.right / 2, area.bottom - 3));
}

// ---- The header

class ListHeader : public ListPainting {
protected:
    PixelRect Header(int column) const { return TitleArea(column); }
    void MoveOnHeader(int x, int y) const {
        SendMessageW(ListsTest::Header(), WM_MOUSEMOVE, 0, MAKELPARAM(x, y));
    }
    // Fill and frame of a title.
    Colours LookOfTitle(int column) const {
        const ShownPixels shown(ListsTest::Header());
        const PixelRect area = Header(column);
        const COLORREF frame = shown.At(area.left, area.top);
        EXPECT_TRUE(shown.IsFramed(area, frame)) << column;
        return {shown.At(area.left + 1, area.top + 1), frame};
    }
};

// As lists are that make their header only when it is shown.
LRESULT CALLBACK WithoutHeaderInIcons(HWND list, UINT message, WPARAM wParam, LPARAM lParam,
                                      UINT_PTR, DWORD_PTR object) {
    if (message == WM_NCDESTROY) {
        RemoveSubclass(list, &WithoutHeaderInIcons, reinterpret_cast<void*>(object));
    }
    const bool isAsked = message == LVM_GETHEADER;
    if (isAsked && SendMessageW(list, LVM_GETVIEW, 0, 0) != LV_VIEW_DETAILS) return 0;
    return CallNextSubclass(list, message, wParam, lParam);
}

TEST_F(ListHeader, MayComeWithTheDetailsViewOnly) {
    const HWND window = CreateWindowExW(0, WC_LISTVIEWW, L"", WS_CHILD | WS_VISIBLE | LVS_ICON, 0,
                                        0, 90, 90, dialog_->window, nullptr, nullptr, nullptr);
    AddSubclass(window, &WithoutHeaderInIcons, this);
    ObFlatListView list(1, {}, nullptr);
    list.Attach(window);
    LVCOLUMNW column{};
    column.mask = LVCF_WIDTH;
    column.cx = Scale(60);
    SendMessageW(window, LVM_INSERTCOLUMNW, 0, reinterpret_cast<LPARAM>(&column));
    SendMessageW(window, LVM_SETVIEW, LV_VIEW_DETAILS, 0);
    const auto header = reinterpret_cast<HWND>(SendMessageW(window, LVM_GETHEADER, 0, 0));
    SendMessageW(header, WM_MOUSEMOVE, 0, MAKELPARAM(Scale(5), 3));
    EXPECT_EQ(kHotFrame, ShownPixels(header).At(0, 0));
    DestroyWindow(window);
}

TEST_F(ListHeader, IsWhiteAllOver) {
    const ShownPixels shown(ListsTest::Header());
    EXPECT_EQ((Colours{kWhite, kWhite}), LookOfTitle(0));
    EXPECT_LT(0, shown.Count(Header(0), 0x797979));
    EXPECT_TRUE(shown.IsAll(Header(2), kWhite)) << "no title";
}

TEST_F(ListHeader, FillsRightOfItsLastTitle) {
    Send(1001, LVM_SETCOLUMNWIDTH, 0, Scale(20));
    const ShownPixels shown(ListsTest::Header());
    const PixelRect rest{Header(2).right, 0, shown.Area().right, shown.Area().bottom};
    ASSERT_FALSE(rest.IsEmpty());
    EXPECT_TRUE(shown.IsAll(rest, kWhite));
    const ObLib::UniqueMemoryDc dc(CreateCompatibleDC(nullptr));
    const ClientDc screen(ListsTest::Header());
    const ObLib::UniqueBitmap bitmap(
        CreateCompatibleBitmap(screen.Get(), shown.Area().right, shown.Area().bottom));
    const HGDIOBJ old = SelectObject(dc.Get(), bitmap.Get());
    SendMessageW(ListsTest::Header(), WM_PRINTCLIENT, reinterpret_cast<WPARAM>(dc.Get()),
                 PRF_CLIENT);
    EXPECT_EQ(kWhite, GetPixel(dc.Get(), rest.right - 1, rest.bottom - 1)) << "printed";
    SelectObject(dc.Get(), old);
}

TEST_F(ListHeader, ShowsTheTitleUnderTheMouse) {
    MoveOnHeader(Header(1).left + Header(1).Width() / 2, 3);
    EXPECT_EQ((Colours{0xFBF3E5, kHotFrame}), LookOfTitle(1));
    EXPECT_EQ((Colours{kWhite, kWhite}), LookOfTitle(0));
    SendMessageW(ListsTest::Header(), WM_MOUSELEAVE, 0, 0);
    EXPECT_EQ((Colours{kWhite, kWhite}), LookOfTitle(1));
}

TEST_F(ListHeader, ShowsTheTitleThatIsPressed) {
    const LPARAM point = MAKELPARAM(Header(1).left + Header(1).Width() / 2, 3);
    SendMessageW(ListsTest::Header(), WM_LBUTTONDOWN, MK_LBUTTON, point);
    EXPECT_EQ((Colours{0xFDE8D2, kSelectedFrame}), LookOfTitle(1));
    SendMessageW(ListsTest::Header(), WM_LBUTTONUP, 0, point);
    EXPECT_NE((Colours{0xFDE8D2, kSelectedFrame}), LookOfTitle(1));
}

TEST_F(ListHeader, HasTheSystemsColoursInHighContrast) {
    fieldtest::isContrast = true;
    const COLORREF window = GetSysColor(COLOR_WINDOW);
    MoveOnHeader(Header(0).left + Header(0).Width() / 2, 3);
    EXPECT_EQ((Colours{window, window}), LookOfTitle(0));
    EXPECT_LT(0, ShownPixels(ListsTest::Header()).Count(Header(0), GetSysColor(COLOR_WINDOWTEXT)));
}

TEST_F(ListHeader, PutsATitleWhereItsColumnHasItsTexts) {
    const ShownPixels shown(ListsTest::Header());
    EXPECT_NEAR(Header(0).left + Scale(4), shown.Inked(Header(0), kWhite).first, Scale(3));
    EXPECT_NEAR(Header(1).right - Scale(4), shown.Inked(Header(1), kWhite).second + 1, Scale(5));
    EXPECT_LT(Header(1).Centre().x, shown.Inked(Header(1), kWhite).first);
    const PixelRect last{0, shown.Area().bottom - Scale(3), Header(1).right, shown.Area().bottom};
    EXPECT_TRUE(shown.IsAll(last, kWhite)) << "three pixels below it are free";
}

TEST_F(ListHeader, PassesATitleWithoutWidthOver) {
    Send(1001, LVM_SETCOLUMNWIDTH, 0, 0);
    NMCUSTOMDRAW draw{};
    draw.hdr = {ListsTest::Header(), 0, static_cast<UINT>(NM_CUSTOMDRAW)};
    draw.dwDrawStage = CDDS_ITEMPREPAINT;
    draw.rc = {10, 0, 10, 20};
    const ClientDc dc(ListsTest::Header());
    draw.hdc = dc.Get();
    FillArea(dc.Get(), {0, 0, 40, 20}, kRed);
    EXPECT_EQ(CDRF_SKIPDEFAULT, Send(1001, WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&draw)));
    EXPECT_EQ(kRed, GetPixel(dc.Get(), 10, 5));
    EXPECT_EQ(kRed, GetPixel(dc.Get(), 12, 5));
}

// ---- Whatever a client does

class OddLists : public ListsTest {};

TEST_F(OddLists, ShowVeryLongTexts) {
    const std::wstring text(65'536, L'w');
    Insert(text.c_str());
    SetCell(0, 1, text.c_str());
    const ShownPixels shown(Window());
    EXPECT_LT(0, shown.Count(CellArea(0, 0), 0x212121));
    EXPECT_LT(0, shown.Count(CellArea(0, 1), 0xA9A9A9));
}

TEST_F(OddLists, ShowTextsThatTheClientIsAskedFor) {
    Heard().onAsked = [](LVITEMW& item) {
        static wchar_t text[] = L"wwww";
        if ((item.mask & LVIF_TEXT) != 0) item.pszText = text;
    };
    Insert(LPSTR_TEXTCALLBACKW);
    EXPECT_LT(0, ShownPixels(Window()).Count(CellArea(0, 0), 0x212121));
}

// Their client has them: to insert so many takes the system minutes here.
TEST_F(OddLists, HaveAHundredThousandRows) {
    Heard().onAsked = [](LVITEMW& item) {
        static wchar_t text[] = L"wwww";
        if ((item.mask & LVIF_TEXT) != 0) item.pszText = text;
    };
    GiveChecks(1005);
    LVCOLUMNW column{};
    column.mask = LVCF_WIDTH;
    column.cx = Scale(60);
    Send(1005, LVM_INSERTCOLUMNW, 0, reinterpret_cast<LPARAM>(&column));
    Send(1005, LVM_SETITEMCOUNT, 100'000);
    Send(1005, LVM_ENSUREVISIBLE, 99'999, FALSE);
    const ShownPixels shown(Window(1005));
    EXPECT_LT(0, shown.Count(CellArea(99'999, 0, 1005), 0x212121));
    EXPECT_TRUE(List(1005).IsGroupViewOn());
    Send(1005, LVM_SETEXTENDEDLISTVIEWSTYLE, LVS_EX_CHECKBOXES, 0);
    Send(1005, LVM_ENABLEGROUPVIEW, FALSE);
    EXPECT_FALSE(List(1005).IsGroupViewOn());
}

TEST_F(OddLists, MayBeResizedToNothing) {
    Insert(L"One");
    for (const SIZE size : {SIZE{0, 0}, SIZE{1, 1}, SIZE{300, 0}, SIZE{0, 300}}) {
        SetWindowPos(Window(), nullptr, 0, 0, size.cx, size.cy, SWP_NOMOVE | SWP_NOZORDER);
        RedrawWindow(Window(), nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW | RDW_ALLCHILDREN);
        Move(1, Scale(25));
        EXPECT_TRUE(IsWindow(Window()));
    }
    SetWindowPos(Window(), nullptr, 0, 0, 200, 100, SWP_NOMOVE | SWP_NOZORDER);
    EXPECT_LT(0, ShownPixels(Window()).Count(CellArea(0, 0), 0x212121));
}

TEST_F(OddLists, LoseColumnsAndRowsWhileTheMouseIsOnThem) {
    Insert(L"One");
    Insert(L"Two");
    Move(5, RowArea(1).top + 2);
    ASSERT_EQ(1, List().HotRow());
    Send(1001, LVM_DELETEITEM, 1);
    UpdateWindow(Window());
    EXPECT_EQ(-1, List().HotRow());
    for (int left = 3; left > 0; --left) Send(1001, LVM_DELETECOLUMN, 0);
    const ShownPixels shown(Window());
    EXPECT_EQ(0, shown.Count(shown.Area(), 0x212121));
}

TEST_F(OddLists, TakeThemesAndColoursOfTheSystemAtAnyTime) {
    Insert(L"One");
    Move(5, RowArea(0).top + 2);
    Send(1001, WM_THEMECHANGED);
    Send(1001, WM_SYSCOLORCHANGE);
    EXPECT_TRUE(List().IsGroupViewOn());
    EXPECT_LT(0, ShownPixels(Window()).Count(CellArea(0, 0), 0x212121));
}

} // namespace
