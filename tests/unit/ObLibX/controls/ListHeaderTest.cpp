// The header of the flat list view.
#include "ObLibX/src/dialog/WindowSubclass.h"
#include "tests/unit/ObLibX/controls/ListPaintingFixture.h"

namespace {

using namespace ObLibX;
using namespace listtest;

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
    const obtest::ImportPatch<decltype(&FillRect)> fills("user32.dll", "FillRect", &RecordFill);
    ASSERT_TRUE(fills.Ok());
    NMCUSTOMDRAW draw{};
    draw.hdr = {ListsTest::Header(), 0, static_cast<UINT>(NM_CUSTOMDRAW)};
    draw.dwDrawStage = CDDS_ITEMPREPAINT;
    const ClientDc dc(ListsTest::Header());
    draw.hdc = dc.Get();
    const auto fillsOf = [&](const RECT& area) {
        draw.rc = area;
        filled.clear();
        EXPECT_EQ(CDRF_SKIPDEFAULT, Send(1001, WM_NOTIFY, 0, reinterpret_cast<LPARAM>(&draw)));
        return filled.size();
    };
    EXPECT_EQ(0u, fillsOf({10, 0, 10, 20}));
    EXPECT_LT(0u, fillsOf({10, 0, 11, 20})) << "one pixel of it";
}

} // namespace
