// The gallery's page of links: its picture, and clicks by mouse and keys.
#include "tests/ui/gallery/GalleryFixture.h"

namespace obtest {
namespace {

class LinksPage : public GalleryFixture {
protected:
    LinksPage() : GalleryFixture(L"links") {}

    long Height(int id) const {
        RECT rect{};
        GetWindowRect(Item(id), &rect);
        return rect.bottom - rect.top;
    }
    bool Shows(const std::wstring& text) const {
        return WaitUntil([&] { return ItemText(page_, OB_GALLERY_LINK_CLICKED) == text; });
    }
};

TEST_F(LinksPage, ShowsItsLinks) {
    LookAt(page_, L"gallery-links", 440, 280);
    EXPECT_GT(Height(OB_GALLERY_LINK_WRAPPED), Height(OB_GALLERY_LINK_PLAIN)) << "in two lines";
}

TEST_F(LinksPage, CountsClicksOfMouseAndKeys) {
    PostMessageW(Item(OB_GALLERY_LINK_PLAIN), WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(3, 3));
    PostMessageW(Item(OB_GALLERY_LINK_PLAIN), WM_LBUTTONUP, 0, MAKELPARAM(3, 3));
    EXPECT_TRUE(Shows(L"About this program: 1"));
    PostMessageW(Item(OB_GALLERY_LINK_FOCUSED), WM_KEYDOWN, VK_RETURN, 1);
    EXPECT_TRUE(Shows(L"Show the help: 2"));
    PostMessageW(Item(OB_GALLERY_LINK_CENTRED), WM_KEYDOWN, VK_SPACE, 1);
    EXPECT_TRUE(Shows(L"What is sent: 3"));
}

} // namespace
} // namespace obtest
