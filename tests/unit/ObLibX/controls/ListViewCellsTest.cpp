// The flat list view: texts, check boxes and icons of its cells.
#include "ObLibX/src/dialog/DlgFont.h"
#include "ObLibX/src/dialog/Images.h"
#include "tests/unit/ObLibX/controls/ListPaintingFixture.h"
#include "tests/unit/ObLibX/controls/SystemColor.h"

namespace {

using namespace ObLibX;
using namespace listtest;

// ---- Cells

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

TEST_F(ListCells, AreReadOnTheHighlightInHighContrast) {
    GiveChecks();
    SetState(0, LVIS_SELECTED, LVIS_SELECTED);
    fieldtest::isContrast = true;
    const SystemColor text(COLOR_HIGHLIGHTTEXT, 0x00FFFF);
    EXPECT_LT(0, Ink(0, 1, 0x00FFFF));
    EXPECT_EQ(0, Ink(0, 1, GetSysColor(COLOR_WINDOWTEXT)));
    EXPECT_EQ(0, Ink(1, 0, 0x00FFFF)) << "another row";
    const PixelRect cell = CellArea(0, 0);
    const PixelRect box{cell.left + Scale(4), cell.top + 2, cell.left + Scale(20), cell.bottom - 2};
    EXPECT_LT(0, ShownPixels(Window()).Count(box, 0x00FFFF)) << "its check box";
}

int WINAPI SixteenBits(HDC dc, int index) {
    static const auto real = reinterpret_cast<decltype(&GetDeviceCaps)>(
        reinterpret_cast<void*>(GetProcAddress(GetModuleHandleW(L"gdi32.dll"), "GetDeviceCaps")));
    return index == BITSPIXEL ? 16 : real(dc, index);
}

TEST_F(ListCells, ShowTheirCheckBoxAsItIsOnAScreenOfFewColours) {
    GiveChecks();
    SetState(0, LVIS_SELECTED, LVIS_SELECTED);
    const obtest::ImportPatch<decltype(&GetDeviceCaps)> bits("gdi32.dll", "GetDeviceCaps",
                                                             &SixteenBits);
    ASSERT_TRUE(bits.Ok());
    const ObLib::UniqueMemoryDc dc(CreateCompatibleDC(nullptr));
    const HGDIOBJ old = SelectObject(dc.Get(), List().checkImages[1].Get());
    const SIZE size = List().checkSize;
    std::vector<COLORREF> expected;
    for (int y = 0; y < size.cy; ++y) {
        for (int x = 0; x < size.cx; ++x) expected.push_back(GetPixel(dc.Get(), x, y));
    }
    SelectObject(dc.Get(), old);
    const PixelRect cell = CellArea(0, 0);
    const int left = cell.left + Scale(4);
    const int top = cell.top + Scale(4);
    const PixelRect box{left, top, left + static_cast<int>(size.cx),
                        top + static_cast<int>(size.cy)};
    EXPECT_EQ(expected, ShownPixels(Window()).Of(box));
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

TEST_F(ListCells, ShowTheIconThatTheClientIsAskedFor) {
    const ObLib::UniqueImageList images = ColouredImages(Scale(16), 2, kRed);
    Send(1001, LVM_SETIMAGELIST, LVSIL_SMALL, reinterpret_cast<LPARAM>(images.Get()));
    LVITEMW item{};
    item.mask = LVIF_IMAGE;
    item.iImage = I_IMAGECALLBACK;
    Send(1001, LVM_SETITEMW, 0, reinterpret_cast<LPARAM>(&item));
    Heard().onAsked = [](LVITEMW& asked) {
        if ((asked.mask & LVIF_IMAGE) != 0) asked.iImage = asked.iItem == 0 ? 1 : I_IMAGENONE;
    };
    EXPECT_EQ(Scale(16) * Scale(16), Ink(0, 0, kRed));
    Heard().onAsked = [](LVITEMW& asked) {
        if ((asked.mask & LVIF_IMAGE) != 0) asked.iImage = I_IMAGENONE;
    };
    EXPECT_EQ(0, Ink(0, 0, kRed));
    Send(1001, LVM_SETIMAGELIST, LVSIL_SMALL, 0);
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

// A column that is fitted to its text, in each of the ways in which a client or user asks for it.
class FittedColumn : public ListCells {
protected:
    void SetUp() override {
        ListCells::SetUp();
        SetCell(1, 0, L"Text without an end.docx");
    }
    int Width() const { return static_cast<int>(Send(1001, LVM_GETCOLUMNWIDTH, 0)); }
    // The first and the last column of the text in the first column's second row.
    std::pair<int, int> Text(int before) const {
        PixelRect cell = CellArea(1, 0);
        cell.left += before;
        return ShownPixels(Window()).Inked(cell, kWhite);
    }
    void Widen() const { Send(1001, LVM_SETCOLUMNWIDTH, 0, Scale(200)); }
    void DoubleClickItsDivider() const {
        NMHEADERW click{};
        click.hdr = {Header(), 0, HDN_DIVIDERDBLCLICKW};
        Send(1001, WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&click));
    }
    // `before`: from the cell's left to its text.
    void ExpectFits(int before) const {
        Widen();
        const auto whole = Text(before);
        const auto expect = [&](const char* way) {
            EXPECT_EQ(whole, Text(before)) << way;
            EXPECT_GT(whole.second + Scale(20), CellArea(1, 0).right) << way;
            Widen();
        };
        Send(1001, LVM_SETCOLUMNWIDTH, 0, LVSCW_AUTOSIZE);
        expect("to its text");
        Send(1001, LVM_SETCOLUMNWIDTH, 0, MAKELPARAM(LVSCW_AUTOSIZE_USEHEADER, 0));
        expect("to text and title");
        DoubleClickItsDivider();
        expect("by its divider");
    }
};

TEST_F(FittedColumn, ShowsItsWholeText) { ExpectFits(0); }

TEST_F(FittedColumn, ShowsItsWholeTextAfterCheckBoxAndIcon) {
    GiveChecks();
    ExpectFits(Scale(22));
    const ObLib::UniqueImageList images = ColouredImages(Scale(16), 1, kRed);
    Send(1001, LVM_SETIMAGELIST, LVSIL_SMALL, reinterpret_cast<LPARAM>(images.Get()));
    ExpectFits(Scale(46));
    Send(1001, LVM_SETIMAGELIST, LVSIL_SMALL, 0);
}

TEST_F(FittedColumn, IsAsWideAsItsTitleWhereThatIsWider) {
    wchar_t text[] = L"A title that is much wider than all texts";
    LVCOLUMNW column{};
    column.mask = LVCF_TEXT;
    column.pszText = text;
    Send(1001, LVM_SETCOLUMNW, 0, reinterpret_cast<LPARAM>(&column));
    Send(1001, LVM_SETCOLUMNWIDTH, 0, LVSCW_AUTOSIZE);
    const int toText = Width();
    Send(1001, LVM_SETCOLUMNWIDTH, 0, MAKELPARAM(LVSCW_AUTOSIZE_USEHEADER, 0));
    EXPECT_LT(toText, Width());
}

TEST_F(FittedColumn, IsTheControlsOtherwise) {
    EXPECT_EQ(TRUE, Send(1001, LVM_SETCOLUMNWIDTH, 0, 33));
    EXPECT_EQ(33, Width());
    EXPECT_EQ(FALSE, Send(1001, LVM_SETCOLUMNWIDTH, 99, LVSCW_AUTOSIZE));
    Send(1001, LVM_ENABLEGROUPVIEW, FALSE);
    Stock(1001, LVM_SETCOLUMNWIDTH, 0, LVSCW_AUTOSIZE);
    const int stock = Width();
    Send(1001, LVM_SETCOLUMNWIDTH, 0, LVSCW_AUTOSIZE);
    EXPECT_EQ(stock, Width());
    DoubleClickItsDivider();
    EXPECT_EQ(stock, Width());
}

TEST_F(ListCells, FollowTheirColumnsWhenTheyAreMoved) {
    int order[] = {2, 0, 1};
    Send(1001, LVM_SETCOLUMNORDERARRAY, 3, reinterpret_cast<LPARAM>(order));
    Heard().cellColor = [](int, int column) { return column == 0 ? kRed : kNoColor; };
    EXPECT_LT(CellArea(0, 2).left, CellArea(0, 0).left);
    EXPECT_LT(0, Ink(0, 0, kRed));
    EXPECT_EQ(0, Ink(0, 2, kRed));
}

// ---- What the parent does first

// As a dialog does whose default of several accounts is bold.
class BoldRow : public ListCells {
protected:
    void SetUp() override {
        ListCells::SetUp();
        ASSERT_TRUE(texts_.Ok());
        for (const int row : {1, 2}) {
            SetCell(row, 0, L"Wider in bold");
            SetCell(row, 1, L"also");
        }
        Heard().onDraw = [this](NMLVCUSTOMDRAW& draw) -> LRESULT {
            if (draw.nmcd.dwDrawStage == CDDS_PREPAINT) return CDRF_NOTIFYITEMDRAW;
            if (draw.nmcd.dwDrawStage != CDDS_ITEMPREPAINT || draw.nmcd.dwItemSpec != 1) {
                return CDRF_DODEFAULT;
            }
            SelectObject(draw.nmcd.hdc, bold_);
            return CDRF_NEWFONT;
        };
    }
    // Left half empty, right half red.
    static ObLib::UniqueImageList HalfImages() {
        const int size = Scale(16);
        ObLib::UniqueImageList images(ImageList_Create(size, size, ILC_COLOR32, 1, 1));
        BITMAPINFO info{};
        info.bmiHeader = {sizeof info.bmiHeader, size, -size, 1, 32, BI_RGB, 0, 0, 0, 0, 0};
        void* bits = nullptr;
        const ObLib::UniqueBitmap bitmap(
            CreateDIBSection(nullptr, &info, DIB_RGB_COLORS, &bits, nullptr, 0));
        for (int at = 0; at < size * size; ++at) {
            static_cast<DWORD*>(bits)[at] = at % size < size / 2 ? 0 : 0xFFFF0000;
        }
        ImageList_Add(images.Get(), bitmap.Get(), nullptr);
        return images;
    }
    const HFONT bold_ = GetFont(9, L"", 700, 0);

private:
    obtest::ImportPatch<decltype(&DrawTextW)> texts_{"user32.dll", "DrawTextW", &RecordText};
};

TEST_F(BoldRow, HasTheFontOfTheParentInAllItsCells) {
    drawn.clear();
    const ShownPixels shown(Window());
    std::erase_if(drawn, [](const auto& text) {
        return text.first != L"Wider in bold" && text.first != L"also";
    });
    const std::pair<std::wstring, HGDIOBJ> expected[] = {{L"Wider in bold", bold_},
                                                         {L"also", bold_},
                                                         {L"Wider in bold", List().font},
                                                         {L"also", List().font}};
    EXPECT_TRUE(std::ranges::equal(expected, drawn));
    EXPECT_NE(bold_, List().font);
}

TEST_F(BoldRow, ShowsAnIconWithItsTransparencyOnTheRowsFill) {
    const ObLib::UniqueImageList images = HalfImages();
    Send(1001, LVM_SETIMAGELIST, LVSIL_SMALL, reinterpret_cast<LPARAM>(images.Get()));
    SetFocus(Window());
    SetState(1, LVIS_SELECTED | LVIS_FOCUSED, LVIS_SELECTED | LVIS_FOCUSED);
    const ShownPixels shown(Window());
    for (const auto& [row, fill] : {std::pair{1, COLORREF{0xFDE8D2}}, std::pair{2, kWhite}}) {
        const PixelRect cell = CellArea(row, 0);
        const int left = cell.left + Scale(4);
        const int top = cell.top + (cell.Height() - Scale(16)) / 2;
        const int bottom = top + Scale(16);
        const int middle = left + Scale(16) / 2;
        EXPECT_TRUE(shown.IsAll({left, top + 2, middle, bottom - 2}, fill)) << row;
        EXPECT_TRUE(shown.IsAll({middle, top, left + Scale(16), bottom}, kRed)) << row;
        EXPECT_LT(0, shown.Count({left + Scale(24), top, cell.right, bottom}, 0x212121)) << row;
    }
    Send(1001, LVM_SETIMAGELIST, LVSIL_SMALL, 0);
}

} // namespace
