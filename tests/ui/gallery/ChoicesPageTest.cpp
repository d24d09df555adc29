// The gallery's page of combo boxes, spin controls and the date picker: its picture, and choices
// by keys.
#include <commctrl.h>

#include "tests/ui/gallery/GalleryFixture.h"

namespace obtest {
namespace {

class ChoicesPage : public GalleryFixture {
protected:
    ChoicesPage() : GalleryFixture(L"choices") {}

    void PressKey(int id, WPARAM key) const { PostMessageW(Item(id), WM_KEYDOWN, key, 1); }
};

TEST_F(ChoicesPage, ShowsItsControls) {
    LookAt(page_, L"gallery-choices", 440, 240);
    for (const int id : {IDOK, IDCANCEL}) ExpectWholeText(Item(id), AtScale(6));
}

TEST_F(ChoicesPage, ChoosesAndCountsByKeys) {
    PressKey(OB_GALLERY_COMBO_LIST, VK_DOWN);
    EXPECT_TRUE(WaitUntil(
        [&] { return SendMessageW(Item(OB_GALLERY_COMBO_LIST), CB_GETCURSEL, 0, 0) == 2; }));
    PressKey(OB_GALLERY_SPIN_EDIT, VK_UP);
    EXPECT_TRUE(WaitUntil([&] { return ItemText(page_, OB_GALLERY_SPIN_EDIT) == L"43"; }));
}

TEST_F(ChoicesPage, DropsItsListDown) {
    const HWND combo = Item(OB_GALLERY_COMBO_LIST);
    PostMessageW(combo, CB_SHOWDROPDOWN, TRUE, 0);
    DWORD process = 0;
    GetWindowThreadProcessId(page_, &process);
    const HWND list =
        WaitForTopWindow([](HWND window) { return ClassOf(window) == L"ComboLBox"; }, process);
    ASSERT_NE(nullptr, list);
    LookAt(page_, L"gallery-choices-dropped", 440, 240);
    PostMessageW(combo, CB_SHOWDROPDOWN, FALSE, 0);
    EXPECT_TRUE(WaitUntil([&] { return !IsWindowVisible(list); }));
}

} // namespace
} // namespace obtest
