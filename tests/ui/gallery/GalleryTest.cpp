// The gallery opens each of its pages, whole and at the screen's scale. With OB_PICTURES, a folder,
// their pictures are stored there to be looked at.
#include "tests/ui/gallery/GalleryFixture.h"

namespace obtest {
namespace {

class Gallery : public GalleryFixture {
protected:
    explicit Gallery(const wchar_t* page = L"stock") : GalleryFixture(page) {}
};

TEST_F(Gallery, ShowsStockControls) {
    LookAt(page_, L"gallery-stock", 440, 300);
    for (const int id : {OB_GALLERY_DEFAULTS, IDOK, IDCANCEL}) {
        ExpectWholeText(GetDlgItem(page_, id), AtScale(6));
    }
}

TEST_F(Gallery, HasHeadingsInPlaceOfGroupBoxes) {
    std::vector<std::wstring> headings;
    for (const HWND child : Descendants(page_)) {
        const std::wstring text = TextOf(child);
        if (text == L"Boxes" || text == L"Circles")
            headings.push_back(ClassOf(child) + L" " + text);
    }
    EXPECT_EQ((std::vector<std::wstring>{L"Static Boxes", L"Static Circles"}), headings);
}

TEST_F(Gallery, PutsBackItsDefaults) {
    SetText(GetDlgItem(page_, OB_GALLERY_NAME), L"changed");
    Click(GetDlgItem(page_, OB_GALLERY_DEFAULTS));
    EXPECT_TRUE(WaitUntil([&] { return ItemText(page_, OB_GALLERY_NAME) == L"Meeting"; }));
}

// Every page, one after the other.
class GalleryOfAll : public Gallery {
protected:
    GalleryOfAll() : Gallery(L"") {}
};

TEST_F(GalleryOfAll, ShowsTheNextPageAfterOk) {
    const std::wstring first = TextOf(page_);
    ASSERT_TRUE(PressCommand(page_, IDOK));
    const auto isAnother = [&](HWND window) {
        const std::wstring title = TextOf(window); // empty while the first one closes
        return IsDialog(window) && !title.empty() && title != first;
    };
    page_ = WaitForTopWindow(isAnother, GetProcessId(process_.Get()));
    EXPECT_NE(nullptr, page_);
}

class GalleryOfTexts : public Gallery {
protected:
    GalleryOfTexts() : Gallery(L"texts") {}
};

TEST_F(GalleryOfTexts, ShowsTextsEditsAndPasswords) { LookAt(page_, L"gallery-texts", 500, 380); }

TEST_F(GalleryOfTexts, HasAnEyeInEachPasswordThatIsEnabled) {
    int eyes = 0;
    for (const HWND child : Descendants(page_)) {
        eyes += GetPropW(child, L"OB_EDIT_IMGBTN") != nullptr && IsWindowVisible(child);
    }
    EXPECT_EQ(3, eyes);
}

class GalleryOfButtons : public Gallery {
protected:
    GalleryOfButtons() : Gallery(L"buttons") {}
};

TEST_F(GalleryOfButtons, ShowsPushButtonsInEveryState) {
    LookAt(page_, L"gallery-buttons", 500, 380);
    for (int row = 0; row < OB_GALLERY_BUTTON_CLASSES; ++row) {
        const int id = OB_GALLERY_BUTTON_STATE + OB_GALLERY_BUTTON_STEP * row;
        EXPECT_TRUE(IsWindowVisible(GetDlgItem(page_, id))) << id;
        EXPECT_FALSE(IsWindowEnabled(GetDlgItem(page_, id + 3))) << id;
    }
}

class GalleryOfToggles : public Gallery {
protected:
    GalleryOfToggles() : Gallery(L"toggles") {}
};

TEST_F(GalleryOfToggles, ShowsCheckBoxesRadiosAndSwitches) {
    LookAt(page_, L"gallery-toggles", 500, 280);
}

TEST_F(GalleryOfToggles, NamesTheStateOfASwitchInItsText) {
    const int id = OB_GALLERY_SWITCH;
    EXPECT_EQ(L"Off", ItemText(page_, id));
    Click(GetDlgItem(page_, id));
    EXPECT_TRUE(WaitUntil([&] { return ItemText(page_, id) == L"On"; }));
}

} // namespace
} // namespace obtest
