// The gallery's page of list views: its picture, a list that is scrolled, a check box that is
// flipped by a key.
#include <commctrl.h>

#include "tests/ui/gallery/GalleryFixture.h"

namespace obtest {
namespace {

class ListsPage : public GalleryFixture {
protected:
    ListsPage() : GalleryFixture(L"lists") {}

    void PressKey(int id, WPARAM key) const { PostMessageW(Item(id), WM_KEYDOWN, key, 1); }
    LRESULT StateOf(int id, int row) const {
        return SendMessageW(Item(id), LVM_GETITEMSTATE, static_cast<WPARAM>(row),
                            LVIS_STATEIMAGEMASK);
    }
};

TEST_F(ListsPage, ShowsItsControls) {
    LookAt(page_, L"gallery-lists", 560, 400);
    for (const int id : {IDOK, IDCANCEL}) ExpectWholeText(Item(id), AtScale(6));
}

TEST_F(ListsPage, ScrollsAThousandRows) {
    const HWND list = Item(OB_GALLERY_LIST_MANY);
    EXPECT_EQ(1000, SendMessageW(list, LVM_GETITEMCOUNT, 0, 0));
    PostMessageW(list, WM_VSCROLL, SB_PAGEDOWN, 0);
    EXPECT_TRUE(WaitUntil([&] { return SendMessageW(list, LVM_GETTOPINDEX, 0, 0) > 0; }));
    PressKey(OB_GALLERY_LIST_MANY, VK_END);
    EXPECT_TRUE(WaitUntil([&] { return SendMessageW(list, LVM_GETTOPINDEX, 0, 0) > 900; }));
    LookAt(page_, L"gallery-lists-scrolled", 560, 400);
}

TEST_F(ListsPage, FlipsACheckBoxBySpace) {
    PressKey(OB_GALLERY_LIST_CHECKS, VK_HOME);
    PressKey(OB_GALLERY_LIST_CHECKS, VK_SPACE);
    EXPECT_TRUE(
        WaitUntil([&] { return StateOf(OB_GALLERY_LIST_CHECKS, 0) == INDEXTOSTATEIMAGEMASK(2); }));
    PressKey(OB_GALLERY_LIST_CHECKS, VK_SPACE);
    EXPECT_TRUE(
        WaitUntil([&] { return StateOf(OB_GALLERY_LIST_CHECKS, 0) == INDEXTOSTATEIMAGEMASK(1); }));
}

} // namespace
} // namespace obtest
