// The flat list view: whatever a client does with it.
#include "tests/unit/ObLibX/controls/ListPaintingFixture.h"
#include "tests/unit/ObLibX/controls/SystemColor.h"

namespace {

using namespace ObLibX;
using namespace listtest;

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

TEST_F(OddLists, TakeAThemeAtAnyTime) {
    Insert(L"One");
    Move(5, RowArea(0).top + 2);
    Send(1001, WM_THEMECHANGED);
    EXPECT_TRUE(List().IsGroupViewOn());
    EXPECT_LT(0, ShownPixels(Window()).Count(CellArea(0, 0), 0x212121));
}

TEST_F(OddLists, TakeHighContrastWhileTheyAreShown) {
    GiveChecks();
    Insert(L"One");
    UpdateWindow(Window());
    UpdateWindow(Header());
    const COLORREF ground = 0x401010;
    const COLORREF text = 0x00FFFF;
    const SystemColor window(COLOR_WINDOW, ground);
    const SystemColor windowText(COLOR_WINDOWTEXT, text);
    fieldtest::isContrast = true;
    SendMessageW(dialog_->window, WM_SYSCOLORCHANGE, 0, 0);
    UpdateWindow(Window()); // what is invalid by itself
    UpdateWindow(Header());
    const PixelRect cell = CellArea(0, 0);
    const PixelRect client = ClientArea(Window());
    EXPECT_EQ(ground, fieldtest::PixelOf(Window(), client.right / 2, client.bottom - 3));
    EXPECT_EQ(ground, fieldtest::PixelOf(Window(), cell.left + 1, cell.top + 1));
    EXPECT_EQ(ground, fieldtest::PixelOf(Header(), 1, 1));
    EXPECT_EQ(text, fieldtest::PixelOf(Window(), cell.left + Scale(4), cell.top + Scale(10)))
        << "the frame of its check box";
}

} // namespace
