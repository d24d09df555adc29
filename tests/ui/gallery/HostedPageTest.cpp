// The gallery's page of hosted bars: its pictures, scrolling by the bars, bars that come and go,
// and the menu of a bar.
#include "tests/ui/gallery/GalleryFixture.h"

namespace obtest {
namespace {

class HostedPage : public GalleryFixture {
protected:
    HostedPage() : GalleryFixture(L"hosted") {}

    // The bar that covers the right edge of an item, or its lower edge.
    HWND BarOf(int id, bool isVertical) const {
        RECT item{};
        GetWindowRect(Item(id), &item);
        return FindDescendant(page_, [&](HWND window) {
            RECT bar{};
            GetWindowRect(window, &bar);
            const bool isUpright = bar.bottom - bar.top > bar.right - bar.left;
            return ClassOf(window) == L"ScrollBar" && isUpright == isVertical &&
                   bar.left >= item.left && bar.right <= item.right && bar.top >= item.top &&
                   bar.bottom <= item.bottom;
        });
    }
    static LRESULT PositionOf(HWND bar) { return SendMessageW(bar, SBM_GETPOS, 0, 0); }
    // At a place of the bar, counted from its end.
    static void ClickFromEnd(HWND bar, int pixels) {
        RECT area{};
        GetClientRect(bar, &area);
        const LPARAM point = area.bottom > area.right ? MAKELPARAM(4, area.bottom - pixels)
                                                      : MAKELPARAM(area.right - pixels, 4);
        PostMessageW(bar, WM_LBUTTONDOWN, MK_LBUTTON, point);
        PostMessageW(bar, WM_LBUTTONUP, 0, point);
    }
    void PressKey(int id, WPARAM key) const { PostMessageW(Item(id), WM_KEYDOWN, key, 1); }
    LRESULT TopOf(int list) const { return SendMessageW(Item(list), LB_GETTOPINDEX, 0, 0); }
};

TEST_F(HostedPage, ShowsItsWindows) {
    LookAt(page_, L"gallery-hosted", 580, 280);
    for (const int id : {IDOK, IDCANCEL}) ExpectWholeText(Item(id), AtScale(6));
}

TEST_F(HostedPage, ScrollsByItsBars) {
    const HWND files = BarOf(OB_GALLERY_HOSTED_FILES, true);
    const HWND notes = BarOf(OB_GALLERY_HOSTED_NOTES, true);
    ASSERT_TRUE(files != nullptr && notes != nullptr);
    ClickFromEnd(files, 2);
    EXPECT_TRUE(WaitUntil([&] { return TopOf(OB_GALLERY_HOSTED_FILES) == 1; }));
    EXPECT_TRUE(WaitUntil([&] { return PositionOf(files) == 1; }));
    ClickFromEnd(notes, 2);
    EXPECT_TRUE(WaitUntil([&] {
        return SendMessageW(Item(OB_GALLERY_HOSTED_NOTES), EM_GETFIRSTVISIBLELINE, 0, 0) == 1;
    }));
    PressKey(OB_GALLERY_HOSTED_FILES, VK_HOME); // selects
    PressKey(OB_GALLERY_HOSTED_FILES, VK_END);
    EXPECT_TRUE(WaitUntil([&] { return TopOf(OB_GALLERY_HOSTED_FILES) > 40; }));
    EXPECT_TRUE(WaitUntil([&] { return PositionOf(files) > 40; })) << "the bar follows the list";
    LookAt(page_, L"gallery-hosted-scrolled", 580, 280);
}

TEST_F(HostedPage, ShowsHiddenBarsUnderTheMouse) {
    const HWND bar = BarOf(OB_GALLERY_HOSTED_FILES_HIDING, true);
    ASSERT_NE(nullptr, bar);
    EXPECT_FALSE(IsWindowVisible(bar));
    RECT list{};
    GetWindowRect(Item(OB_GALLERY_HOSTED_FILES_HIDING), &list);
    SetCursorPos(list.left + 20, list.top + 20);
    SetCursorPos(list.left + 40, list.top + 40);
    EXPECT_TRUE(WaitUntil([&] { return IsWindowVisible(bar) != FALSE; })) << "it rests";
    LookAt(page_, L"gallery-hosted-out", 580, 280);
    SetCursorPos(0, 0);
    EXPECT_TRUE(WaitUntil([&] { return IsWindowVisible(bar) == FALSE; })) << "it has left";
    PressKey(OB_GALLERY_HOSTED_FILES_HIDING, VK_HOME);
    PressKey(OB_GALLERY_HOSTED_FILES_HIDING, VK_END);
    EXPECT_TRUE(WaitUntil([&] { return TopOf(OB_GALLERY_HOSTED_FILES_HIDING) > 40; }));
    EXPECT_TRUE(WaitUntil([&] { return PositionOf(bar) > 40; }));
}

TEST_F(HostedPage, HasAMenuAtItsBars) {
    const HWND bar = BarOf(OB_GALLERY_HOSTED_FILES, true);
    ASSERT_NE(nullptr, bar);
    RECT place{};
    GetWindowRect(bar, &place);
    PostMessageW(bar, WM_CONTEXTMENU, reinterpret_cast<WPARAM>(bar),
                 MAKELPARAM(place.left + 5, place.top + 40));
    DWORD process = 0;
    GetWindowThreadProcessId(page_, &process);
    const HWND menu =
        WaitForTopWindow([](HWND window) { return ClassOf(window) == L"#32768"; }, process);
    ASSERT_NE(nullptr, menu);
    const auto picture = TakeSettledPicture(menu, 3); // it has few colours
    ASSERT_TRUE(picture);
    KeepPicture(*picture, L"gallery-hosted-menu", 80, 150);
    PostMessageW(menu, WM_KEYDOWN, VK_ESCAPE, 1);
    EXPECT_TRUE(WaitUntil([&] { return !IsWindowVisible(menu); }));
}

} // namespace
} // namespace obtest
